#include "linear/superlu_memory.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "base/scratch.h"
#include "quorvex/messages.h"

namespace kn {
namespace {

thread_local constinit SuperluCall *current_call = nullptr;

} // namespace

SuperluCall *SuperluCall::current() { return current_call; }

SuperluCall::~SuperluCall() {
    while (held_.next != &held_) release(held_.next + 1);
}

void *SuperluCall::allocate(size_t bytes) {
    static_assert(sizeof(Block) % alignof(std::max_align_t) == 0);
    auto *block =
        static_cast<Block *>(bytes > SIZE_MAX - sizeof(Block) ? nullptr : heap_alloc(sizeof(Block) + bytes));
    if (!block) leave(nullptr);
    *block = {&held_, held_.next};
    held_.next->previous = block;
    held_.next = block;
    return block + 1;
}

void SuperluCall::release(void *p) {
    if (!p) return;
    Block *block = static_cast<Block *>(p) - 1;
    block->previous->next = block->next;
    block->next->previous = block->previous;
    heap_free(block);
}

void SuperluCall::leave(const char *reason) {
    exhausted_ = !reason;
    if (reason) {
        std::snprintf(reason_, sizeof reason_, "%s", reason);
        reason_[std::strcspn(reason_, "\n")] = 0;
    }
    std::longjmp(back_, 1);
}

bool SuperluCall::attempt(void (*work)(void *), void *context) {
    if (setjmp(back_) != 0) return false;
    work(context);
    return true;
}

bool SuperluCall::run(void (*work)(void *), void *context) {
    current_call = this;
    bool done = attempt(work, context);
    current_call = nullptr;
    if (done) return true;
    if (exhausted_)
        out_of_memory();
    else
        error("lusolve: %s", reason_);
    return false;
}

} // namespace kn

#if defined(__GNUC__)
#define KN_FOR_SUPERLU __attribute__((visibility("default")))
#else
#define KN_FOR_SUPERLU
#endif

extern "C" {
KN_FOR_SUPERLU void *superlu_malloc(size_t bytes);
KN_FOR_SUPERLU void superlu_free(void *p);
KN_FOR_SUPERLU void superlu_abort_and_exit(char *reason);
}

void *superlu_malloc(size_t bytes) {
    kn::SuperluCall *call = kn::SuperluCall::current();
    return call ? call->allocate(bytes) : std::malloc(bytes);
}

void superlu_free(void *p) {
    kn::SuperluCall *call = kn::SuperluCall::current();
    if (call)
        call->release(p);
    else
        std::free(p);
}

void superlu_abort_and_exit(char *reason) {
    if (kn::SuperluCall *call = kn::SuperluCall::current()) call->leave(reason);
    std::fputs(reason, stderr);
    std::exit(-1);
}
