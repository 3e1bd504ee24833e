// The named values that every program finds. They are made before the static objects of programs (KN_FIRST),
// so that those may use the library.

#include "value/constants.h"

#include <bit>
#include <cstdint>
#include <initializer_list>

#include "base/static_order.h"
#include "quorvex/startup.h"
#include "value/header.h"
#include "value/number_block.h"

constinit const char *kn_l_name = nullptr, *kn_semi_name = nullptr, *kn_colon_name = nullptr;

KN_FIRST(1) Mm kn::nothing_M(i_o, "nothing", 0);
KN_FIRST(1) Mm TICTOC(i_o, "TICTOC", 0);
KN_FIRST(1) Mm ans(i_o, "ans", 0);
KN_FIRST(1) Mm i(i_o, "i", 0);
KN_FIRST(1) Mm j(i_o, "j", 0);
KN_FIRST(1) Mm pi(i_o, "pi", 0);
KN_FIRST(1) Mm Inf(i_o, "Inf", 0);
KN_FIRST(1) Mm NaN(i_o, "NaN", 0);
KN_FIRST(1) Mm eps(i_o, "eps", 0);
KN_FIRST(1) Mm x_M(i_o, "x_M", 0);
KN_FIRST(1) Mm semi(i_o, ";", 0);
KN_FIRST(1) Mm c_p(i_o, ":", 0);
KN_FIRST(1) Mm nop_M(i_o, "[]", 0);
KN_FIRST(1) Mm one_M(i_o, "1", 0);
KN_FIRST(1) Mm zero_M(i_o, "0", 0);
KN_FIRST(1) Mm l_M(i_o, "l_M", 0);
KN_FIRST(1) Mm page_screen_output(i_o, "page_screen_output", 0);
KN_FIRST(1) Mm implicit_str_to_num_ok(i_o, "implicit_str_to_num_ok", 0);
KN_FIRST(1) Mm empty_list_elements_ok(i_o, "empty_list_elements_ok", 0);
KN_FIRST(1) Mm switchvar(i_o, "switchvar", 0);

namespace kn {
namespace {

// Constants have uncounted blocks, so that threads can share them.
struct Constant {
    Mm &value;
    kn_size nnz;
    double re, im;
    StaticBlock block = {};
};

constinit Constant constants[] = {
    {x_M, 0, 0, 0},
    {i, 1, 0, 1},
    {NaN, 1, raw_nan, 0},
    {Inf, 1, raw_inf, 0},
    {pi, 1, std::bit_cast<double>(uint64_t{0x400921FB54442D18}), 0},
    {eps, 1, raw_eps, 0},
    {zero_M, 1, 0, 0},
    {one_M, 1, 1, 0},
};

} // namespace

void set_constants() {
    if (!ans.addr()) return;
    const Mm empty;
    for (Mm *m : {&ans, &l_M, &semi, &c_p, &nop_M, &page_screen_output, &implicit_str_to_num_ok,
                  &empty_list_elements_ok})
        *m = empty;
    TICTOC = 0.0;
    for (Constant &c : constants) {
        c.block.data[0] = c.re;
        c.block.data[number_room] = c.im;
        const Mm value = Header::constant(c.block, c.nnz, c.im != 0);
        c.value = value;
    }
    j = i;
    kn_l_name = l_M.getname();
    kn_semi_name = semi.getname();
    kn_colon_name = c_p.getname();
}

} // namespace kn

int kn_has_value(const Mm &m) { return m.gettype() != kn_none && !kn::same_block(m, x_M); }
