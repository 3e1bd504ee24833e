// Structures and cells.
//
// A cell holds values of any kind. A structure array is a cell with a list of field names, each element of
// which is itself a cell of the field values, in the order of the names. Field names given as values are cut
// to 40 characters.
#ifndef QUORVEX_STRUCTURES_H
#define QUORVEX_STRUCTURES_H

#include "quorvex/counts.h"

// A cell of empty values: n by n, or of up to four extents, or of those of a size vector. Sizes as for zeros;
// an empty one gives nop_M. `cells` is the same.
QUORVEX_API Mm cell(const Mm &n);
QUORVEX_API Mm cell(const Mm &m, const Mm &n);
QUORVEX_API Mm cell(const Mm &m, const Mm &n, const Mm &p);
QUORVEX_API Mm cell(const Mm &m, const Mm &n, const Mm &p, const Mm &q);
QUORVEX_API Mm cells(const Mm &n);
QUORVEX_API Mm cells(const Mm &m, const Mm &n);
QUORVEX_API Mm cell_from_array(int n, const Mm *const *a); // 1 by n

QUORVEX_API Mm cellstr(const Mm &x);   // rows of text without trailing blanks, n by 1; a cell as it is
QUORVEX_API Mm iscellstr(const Mm &x); // a cell, all of whose elements are text
QUORVEX_API Mm num2cell(const Mm &x);  // each element in a cell of its own

// The language's `struct`: args is the cell {name, value, name, value, ...}. A value that is a cell gives one
// element to each structure of the array, and the last such cell its shape; any other value goes into all of
// them. A single argument comes back. "struct: odd numbers of inputs", "struct: all cell arrays must be of
// same size".
QUORVEX_API Mm mstruct(const Mm &args);

QUORVEX_API Mm fieldnames(const Mm &s);               // a column of names
QUORVEX_API Mm isfield(const Mm &s, const Mm &name);  // a plain 0 for what is no structure
QUORVEX_API Mm rmfield(const Mm &s, const Mm &names); // "rmfield: structure has no field named '%s'"
QUORVEX_API Mm setfield(const Mm &s, const Mm &name, const Mm &v); // of the first element

// s.name, s{k}, ... step by step. A step is a field name, or a cell of one to four subscripts: {} of a cell,
// () of anything else. "getfield: index must be a string or cell array".
QUORVEX_API Mm getfield(const Mm &s, const Mm &step);
QUORVEX_API Mm getfield(const Mm &s, const Mm &step1, const Mm &step2);
QUORVEX_API Mm getfield(const Mm &s, const Mm &step1, const Mm &step2, const Mm &step3);
QUORVEX_API Mm getfield(const Mm &s, const Mm &step1, const Mm &step2, const Mm &step3, const Mm &step4);

// Field j of structure k as element (j,k) of a cell, which has one dimension more than s; and back, the names
// along dimension dim of c. "cell2struct: first argument is not a cell", "... second argument is not a cell",
// "cell2struct: length(fields)!=size(x,dim)", "cell2struct: duplicate field '%s'".
QUORVEX_API Mm struct2cell(const Mm &s);
QUORVEX_API Mm cell2struct(const Mm &c, const Mm &fields, const Mm &dim);

QUORVEX_API Mm mlogical(const Mm &x); // the language's `logical`; "logical: argument is complex"

#define QUORVEX_STRUCTURE_COUNTS(ROW)                          \
    ROW(cell, "cell of empty values", 1, 2, 3, 4)              \
    ROW(cells, "cell of empty values", 1, 2)                   \
    ROW(cellstr, "rows of text as a cell", 1)                  \
    ROW(iscellstr, "whether a value is a cell of texts", 1)    \
    ROW(num2cell, "each element in a cell of its own", 1)      \
    ROW(mstruct, "structure from names and values", 1_list)    \
    ROW(fieldnames, "names of the fields", 1)                  \
    ROW(isfield, "whether a structure has a field", 2)         \
    ROW(rmfield, "structure without a field", 2)               \
    ROW(setfield, "structure with a field changed", 3)         \
    ROW(getfield, "field of a structure", 2, 3, 4, 5)          \
    ROW(struct2cell, "values of a structure as a cell", 1)     \
    ROW(cell2struct, "structure from the values of a cell", 3) \
    ROW(mlogical, "conversion to logical", 1)
QUORVEX_STRUCTURE_COUNTS(QUORVEX_REPORT_OTHER_COUNTS)

#endif
