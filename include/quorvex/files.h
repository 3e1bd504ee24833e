// Files, streams and directories.
//
// Names may be written with either separator, and have at most 512 characters. In a pattern the last part of
// the name may hold "*" for any characters and "?" for one.
//
// A file that is open has a number, its fid: 3 to 127. 0 to 2 are the standard streams, of which only fprintf
// makes anything. As a fid counts the number in any value of one element, truncated: else "Size of fid %s not
// one."; "Illegal fid." outside 0 to 128, "%s: Illegal fid." for the standard streams, "Fid not opened.". The
// results where the error handler returns stand in brackets below.
//
// Many functions bear the names of C's own and stand beside these: the forms here take and give values.
#ifndef QUORVEX_FILES_H
#define QUORVEX_FILES_H

#include <stdio.h>
#include <wchar.h> // C's fclose must still be the only one where these headers speak of it

#include "quorvex/counts.h"

// -- Opening and closing.

// Opens a file; the fid, or -1. `mode` is C's (default "r"), with a "b" behind it unless it holds "b" or "t".
// A file that is only read is looked for as named, then in the directories of the M path. `format` is the
// order of bytes in the numbers that fread and fwrite move: "b", "ieee-be", "l", "ieee-le", "n", "native"
// (default "n", of the forms with outputs "l"); of anything else "fopen: don't know how to convert from
// machine format" is warned, and the bytes are swapped. `message` is "filename is empty", "File error", or
// empty. The name "all" gives the fids of all open files, a row. The error "Too many files" when there are
// 125 already; should the handler return, the process ends.
//
// Of a number: the name of the open file with that fid, nop_M when there is none; with outputs its name,
// mode and format, empty texts when there is none.
QUORVEX_API Mm fopen(const Mm &name);
QUORVEX_API Mm fopen(const Mm &name, const Mm &mode);
QUORVEX_API Mm fopen(const Mm &name, const Mm &mode, const Mm &format);
QUORVEX_API Mm fopen(const Mm &name, i_o_t, Mm &fid, Mm &message);
QUORVEX_API Mm fopen(const Mm &name, const Mm &mode, i_o_t, Mm &fid, Mm &message);
QUORVEX_API Mm fopen(const Mm &name, const Mm &mode, const Mm &format, i_o_t, Mm &fid, Mm &message);
QUORVEX_API Mm fopen(const Mm &fid, i_o_t, Mm &name, Mm &mode, Mm &format);

// 0, or -1 when what was written could not all be stored. Any text closes all files. "fclose: can not close
// stdin/stdout/stderr, fid is %s" for a fid that rounds to less than 3.
QUORVEX_API Mm fclose(const Mm &fid);

QUORVEX_API Mm stderrM(); // 2

// -- Lines.

// The next line, with its newline or without line end; -1 when there is none. A line is cut after n
// characters (at most 16384, which is the default), at a null character, and after "\r\n", of which fgets
// leaves "\n". Its elements are 0 to 255. [-1]
QUORVEX_API Mm fgets(const Mm &fid);
QUORVEX_API Mm fgets(const Mm &fid, const Mm &n);
QUORVEX_API Mm fgetl(const Mm &fid);

// -- State and position.

QUORVEX_API Mm feof(const Mm &fid);   // 1 when the end was met, else 0 [1]
QUORVEX_API Mm fflush(const Mm &fid); // writes out; 0, or 1 on failure [1]
// "File error" when a call failed, else the empty text; and C's error flag. A text as second input clears the
// flag. ["File error", -1]
QUORVEX_API Mm ferror(const Mm &fid);
QUORVEX_API Mm ferror(const Mm &fid, const Mm &x);
QUORVEX_API Mm ferror(const Mm &fid, i_o_t, Mm &message, Mm &number);
QUORVEX_API Mm ferror(const Mm &fid, const Mm &x, i_o_t, Mm &message, Mm &number);

