// Every function of the language with every count of inputs from 0 to 6, made from the rows of the headers:
// for tests that call them all.
#ifndef QUORVEX_TESTS_FUNCTIONS_H
#define QUORVEX_TESTS_FUNCTIONS_H

#include <string>
#include <vector>

#include "quorvex.h"

namespace test {

struct Function {
    const char *name;
    int count;
    bool legal;                   // whether the function takes so many inputs
    Mm (*call)(const Mm *inputs); // x_M from one that answers nothing
    std::string title() const { return std::string(name) + " with " + std::to_string(count); }
};

const std::vector<Function> &functions();

// For a scope: who waits for a line or a key finds one at once, files are made in an empty directory, and in
// builds with the allocation probe no block has more than 128 KB, whatever sizes the functions make of the
// numbers they get.
class Unattended {
  public:
    Unattended();
    ~Unattended();
    void go_home() const; // back to that directory, with all files closed

  private:
    std::string before_, home_;
    kn_input_hook old_input_;
    kn_kbhit_hook old_key_;
};

} // namespace test

#endif
