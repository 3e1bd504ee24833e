// A file under a temporary name, kn<process>_<k>.tmp, until it replaces another.

#include "files/atomic_write.h"

#include <charconv>
#include <cstring>
#include <string_view>

#include "files/stream_calls.h"
#include "platform/platform.h"
#include "quorvex/matfiles.h"

int kn_save_to_disk = 1;

namespace kn {
namespace {

constexpr double seconds_between_sweeps = 60;

// The process number in such a name; 0 for other names.
unsigned process_in(std::string_view name) {
    unsigned id = 0, k = 0;
    const char *const end = name.data() + name.size();
    if (name.substr(0, 2) != "kn") return 0;
    const auto first = std::from_chars(name.data() + 2, end, id);
    if (first.ec != std::errc() || first.ptr == end || *first.ptr != '_') return 0;
    const auto second = std::from_chars(first.ptr + 1, end, k);
    return second.ec == std::errc() && std::string_view(second.ptr, end - second.ptr) == ".tmp" ? id : 0;
}

// Removes the temporary files that killed processes have left in a directory. Scanning a large directory is
// slow, so the directory scanned last is skipped for a while.
void sweep(const char *directory) {
    thread_local char last[1024];
    thread_local double when;
    char path[sizeof last], name[sizeof path + 256];
    const double now = os::monotonic_clock();
    if (!os::absolute_path(directory, path, sizeof path)) return;
    if (std::strcmp(path, last) == 0 && now - when < seconds_between_sweeps) return;
    std::strcpy(last, path);
    when = now;
    os::Directory all(path);
    while (all.next()) {
        const unsigned id = process_in(all.name());
        if (id == 0 || id == os::process_id() || os::process_exists(id)) continue;
        std::snprintf(name, sizeof name, "%s%c%s", path, os::separator, all.name());
        os::remove_unlocked(name);
    }
}

// A stream that has no position to return to.
bool is_pipe(std::FILE *stream) { return stream && io::tell(stream) < 0; }

} // namespace

Replacement::Replacement(const char *name) : name_(name) {
    if (!*name || create_beside()) return;
    const bool plain = os::is_plain_file(name);
    Stream to(io::open(name, plain ? "r+b" : "wb"));
    const bool later = plain || is_pipe(to.get());
    Stream first(to && later ? io::nameless() : nullptr);
    if (!later)
        stream_.swap(to);
    else if (first)
        stream_.swap(first), kept_.swap(to);
}

// Returns false when the existing file must be kept and overwritten.
bool Replacement::create_beside() {
    if (!os::replaceable(name_)) return false;
    const int directory = static_cast<int>(os::last_part(name_) - name_);
    if (directory > name_size - 40) return true;
    std::snprintf(own_, sizeof own_, "%.*s", directory, name_);
    sweep(directory > 0 ? own_ : ".");
    auto outcome = os::Creation::taken;
    for (int k = 0; k < 1000 && outcome == os::Creation::taken; ++k) {
        std::snprintf(own_ + directory, sizeof own_ - directory, "kn%u_%d.tmp", os::process_id(), k);
        Stream stream(io::create_for(name_, own_, outcome));
        stream_.swap(stream);
    }
    if (!stream_) *own_ = '\0';
    return outcome != os::Creation::denied;
}

bool Replacement::finish() {
    bool written = stream_ && !std::ferror(get());
    if (kept_) written = written && copy_over();
    std::FILE *const last = kept_ ? kept_.get() : get();
    if ((kept_ || *own_) && kn_save_to_disk && !is_pipe(last)) written = written && io::write_to_disk(last);
    if (!kept_.close() || !stream_.close()) written = false;
    if (*own_ && written) {
        written = !stream_fails() && os::rename_file(own_, name_);
        if (written) *own_ = '\0';
    }
    give_up();
    return written;
}

// Copies the content of the nameless file over the old one.
bool Replacement::copy_over() {
    char block[1 << 14];
    if (io::flush(get()) != 0 || io::seek(get(), 0, SEEK_SET) != 0) return false;
    for (size_t n = sizeof block; n == sizeof block;) {
        n = io::read(block, 1, sizeof block, get());
        if (io::write(block, 1, n, kept_.get()) != n) return false;
    }
    return std::feof(get()) && (is_pipe(kept_.get()) || io::cut_off(kept_.get()));
}

void Replacement::give_up() {
    stream_.close();
    kept_.close();
    if (*own_) os::remove_file(own_);
    *own_ = '\0';
}

} // namespace kn