// Moves by `offset` bytes (truncated) from the beginning ("bof", a number below 0), from here ("cof", 0) or
// from the end ("eof", above 0): 0, or -1 on failure. "fseek: origin %s not bof, cof or eof", and from here.
// [-1]
QUORVEX_API Mm fseek(const Mm &fid, const Mm &offset, const Mm &origin);
QUORVEX_API Mm ftell(const Mm &fid);   // bytes before the position; -1 on failure [-1]
QUORVEX_API Mm frewind(const Mm &fid); // 0, or -1 on failure [-1]

// -- Numbers.
//
// `precision` names how an element is stored (default "uchar"; "fileio: unknown precision %s"):
//
//     double float64 real*8 adouble "long double" float80 real*10   8 bytes, floating point
//     float float32 real*4                                          4
//     long int integer*4 int32; "unsigned long" "unsigned int" ulong uint uint32    4, integer
//     short int16 integer*2; ushort "unsigned short" uint16         2
//     char char*1 int8 schar "signed char" integer*1; uchar "unsigned char" uint8   1
//     integer*8 int64 uint64                                        8, read as an unsigned integer
//
// `skip` bytes (default 0; rounded, negative ones count as 0) are passed over behind each element. `format`
// is that of fopen; anything else, as the default "?", means the one the file was opened with.

// A matrix of the next elements, and how many were read (64-bit ones count twice). `size` is n or [m n], Inf
// (the default) as many as there are; more than there are make a column of all, or, with m rows, as many
// columns as hold them, where the elements that the file hasn't are 0. A pipe is read until the size or its
// end is met. A text in its place is the precision.
// When less is there than `size` asks for, the end is met (feof). "fread: can not read multi-dimensional
// matrices". [empty, 0]
QUORVEX_API Mm fread(const Mm &fid);
QUORVEX_API Mm fread(const Mm &fid, const Mm &size);
QUORVEX_API Mm fread(const Mm &fid, const Mm &size, const Mm &precision);
QUORVEX_API Mm fread(const Mm &fid, const Mm &size, const Mm &precision, const Mm &skip);
QUORVEX_API Mm fread(const Mm &fid, const Mm &size, const Mm &precision, const Mm &skip, const Mm &format);
QUORVEX_API Mm fread(const Mm &fid, i_o_t, Mm &a, Mm &count);
QUORVEX_API Mm fread(const Mm &fid, const Mm &size, i_o_t, Mm &a, Mm &count);
QUORVEX_API Mm fread(const Mm &fid, const Mm &size, const Mm &precision, i_o_t, Mm &a, Mm &count);
QUORVEX_API Mm fread(const Mm &fid, const Mm &size, const Mm &precision, const Mm &skip, i_o_t, Mm &a,
                     Mm &count);
QUORVEX_API Mm fread(const Mm &fid, const Mm &size, const Mm &precision, const Mm &skip, const Mm &format,
                     i_o_t, Mm &a, Mm &count);

// Writes the elements of a in column order, of complex ones the real parts; how many were written. Integers
// are truncated and keep their low bytes: 300 becomes the byte 44. Of NaN, and outside 64-bit integers, 0.
// "fwrite: precision not a string". [0]
QUORVEX_API Mm fwrite(const Mm &fid, const Mm &a);
QUORVEX_API Mm fwrite(const Mm &fid, const Mm &a, const Mm &precision);
QUORVEX_API Mm fwrite(const Mm &fid, const Mm &a, const Mm &precision, const Mm &skip);
QUORVEX_API Mm fwrite(const Mm &fid, const Mm &a, const Mm &precision, const Mm &skip, const Mm &format);

// -- Directories.

// The entries of a directory (default: the current one), or those that a pattern names, in the order of their
// names: n by 1 structures with name, date ("21-Nov-2026 09:30:00"), bytes and isdir. An empty cell when
// there are none.
QUORVEX_API Mm dir();
QUORVEX_API Mm dir(const Mm &name);
QUORVEX_API Mm ls(); // prints them, a line each: date, size, name; directories end in a separator
QUORVEX_API Mm ls(const Mm &name);

