// mat5_exchange [-4] <from> <to>: loads all variables of a MAT-file, of level 4 or 5, and saves what could be
// loaded, as level 5 or 4. Warnings and errors are printed; status 1 after an error.
#include <cstdio>
#include <cstring>
#include <deque>
#include <string>

#include "files/mat/matfile.h"
#include "quorvex.h"

namespace {

bool failed = false;

void caught(auto work) {
    try {
        work();
    } catch (const char *text) {
        std::printf("error: %s\n", text);
        failed = true;
    }
}

} // namespace

int main(int argc, char **argv) {
    const bool level4 = argc == 4 && std::strcmp(argv[1], "-4") == 0;
    if (argc != 3 && !level4) return 2;
    const Mm from = TM(argv[argc - 2]), to = TM(argv[argc - 1]);
    kn_set_error_handler([](const char *text) { throw text; });
    kn_set_warning_handler([](const char *text) { std::printf("warning: %s\n", text); });

    Mm found;
    bool in_order = false; // level 4 is read in its order, level 5 by names
    caught([&] {
        kn::MatFile file(argv[argc - 2]);
        in_order = kn::mat_open_read(mpath_pointer, file) && file.kind == kn::MatKind::level4;
        found = kn_matfile_variables(from);
        if (found.cols() == 0) vbload(from); // which tells why
    });
    std::deque<std::string> names;
    std::deque<Mm> values;
    Mc all, loaded;
    for (int k = 1; k <= found.cols(); ++k) {
        char name[64];
        Mstr_row(Mm(found.br(1, k)), name, sizeof name);
        Mm &x = values.emplace_back(i_o, names.emplace_back(name).c_str(), 0);
        all, x;
        if (!in_order) caught([&] { load(from, (CL(x))); });
    }
    if (in_order) caught([&] { load(from, all); });
    for (const Mm &x : values)
        if (x.gettype() != kn_none) loaded, x;
    caught([&] { level4 ? saveV4(to, loaded) : save(to, loaded); });
    return failed ? 1 : 0;
}
