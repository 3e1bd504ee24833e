// The table of functions: the rows of the headers and the calls made from them, one for each form
// (function_calls.cpp). Sorted by C++ name.
#ifndef QUORVEX_HOST_FUNCTION_TABLE_H
#define QUORVEX_HOST_FUNCTION_TABLE_H

#include <span>

#include "host/form_call.h"
#include "quorvex/library.h"

namespace kn {

struct Function {
    kn_function about;
    std::span<const form> forms;
    const Call *const *calls; // in the same order; a list, and names, are one input, a cell
};

constexpr int max_inputs = 6, max_outputs = 6;

std::span<const Function> function_table();

} // namespace kn

#endif