QUORVEX_API Mm mkdir(const Mm &name); // 1; 2 when it exists; 0 and warning "Could not make directory %s"
QUORVEX_API Mm rmdir(const Mm &name); // of an empty one: 1; 0 and warning "Could not remove directory %s"
QUORVEX_API Mm cd();                  // the current directory, cut at 511 characters
QUORVEX_API Mm cd(const Mm &name);    // 1; 0 and warning "Could not change directory to %s"
QUORVEX_API Mm chdir(const Mm &name); // the same
QUORVEX_API Mm pwd();                 // the current directory

// Removes a file, and reports nothing. Of graphics handles: not yet implemented.
QUORVEX_API Mm deleteM(const Mm &x);

// 1, or 0 after an error: "copyfile:Could not read %s", "copyfile:Could not write %s" (also of the file
// itself, or a link to it), "copyfile:Failed on copy". A new file has the permissions of the one it is copied
// from; one that exists keeps its own.
QUORVEX_API Mm copyfile(const Mm &from, const Mm &to);

QUORVEX_API Mm filesep(); // "\"
QUORVEX_API Mm pathsep(); // ";"
// The texts of a cell joined by filesep(). One separator at the end of each, and one at the beginning of each
// but the first, are left out.
QUORVEX_API Mm fullfile(const Mm &parts);

QUORVEX_API Mm tempdir();              // the directory of temporary files, with a separator at its end
QUORVEX_API Mm tempname();             // a name in it that no file has
QUORVEX_API Mm getenv(const Mm &name); // of an environment variable; the empty text when it isn't set

#define QUORVEX_FILE_COUNTS(ROW)                                                                   \
    ROW(fopen, "opens a file", 1, 2, 3, 1_to_2, 2_to_2, 3_to_2, 1_to_3)                            \
    ROW(fclose, "closes a file", 1)                                                                \
    ROW(stderrM, "fid of standard error", 0)                                                       \
    ROW(fgets, "reads a line with its newline", 1, 2)                                              \
    ROW(fgetl, "reads a line", 1)                                                                  \
    ROW(feof, "whether the end of a file was met", 1)                                              \
    ROW(ferror, "whether a file had an error", 1, 2, 1_to_2, 2_to_2)                               \
    ROW(fflush, "writes out what a file still holds back", 1)                                      \
    ROW(fread, "reads numbers from a file", 1, 2, 3, 4, 5, 1_to_2, 2_to_2, 3_to_2, 4_to_2, 5_to_2) \
    ROW(fwrite, "writes numbers to a file", 2, 3, 4, 5)                                            \
    ROW(fseek, "moves within a file", 3)                                                           \
    ROW(ftell, "position in a file", 1)                                                            \
    ROW(frewind, "moves to the beginning of a file", 1)                                            \
    ROW(dir, "entries of a directory", 0, 1)                                                       \
    ROW(ls, "prints the entries of a directory", 0_to_0, 1_to_0)                                   \
    ROW(mkdir, "makes a directory", 1)                                                             \
    ROW(rmdir, "removes a directory", 1)                                                           \
    ROW(cd, "the current directory, or another one", 0, 1)                                         \
    ROW(chdir, "changes the current directory", 1)                                                 \
    ROW(pwd, "the current directory", 0)                                                           \
    ROW(deleteM, "removes a file", 1_to_0)                                                         \
    ROW(copyfile, "copies a file", 2)                                                              \
    ROW(filesep, "what stands between the parts of a name", 0)                                     \
    ROW(pathsep, "what stands between the directories of a path", 0)                               \
    ROW(fullfile, "name of a file from its parts", 1_list)                                         \
    ROW(tempdir, "directory of temporary files", 0)                                                \
    ROW(tempname, "name for a temporary file", 0)                                                  \
    ROW(getenv, "environment variable", 1)
QUORVEX_FILE_COUNTS(QUORVEX_REPORT_OTHER_COUNTS)

#endif
