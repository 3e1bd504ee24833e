// A file under a name of its own, until it takes the place of another.

#include "files/replacement.h"

#include <cstring>

#include "files/stream_calls.h"
#include "platform/platform.h"

namespace kn {

Replacement::Replacement(const char *name) : name_(name) {
    if (!*name) return;
    if (!os::replaceable(name)) {
        Stream straight(io::open(name, "wb"));
        stream_.swap(straight);
        return;
    }
    const int directory = static_cast<int>(os::last_part(name) - name);
    if (directory > name_size - 40) return;
    for (int k = 0; k < 1000; ++k) {
        std::snprintf(own_, sizeof own_, "%.*skn%u_%d.tmp", directory, name, os::process_id(), k);
        Stream stream(io::open(own_, "wbx")); // a file that is not there yet
        if (stream) {
            stream_.swap(stream);
            return;
        }
        if (!os::file_exists(own_)) break; // it can't be there
    }
    *own_ = '\0';
}

bool Replacement::finish() {
    const bool sound = stream_ && !std::ferror(get());
    bool written = stream_.close() && sound;
    if (*own_ && written) {
        if (os::file_exists(name_)) os::copy_permissions(name_, own_);
        written = !stream_fails() && os::rename_file(own_, name_);
        if (written) *own_ = '\0';
    }
    give_up();
    return written;
}

void Replacement::give_up() {
    stream_.close();
    if (*own_) os::remove_file(own_);
    *own_ = '\0';
}

} // namespace kn
