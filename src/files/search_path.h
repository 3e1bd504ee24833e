// The list of directories in which M-files, and files that are read, are looked for.
#ifndef QUORVEX_FILES_SEARCH_PATH_H
#define QUORVEX_FILES_SEARCH_PATH_H

#include <cstddef>
#include <cstdio>

#include "quorvex/evaluation.h"

namespace kn {

constexpr int path_name_size = 1024; // of the name of a directory or file on the path

// Adds the directories that ";" separates in the text, made absolute, at the end or in front of the others.
void path_add(kn_path_record &record, const char *text, bool append);

bool path_has(const kn_path_record &record, const char *directory);

// The directory of the file `name`, to be put before it: "" for the name as it stands, else that of the
// caller (null: unknown), its "private", or one of the record (null: none). False when it is in none of them.
bool path_search(const kn_path_record *record, const char *caller, const char *name, char *directory,
                 size_t size);

// Opens a file that is there, in mode "rb", and puts its whole name in place of `name`. With add_m a name
// without "." gets ".m". Without a record the name is opened as it stands. Null when there is none.
std::FILE *path_open(const kn_path_record *record, const char *caller, char *name, size_t size, bool add_m);

// Finds the file that `exist` and `which` mean: with ".m", then as given. Puts its whole name in place of
// `name`.
bool find_m_file(char *name, size_t size);

} // namespace kn

#endif
