// SuperLU under the library's rules: it uses the library's memory, and it never ends the process.
//
// SuperLU allocates memory by superlu_malloc, frees it by superlu_free and, when something is wrong, calls
// superlu_abort_and_exit. The library has functions of these names, which the dynamic linker prefers. While a
// SuperluCall runs on a thread, memory comes from the library's heap, and when it is exhausted, or SuperLU
// aborts, the call is left at once; the memory it still holds is freed with the SuperluCall. Outside of such
// a call, for a program that uses SuperLU itself, they behave as SuperLU's own functions.
#ifndef QUORVEX_LINEAR_SUPERLU_MEMORY_H
#define QUORVEX_LINEAR_SUPERLU_MEMORY_H

#include <csetjmp>
#include <cstddef>

namespace kn {

class SuperluCall {
  public:
    SuperluCall() = default;
    ~SuperluCall();
    SuperluCall(const SuperluCall &) = delete;
    SuperluCall &operator=(const SuperluCall &) = delete;

    // Runs work(context), a sequence of calls of SuperLU. They are left by a jump, so it must contain no
    // object with a destructor. False after a report: "Out of memory!" or SuperLU's message.
    bool run(void (*work)(void *), void *context);

    // For SuperLU, while a call runs.
    static SuperluCall *current();
    void *allocate(size_t bytes);
    void release(void *p);
    [[noreturn]] void leave(const char *reason); // null: memory is exhausted

  private:
    struct Block {
        Block *previous, *next;
    };
    bool attempt(void (*work)(void *), void *context);
    Block held_ = {&held_, &held_}; // a ring of all blocks not yet freed
    std::jmp_buf back_;
    bool exhausted_ = false;
    char reason_[200] = "";
};

} // namespace kn

#endif
