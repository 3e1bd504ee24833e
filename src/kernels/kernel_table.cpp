#include "kernels/kernel_table.h"

#include <cstring>

#include "platform/platform.h"

namespace kn {

#define KN_TABLE(isa)                      \
    namespace isa {                        \
    extern const KernelTable kernel_table; \
    }
inline KN_TABLE(baseline)
#ifdef KN_X86_KERNELS
    KN_TABLE(avx2) KN_TABLE(avx512)
#endif
#undef KN_TABLE

        namespace {

    struct Available {
        const KernelTable *tables[4] = {};
        Available() {
            int n = 0;
#ifdef KN_X86_KERNELS
            if (os::has_avx512()) tables[n++] = &avx512::kernel_table;
            if (os::has_avx2()) tables[n++] = &avx2::kernel_table;
#endif
            tables[n] = &baseline::kernel_table;
        }
    };

    // In static objects that come up before this one operations run with the baseline.
    const struct Choice {
        Choice() {
            const KernelTable *const *all = available_kernels();
            char wanted[16];
            bool named = os::environment("QUORVEX_ISA", wanted, sizeof wanted);
            detail::kernels_in_use = *all;
            for (; named && *all; ++all)
                if (std::strcmp((*all)->name, wanted) == 0) detail::kernels_in_use = *all;
        }
    } choice;

} // namespace

constinit const KernelTable *detail::kernels_in_use = &baseline::kernel_table;

const KernelTable *const *available_kernels() {
    static const Available available;
    return available.tables;
}

const KernelTable &use_kernels(const KernelTable &table) {
    const KernelTable &last = kernels();
    detail::kernels_in_use = &table;
    return last;
}

} // namespace kn
