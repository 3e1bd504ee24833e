// The library's own access to the workspace.
//
// Every slot holds an existing value. A value knows its level, and each value that it covers is linked to it:
//
//     slot -> value -> value.shadow -> ... -> the first one registered under this name
//
// All values of such a chain have the level of the slot; a value outside every chain has level -1.
#ifndef QUORVEX_HOST_WORKSPACE_H
#define QUORVEX_HOST_WORKSPACE_H

#include "quorvex/workspace.h"

namespace kn {

struct Scopes {
    static int level() { return variables_scope.level; }

    // Registers a value under its name, if it has one. The workspace destroys an owned value, and frees it
    // and its name: both are from the block allocator. If memory is exhausted this is reported, and the value
    // is not registered.
    static void add(Mm &value, bool owned);
    // For the value's destructor. The value that it covers takes its content; a persistent one leaves an
    // owned copy.
    static void detach(Mm &value);

    // Removes the variable with the value's name. Returns whether the value still exists: an owned one is
    // destroyed.
    static bool remove(Mm &value);
    static void remove_at(int position, int level);
    static void remove_all(int level);

    static int count(int level) { return level < 0 ? 0 : variables_scope.tables[level].count; }
    // Null and "variable_scope: index out of range" for an index without a variable.
    static Mm *value(ptrdiff_t position, int level);
    static const char *name(int position, int level);

    // Assigns to the variable of this name on the current level. A new one is owned, under a copy of the
    // name. Exhausted memory is reported.
    static void set(const char *name, const Mm &value);
    // Removes a variable and makes its value empty.
    static void clear(Mm &value);

    // Index of a name, -1 for none and for a null name.
    static int find(const char *name, int level);
    // The variable of this name, or else of the name followed by "_", which generated code uses for names
    // that would clash. Null for none.
    static Mm *lookup(const char *name, int level);
    // The same on the current level, then among the global ones.
    static Mm *lookup_visible(const char *name);

  private:
    using Table = variables_scope_t::Table;
    static Table &table(int level) { return variables_scope.tables[level]; }
    static int level_for(const Mm &value);
    static bool grow(Table &t);
    static int slot_of(const Mm &value);
    static void drop_slot(Table &t, int position);
    static Mm *owned_copy(const Mm &value, const char *name);
};

// Whether a text is a valid variable name.
bool is_variable_name(const char *name);

constexpr int max_variable_name = 512;

} // namespace kn

#endif
