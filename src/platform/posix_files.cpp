// Files and directories on Linux. Every name is resolved by `SystemName` once, so that each call refers to
// one file and leaves one reason in `errno`.
#include "platform/platform.h"
#include "platform/posix_file_name.h"

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

namespace kn::os {

namespace {

class Descriptor {
  public:
    explicit Descriptor(int fd) : fd_(fd) {}
    ~Descriptor() { close(); }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;

    operator int() const { return fd_; }
    bool close() {
        const int fd = fd_;
        fd_ = -1;
        return fd < 0 || ::close(fd) == 0;
    }

  private:
    int fd_;
};

bool fail(int reason) {
    errno = reason;
    return false;
}

FileStatus status_of(const struct stat &s) {
    return {static_cast<double>(s.st_size), static_cast<double>(s.st_mtim.tv_sec) + 1e-9 * s.st_mtim.tv_nsec,
            S_ISDIR(s.st_mode)};
}

bool write_all(int fd, const char *p, std::size_t n) {
    while (n > 0) {
        const ssize_t done = write(fd, p, n);
        if (done < 0 && errno != EINTR) return false;
        if (done > 0) p += done, n -= done;
    }
    return true;
}

bool copy_bytes(int in, int out) {
    char buffer[1 << 16];
    for (;;) {
        const ssize_t n = read(in, buffer, sizeof buffer);
        if (n == 0) return true;
        if (n < 0 && errno != EINTR) return false;
        if (n > 0 && !write_all(out, buffer, n)) return false;
    }
}

} // namespace

std::FILE *open_file(const char *name, const char *mode) {
    std::FILE *f = std::fopen(SystemName(name), mode);
    if (!f) return nullptr;
    struct stat s;
    if (fstat(fileno(f), &s) == 0 && S_ISDIR(s.st_mode)) {
        std::fclose(f);
        fail(EISDIR);
        return nullptr;
    }
    fcntl(fileno(f), F_SETFD, FD_CLOEXEC);
    return f;
}

int seek(std::FILE *stream, long long offset, int origin) { return fseeko(stream, offset, origin); }
long long tell(std::FILE *stream) { return ftello(stream); }

std::FILE *open_again(std::FILE *stream) {
    struct stat s;
    if (fstat(fileno(stream), &s) != 0 || !S_ISREG(s.st_mode)) return nullptr;
    char name[40];
    std::snprintf(name, sizeof name, "/proc/self/fd/%d", fileno(stream));
    return open_file(name, "rb");
}

void write_out(std::FILE *stream) {
    if (ftrylockfile(stream) != 0) return;
    std::fflush(stream);
    funlockfile(stream);
}

bool file_status(const char *name, FileStatus &out) {
    struct stat s;
    if (stat(SystemName(name), &s) != 0) return false;
    out = status_of(s);
    return true;
}

bool rename_file(const char *from, const char *to) {
    return std::rename(SystemName(from), SystemName(to)) == 0;
}

bool remove_file(const char *name) { return unlink(SystemName(name)) == 0; }

Copied copy_file(const char *from, const char *to) {
    const SystemName target(to);
    struct stat source, before;
    Descriptor in(open(SystemName(from), O_RDONLY | O_CLOEXEC));
    if (in < 0 || fstat(in, &source) != 0) return Copied::no_source;
    if (S_ISDIR(source.st_mode)) return fail(EISDIR), Copied::no_source;

    // The target is emptied only once it is known to be another file; one that is no plain file is written
    // to, not removed. Nobody else may read a new one before it has the permissions of the source.
    const bool fresh = !file_exists(to);
    Descriptor out(open(target, O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
    if (out < 0 || fstat(out, &before) != 0) return Copied::no_target;
    if (before.st_dev == source.st_dev && before.st_ino == source.st_ino)
        return fail(EINVAL), Copied::no_target;
    const bool plain = S_ISREG(before.st_mode);
    if (plain && ftruncate(out, 0) != 0) return Copied::no_target;

    if (copy_bytes(in, out)) {
        if (fresh) (void)!fchmod(out, source.st_mode & 0777); // where the file system supports permissions
        if (out.close()) return Copied::all;
    }
    const int reason = errno;
    if (plain) unlink(target);
    return fail(reason), Copied::not_all;
}

bool make_directory(const char *name) { return mkdir(SystemName(name), 0777) == 0; }

bool remove_directory(const char *name) { return rmdir(SystemName(name)) == 0; }

bool current_directory(char *out, std::size_t size) { return getcwd(out, size) != nullptr; }

bool change_directory(const char *name) { return chdir(SystemName(name)) == 0; }

bool absolute_path(const char *name, char *out, std::size_t size) {
    const SystemName given(name);
    char path[PATH_MAX];
    std::size_t n = 0; // of the path, without a final separator
    auto add = [&](const char *parts) {
        while (*parts) {
            const std::size_t length = std::strcspn(parts, "/");
            if (length == 2 && parts[0] == '.' && parts[1] == '.') {
                while (n > 0 && path[--n] != '/') {
                }
            } else if (length > 1 || (length == 1 && *parts != '.')) {
                if (length + 1 >= sizeof path - n) return fail(ERANGE);
                path[n++] = '/';
                std::memcpy(path + n, parts, length);
                n += length;
            }
            parts += length + (parts[length] == '/');
        }
        return true;
    };
    if (*given != '/') {
        char here[PATH_MAX];
        if (!current_directory(here, sizeof here) || !add(here)) return false;
    }
    if (!add(given)) return false;
    if (n == 0) path[n++] = '/';
    if (n >= size) return fail(ERANGE);
    std::memcpy(out, path, n);
    out[n] = '\0';
    return true;
}

// The state is the system's stream itself.
Directory::Directory(const char *name) : state_(reinterpret_cast<State *>(opendir(SystemName(name)))) {}

Directory::~Directory() {
    if (state_) closedir(reinterpret_cast<DIR *>(state_));
}

bool Directory::next() {
    DIR *const stream = reinterpret_cast<DIR *>(state_);
    while (dirent *entry = stream ? readdir(stream) : nullptr) {
        struct stat s;
        const int at = dirfd(stream);
        // A dangling link is reported as itself; an entry that has vanished meanwhile is skipped.
        if (fstatat(at, entry->d_name, &s, 0) != 0 &&
            fstatat(at, entry->d_name, &s, AT_SYMLINK_NOFOLLOW) != 0)
            continue;
        name_ = entry->d_name;
        status_ = status_of(s);
        return true;
    }
    return false;
}

} // namespace kn::os
