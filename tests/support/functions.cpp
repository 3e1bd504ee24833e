#include "support/functions.h"

#include <cstdio>
#include <filesystem>

#include "base/scratch.h"
#include "platform/platform.h"
#include "support/support.h"

namespace test {
namespace {

constexpr int max_count = 6;

std::vector<Function> make_list() {
    std::vector<Function> list;
    for (const kn::Function &f : kn::function_table()) {
        unsigned legal = 0;
        for (size_t k = 0; k < f.forms.size(); ++k) {
            const kn::form &form = f.forms[k];
            const bool names = form.kind == kn::form::names; // which come in one cell
            list.push_back({f.about, form.inputs + names, form.outputs, (*f.calls)[k]});
            if (!names) legal |= 1u << form.inputs;
        }
        for (int n = 0; n <= max_count; ++n)
            if (!(legal >> n & 1)) list.push_back({f.about, n, 1, nullptr});
    }
    return list;
}

} // namespace

const std::vector<Function> &functions() {
    static const std::vector<Function> list = make_list();
    return list;
}

Unattended::Unattended()
    : before_(std::filesystem::current_path().string()), home_(new_directory()),
      old_input_(kn_set_input_handler(
          [](char *buf, int size) { std::snprintf(buf, static_cast<size_t>(size), "1 2 x"); })),
      old_key_(kn_set_kbhit_handler([] { return 1; })) {
    kn::alloc_probe.largest = 1 << 17;
    go_home();
}

void Unattended::go_home() const {
    fclose(TM("all"));
    std::filesystem::current_path(home_);
}

Unattended::~Unattended() {
    go_home();
    std::filesystem::current_path(before_);
    std::filesystem::remove_all(home_);
    kn::alloc_probe.largest = 0;
    kn_set_kbhit_handler(old_key_);
    kn_set_input_handler(old_input_);
}

} // namespace test
