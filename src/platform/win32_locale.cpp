// The "C" locale for the scope of a thread, on Windows, where the thread temporarily has its own locale.
#include "platform/platform.h"

#include <clocale>

namespace kn::os {

PlainNumbers::PlainNumbers() : mode_(_configthreadlocale(_ENABLE_PER_THREAD_LOCALE)) {
    const char *now = std::setlocale(LC_ALL, nullptr);
    std::snprintf(before_, sizeof before_, "%s", now ? now : "C");
    std::setlocale(LC_ALL, "C");
}

PlainNumbers::~PlainNumbers() {
    std::setlocale(LC_ALL, before_);
    _configthreadlocale(mode_);
}

} // namespace kn::os
