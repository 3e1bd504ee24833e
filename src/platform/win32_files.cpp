// Files and directories on Windows. The system accepts both separators. Calls of the C library are preferred,
// since they leave the reason of a failure in `errno`; after the others it is set from the system's error.
#include "platform/platform.h"
#include "platform/win32_common.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <direct.h>
#include <fcntl.h>
#include <io.h>
#include <new>

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

// WIN32_FIND_DATAA and WIN32_FILE_ATTRIBUTE_DATA use the same names for these members.
template <class Data> FileStatus status_of(const Data &d) {
    constexpr double from_1601_to_1970 = 11644473600.0;
    return {4294967296.0 * d.nFileSizeHigh + d.nFileSizeLow,
            seconds_of(d.ftLastWriteTime) - from_1601_to_1970,
            (d.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0};
}

} // namespace

std::FILE *open_file(const char *name, const char *mode) { return std::fopen(name, mode); }

int seek(std::FILE *stream, long long offset, int origin) { return _fseeki64(stream, offset, origin); }
long long tell(std::FILE *stream) { return _ftelli64(stream); }

std::FILE *open_again(std::FILE *stream) {
    const HANDLE file = reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream)));
    if (GetFileType(file) != FILE_TYPE_DISK) return nullptr;
    constexpr DWORD all = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    const HANDLE again = ReOpenFile(file, GENERIC_READ, all, 0);
    if (again == INVALID_HANDLE_VALUE) return nullptr;
    const int fd = _open_osfhandle(reinterpret_cast<intptr_t>(again), _O_RDONLY | _O_BINARY);
    std::FILE *f = fd < 0 ? nullptr : _fdopen(fd, "rb");
    if (fd < 0)
        CloseHandle(again);
    else if (!f)
        _close(fd);
    return f;
}

// Whether another thread uses the stream is unknown here.
void write_out(std::FILE *stream) { std::fflush(stream); }

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

bool is_plain_file(const char *name) {
    const DWORD kind = GetFileAttributesA(name);
    return kind != INVALID_FILE_ATTRIBUTES &&
           (kind & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_DEVICE)) == 0;
}

// A new file has the permissions of its directory; no other process can open it while it is written.
std::FILE *create_for(const char *, const char *name, Creation &outcome) {
    std::FILE *f = std::fopen(name, "wbx");
    outcome = f                 ? Creation::made
              : errno == EEXIST ? Creation::taken
              : errno == EACCES ? Creation::denied
                                : Creation::failed;
    return f;
}

std::FILE *nameless_file() { return std::tmpfile(); }

bool write_to_disk(std::FILE *f) { return std::fflush(f) == 0 && _commit(_fileno(f)) == 0; }

bool cut_off(std::FILE *f) { return std::fflush(f) == 0 && _chsize_s(_fileno(f), _ftelli64(f)) == 0; }

bool process_exists(unsigned id) {
    const HANDLE process = OpenProcess(SYNCHRONIZE, FALSE, id);
    if (!process) return GetLastError() != ERROR_INVALID_PARAMETER;
    const bool runs = WaitForSingleObject(process, 0) == WAIT_TIMEOUT;
    CloseHandle(process);
    return runs;
}

bool remove_unlocked(const char *name) { return remove_file(name); } // fails while it is being written

bool remove_file(const char *name) { return _unlink(name) == 0; }

// The system denies others write access to the source, so that the target can't be the same file.
Copied copy_file(const char *from, const char *to) {
    if (CopyFileA(from, to, FALSE)) return Copied::all;
    fail_as_told();
    if (errno == ENOSPC) return Copied::not_all;
    std::FILE *source = open_file(from, "rb");
    if (!source) return Copied::no_source;
    std::fclose(source);
    return Copied::no_target;
}

bool make_directory(const char *name) { return _mkdir(name) == 0; }

bool remove_directory(const char *name) { return _rmdir(name) == 0; }

bool current_directory(char *out, std::size_t size) {
    return _getcwd(out, static_cast<int>(size)) != nullptr;
}

bool change_directory(const char *name) { return _chdir(name) == 0; }

bool absolute_path(const char *name, char *out, std::size_t size) {
    return _fullpath(out, name, size) != nullptr;
}

// The search returns its first entry when it is opened.
struct Directory::State {
    HANDLE search;
    WIN32_FIND_DATAA entry;
    bool fresh = true;
};

Directory::Directory(const char *name) {
    char pattern[4096];
    State *state = new (std::nothrow) State;
    const int n = std::snprintf(pattern, sizeof pattern, "%s\\*", *name ? name : ".");
    if (!state || n >= static_cast<int>(sizeof pattern)) {
        errno = state ? ERANGE : ENOMEM;
        delete state;
        return;
    }
    state->search = FindFirstFileA(pattern, &state->entry);
    if (state->search == INVALID_HANDLE_VALUE) {
        fail_as_told();
        delete state;
    } else {
        state_ = state;
    }
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
