// Looks up the names of exception codes, the same on every system.
#include "platform/exception_names.h"
#include "platform/platform.h"

#include <algorithm>
#include <iterator>

namespace kn::os {

static_assert(std::ranges::is_sorted(exception_names, std::ranges::less_equal{}, &ExceptionName::code));

const char *exception_name(unsigned code) {
    for (const ExceptionName &row : exception_names)
        if (row.code == code) return row.name;
    return "Unknown exception code";
}

} // namespace kn::os
