// The tables of named values: registering, covering and removing variables.
//
// Names are found by a key of 32 bits each, stored contiguously, so that a miss among a hundred names costs a
// few vector comparisons; a value that is destroyed is searched from the end, where it usually is.

#include "host/workspace.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "base/ascii.h"
#include "base/hooks.h"
#include "base/name_hash.h"
#include "base/scratch.h"
#include "quorvex/memory.h"
#include "quorvex/messages.h"
#include "quorvex/startup.h"
#include "value/header.h"

namespace kn {
namespace {

// Never 0, which pads the last group of keys.
unsigned key_of(const char *name) { return name_hash(name) | 1; }

constexpr int group = 16; // keys compared at once

int key_bytes(int capacity) { return (capacity + group) * static_cast<int>(sizeof(unsigned)); }

void leave_chain(Mm &value) {
    Header::level(value) = -1;
    Header::shadow(value) = nullptr;
}

} // namespace

int Scopes::level_for(const Mm &value) { return value.isglobal() ? 0 : variables_scope.level; }

// ---- Slots ----

int Scopes::find(const char *name, int level) {
    if (!name || level < 0) return -1;
    const Table &t = table(level);
    if (t.count == 0) return -1;
    const unsigned key = key_of(name);
    for (int from = 0; from < t.count; from += group) {
        const unsigned *keys = t.keys + from;
        bool any = false;
        for (int k = 0; k < group; ++k) any |= keys[k] == key;
        if (!any) continue;
        const int end = std::min(from + group, t.count);
        for (int k = from; k < end; ++k)
            if (t.keys[k] == key && std::strcmp(t.values[k]->getname(), name) == 0) return k;
    }
    return -1;
}

// Index of the slot whose chain contains the value, which has a level.
int Scopes::slot_of(const Mm &value) {
    const Table &t = table(Header::level(value));
    for (int k = t.count; k-- > 0;)
        if (t.values[k] == &value) return k;
    int k = t.count - 1;
    auto covers = [&](const Mm *m) {
        while (m && m != &value) m = Header::shadow(*m);
        return m == &value;
    };
    while (!covers(t.values[k])) --k;
    return k;
}

bool Scopes::grow(Table &t) {
    const int capacity = 2 * t.capacity + 4;
    auto *values = static_cast<Mm **>(heap_alloc(sizeof(Mm *) * static_cast<size_t>(capacity)));
    auto *keys = static_cast<unsigned *>(heap_alloc(static_cast<size_t>(key_bytes(capacity))));
    auto *owned = static_cast<unsigned char *>(heap_alloc(static_cast<size_t>(capacity)));
    if (!values || !keys || !owned) {
        heap_free(values);
        heap_free(keys);
        heap_free(owned);
        out_of_memory();
        return false;
    }
    std::memset(keys, 0, static_cast<size_t>(key_bytes(capacity)));
    std::copy_n(t.values, t.count, values);
    std::copy_n(t.keys, t.count, keys);
    std::copy_n(t.owned, t.count, owned);
    heap_free(t.values);
    heap_free(t.keys);
    heap_free(t.owned);
    t.values = values;
    t.keys = keys;
    t.owned = owned;
    t.capacity = capacity;
    return true;
}

// The values of this slot are no longer variables.
void Scopes::drop_slot(Table &t, int position) {
    for (Mm *value = t.values[position]; value;) {
        Mm *next = Header::shadow(*value);
        leave_chain(*value);
        value = next;
    }
    const int behind = --t.count - position;
    std::copy_n(t.values + position + 1, behind, t.values + position);
    std::copy_n(t.keys + position + 1, behind, t.keys + position);
    std::copy_n(t.owned + position + 1, behind, t.owned + position);
}

// ---- Adding and removing values ----

void Scopes::add(Mm &value, bool owned) {
    const char *name = value.getname();
    const int level = level_for(value);
    if (!name || variables_scope.level < 0) return;
    value.getflags().persistent = level < 2;
    Table &t = table(level);
    int position = find(name, level);
    if (position >= 0) {
        Mm *before = t.values[position];
        value = *before;
        if (t.owned[position]) {
            remove_at(position, level);
            position = find(name, level); // it may have covered another
        }
    }
    if (position >= 0) {
        Header::shadow(value) = t.values[position];
    } else {
        if (t.count == t.capacity && !grow(t)) return;
        position = t.count++;
        t.keys[position] = key_of(name);
        Header::shadow(value) = nullptr;
    }
    t.values[position] = &value;
    t.owned[position] = owned;
    Header::level(value) = level;
}

// A copy on the heap under a copy of the name; null when memory is exhausted, which cannot be reported while
// a value is destroyed.
Mm *Scopes::owned_copy(const Mm &value, const char *name) {
    const size_t size = std::strlen(name) + 1;
    char *own = static_cast<char *>(kn_block_alloc(size));
    void *place = own ? kn_block_alloc(sizeof(Mm)) : nullptr;
    if (!place) {
        kn_block_free(own);
        return nullptr;
    }
    std::memcpy(own, name, size);
    return new (place) Mm(value, own);
}

void Scopes::detach(Mm &value) {
    Table &t = table(Header::level(value));
    const int position = slot_of(value);
    Mm *covered = Header::shadow(value);
    if (t.values[position] != &value) { // one that is covered itself
        Mm *above = t.values[position];
        while (Header::shadow(*above) != &value) above = Header::shadow(*above);
        Header::shadow(*above) = covered;
    } else if (covered) {
        *covered = value;
        t.values[position] = covered;
        t.owned[position] = false;
    } else if (Mm *copy = value.getflags().persistent ? owned_copy(value, value.getname()) : nullptr) {
        Header::level(*copy) = Header::level(value);
        t.values[position] = copy;
        t.owned[position] = true;
    } else {
        drop_slot(t, position);
    }
    leave_chain(value);
}

void Scopes::remove_at(int position, int level) {
    Table &t = table(level);
    if (!t.owned[position]) return drop_slot(t, position);
    t.owned[position] = false;
    Mm *value = t.values[position];
    char *name = const_cast<char *>(value->getname());
    value->getflags().persistent = 0; // no copy of the copy
    delete value;                     // its destructor clears the slot
    kn_block_free(name);
}

bool Scopes::remove(Mm &value) {
    if (!value.getname()) return true;
    const int level = Header::level(value) >= 0 ? Header::level(value) : level_for(value);
    const int position = find(value.getname(), level);
    if (position < 0) return true;
    const Table &t = table(level);
    const bool ends = t.owned[position] && t.values[position] == &value;
    remove_at(position, level);
    return !ends;
}

void Scopes::remove_all(int level) {
    for (int k = count(level); k-- > 0;)
        if (k < count(level)) remove_at(k, level);
}

void Scopes::clear(Mm &value) {
    if (remove(value)) value = nop_M;
}

void Scopes::set(const char *name, const Mm &value) {
    if (Mm *variable = lookup(name, level())) {
        *variable = value;
    } else if (Mm *copy = owned_copy(value, name)) {
        add(*copy, true);
        if (find(name, level()) >= 0) return;
        char *own = const_cast<char *>(copy->getname()); // no slot was available
        delete copy;
        kn_block_free(own);
    } else {
        out_of_memory();
    }
}

// ---- Lookup ----

bool is_variable_name(const char *name) {
    auto fits = [](char c) { return is_letter(c) || c == '_'; };
    if (!fits(*name)) return false;
    while (fits(*name) || is_digit(*name)) ++name;
    return *name == '\0';
}

Mm *Scopes::value(ptrdiff_t position, int level) {
    if (position >= 0 && position < count(level)) return table(level).values[position];
    error("variable_scope: index out of range");
    return nullptr;
}

const char *Scopes::name(int position, int level) {
    const Mm *m = value(position, level);
    return m ? m->getname() : nullptr;
}

Mm *Scopes::lookup(const char *name, int level) {
    int position = find(name, level);
    if (position < 0 && name) {
        Scratch<char> longer(static_cast<ptrdiff_t>(std::strlen(name)) + 2);
        if (!longer) return nullptr;
        std::strcat(std::strcpy(longer.get(), name), "_");
        position = find(longer.get(), level);
    }
    return position < 0 ? nullptr : table(level).values[position];
}

Mm *Scopes::lookup_visible(const char *name) {
    Mm *value = lookup(name, variables_scope.level);
    return value ? value : lookup(name, 0);
}

} // namespace kn

using namespace kn;

// ---- The stack of levels ----

variables_scope_t::variables_scope_t() {
    scope_hooks = {[](Mm &value) { Scopes::add(value, false); }, Scopes::detach};
    begin();
}

variables_scope_t::~variables_scope_t() {
    reset();
    end();
    end();
    for (Table &t : tables) {
        heap_free(t.values);
        heap_free(t.keys);
        heap_free(t.owned);
        t = Table();
    }
}

void variables_scope_t::begin() {
    if (level < levels - 1) {
        ++level;
        return;
    }
    error("Call stack too deep");
    ++beyond; // the function continues on the level of its caller
}

void variables_scope_t::end() {
    if (beyond > 0) {
        --beyond;
    } else if (level >= 0) {
        // Removes the whole level, with the values that its variables cover.
        for (int k = tables[level].count; k-- > 0;)
            while (k < tables[level].count) Scopes::remove_at(k, level);
        --level;
    }
}

void variables_scope_t::reset() {
    beyond = 0;
    while (level > 1) end();
}
