// The operating system behind one small interface, named by what it does. No other folder includes a header
// of the system: everything that differs between systems is declared here, implemented for Linux in
// posix_*.cpp, for Windows in win32_*.cpp, and in portable.cpp where the C++ library suffices.
//
// Names of files are plain bytes. On Linux a name with backslashes names the file of exactly that name when
// there is one, else the name with "\\" read as "/"; so programs written with either separator run unchanged.
// Unless said otherwise a function that fails returns null or false and, where it is about files, leaves the
// reason in `errno`. Texts are written within the size given and end with a null character.
#pragma once

#include <cstddef>
#include <cstdio>

namespace kn::os {

// ---- Memory ----

// Bytes in a page of memory.
std::size_t page_size();

// Reserves address space without access, at a multiple of `alignment`, a power of two; null when it can't be
// had.
void *reserve(std::size_t bytes, std::size_t alignment);

// Makes whole pages within one reservation readable and writable. They read as zeros at first.
bool commit(void *at, std::size_t bytes);

// A mapping of its own for a large block, readable and writable, which reads as zeros at first. From
// `huge_page` bytes on it starts at a multiple of that and is kept in pages of that size where the system has
// them.
constexpr std::size_t huge_page = std::size_t{1} << 21;
void *map(std::size_t bytes);

// Gives a mapping back.
void unmap(void *p, std::size_t bytes);

// Gives the end of a mapping back, `bytes` from p on; false where the system only takes whole ones.
bool unmap_end(void *p, std::size_t bytes);

// Makes a mapping longer, which may move it; the new bytes read as zeros. Null, and nothing done, where the
// system can't.
void *remap(void *p, std::size_t bytes, std::size_t longer);

// The contents of a mapping are of no use any more: the system may take its pages when it needs memory. Who
// writes has them again; until then it reads as zeros or as before.
void offer(void *p, std::size_t bytes);

// Takes the memory of whole pages away at once. They stay accessible, and read as zeros or as before.
void discard(void *p, std::size_t bytes);

// Bytes of memory in the machine, and in use by this process (0 where the system doesn't tell).
std::size_t physical_memory();
std::size_t process_memory();

// Whether the `n` bytes at `p` can be read without a fault.
// An answer for this moment only, at one system call a page.
bool readable(const void *p, std::size_t n);

// Copies a text, cut at `size`, as far as it can be read without a fault. False, and the empty text, when it
// doesn't even begin.
bool copy_readable(char *out, std::size_t size, const char *text);

// ---- Recursive locks, numbered from 0. base/lock.h names them. ----

inline constexpr int lock_count = 3;

// Creates the locks unless they exist. In the child of a fork, which has only the thread that forked, they
// are free, and what they guard is as between two holders: the fork waits for them.
void create_locks();

// Deletes the locks, which nobody may hold or await. Entering one later creates them again.
void delete_locks();

// Enters lock `n`, creating the locks first if necessary; works before any static object is built. Guards the
// thread (see guard_thread).
void enter_lock(int n);

// Leaves lock `n`; does nothing while the locks don't exist.
void leave_lock(int n);

// ---- Threads ----

using Thread = struct ThreadHandle *;

// Runs `run` in a thread of its own with the floating-point state of `reset_floating_point`; null when there
// is none to be had. No signal is delivered there, but for those of its own faults. The module that holds
// this code stays loaded on Windows from now on; elsewhere the thread must be joined before it goes.
Thread start_thread(void (*run)());

// Waits until the thread has ended and lets go of it.
void join_thread(Thread thread);

// For each fork calls `before` in front of it, then `in_parent` and `in_child`, which has one thread only.
// Each may be null. Handlers run from the last to the first before the fork, from the first to the last after
// it.
void around_fork(void (*before)(), void (*in_parent)(), void (*in_child)());

// ---- Processes ----

// Starts a program that outlives the caller, without terminal and input: its name, then the words that it is
// handed, as they are, and a null pointer. A name without a directory is looked for along the PATH. False
// when it doesn't start.
bool start_detached(const char *const *words);

// The number of this process.
unsigned process_id();

// Gives the calling thread a higher priority where that is permitted. On Linux: niceness -2 in place of the
// usual 0, which needs a privilege; a niceness somebody chose stays. Never fails.
void raise_thread_priority();

// Writes out standard output, standard error and what `write_out_files` has, and ends the process at once,
// without the exit list.
[[noreturn]] void end_process(int status);

// The first half of that.
void write_out();

// Writes out the files of the folder above that has them; null while there are none. May be called in the
// middle of anything.
extern void (*write_out_files)();

// ---- Environment ----

// Copies the value of a variable, cut at `size`. False, and the empty text, when it isn't set.
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

// While one lives, what its thread asks of the C library about numbers and characters goes as in the "C"
// locale, whatever locale the program has chosen: a point stands before the decimals.
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
    continue_search // leave the fault to whoever was there before: a debugger, a sanitizer, the system
};

