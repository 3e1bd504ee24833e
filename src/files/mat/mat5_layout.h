// The format of a MAT-file of level 5. Words are 32-bit integers, in the writer's byte order.
//
// The file is a header and a sequence of variables:
//
//     offset  bytes
//          0    124  text, padded with blanks: "TARVEK 4.0 MAT-file, Platform: PCWIN, Created on: " and the
//          time. Its last 8 bytes, when they are neither blank nor 0, are the offset of a variable
//          without a name, in which other programs keep what their objects share
//        124      2  version, 256
//        126      2  byte-order mark, 19785 ("IM" where the lower byte comes first)
//
// Everything is a data element: a tag and data. Elements begin at multiples of 8 bytes from the start of
// their variable, which itself begins at a multiple of 8 in a file without compressed variables; the bytes
// between are 0.
//
//     normal  type word, byte count word, data
//     small   one word with the type in the low half and the byte count, at most 4, in the high half; 4 bytes
//             with the data. Known by a value above 65535. One without data reads as a normal tag, whose
//             count is the padding
//
//     type   1 int8   2 uint8   3 int16   4 uint16   5 int32   6 uint32   8 single   9 double
//     and in the classes that are read, but never written: 7 single, 12 int64, 13 uint64, 16 to 18 text as
//     UTF-8, UTF-16, UTF-32
//
// A variable is a matrix element:
//
//     word 1  14                                      word 5  class + 512 if logical + 2048 if complex
//          2  bytes that follow these two words            6  of sparse: room for nonzeros, at least 1
//          3  6, the flags                                 7  5, the dimensions
//          4  8, their bytes                               8  4 times their number
//     dimensions (words), then the name (type 1, or 16), then by class:
//
//      0  nothing            no data
//      1  cell               its elements in linear order, each a matrix element
//      2  structure          an element of type 5 with the length of a name (32 when written), one of type 1
//                            with the names of that length, padded with zeros; then the values, structure by
//                            structure, in each field by field, as matrix elements
//      3  object             the name of the class (type 1), then as a structure
//      4  text               codes of 16 bits (type 4)
//      5  sparse             row indices, column starts (columns + 1), real values[, imaginary ones];
//                            logical ones may be bytes whose type says 9. The columns of more than two
//                            dimensions are those of all pages
//      6  double             real values[, imaginary ones]; numbers may be stored as any type
//      9  uint8              the same
//      7, 8, 10 to 15        single, int8, int16, uint16, int32, uint32, int64, uint64: the same
//     16, 17                 function handle; opaque, which has no dimensions: its name follows word 6
//
// A matrix element whose word 2 is 0 ends there and is []. A variable may also be an element of type 15,
// whose data is a zlib stream of the matrix element; it ends without padding.
#ifndef QUORVEX_FILES_MAT_MAT5_LAYOUT_H
#define QUORVEX_FILES_MAT_MAT5_LAYOUT_H

#include <cstdint>

namespace kn::mat5 {

enum Type : uint32_t {
    int8 = 1,
    uint8 = 2,
    uint16 = 4,
    int32 = 5,
    single = 7,
    float64 = 9,
    int64 = 12,
    uint64 = 13,
    matrix = 14,
    compressed = 15,
    utf8 = 16,
    utf16 = 17,
    utf32 = 18
};

enum Class : uint32_t {
    no_class = 0,
    cell_class = 1,
    struct_class = 2,
    object_class = 3,
    text_class = 4,
    sparse_class = 5,
    double_class = 6,
    single_class = 7,
    int8_class = 8,
    uint8_class = 9,
    last_number_class = 15,
    handle_class = 16,
    opaque_class = 17
};

inline constexpr uint32_t class_mask = 255, logical_flag = 512, complex_flag = 2048;
inline constexpr int header_bytes = 128, text_bytes = 124, shared_at = 116, field_bytes = 32, most_dims = 4;
inline constexpr uint16_t version = 256, order_mark = 19785;

} // namespace kn::mat5

#endif
