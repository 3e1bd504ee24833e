// An empty directory that a test works in, and the bytes of its files.
#ifndef QUORVEX_TESTS_FOLDER_H
#define QUORVEX_TESTS_FOLDER_H

#include <bit>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "base/scratch.h"
#include "files/stream_calls.h"
#include "platform/platform.h"
#include "support/support.h"

namespace test {

// A number as a file holds it.
template <class T> std::string bytes_of(T x, bool big) {
    const char *const at = reinterpret_cast<const char *>(&x);
    std::string s(at, sizeof x);
    return big == (std::endian::native == std::endian::big) ? s : std::string(s.rbegin(), s.rend());
}

// For a scope: an M path of this directory.
struct Path {
    explicit Path(const char *directory) { addpath(TM(directory)); }
    ~Path() { kn_delete_path_record(record); }
    kn_path_record *record = mpath_pointer = kn_new_path_record("");
};

class Folder : public testing::Test {
  protected:
    Folder() : before_(std::filesystem::current_path()) {
        home_ = new_directory();
        std::filesystem::current_path(home_);
        open_ = kn::stream_probe.open;
        kn_save_to_disk = 0;
    }
    ~Folder() override {
        fclose(TM("all"));
        EXPECT_EQ(kn::stream_probe.open, open_) << "a stream leaks";
        std::filesystem::current_path(before_);
        std::filesystem::remove_all(home_);
    }

    static void put(const char *name, const std::string &bytes) {
        std::ofstream(name, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    }
    static std::string bytes(const char *name) {
        std::ifstream in(name, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }
    // The fid of a file with these bytes.
    static Mm reading(const std::string &content, const char *format = "n") {
        put("read", content);
        return fopen(TM("read"), TM("r"), TM(format));
    }
    std::string home() const { return home_.string(); }

    // Does the work with the n-th counted call failing, for every n, alone or with all later ones, after a
    // round without any: nothing leaks. `then` hears whether an error was raised.
    template <class Probe>
    static void with_failures(Probe &probe, long Probe::*count, const std::function<void()> &work,
                              const std::function<void(bool)> &then) {
        const long start = probe.*count;
        work();
        const long most = probe.*count - start;
        then(false);
        for (bool after : {false, true})
            for (long n = 1; n <= most; ++n) {
                const long live = kn::alloc_probe.live, open = kn::stream_probe.open;
                probe.fail_at = probe.*count + n, probe.fail_after = after;
                const std::string told = raised(work);
                probe.fail_at = 0;
                lasterr();
                then(told != "(no error)");
                EXPECT_EQ(kn::alloc_probe.live, live) << n << told;
                EXPECT_EQ(kn::stream_probe.open, open) << n << told;
            }
    }

  private:
    std::filesystem::path before_, home_;
    long open_;
};

} // namespace test

#endif
