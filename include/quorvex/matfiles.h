// Loading and saving values: MAT-files of level 5 and 4, and text.
//
// The function determines how values are saved; a file that is loaded is recognised by its first bytes. A
// list of values is a comma list, (CL(x), y): its items are the variables, and their names are those in the
// file. A file name has at most 2047 characters; except in saveascii ".mat" is appended unless the name
// contains a ".".
//
// A file is written as kn<process>_<k>.tmp in the same directory and renamed when it is complete. Until then,
// and after any failure, an older file is unchanged. The new file has the owner and the permissions of the
// older one from its first byte. Temporary files of killed processes are removed by later saves in the same
// directory. Links, files with several names, files whose owner can not be kept, files in a directory that
// is not writable, and pipes are overwritten when all data are ready. A device is written at once.
//
// Sizes in a file are compared with the data present before memory is requested. A value that can not be
// loaded is reported and, if the handler returns, becomes x_M.
#ifndef QUORVEX_MATFILES_H
#define QUORVEX_MATFILES_H

#include "quorvex/counts.h"
#include "quorvex/indexing.h"
#include "quorvex/workspace.h"

// Whether a file is forced to the disk (fsync) before it is renamed. The default 1 ensures that even a loss
// of power leaves a complete file; 0 is for a host that saves many files and can recreate them.
extern QUORVEX_API int kn_save_to_disk;

// Loads variables from a file, which is searched for with ".mat" and as named, in the current directory and
// then on the M path: "load: %s not found", "load: %s could not be read".
//
// Level 5: the variables of the list by name, in any order, up to the first one that is not in the file; ans
// is skipped, i_ and j_ mean i and j. Level 4: the matrices of the file in their order, whatever their names
// (with the warning "load4 '%s': variable named '%s' loaded into '%s'" unless one name begins with the
// other); nop_M at the end of the file. A full matrix of zeros and ones is logical. Text: one matrix with a
// row for each line, into the first variable. Numbers are separated by blanks, tabs and commas; other words,
// and lines that begin with "%" or "#", are ignored. NaN, Inf and -Inf are read as saveascii writes them, any
// other word with a capital I or N is 0; "loadascii: matrix in %s is not rectangular".
//
// With an empty list, and in vbload: the value of the first variable.
//
// Without a list: a structure with a field for each variable of a MAT-file, or for the names in a text or a
// cell of texts, where "*" matches any characters (with the warning "load: variable '%s' not found in '%s'").
// For a text file the matrix.
QUORVEX_API Mm load(const Mm &name, const Mc &list);
QUORVEX_API Mm load(const Mm &name);
QUORVEX_API Mm load(const Mm &name, const Mm &list);
QUORVEX_API Mm vbload(const Mm &name);

// Save the values of a list in a file: "%s: %s could not be created", "%s: %s could not be written"
// (saveascii: "could not write %s" for both). Instead of the list a cell may give the values, without names;
// the cell of vbsave begins with the file name.
//
// Level 5, save and vbsave: every kind of value. saveappend adds to a file of level 5, and replaces variables
// of the same names ("save: %s is no MAT-file of level 5", "save: %s has the other byte order", "save: a
// value without a name can't be appended to %s"). Level 4, saveV4: matrices, as doubles ("save: matrix '%s'
// has more than two dimensions and can not be saved in 4.0 format", "save: matrix '%s' is too large and can
// not be saved in 4.0 format" for sizes above 2147483647, "Can not convert %s into a numeric matrix" for
// cells and structures); values without a name are called noname. Text, saveascii: the real parts with 13
// digits in fields of 23 characters, a line for each row, page after page and value after value.
QUORVEX_API Mm save(const Mm &name, const Mc &list);
QUORVEX_API Mm save(const Mm &name, const Mm &values);
QUORVEX_API Mm vbsave(const Mm &list);
QUORVEX_API Mm saveappend(const Mm &name, const Mc &list);
QUORVEX_API Mm saveV4(const Mm &name, const Mc &list);
QUORVEX_API Mm saveV4(const Mm &name, const Mm &values);
QUORVEX_API Mm saveascii(const Mm &name, const Mc &list);
QUORVEX_API Mm saveascii(const Mm &name, const Mm &values);

// Load and save the named variables of the current level, or global ones, as a command such as `save work x
// y` does; without names all of the level. load assigns the values in the file, and creates missing
// variables; of a text file it assigns the variable with the name of the file, "load: %s is no name of a
// variable". "*" in a name matches any characters. The save functions accept the options -append, -ascii and
// -v4 in any place; the first text that is not an option is the file ("%s: unknown option %s", "%s: the name
// of a file is missing"). Nothing is saved after "%s: variable '%s' not found".
QUORVEX_API Mm load(const Mm &name, const kn_names &names);
QUORVEX_API Mm save(const Mm &name, const kn_names &names);
QUORVEX_API Mm saveV4(const Mm &name, const kn_names &names);
QUORVEX_API Mm saveascii(const Mm &name, const kn_names &names);

// The variables in a file, found as load finds it, for `whos`: a 4 by n cell with a column for each variable:
// its name (39 characters), its sizes, the bytes of its data and []. An empty cell when there are none.
QUORVEX_API Mm kn_matfile_variables(const Mm &name);

#define QUORVEX_MATFILE_COUNTS(ROW)                                         \
    ROW(load, "loads variables from a file", 1, 2_list, 1_names)            \
    ROW(vbload, "loads the first variable from a file", 1)                  \
    ROW(save, "saves values in a MAT-file", 2_to_0, 1_names)                \
    ROW(vbsave, "saves values in a MAT-file", 1_list_to_0)                  \
    ROW(saveV4, "saves matrices in a MAT-file of level 4", 2_to_0, 1_names) \
    ROW(saveascii, "saves matrices as text", 2_to_0, 1_names)
QUORVEX_MATFILE_COUNTS(QUORVEX_REPORT_OTHER_COUNTS)

#endif
