// The list of directories that are searched for M-files and for files to read.
#ifndef QUORVEX_FILES_SEARCH_PATH_H
#define QUORVEX_FILES_SEARCH_PATH_H

#include <cstddef>
#include <cstdio>

#include "quorvex/evaluation.h"

namespace kn {

constexpr int path_name_size = 1024; // of a directory or file name on the path

// Adds the directories in the text, separated by ";" and made absolute, at the end or at the front.
void path_add(kn_path_record &record, const char *text, bool append);

bool path_has(const kn_path_record &record, const char *directory);

// The directory of the file `name`, as a prefix of it: "" when the name is found as given, else that of the
// caller (null: unknown), its "private", or one of the record (null: none). False when it is in none of them.
bool path_search(const kn_path_record *record, const char *caller, const char *name, char *directory,
                 size_t size);

// Opens an existing file in mode "rb" and replaces `name` by its full name. With add_m a name without "."
// gets ".m". Without a record the name is opened as given. Null when there is none.
std::FILE *path_open(const kn_path_record *record, const char *caller, char *name, size_t size, bool add_m);

// Finds the file that `exist` and `which` mean: with ".m", then as given. Replaces `name` by its full name.
bool find_m_file(char *name, size_t size);

} // namespace kn

#endif
