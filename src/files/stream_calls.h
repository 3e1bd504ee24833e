// The calls of the C stream library, with a probe that makes one fail. All of files/ calls them here.
#ifndef QUORVEX_FILES_STREAM_CALLS_H
#define QUORVEX_FILES_STREAM_CALLS_H

#include <cstddef>
#include <cstdio>

#include "platform/platform.h"

namespace kn {

// In builds with QUORVEX_ALLOC_PROBE: `calls` made so far; number `fail_at` (counted from 1, 0 never) fails,
// and all later ones too if `fail_after` is set; `open` streams.
struct StreamProbe {
    long calls, fail_at, open;
    bool fail_after;
};
extern StreamProbe stream_probe;

#ifdef QUORVEX_ALLOC_PROBE
inline bool stream_fails() {
    const long k = ++stream_probe.calls, n = stream_probe.fail_at;
    return n != 0 && (k == n || (stream_probe.fail_after && k > n));
}
inline void count_open(int change) { stream_probe.open += change; }
#else
inline bool stream_fails() { return false; }
inline void count_open(int) {}
#endif

// Names and results as in <cstdio>. A close that fails still closes the stream.
namespace io {

inline std::FILE *opened(std::FILE *f) {
    if (f) count_open(1);
    return f;
}
inline std::FILE *open(const char *name, const char *mode) {
    return stream_fails() ? nullptr : opened(os::open_file(name, mode));
}
// A second stream, for reading, of the same file.
inline std::FILE *open_again(std::FILE *f) { return stream_fails() ? nullptr : opened(os::open_again(f)); }
inline int close(std::FILE *f) {
    count_open(-1);
    const bool fails = stream_fails();
    return std::fclose(f) != 0 || fails ? EOF : 0;
}
inline size_t read(void *to, size_t size, size_t n, std::FILE *f) {
    return stream_fails() ? 0 : std::fread(to, size, n, f);
}
inline size_t write(const void *from, size_t size, size_t n, std::FILE *f) {
    return stream_fails() ? 0 : std::fwrite(from, size, n, f);
}
inline char *gets(char *to, int n, std::FILE *f) { return stream_fails() ? nullptr : std::fgets(to, n, f); }
inline int seek(std::FILE *f, long long offset, int origin) {
    return stream_fails() ? -1 : os::seek(f, offset, origin);
}
inline long long tell(std::FILE *f) { return stream_fails() ? -1 : os::tell(f); }
inline std::FILE *create_for(const char *other, const char *name, os::Creation &outcome) {
    outcome = os::Creation::failed;
    return stream_fails() ? nullptr : opened(os::create_for(other, name, outcome));
}
inline std::FILE *nameless() { return stream_fails() ? nullptr : opened(os::nameless_file()); }
inline bool write_to_disk(std::FILE *f) { return !stream_fails() && os::write_to_disk(f); }
inline bool cut_off(std::FILE *f) { return !stream_fails() && os::cut_off(f); }
inline int flush(std::FILE *f) { return stream_fails() ? EOF : std::fflush(f); }

} // namespace io
} // namespace kn

#endif
