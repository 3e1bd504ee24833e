// Elements of files: the precision names, and blocks of elements between a stream and arrays.
//
// A code says how an element is stored; 0 to 5 are also the digit P in the header of a MAT-file of level 4.
//
//     0  8 bytes  double                      6  8 bytes  as 0, under the names of 80-bit numbers
//     1  4        single                      7  4        unsigned integer
//     2  4        integer                     8  1        integer
//     3  2        integer                     9  8        unsigned integer, under the names of signed ones
//     4  2        unsigned integer           10  8        unsigned integer
//     5  1        unsigned integer
//
// `swap` means that the bytes of each element are in the opposite of the machine's order. A call of the
// stream library moves a block of elements.
#ifndef QUORVEX_FILES_PRECISION_H
#define QUORVEX_FILES_PRECISION_H

#include <cstddef>
#include <cstdint>
#include <cstdio>

#include "quorvex/values.h"

namespace kn {

struct Precision {
    int code, size; // bytes of an element
};

// The low bytes of a truncated number; 0 for those outside 64-bit integers.
inline uint64_t low_bits(double x) {
    constexpr double limit = 9223372036854775808.0;
    return x > -limit && x < limit ? static_cast<uint64_t>(static_cast<int64_t>(x)) : 0;
}

// The precision with this name; reports "fileio: unknown precision %s" and uses double for an unknown one.
Precision file_precision(const Mm &name);

// Reads n elements. Returns the stream's count of items, of which a 64-bit element has two; 0 for an unknown
// code. When fewer than n are read, the remaining elements become 0; when none is read, nothing is written.
// Integers wrap to the type of `to`; floating-point numbers are truncated and wrap, those outside 64-bit
// integers give 0.
ptrdiff_t read_elements(double *to, ptrdiff_t n, std::FILE *stream, int code, bool swap);
ptrdiff_t read_elements_int32(int *to, ptrdiff_t n, std::FILE *stream, int code, bool swap);
ptrdiff_t read_elements_byte(unsigned char *to, ptrdiff_t n, std::FILE *stream, int code, bool swap);

// The same for elements in memory.
void decode_elements(const void *from, double *to, ptrdiff_t n, int code, bool swap);

// The bytes of elements `stride` bytes apart; the codes are those of write_elements.
void encode_elements(const double *from, ptrdiff_t n, int code, bool swap, char *to, size_t stride);
void encode_elements(const unsigned char *from, ptrdiff_t n, int code, bool swap, char *to, size_t stride);

// Writes n numbers; returns how many elements the stream accepted. An integer code truncates and keeps the
// low bytes; numbers outside 64-bit integers give 0. In 64-bit elements the high half is trunc(x / 2^32) and
// the low one trunc(x - floor(x / 2^32) * 2^32), so that -1 has the high half 0. An unknown code writes
// nothing and returns -1.
ptrdiff_t write_elements(const double *from, ptrdiff_t n, std::FILE *stream, int code, bool swap);
ptrdiff_t write_elements(const unsigned char *from, ptrdiff_t n, std::FILE *stream, int code, bool swap);

// Writes one number; returns the stream's count of items, 2 for a 64-bit element.
int write_element(double value, std::FILE *stream, int code, bool swap);

} // namespace kn

#endif
