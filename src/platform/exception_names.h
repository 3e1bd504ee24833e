// The exception codes that a crash report can name, each with its name. Ascending, so that a duplicate is
// noticed.
#pragma once

#include <string_view>

namespace kn::os {

struct ExceptionName {
    unsigned code;
    const char *name;
};

inline constexpr ExceptionName exception_names[] = {
    {0x80000001, "GUARD_PAGE"},
    {0x80000002, "DATATYPE_MISALIGNMENT"},
    {0x80000003, "BREAKPOINT"},
    {0x80000004, "SINGLE_STEP"},
    {0xC0000005, "ACCESS_VIOLATION"},
    {0xC0000006, "IN_PAGE_ERROR"},
    {0xC0000008, "INVALID_HANDLE"},
    {0xC000001D, "ILLEGAL_INSTRUCTION"},
    {0xC0000025, "NONCONTINUABLE_EXCEPTION"},
    {0xC0000026, "INVALID_DISPOSITION"},
    {0xC000008C, "ARRAY_BOUNDS_EXCEEDED"},
    {0xC000008D, "FLT_DENORMAL_OPERAND"},
    {0xC000008E, "FLT_DIVIDE_BY_ZERO"},
    {0xC000008F, "FLT_INEXACT_RESULT"},
    {0xC0000090, "FLT_INVALID_OPERATION"},
    {0xC0000091, "FLT_OVERFLOW"},
    {0xC0000092, "FLT_STACK_CHECK"},
    {0xC0000093, "FLT_UNDERFLOW"},
    {0xC0000094, "INT_DIVIDE_BY_ZERO"},
    {0xC0000095, "INT_OVERFLOW"},
    {0xC0000096, "PRIV_INSTRUCTION"},
    {0xC00000FD, "STACK_OVERFLOW"},
};

// The code with this name; a name that isn't in the table doesn't compile.
consteval unsigned exception_code(std::string_view name) {
    for (const ExceptionName &row : exception_names)
        if (name == row.name) return row.code;
    throw "no such exception name";
}

} // namespace kn::os
