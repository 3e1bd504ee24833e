// Files, streams and directories.
//
// File names accept either separator and have at most 512 characters. In a pattern the last part of the name
// may contain "*" for any characters and "?" for one.
//
// An open file has a number, its fid, 3 to 127; 0 to 2 are the standard streams, which only fprintf accepts.
// A fid argument is a one-element value, truncated to an integer: "Size of fid %s not one."; "Illegal fid."
// outside 0 to 128, "%s: Illegal fid." for a standard stream, "Fid not opened.". Brackets [...] give the
// result after such a report, if the error handler returns.
//
// Functions with names of the C library are overloads of them on values.
#ifndef QUORVEX_FILES_H
#define QUORVEX_FILES_H

#include <stdio.h>
#include <wchar.h> // before this header declares overloads: it refers to C's fclose

#include "quorvex/counts.h"

// -- Opening and closing.

// Opens a file and gives its fid, or -1 on failure. `mode` is that of C (default "r"), with "b" appended
// unless it contains "b" or "t". A file opened for reading only is searched for as named, then in the
// directories of the M path. `format` is the byte order of the numbers that fread and fwrite transfer: "b",
// "ieee-be", "l", "ieee-le", "n", "native" (default "n", with outputs "l"); others give the warning "fopen:
// don't know how to convert from machine format", and the bytes are swapped. `message` is "filename is
// empty", "File error", or empty. The name "all" gives the fids of all open files as a row. With 125 open
// files the error is "Too many files"; if the handler returns, the process ends.
//
// For a number, the name of the open file with that fid, or nop_M; with outputs its name, mode and format, or
// empty texts.
QUORVEX_API Mm fopen(const Mm &name);
QUORVEX_API Mm fopen(const Mm &name, const Mm &mode);
QUORVEX_API Mm fopen(const Mm &name, const Mm &mode, const Mm &format);
QUORVEX_API Mm fopen(const Mm &name, i_o_t, Mm &fid, Mm &message);
QUORVEX_API Mm fopen(const Mm &name, const Mm &mode, i_o_t, Mm &fid, Mm &message);
QUORVEX_API Mm fopen(const Mm &name, const Mm &mode, const Mm &format, i_o_t, Mm &fid, Mm &message);
QUORVEX_API Mm fopen(const Mm &fid, i_o_t, Mm &name, Mm &mode, Mm &format);

// Closes a file, or all files for any text: 0, or -1 when buffered output could not be stored. "fclose: can
// not close stdin/stdout/stderr, fid is %s" for a fid that rounds to less than 3. [-1]
QUORVEX_API Mm fclose(const Mm &fid);

// The fid of standard error, 2.
QUORVEX_API Mm stderrM();

// -- Lines.

// The next line as a row of text, -1 at the end of the file. fgets keeps the newline, fgetl removes it;
// "\r\n" counts as "\n". A line is cut after n characters (default and maximum 16384) and at a null
// character. The elements are 0 to 255. [-1]
QUORVEX_API Mm fgets(const Mm &fid);
QUORVEX_API Mm fgets(const Mm &fid, const Mm &n);
QUORVEX_API Mm fgetl(const Mm &fid);

// -- State and offset.

// feof tests for the end of a file, fflush writes the buffered output of a file.
QUORVEX_API Mm feof(const Mm &fid);   // 1 when reading has reached the end, otherwise 0 [1]
QUORVEX_API Mm fflush(const Mm &fid); // writes buffered output; 0, or 1 on failure [1]

// The error state of a file: "File error" after a failed call, otherwise the empty text; `number` is C's
// error flag. A text as second input clears the flag. ["File error", -1]
QUORVEX_API Mm ferror(const Mm &fid);
QUORVEX_API Mm ferror(const Mm &fid, const Mm &x);
QUORVEX_API Mm ferror(const Mm &fid, i_o_t, Mm &message, Mm &number);
QUORVEX_API Mm ferror(const Mm &fid, const Mm &x, i_o_t, Mm &message, Mm &number);

// Moves by `offset` bytes (truncated) from an origin: the beginning ("bof", a number below 0), the current
// offset ("cof", 0) or the end ("eof", above 0). 0, or -1 on failure. After "fseek: origin %s not bof, cof or
// eof" the origin is the current offset. [-1]
QUORVEX_API Mm fseek(const Mm &fid, const Mm &offset, const Mm &origin);
QUORVEX_API Mm ftell(const Mm &fid);   // the current offset in bytes; -1 on failure [-1]
QUORVEX_API Mm frewind(const Mm &fid); // moves to the beginning; 0, or -1 on failure [-1]

// -- Numbers.
//
// `precision` names the type of an element in the file (default "uchar"; "fileio: unknown precision %s"):
//
//     double float64 real*8 adouble "long double" float80 real*10   8 bytes, floating point
//     float float32 real*4                                          4
//     long int integer*4 int32; "unsigned long" "unsigned int" ulong uint uint32    4, integer
//     short int16 integer*2; ushort "unsigned short" uint16         2
//     char char*1 int8 schar "signed char" integer*1; uchar "unsigned char" uint8   1
//     integer*8 int64 uint64                                        8, read as an unsigned integer
//
// `skip` bytes (default 0; rounded, negative counts as 0) are skipped after each element. `format` is that of
// fopen; any other text, as the default "?", means the format of the open file.

// Reads numbers: a matrix of the next elements, and their number (64-bit elements count twice). `size` is n,
// for a column, or [m n]; Inf (the default) means all that remain. At the end of the file a column is
// shorter, and a matrix has only as many columns as needed, with missing elements zero; feof is then 1. A
// pipe is read up to `size` or its end. A text in the place of `size` is the precision. "fread: can not read
// multi-dimensional matrices". [empty, 0]
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

