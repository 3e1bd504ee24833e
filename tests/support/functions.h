// Every form of every function of the language, and every other count of inputs from 0 to 6, from the table
// of functions: for tests that call them all.
#ifndef QUORVEX_TESTS_FUNCTIONS_H
#define QUORVEX_TESTS_FUNCTIONS_H

#include <string>
#include <vector>

#include "host/function_table.h"
#include "quorvex.h"

namespace test {

struct Function {
    kn_function about;
    int count, outputs;
    kn::Call form; // null where the function does not take so many inputs

    // The value, or the first output.
    Mm call(const Mm *inputs) const {
        Mm y[kn::max_outputs];
        const Mm value = form(inputs, y);
        return outputs > 1 ? y[0] : value;
    }
    std::string title() const {
        return about.name + (" with " + std::to_string(count)) + " to " + std::to_string(outputs);
    }
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
