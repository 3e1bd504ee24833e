// host: an interactive host of the library, as an example for authors of hosts.
//
// It reads statements from standard input, carries them out, and survives their errors. The files: reader
// (text into a tree), evaluator (values and variables), session (lines, errors, commands, hooks), console
// (standard input and Ctrl-C). All it takes of the library is in <quorvex.h>: ive_do, handlers and hooks,
// values and their subscripts, and calls by name.
#include <cstdio>
#include <cstring>
#include <string>

#include "host/session.h"

int main(int argc, char **argv) {
    const bool help_wanted = argc == 2 && std::strcmp(argv[1], "--help") == 0;
    if (argc > 1) {
        std::fprintf(help_wanted ? stdout : stderr,
                     "usage: %s [--help]\n"
                     "Carries out the statements on standard input: expressions, assignments, and\n"
                     "commands such as\n"
                     "  save work x y   load work   clear x   cd ..   format long   help sin   whos\n"
                     "  run file        exit\n"
                     "where run is for a file of statements. There are no control statements.\n",
                     argv[0]);
        return help_wanted ? 0 : 2;
    }
    const std::string program = argc > 0 ? argv[0] : "";
    const size_t directory = program.find_last_of("/\\") + 1;

    initM2(QUORVEX_VERSION, sizeof(Mm));
    kn_set_default_error_flags(16, 1); // error() throws a const char *
    kn_set_default_error_flags(2, 0);  // no dialogs
    kn_set_default_warning_flags(2, 0);
    console::open();
    Session(program.substr(0, directory)).run_console();
    exitM();
}
