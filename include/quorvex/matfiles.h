// Loading and saving values: MAT-files of level 5 and 4, and text.
//
// The function says how to save; a file that is loaded tells by its first bytes what it is. A list of values
// is a comma list, (CL(x), y): its items are the variables that are loaded, and their names are those in the
// file. The name of a file, but for saveascii, gets ".mat" unless there is a "." anywhere in it, and has at
// most 2047 characters. A file is saved under a name of its own, kn<process>_<k>.tmp, and takes its place
// when all is written: until then, and after any failure, an older one stays as it was. It keeps its owner
// and its permissions, which the new file has from its first byte. What processes that were killed have left
// is removed when another saves in the same directory, which looks for it every now and then. A link, a file
// with several names, one whose owner can't be kept and one in a directory that takes no new file keep their
// place: their content is replaced when all is ready, and so does a pipe. A device is written to at once.
//
// What a file says of itself is compared with what is there before any memory is asked for. A value that
// can't be loaded is reported and, should the handler return, becomes x_M.
#ifndef QUORVEX_MATFILES_H
#define QUORVEX_MATFILES_H

#include "quorvex/counts.h"
#include "quorvex/indexing.h"
#include "quorvex/workspace.h"

// Whether a file is on the disk (fsync) before it takes its place: 1, so that not even a loss of power leaves
// half a file. 0 is for a host that saves many files and can make them again.
extern QUORVEX_API int kn_save_to_disk;

// Loads from a file, which is looked for with ".mat" and as named, in the current directory and then on the M
// path: "load: %s not found", "load: %s could not be read".
//
// Level 5: each variable of the list by its name, in any order, up to one that the file hasn't; ans is passed
// over, i_ and j_ stand for i and j. Level 4: the matrices of the file, in their order, whatever their names
// ("load4 '%s': variable named '%s' loaded into '%s'" is warned, unless the shorter name begins the other);
// nop_M at the end of the file. A matrix of zeros and ones is logical, a sparse one sparse. Text: a matrix, a
// row for each line, into the first variable. Numbers are separated by blanks, tabs and commas; other words,
// and lines that begin with "%" or "#", are left out. NaN, Inf and -Inf are read as saveascii writes them,
// any other word with a capital I or N is 0; "loadascii: matrix in %s is not rectangular".
//
// With an empty list, and vbload: the value of the first variable.
//
// Without a list: a structure with a field for each variable of a MAT-file, or for those of the names that a
// text or a cell of texts gives, in which "*" stands for any characters ("load: variable '%s' not found in
// '%s'" is warned). Of text the matrix.
QUORVEX_API Mm load(const Mm &name, const Mc &list);
QUORVEX_API Mm load(const Mm &name);
QUORVEX_API Mm load(const Mm &name, const Mm &names);
QUORVEX_API Mm vbload(const Mm &name);

// Save the values of a list: "%s: %s could not be created", "%s: %s could not be written" (saveascii for
// both: "could not write %s"). A cell in place of the list holds the values, which so have no names; that of
// vbsave begins with the name of the file.
//
// Level 5, save and vbsave: every kind of value. saveappend keeps what a file of level 5 holds already, but
// for variables of the same names ("save: %s is no MAT-file of level 5", "save: %s has the other byte order",
// "save: a value without a name can't be appended to %s"). Level 4: matrices, as doubles ("save: matrix '%s'
// has more than two dimensions and can not be saved in 4.0 format", "Can not convert %s into a numeric
// matrix" for cells and structures); what has no name is called noname. Text: the real parts with 13 digits
// in fields of 23 characters, a line for each row, page after page and value after value.
QUORVEX_API Mm save(const Mm &name, const Mc &list);
QUORVEX_API Mm save(const Mm &name, const Mm &list);
QUORVEX_API Mm vbsave(const Mm &list);
QUORVEX_API Mm saveappend(const Mm &name, const Mc &list);
QUORVEX_API Mm saveV4(const Mm &name, const Mc &list);
QUORVEX_API Mm saveV4(const Mm &name, const Mm &list);
QUORVEX_API Mm saveascii(const Mm &name, const Mc &list);
QUORVEX_API Mm saveascii(const Mm &name, const Mm &list);

// The same with the variables of the current level (or global ones) of these names, all of the level for
// none: what a command such as `save work x y` is. load gives them the values in the file, and makes those
// that aren't there; of text the variable called as the file, "load: %s is no name of a variable". A name may
// hold "*", for any characters. save and its kin take the options -append, -ascii and -v4 in any place, and
// the first text that is no option is the file ("%s: unknown option %s", "%s: the name of a file is
// missing"). Nothing is saved after "%s: variable '%s' not found".
QUORVEX_API Mm load(const Mm &name, const kn_names &names);
QUORVEX_API Mm save(const Mm &name, const kn_names &names);
QUORVEX_API Mm saveV4(const Mm &name, const kn_names &names);
QUORVEX_API Mm saveascii(const Mm &name, const kn_names &names);

// What `whos` shows of a file, found as load finds it: a 4 by n cell with a column for each variable, its
// name (39 characters), its extents, the bytes of its data and []. An empty cell when there are none.
QUORVEX_API Mm kn_matfile_variables(const Mm &name);

#define QUORVEX_MATFILE_COUNTS(ROW)                                         \
    ROW(load, "loads variables from a file", 1, 2_list, 1_names)            \
    ROW(vbload, "the first value of a file", 1)                             \
    ROW(save, "saves values in a MAT-file", 2_to_0, 1_names)                \
    ROW(vbsave, "saves values in a MAT-file", 1_list_to_0)                  \
    ROW(saveV4, "saves matrices in a MAT-file of level 4", 2_to_0, 1_names) \
    ROW(saveascii, "saves matrices as text", 2_to_0, 1_names)
QUORVEX_MATFILE_COUNTS(QUORVEX_REPORT_OTHER_COUNTS)

#endif