// Writes the real parts of the elements of a in column order, and gives the number of elements written. For
// integer types numbers are truncated and keep their low bytes: 300 becomes the byte 44. NaN and numbers
// outside the 64-bit integers become 0. "fwrite: precision not a string". [0]
QUORVEX_API Mm fwrite(const Mm &fid, const Mm &a);
QUORVEX_API Mm fwrite(const Mm &fid, const Mm &a, const Mm &precision);
QUORVEX_API Mm fwrite(const Mm &fid, const Mm &a, const Mm &precision, const Mm &skip);
QUORVEX_API Mm fwrite(const Mm &fid, const Mm &a, const Mm &precision, const Mm &skip, const Mm &format);

// -- Directories.

// The entries of a directory (default: the current one), or those that match a pattern, ordered by name: an n
// by 1 structure with the fields name, date ("21-Nov-2026 09:30:00"), bytes and isdir. An empty cell when
// there are none.
QUORVEX_API Mm dir();
QUORVEX_API Mm dir(const Mm &name);

// Prints the entries that dir finds, one line for each with date, size and name; directories end in a
// separator.
QUORVEX_API Mm ls();
QUORVEX_API Mm ls(const Mm &name);

// Make, remove and change directories: 1, or 0 with a warning. Only empty directories are removed.
QUORVEX_API Mm mkdir(const Mm &name); // 1; 2 when it exists; 0 and warning "Could not make directory %s"
QUORVEX_API Mm rmdir(const Mm &name); // 1; 0 and warning "Could not remove directory %s"
QUORVEX_API Mm cd();                  // the current directory, cut at 511 characters
QUORVEX_API Mm cd(const Mm &name);    // 1; 0 and warning "Could not change directory to %s"
QUORVEX_API Mm chdir(const Mm &name); // the same
QUORVEX_API Mm pwd();                 // the current directory

// Removes the file that a text names; a failure is not reported. For graphics handles "%s is not yet
// implemented".
QUORVEX_API Mm deleteM(const Mm &x);

// Copies a file: 1, or 0 after an error: "copyfile:Could not read %s", "copyfile:Could not write %s" (also
// for a copy to the same file, or a link to it), "copyfile:Failed on copy". A new file receives the
// permissions of the source; an existing one keeps its own.
QUORVEX_API Mm copyfile(const Mm &from, const Mm &to);

// The separator of the parts of a file name, and of the directories of a path.
QUORVEX_API Mm filesep(); // "\"
QUORVEX_API Mm pathsep(); // ";"

// The texts of a cell, joined by filesep() into one file name. A separator at the end of a text is removed,
// and so is one at the beginning of every text but the first.
QUORVEX_API Mm fullfile(const Mm &list);

// The directory of temporary files, an unused name in it, and environment variables.
QUORVEX_API Mm tempdir();              // the directory of temporary files, ending in a separator
QUORVEX_API Mm tempname();             // an unused file name in it
QUORVEX_API Mm getenv(const Mm &name); // an environment variable; the empty text when it is not set

#define QUORVEX_FILE_COUNTS(ROW)                                                                   \
    ROW(fopen, "opens a file", 1, 2, 3, 1_to_2, 2_to_2, 3_to_2, 1_to_3)                            \
    ROW(fclose, "closes a file", 1)                                                                \
    ROW(stderrM, "fid of standard error", 0)                                                       \
    ROW(fgets, "reads a line, with its newline", 1, 2)                                             \
    ROW(fgetl, "reads a line, without its newline", 1)                                             \
    ROW(feof, "whether the end of a file was reached", 1)                                          \
    ROW(ferror, "error state of a file", 1, 2, 1_to_2, 2_to_2)                                     \
    ROW(fflush, "writes buffered output of a file", 1)                                             \
    ROW(fread, "reads numbers from a file", 1, 2, 3, 4, 5, 1_to_2, 2_to_2, 3_to_2, 4_to_2, 5_to_2) \
    ROW(fwrite, "writes numbers to a file", 2, 3, 4, 5)                                            \
    ROW(fseek, "moves within a file", 3)                                                           \
    ROW(ftell, "current offset in a file", 1)                                                      \
    ROW(frewind, "moves to the beginning of a file", 1)                                            \
    ROW(dir, "entries of a directory", 0, 1)                                                       \
    ROW(ls, "prints the entries of a directory", 0_to_0, 1_to_0)                                   \
    ROW(mkdir, "makes a directory", 1)                                                             \
    ROW(rmdir, "removes a directory", 1)                                                           \
    ROW(cd, "gives or changes the current directory", 0, 1)                                        \
    ROW(chdir, "changes the current directory", 1)                                                 \
    ROW(pwd, "the current directory", 0)                                                           \
    ROW(deleteM, "removes a file", 1_to_0)                                                         \
    ROW(copyfile, "copies a file", 2)                                                              \
    ROW(filesep, "separator in file names", 0)                                                     \
    ROW(pathsep, "separator of the directories in a path", 0)                                      \
    ROW(fullfile, "file name from its parts", 1_list)                                              \
    ROW(tempdir, "directory of temporary files", 0)                                                \
    ROW(tempname, "unused name for a temporary file", 0)                                           \
    ROW(getenv, "environment variable", 1)
QUORVEX_FILE_COUNTS(QUORVEX_REPORT_OTHER_COUNTS)

#endif
