// The workspace: a stack of tables of named values, through which a host finds the variables of a program.
//
// Level 0 holds the global variables, level 1 those of the base workspace, and each running function has
// its own level. While kn_interactive_flag is set, every named value is registered when it is made, a global
// one on level 0 and any other on the current level, and removed when it is destroyed.
//
// A name occurs once on a level. A value registered under an existing name receives the content of the
// previous one and covers it; when it is destroyed, it returns the content. A value of level 0 or 1 that is
// destroyed uncovered leaves a copy of itself, so that its variable outlives the function that declared it.
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
    void end();   // leaves a function, and clears the variables of its level
    void reset(); // returns to level 1, after an error has left functions without `end`

  private:
    friend struct kn::Scopes;
    static constexpr int levels = 513;

    // The variables of one level, in the order of registration.
    struct Table {
        Mm **values = nullptr;
        unsigned *keys = nullptr;       // hashes of the names
        unsigned char *owned = nullptr; // whether the workspace made the value, and destroys it
        int count = 0, capacity = 0;
    };

    int level = 0;
    int beyond = 0; // calls of `begin` beyond the last level whose error handler returned
    Table tables[levels];
};
extern QUORVEX_API variables_scope_t variables_scope;

// Variables of the workspace by name, a cell of texts: a call by name makes it from `save f x y`.
struct kn_names {
    Mm texts;
};

// Removes variables from the workspace. clear() removes all of the current level, whose values remain; with a
// list (CL(x), y, ...) or with names, the values become empty too. Names: none, or "variables", for all of
// the level, "global" for the global ones, "all" for both; "*" in a name matches any characters. Unknown
// names are ignored; "clear: %s is no name of a variable".
QUORVEX_API Mm clear();
QUORVEX_API Mm clear(const Mc &list);
QUORVEX_API Mm clear(const kn_names &names);

// The kind of thing that a name denotes: 1 a variable with a value (of this name, or with "_" appended), 2 a
// file, on the M path or as given, with or without ".m", 7 a directory, otherwise 0. With a kind ("var",
// "file", "dir", "builtin") only that one is considered. "exist: argument is not string".
QUORVEX_API int exist(const Mm &name);
QUORVEX_API int exist(const Mm &name, const Mm &kind);

// Where a name is found, as text: "a variable", the file that exist finds, or "unknown".
QUORVEX_API Mm which(const Mm &name);

// The variables of the current level: who gives a cell of their names, whos an m by 1 structure with name,
// size, bytes (8 for each element of any type) and class, or an empty cell. With a keyword, which is ignored,
// and the name of a MAT-file, the variables in the file; "load: %s not found".
QUORVEX_API Mm who();
QUORVEX_API Mm who(const Mm &keyword, const Mm &file);
QUORVEX_API Mm whos();
QUORVEX_API Mm whos(const Mm &keyword, const Mm &file);

// Shows a variable of the current level, or a global one, in the viewer in the directory of the host's
// program, otherwise on the console. Prints "Variable '%s' not found." for an unknown name.
QUORVEX_API Mm openvar(const Mm &name);

#define QUORVEX_WORKSPACE_COUNTS(ROW)                                   \
    ROW(clear, "removes variables from the workspace", 0_to_0, 0_names) \
    ROW(exist, "kind of thing that a name denotes", 1, 2)               \
    ROW(which, "where a name is found", 1)                              \
    ROW(who, "names of the variables", 0, 2)                            \
    ROW(whos, "names, sizes and classes of the variables", 0, 2)        \
    ROW(openvar, "shows a variable in the viewer", 1_to_0)
QUORVEX_WORKSPACE_COUNTS(QUORVEX_REPORT_OTHER_COUNTS)

#endif
