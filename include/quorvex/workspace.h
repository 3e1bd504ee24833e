// The workspace: a stack of tables of named values, through which a host finds the variables of a program.
//
// Level 0 holds the global variables, level 1 those of the base workspace, and each function that is running
// has a level of its own. While kn_interactive_flag is set every named value registers here by itself, global
// ones on level 0 and all others on the level of the moment, and goes from here when it ends.
//
// A name stands once on a level. A value that is registered under a name already there takes the content of
// the one before it and covers it; when it ends, it hands its content back. A value of level 0 or 1 that ends
// uncovered leaves a copy of itself behind, so that its variable outlives the function that declared it.
#ifndef QUORVEX_WORKSPACE_H
#define QUORVEX_WORKSPACE_H

#include "quorvex/counts.h"
#include "quorvex/indexing.h"

namespace kn {
struct Scopes; // the library's own access (host/workspace.h)
}

class QUORVEX_API variables_scope_t {
  public:
    variables_scope_t(); // at level 1
    ~variables_scope_t();
    variables_scope_t(const variables_scope_t &) = delete;
    variables_scope_t &operator=(const variables_scope_t &) = delete;

    void begin(); // enters a function; "Call stack too deep" beyond level 512
    void end();   // leaves it: forgets the variables of its level
    void reset(); // back to level 1, after an error has left functions without `end`

  private:
    friend struct kn::Scopes;
    static constexpr int levels = 513;

    // The variables of one level, in the order of their registration.
    struct Table {
        Mm **values = nullptr;
        unsigned *keys = nullptr;       // of the names
        unsigned char *owned = nullptr; // whether the workspace made the value, and ends it
        int count = 0, capacity = 0;
    };

    int level = 0;
    int beyond = 0; // calls of `begin` that found no level, and whose error returned
    Table tables[levels];
};
extern QUORVEX_API variables_scope_t variables_scope;

// Variables of the workspace by their names, a cell of texts: what a call by name makes of `save f x y`.
struct kn_names {
    Mm texts;
};

// Forgets the variables of the current level, whose values stay; or those of a list (CL(x), y, ...), or of
// names, which become empty. No names, and "variables": all of the level; "global": the global ones; "all":
// both. A name may hold "*", for any characters. An unknown name is passed over; "clear: %s is no name of a
// variable".
QUORVEX_API Mm clear();
QUORVEX_API Mm clear(const Mc &list);
QUORVEX_API Mm clear(const kn_names &names);

// What a name stands for: 1 a variable with a value (the name itself, or with "_" behind it), 2 a file, on
// the M path or as given, with or without ".m", 7 a directory, else 0. With a kind ("var", "file", "dir",
// "builtin") only that one counts. "exist: argument is not string".
QUORVEX_API int exist(const Mm &name);
QUORVEX_API int exist(const Mm &name, const Mm &kind);

QUORVEX_API Mm which(const Mm &name); // "a variable", the file that exist finds, or "unknown"

// The variables of the current level: a cell of their names; structures with name, size, bytes (8 for each
// element, whatever its type) and class, or an empty cell. With a keyword, which is not looked at, and the
// name of a MAT-file: the variables there; "load: %s not found".
QUORVEX_API Mm who();
QUORVEX_API Mm who(const Mm &keyword, const Mm &file);
QUORVEX_API Mm whos();
QUORVEX_API Mm whos(const Mm &keyword, const Mm &file);

// Shows a variable of the current level, or a global one, in the viewer beside the host's program; where
// there is none, on the console. Prints "Variable '%s' not found." for an unknown name.
QUORVEX_API Mm openvar(const Mm &name);

#define QUORVEX_WORKSPACE_COUNTS(ROW)                                    \
    ROW(clear, "forgets the variables of the function", 0_to_0, 0_names) \
    ROW(exist, "what a name stands for", 1, 2)                           \
    ROW(which, "where a name is found", 1)                               \
    ROW(who, "names of the variables", 0, 2)                             \
    ROW(whos, "names, sizes and classes of the variables", 0, 2)         \
    ROW(openvar, "shows a variable in the viewer", 1_to_0)
QUORVEX_WORKSPACE_COUNTS(QUORVEX_REPORT_OTHER_COUNTS)

#endif
