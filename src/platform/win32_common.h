// What the Windows files share: the system's header, and conversion of its times to seconds.
#pragma once

#define WIN32_LEAN_AND_MEAN
#define NOMINMAX
#define _CRT_SECURE_NO_WARNINGS
#include <windows.h>

namespace kn::os {

// A FILETIME counts units of 100 ns.
inline double seconds_of(const FILETIME &t) {
    return 1e-7 * (4294967296.0 * t.dwHighDateTime + t.dwLowDateTime);
}

} // namespace kn::os
