// Files and directories on Windows. The system takes both separators. Calls of the C library are preferred,
// since they leave the reason of a failure in `errno`; after the others it is set from the system's error.
#include "platform/platform.h"
#include "platform/win32_common.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <direct.h>
#include <io.h>
#include <memory>
#include <string>

namespace kn::os {

namespace {

bool fail_as_told() {
    switch (GetLastError()) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_NAME: errno = ENOENT; break;
    case ERROR_FILE_EXISTS:
    case ERROR_ALREADY_EXISTS: errno = EEXIST; break;
    case ERROR_DISK_FULL: errno = ENOSPC; break;
    default: errno = EACCES;
    }
    return false;
}

// WIN32_FIND_DATAA and WIN32_FILE_ATTRIBUTE_DATA name these members alike.
template <class Data> FileStatus status_of(const Data &d) {
    constexpr double from_1601_to_1970 = 11644473600.0;
    return {4294967296.0 * d.nFileSizeHigh + d.nFileSizeLow,
            seconds_of(d.ftLastWriteTime) - from_1601_to_1970,
            (d.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0};
}

} // namespace

std::FILE *open_file(const char *name, const char *mode) { return std::fopen(name, mode); }

bool file_status(const char *name, FileStatus &out) {
    WIN32_FILE_ATTRIBUTE_DATA data;
    if (!GetFileAttributesExA(name, GetFileExInfoStandard, &data)) return fail_as_told();
    out = status_of(data);
    return true;
}

bool rename_file(const char *from, const char *to) {
    return MoveFileExA(from, to, MOVEFILE_REPLACE_EXISTING | MOVEFILE_COPY_ALLOWED) || fail_as_told();
}

bool replaceable(const char *name) {
    const DWORD kind = GetFileAttributesA(name);
    if (kind == INVALID_FILE_ATTRIBUTES) return GetLastError() == ERROR_FILE_NOT_FOUND;
    return (kind & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_DEVICE | FILE_ATTRIBUTE_REPARSE_POINT |
                    FILE_ATTRIBUTE_READONLY)) == 0;
}

void copy_permissions(const char *, const char *) {} // a new file has those of its directory

bool remove_file(const char *name) { return _unlink(name) == 0; }

bool copy_file(const char *from, const char *to) { return CopyFileA(from, to, FALSE) || fail_as_told(); }

bool make_directory(const char *name) { return _mkdir(name) == 0; }

bool remove_directory(const char *name) { return _rmdir(name) == 0; }

bool current_directory(char *out, std::size_t size) {
    return _getcwd(out, static_cast<int>(size)) != nullptr;
}

bool change_directory(const char *name) { return _chdir(name) == 0; }

bool absolute_path(const char *name, char *out, std::size_t size) {
    return _fullpath(out, name, size) != nullptr;
}

// The search delivers its first entry when it is opened.
struct Directory::State {
    HANDLE search;
    WIN32_FIND_DATAA entry;
    bool fresh = true;
};

Directory::Directory(const char *name) {
    auto state = std::make_unique<State>();
    state->search = FindFirstFileA((std::string(*name ? name : ".") + "\\*").c_str(), &state->entry);
    if (state->search == INVALID_HANDLE_VALUE)
        fail_as_told();
    else
        state_ = state.release();
}

Directory::~Directory() {
    if (state_) FindClose(state_->search);
    delete state_;
}

bool Directory::next() {
    if (!state_) return false;
    if (!state_->fresh && !FindNextFileA(state_->search, &state_->entry)) return false;
    state_->fresh = false;
    name_ = state_->entry.cFileName;
    status_ = status_of(state_->entry);
    return true;
}

} // namespace kn::os
