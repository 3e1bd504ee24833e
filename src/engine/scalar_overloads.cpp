// The overloads of the language's functions on plain doubles.

#include "kernels/kernel_table.h"
#include "quorvex/operations.h"
#include "special/scalar_kernels.h"
#include "special/special_functions.h"

double kn::log2_real(double x) { return kernels().numbers[op_log2].unary(x); }

double fix(double x) { return kn::fix_real(x); }
double sign(double x) { return kn::sign_real(x); }
double max2(double x, double y) { return kn::max2_real(x, y); }
double min2(double x, double y) { return kn::min2_real(x, y); }
double mod(double x, double y) { return kn::mod_real(x, y); }
double rem(double x, double y) { return kn::rem_real(x, y); }
double power(double x, double y) { return kn::kernels().numbers[op_power].binary(x, y); }
