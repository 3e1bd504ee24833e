// The operating system as one small interface, named by what it does. No other folder includes a header of
// the system: everything that differs between systems is declared here, implemented for Linux in posix_*.cpp,
// for Windows in win32_*.cpp, and in portable.cpp where the C++ library suffices.
//
// File names are plain bytes. On Linux a name with backslashes names the file of exactly that name if there
// is one, else the name with "\\" read as "/"; so programs written with either separator run unchanged.
// Unless stated otherwise a function that fails returns null or false and, if it is about files, leaves the
// reason in `errno`. Texts are truncated to the given size and end with a null character.
#pragma once

#include <cstddef>
#include <cstdio>

namespace kn::os {

// ---- Memory ----

// Bytes in a page of memory.
std::size_t page_size();

// Reserves address space without access, at a multiple of `alignment`, a power of two; null on failure.
void *reserve(std::size_t bytes, std::size_t alignment);

// Makes whole pages within one reservation readable and writable. They read as zeros at first.
bool commit(void *at, std::size_t bytes);

// A separate mapping for a large block, readable and writable, which reads as zeros at first. From
// `huge_page` bytes on it starts at a multiple of that and uses pages of that size where the system has them.
constexpr std::size_t huge_page = std::size_t{1} << 21;
void *map(std::size_t bytes);

// Unmaps a mapping.
void unmap(void *p, std::size_t bytes);

// Unmaps the end of a mapping, `bytes` from p on; false where the system only unmaps whole ones.
bool unmap_end(void *p, std::size_t bytes);

// Makes a mapping longer, which may move it; the new bytes read as zeros. Null, and no change, where the
// system can't.
void *remap(void *p, std::size_t bytes, std::size_t longer);

// The contents of a mapping are no longer needed: the system may reclaim its pages when it is short of
// memory. Writing to them makes them usable again; until then they read as zeros or as before.
void offer(void *p, std::size_t bytes);

// Releases the memory of whole pages at once. They stay accessible, and read as zeros or as before.
void discard(void *p, std::size_t bytes);

// Bytes of memory in the machine, and in use by this process (0 where unknown).
std::size_t physical_memory();
std::size_t process_memory();

// Whether the `n` bytes at `p` can be read without a fault. Valid for this moment only, at one system call a
// page.
bool readable(const void *p, std::size_t n);

// Copies a text, truncated to `size`, as far as it can be read without a fault. False, and the empty text,
// when not even its first byte can be read.
bool copy_readable(char *out, std::size_t size, const char *text);

// ---- Recursive locks, numbered from 0. base/lock.h names them. ----

inline constexpr int lock_count = 3;

// Creates the locks unless they exist. In the child of a fork, which has only the thread that forked, they
// are free, and the data they guard is consistent: the fork waits for the holders.
void create_locks();

// Deletes the locks, which no thread may hold or await. Entering one later creates them again.
void delete_locks();

// Enters lock `n`, creating the locks first if necessary; works before any static object is constructed.
// Guards the thread (see guard_thread).
void enter_lock(int n);

// Leaves lock `n`; does nothing while the locks don't exist.
void leave_lock(int n);

// ---- Threads ----

using Thread = struct ThreadHandle *;

// Runs `run` in a new thread with the floating-point state of `reset_floating_point`; null when no thread can
// be created. It receives only the signals that its own instructions cause. On Windows the module that
// contains this code stays loaded from now on; elsewhere the thread must be joined before the module is
// unloaded.
Thread start_thread(void (*run)());

// Waits until the thread has ended and releases it.
void join_thread(Thread thread);

// For each fork calls `before` before it, then `in_parent` and `in_child`, which has one thread only. Each
// may be null. Handlers run from the last to the first before the fork, from the first to the last after it.
void around_fork(void (*before)(), void (*in_parent)(), void (*in_child)());

// ---- Processes ----

// Starts a program that outlives the caller, without terminal and input: its name, then its arguments,
// unchanged, and a null pointer. A name without a directory is searched for along the PATH. False when it
// doesn't start.
bool start_detached(const char *const *words);

// The number of this process.
unsigned process_id();

// Gives the calling thread a higher priority where that is permitted. On Linux: niceness -2 instead of the
// default 0, which needs a privilege; any other niceness is kept. Never fails.
void raise_thread_priority();

// Flushes standard output, standard error and the files of `write_out_files`, and ends the process at once,
// without the exit handlers.
[[noreturn]] void end_process(int status);

// The flushing only.
void write_out();

// Flushes the files of the upper folder that has them; null until it is set. May be called at any point of
// execution.
extern void (*write_out_files)();

// ---- Environment ----

// Copies the value of a variable, truncated to `size`. False, and the empty text, when it isn't set.
bool environment(const char *name, char *out, std::size_t size);

// Sets a variable; a null value removes it, and on Windows an empty one too.
bool set_environment(const char *name, const char *value);

// ---- Processor ----

// Whether processor and system support AVX2 with fused multiply-add; AVX-512 with its F, VL, DQ and BW parts.
bool has_avx2();
bool has_avx512();

// ---- Floating point ----

// The state all arithmetic runs in: every exception masked and cleared, rounding to nearest, denormals kept.
void reset_floating_point();

// ---- Numbers as text ----

// While one exists, the C library's functions on numbers and characters use the "C" locale in its thread,
// whatever locale the program has chosen: the decimal separator is a point.
class PlainNumbers {
  public:
    PlainNumbers();
    ~PlainNumbers();
    PlainNumbers(const PlainNumbers &) = delete;
    PlainNumbers &operator=(const PlainNumbers &) = delete;

