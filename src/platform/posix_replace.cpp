// Files that replace others, on Linux. A new file is locked (flock) by the process that writes it, so that
// any process that finds it can determine whether that process has ended, even one whose process number has
// no meaning here.
#include "platform/platform.h"
#include "platform/posix_file_name.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace kn::os {

namespace {

// Converts a descriptor to a stream, or closes it.
std::FILE *stream_of(int fd, const char *mode) {
    std::FILE *f = fdopen(fd, mode);
    if (!f) close(fd);
    return f;
}

// Gives a new file the owner and the permissions of another; false when the owner can't be set.
bool dress(int fd, const struct stat &other) {
    struct stat s;
    if (fstat(fd, &s) != 0) return false;
    if ((s.st_uid != other.st_uid || s.st_gid != other.st_gid) && fchown(fd, other.st_uid, other.st_gid) != 0)
        return false;
    // A file system without permissions refuses: there they have no effect.
    if (fchmod(fd, other.st_mode & 0777) != 0) errno = 0;
    return true;
}

} // namespace

bool replaceable(const char *name) {
    const SystemName given(name);
    struct stat s;
    if (lstat(given, &s) != 0) return errno == ENOENT;
    return S_ISREG(s.st_mode) && s.st_nlink == 1 && faccessat(AT_FDCWD, given, W_OK, AT_EACCESS) == 0;
}

bool is_plain_file(const char *name) {
    struct stat s;
    return stat(SystemName(name), &s) == 0 && S_ISREG(s.st_mode);
}

std::FILE *create_for(const char *other, const char *name, Creation &outcome) {
    const SystemName created(name);
    struct stat s;
    const bool replaces = stat(SystemName(other), &s) == 0;
    const int fd = open(created, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, replaces ? 0600 : 0666);
    if (fd < 0) {
        outcome = errno == EEXIST                                       ? Creation::taken
                  : errno == EACCES || errno == EPERM || errno == EROFS ? Creation::denied
                                                                        : Creation::failed;
        return nullptr;
    }
    flock(fd, LOCK_EX | LOCK_NB); // where locks are not supported, none is tested either
    if (replaces && !dress(fd, s)) {
        outcome = Creation::denied;
        unlink(created);
        close(fd);
        return nullptr;
    }
    std::FILE *f = stream_of(fd, "wb");
    outcome = f ? Creation::made : Creation::failed;
    if (!f) unlink(created);
    return f;
}

std::FILE *nameless_file() {
    std::FILE *f = std::tmpfile();
    if (f) fcntl(fileno(f), F_SETFD, FD_CLOEXEC);
    return f;
}

bool write_to_disk(std::FILE *f) {
    return std::fflush(f) == 0 && (fsync(fileno(f)) == 0 || errno == EINVAL || errno == ENOSYS);
}

bool cut_off(std::FILE *f) {
    const off_t here = std::fflush(f) == 0 ? ftello(f) : -1;
    return here >= 0 && ftruncate(fileno(f), here) == 0;
}

bool process_exists(unsigned id) { return kill(static_cast<pid_t>(id), 0) == 0 || errno != ESRCH; }

bool remove_unlocked(const char *name) {
    const SystemName given(name);
    struct stat s;
    const int fd = open(given, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    const bool free =
        fd >= 0 && fstat(fd, &s) == 0 && S_ISREG(s.st_mode) && flock(fd, LOCK_EX | LOCK_NB) == 0;
    const bool removed = free && unlink(given) == 0;
    if (fd >= 0) close(fd);
    return removed;
}

} // namespace kn::os
