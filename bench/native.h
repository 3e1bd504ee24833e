// The plain C++ that the library is compared with, on one thread: loops as an expert writes them, on double
// arrays, into results that exist already, compiled for the machine they run on. Subscripts, index lists and
// masks are doubles, as the language has them; subscripts count from 1.
#ifndef QUORVEX_BENCH_NATIVE_H
#define QUORVEX_BENCH_NATIVE_H

#include "bench/native/boxes.h"

namespace native {

// -- scalars.cpp, subscripts.cpp: every scalar is a box on the C heap

double add_twice(int n); // s = s + k * 2 for k = 1 to n
double fib(double n);

double read_each(int n, const double *x); // s = x(k)
void write_each(int n, double *x, double v);
void append(int n);         // to an empty vector
void append_records(int n); // of one field
struct Record {
    Box a;
};
double read_records(int n, const Record *s); // t = s(k).a

// -- elements.cpp

using Unary = void(int n, const double *a, double *out);
using Binary = void(int n, const double *a, const double *b, double *out);
Unary square_root, square;
Unary exponential, logarithm, sine, power_three_halves; // by the vector functions of SLEEF, where it is there
Binary add, multiply, divide, less, power;
void add_into_fresh(int n, const double *a, const double *b); // memory of the C heap, freed again
void multiply_add(int n, const double *a, const double *b, const double *c, double *out);

struct Planes { // of a complex array
    double *re, *im;
};
void complex_multiply(int n, Planes a, Planes b, Planes out);
void complex_abs(int n, Planes a, double *out);

// -- reductions.cpp: of an m by m matrix along dimension 1 or 2

using Reduction = void(int dim, int m, const double *a, double *out);
Reduction sum, cumsum, max, mean, any, all;

// -- selections.cpp

void rows(int m, int n, const double *a, int first, int last, double *out);  // a(first:last,:), a is m by n
void columns(int m, int n, const double *a, const double *idx, double *out); // a(:,idx) of n columns
int pick(int n, const double *x, const double *mask, double *out);           // room for one more in out
void fill_where(int n, double *x, const double *mask, double v);
void put_where(int n, double *x, const double *mask, const double *v); // v has one element more than is taken
void put_at(int n, double *x, const double *idx, const double *v);     // x(idx) = v of n elements
// x(idx) = [] and a(:,idx) = [] for n indices, into out; marks is a work array of as many bytes as x has
// elements, or a columns. The number of elements, or columns, that are left.
int erase(int size, const double *x, int n, const double *idx, char *marks, double *out);
int erase_columns(int m, int cols, const double *a, int n, const double *idx, char *marks, double *out);

// -- arrays.cpp

void transpose(int m, const double *a, double *out);                     // m by m, a multiple of 8
void join(int m, const double *const blocks[2][2], double *out);         // [A B; C D] of m by m
void repeat(int rows, int cols, const double *tile, int m, double *out); // to m by m

// -- products.cpp: by BLAS, n by n

void product(int n, const double *a, const double *b, double *out);
void complex_product(int n, Planes a, Planes b, Planes out); // three real products of sums; fewest flops
void complex_product_exact(int n, Planes a, Planes b, Planes out); // four: exact as the definition

// -- texts.cpp: the size of what s is with m characters replaced by others; out has room for it

int replace(int n, const double *s, int m, const double *old, int size, const double *now, double *out);

// -- files.cpp: n elements, by one call of the C library; work has room for them as the file holds them

void read_doubles(const char *name, int n, double *out);
void read_shorts(const char *name, int n, short *work, double *out);
void write_doubles(const char *name, int n, const double *x);
void write_shorts(const char *name, int n, const double *x, short *work);
void write_shorts_apart(const char *name, int n, const double *x, short *work); // every second; work has 2 n
long read_lines(const char *name);                            // characters of all lines, each in a string
void print_doubles(const char *name, int n, const double *x); // 13 digits in 23 columns, a line each
int scan_doubles(const char *name, int n, double *out);       // at most n, by from_chars over the whole file

// -- sparse.cpp

struct Csc { // compressed columns, 0-based
    int rows, cols;
    int *start, *row;
    double *value;
};
// From n triplets in any order, numbers from 1, equal places summed; `work` has room for them all.
void from_triplets(int n, const double *i, const double *j, const double *s, const Csc &work, const Csc &out);
void multiply(const Csc &a, const double *x, double *y);
void multiply_transposed(const Csc &a, const double *x, double *y);
void add(const Csc &a, const Csc &b, const Csc &out); // these two give rows in ascending order
void product(const Csc &a, const Csc &b, const Csc &out, int *mark, double *sum); // work arrays of a's rows
void transpose(const Csc &a, const Csc &out);
// -- solving.cpp: by LAPACK and SuperLU, n by n; `work` holds a copy of the matrix, which is overwritten

void solve(int n, const double *a, const double *b, double *work, double *x);
void solve_symmetric(int n, const double *a, const double *b, double *work, double *x);
void solve_complex(int n, const double *a, const double *b, double *work, double *x); // pairs re, im
void invert(int n, const double *a, double *x);
void invert_complex(int n, const double *a, double *x);
double determinant(int n, const double *a, double *work);
void least_squares(int m, int n, const double *a, const double *b, double *work, double *x); // x has m rows
void solve_sparse(int n, int *starts, int *rows, double *values, const double *b,
                  double *x); // compressed columns

} // namespace native

#endif