// Calls `hook` with the exception code when a thread faults; on Linux SIGSEGV, SIGBUS, SIGILL and SIGFPE
// appear under such codes. A SIGFPE that a program sends is ignored. The hook runs in the faulting thread and
// must not allocate. A second call replaces the hook. The calling thread is guarded.
void install_crash_hook(CrashAction (*hook)(unsigned code));

// Puts back what was there before `install_crash_hook`.
void remove_crash_hook();

// Lets the hook learn of an overflow of the calling thread's stack: it runs on a stack of its own in that
// thread from now on. Cheap when done already.
void guard_thread();

// The name of an exception code, such as "ACCESS_VIOLATION"; "Unknown exception code" for any other number.
const char *exception_name(unsigned code);

// ---- Messages and console ----

// Whether there are windows to show a text in.
bool has_dialogs();

// Shows a text over the foreground window and waits for an answer.
// Linux: writes "title: text" to standard error.
void message_box(const char *text, const char *title, unsigned style);

// Reads a line from standard input without its newline; a line too long goes on with the next call.
// False at the end of the input.
bool read_line(char *out, std::size_t size);

// Whether standard input is a terminal.
bool has_terminal();

// Whether input waits at the terminal; false when standard input is none.
bool key_waiting();

// Clears the terminal and puts the cursor into the top left corner.
// Does nothing when standard output is no terminal.
void clear_screen();

// Puts the cursor into the top left corner, as above.
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

// Lets the calling thread rest.
void pause_milliseconds(unsigned milliseconds);

// Seconds since 1970 began, in universal time.
double wall_clock();

// Seconds since some fixed moment; never goes back.
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

// What stands between the parts of a name.
#ifdef _WIN32
inline constexpr char separator = '\\';
#else
inline constexpr char separator = '/';
#endif

inline bool is_separator(char c) { return c == '/' || c == '\\'; }

// What stands behind the last separator of a name, of either kind.
inline const char *last_part(const char *name) {
    const char *last = name;
    for (; *name; ++name)
        if (is_separator(*name)) last = name + 1;
    return last;
}

// Opens a stream as `fopen` does; a directory can't be opened. Programs that are started don't inherit it.
std::FILE *open_file(const char *name, const char *mode);

// As fseek and ftell, with positions of 64 bits.
int seek(std::FILE *stream, long long offset, int origin);
long long tell(std::FILE *stream);

// A second stream, for reading, to the plain file that `stream` leads to; null where that can't be had.
std::FILE *open_again(std::FILE *stream);

// Writes out what a stream holds back; not when another thread is at it, for which one might wait for ever.
void write_out(std::FILE *stream);

// Size, time and kind of what has this name, links followed. False when there is nothing.
bool file_status(const char *name, FileStatus &out);

// Whether anything has this name, be it a file or a directory.
bool file_exists(const char *name);
bool is_directory(const char *name);

// Renames a file or directory; a file that has the new name is replaced.
bool rename_file(const char *from, const char *to);

// Whether a new file may take this name without a loss: nothing has it, or a plain file that may be written,
// is no link, and has no other name.
bool replaceable(const char *name);

// Whether a plain file has this name, links followed: no directory, device or pipe.
bool is_plain_file(const char *name);

// Creates a file to be written, which is to take the place of another. It has the owner and the permissions
// of the other from its first byte, and is locked until it is closed. `denied`: the directory takes no new
// file, or it could not have the owner.
enum class Creation { made, taken, denied, failed };
std::FILE *create_for(const char *other, const char *name, Creation &outcome);

// A file without a name, to be written and read again, which ends when it is closed.
std::FILE *nameless_file();

// Of an open stream: writes all to the disk; cuts a plain file off here.
bool write_to_disk(std::FILE *f);
bool cut_off(std::FILE *f);

// Whether a process has this number; removes a plain file that no process has locked.
bool process_exists(unsigned id);
bool remove_unlocked(const char *name);

// Removes a file, not a directory.
bool remove_file(const char *name);

// Copies a file's contents; a target that exists is overwritten and keeps its permissions, a new one has
// those of the source. A source that is the target itself, by whatever name, isn't written. A copy that fails
// halfway is removed.
enum class Copied { all, no_source, no_target, not_all };
Copied copy_file(const char *from, const char *to);

// Makes one directory; removes an empty one.
bool make_directory(const char *name);
bool remove_directory(const char *name);

bool current_directory(char *out, std::size_t size);
bool change_directory(const char *name);

// The name from the root on, without ".", ".." and doubled separators. Goes by the text alone: nothing need
// exist there and links are not followed. False when the result doesn't fit.
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

    // Moves to the next entry; false when there is none. The name lives until the next call.
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
