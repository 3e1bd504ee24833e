// Structures and cells.
//
// A cell holds values of any kind. A structure array is a cell with a list of field names; each of its
// elements is a cell of the field values, in the order of the names. Field names given as values are cut to
// 40 characters.
#ifndef QUORVEX_STRUCTURES_H
#define QUORVEX_STRUCTURES_H

#include "quorvex/counts.h"

// A cell of empty values: n by n, with up to four sizes, or with a size vector. Sizes are those of zeros
// (builders.h); an empty one gives nop_M. `cells` is the same.
QUORVEX_API Mm cell(const Mm &n);
QUORVEX_API Mm cell(const Mm &m, const Mm &n);
QUORVEX_API Mm cell(const Mm &m, const Mm &n, const Mm &p);
QUORVEX_API Mm cell(const Mm &m, const Mm &n, const Mm &p, const Mm &q);
QUORVEX_API Mm cells(const Mm &n);
QUORVEX_API Mm cells(const Mm &m, const Mm &n);
QUORVEX_API Mm cell_from_array(kn_size n, const Mm *const *a); // a 1 by n cell of the values

// Conversions to cells.
QUORVEX_API Mm cellstr(const Mm &x);   // m by 1, the rows of a text without trailing blanks; a cell unchanged
QUORVEX_API Mm iscellstr(const Mm &x); // whether x is a cell with only text in it, logical
QUORVEX_API Mm num2cell(const Mm &x);  // a cell of the size of x with its elements

// A structure array, the language's `struct`, from the cell {name, value, name, value, ...}. A value that is
// a cell gives one element to each structure of the array, and the last such cell its size; any other value
// is assigned to all of them. A single argument is returned unchanged. "struct: odd numbers of inputs",
// "struct: all cell arrays must be of same size".
QUORVEX_API Mm mstruct(const Mm &list);

// The fields of a structure: their names, whether one exists, s without some of them, s with one changed.
// fieldnames and rmfield report "%s: structure expected, but matrix %s is not" for other values.
QUORVEX_API Mm fieldnames(const Mm &s);               // an m by 1 cell of names
QUORVEX_API Mm isfield(const Mm &s, const Mm &name);  // logical; a plain 0 for other values
QUORVEX_API Mm rmfield(const Mm &s, const Mm &names); // "rmfield: structure has no field named '%s'"
QUORVEX_API Mm setfield(const Mm &s, const Mm &name, const Mm &v); // s.name = v in the first element

// The value reached from s by one to four steps. A step is a field name, or a cell of one to four subscripts:
// {} of a cell, () of any other value. "getfield: index must be a string or cell array".
QUORVEX_API Mm getfield(const Mm &s, const Mm &step);
QUORVEX_API Mm getfield(const Mm &s, const Mm &step1, const Mm &step2);
QUORVEX_API Mm getfield(const Mm &s, const Mm &step1, const Mm &step2, const Mm &step3);
QUORVEX_API Mm getfield(const Mm &s, const Mm &step1, const Mm &step2, const Mm &step3, const Mm &step4);

// A structure array as a cell, and back: field j of structure k is element (j,k) of the cell, which has one
// dimension more than s. cell2struct has the names along dimension dim of c. "cell2struct: first argument is
// not a cell", "... second argument is not a cell", "cell2struct: length(fields)!=size(x,dim)", "cell2struct:
// duplicate field '%s'", "struct2cell: matrix %s has %d dimensions".
QUORVEX_API Mm struct2cell(const Mm &s);
QUORVEX_API Mm cell2struct(const Mm &c, const Mm &fields, const Mm &dim);

// The numbers of x with the logical flag, the language's `logical`. "logical: argument is complex".
QUORVEX_API Mm mlogical(const Mm &x);

#define QUORVEX_STRUCTURE_COUNTS(ROW)                          \
    ROW(cell, "cell of empty values", 1, 2, 3, 4)              \
    ROW(cells, "cell of empty values", 1, 2)                   \
    ROW(cellstr, "rows of text as a cell", 1)                  \
    ROW(iscellstr, "whether a value is a cell of texts", 1)    \
    ROW(num2cell, "cell of the elements of an array", 1)       \
    ROW(mstruct, "structure from names and values", 1_list)    \
    ROW(fieldnames, "names of the fields", 1)                  \
    ROW(isfield, "whether a structure has a field", 2)         \
    ROW(rmfield, "structure without some of its fields", 2)    \
    ROW(setfield, "structure with a field changed", 3)         \
    ROW(getfield, "field of a structure", 2, 3, 4, 5)          \
    ROW(struct2cell, "values of a structure as a cell", 1)     \
    ROW(cell2struct, "structure from the values of a cell", 3) \
    ROW(mlogical, "conversion to logical", 1)
QUORVEX_STRUCTURE_COUNTS(QUORVEX_REPORT_OTHER_COUNTS)

#endif