  private:
#ifdef _WIN32
    int mode_;
    char before_[256];
#else
    void *before_;
#endif
};

// ---- Crashes ----

enum class CrashAction {
    end_process,    // end quietly; on Linux with status 1 after standard output is flushed
    continue_search // pass the fault to the previous handler: a debugger, a sanitizer, the system
};

// Calls `hook` with the exception code when a thread faults; on Linux SIGSEGV, SIGBUS, SIGILL and SIGFPE have
// such codes. A SIGFPE that a program sends is ignored. The hook runs in the faulting thread and must not
// allocate. A second call replaces the hook. The calling thread is guarded.
void install_crash_hook(CrashAction (*hook)(unsigned code));

// Restores the handlers from before `install_crash_hook`.
void remove_crash_hook();

// Makes the hook handle overflows of the calling thread's stack: from now on it runs on a separate stack in
// that thread. Cheap when already done.
void guard_thread();

// The name of an exception code, such as "ACCESS_VIOLATION"; "Unknown exception code" for any other number.
const char *exception_name(unsigned code);

// ---- Messages and console ----

// Whether a text can be shown in a window.
bool has_dialogs();

// Shows a text in front of the foreground window and waits for an answer. Linux: writes "title: text" to
// standard error.
void message_box(const char *text, const char *title, unsigned style);

// Reads a line from standard input without its newline; the next call continues a line that is too long.
// False at the end of the input.
bool read_line(char *out, std::size_t size);

// Whether standard input is a terminal.
bool has_terminal();

// Whether input is waiting at the terminal; false when standard input is not a terminal.
bool key_waiting();

// Clears the terminal and moves the cursor to the top left corner. Does nothing when standard output is not a
// terminal.
void clear_screen();

// Moves the cursor to the top left corner, as above.
void home_cursor();

// ---- Time ----

struct LocalTime {
    int year, month, day; // month and day from 1
    int hour, minute;
    double second; // with its fraction
    int weekday;   // days since Sunday
    int yearday;   // days since the first of January
    bool daylight_saving;
};

// Suspends the calling thread.
void pause_milliseconds(unsigned milliseconds);

// Seconds since 1970 began, in universal time.
double wall_clock();

// Seconds since some fixed moment; never decreases.
double monotonic_clock();

// Milliseconds of the same kind, in steps of up to 16; costs a few nanoseconds.
long long coarse_milliseconds();

// The local calendar date and time of a `wall_clock` value. False when the system has none for it.
bool local_time(double seconds, LocalTime &out);

// ---- Files and directories ----

struct FileStatus {
    double size;     // bytes
    double modified; // as `wall_clock`
    bool is_directory;
};

// The separator between the parts of a name.
#ifdef _WIN32
inline constexpr char separator = '\\';
#else
inline constexpr char separator = '/';
#endif

inline bool is_separator(char c) { return c == '/' || c == '\\'; }

// The part of a name after its last separator, of either kind.
inline const char *last_part(const char *name) {
    const char *last = name;
    for (; *name; ++name)
        if (is_separator(*name)) last = name + 1;
    return last;
}

// Opens a stream as `fopen` does; a directory can't be opened. Child processes don't inherit it.
std::FILE *open_file(const char *name, const char *mode);

// Like fseek and ftell, with 64-bit offsets.
int seek(std::FILE *stream, long long offset, int origin);
long long tell(std::FILE *stream);

// A second stream, for reading, to the plain file of `stream`; null where that is not possible.
std::FILE *open_again(std::FILE *stream);

// Flushes a stream; not while another thread uses it, since that could block forever.
void write_out(std::FILE *stream);

// Size, time and kind of the file with this name, links followed. False when there is none.
bool file_status(const char *name, FileStatus &out);

// Whether a file or directory with this name exists.
bool file_exists(const char *name);
bool is_directory(const char *name);

// Renames a file or directory; an existing file with the new name is replaced.
bool rename_file(const char *from, const char *to);

// Whether a new file may take this name without a loss: nothing has it, or a plain file that may be written,
// is no link, and has no other name.
bool replaceable(const char *name);

// Whether a plain file has this name, links followed: not a directory, device or pipe.
bool is_plain_file(const char *name);

// Creates a file for writing that is to replace another. It has the owner and the permissions of the other
// from its first byte, and is locked until it is closed. `denied`: the directory accepts no new file, or the
// owner could not be set.
enum class Creation { made, taken, denied, failed };
std::FILE *create_for(const char *other, const char *name, Creation &outcome);

// A file without a name, for writing and reading, which is deleted when it is closed.
std::FILE *nameless_file();

// For an open stream: writes all data to the disk; truncates a plain file at the current offset.
bool write_to_disk(std::FILE *f);
bool cut_off(std::FILE *f);

// Whether a process with this number exists; removes a plain file that no process has locked.
bool process_exists(unsigned id);
bool remove_unlocked(const char *name);

// Removes a file, not a directory.
bool remove_file(const char *name);

// Copies a file's contents; an existing target is overwritten and keeps its permissions, a new one has those
// of the source. When source and target are the same file, by whatever names, nothing is written. An
// incomplete copy is removed.
enum class Copied { all, no_source, no_target, not_all };
Copied copy_file(const char *from, const char *to);

// Creates one directory; removes an empty one.
bool make_directory(const char *name);
bool remove_directory(const char *name);

bool current_directory(char *out, std::size_t size);
bool change_directory(const char *name);

// The absolute name, without ".", ".." and doubled separators. Uses the text alone: nothing need exist there
// and links are not followed. False when the result doesn't fit.
bool absolute_path(const char *name, char *out, std::size_t size);

// The entries of a directory in the system's order, with "." and "..".
class Directory {
  public:
    explicit Directory(const char *name);
    ~Directory();
    Directory(const Directory &) = delete;
    Directory &operator=(const Directory &) = delete;

    // Whether the directory could be opened.
    explicit operator bool() const { return state_ != nullptr; }

    // Moves to the next entry; false when there is none. The name is valid until the next call.
    bool next();
    const char *name() const { return name_; }
    const FileStatus &status() const { return status_; }

  private:
    struct State;
    State *state_ = nullptr;
    const char *name_ = "";
    FileStatus status_ = {};
};

} // namespace kn::os
