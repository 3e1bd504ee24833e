// The library's own threads on Windows.
//
// A thread that ends waits for the loader's lock, which static destructors hold while a module is unloaded,
// so they must not wait for it. Therefore the module is never unloaded once it has threads; and when the
// process ends, its threads have ended before the destructors run.
#include "platform/platform.h"
#include "platform/win32_common.h"

#include <process.h>

namespace kn::os {

namespace {

unsigned __stdcall body(void *work) {
    reset_floating_point();
    reinterpret_cast<void (*)()>(work)();
    return 0;
}

} // namespace

Thread start_thread(void (*run)()) {
    HMODULE self;
    if (!GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                            reinterpret_cast<const char *>(&body), &self))
        return nullptr;
    return reinterpret_cast<Thread>(
        _beginthreadex(nullptr, 0, body, reinterpret_cast<void *>(run), 0, nullptr));
}

void join_thread(Thread thread) {
    WaitForSingleObject(reinterpret_cast<HANDLE>(thread), INFINITE);
    CloseHandle(reinterpret_cast<HANDLE>(thread));
}

void around_fork(void (*)(), void (*)(), void (*)()) {} // there is no fork

} // namespace kn::os
