// The "C" locale for the scope of a thread, on POSIX systems.
#include "platform/platform.h"

#include <clocale>
#include <locale.h>

namespace kn::os {

// Without memory for the locale the current one is kept.
PlainNumbers::PlainNumbers() {
    static const locale_t c = newlocale(LC_ALL_MASK, "C", static_cast<locale_t>(nullptr));
    before_ = uselocale(c);
}

PlainNumbers::~PlainNumbers() { uselocale(static_cast<locale_t>(before_)); }

} // namespace kn::os
