// The methods of classes, and the conversions between element types that go by the class of a value.
//
// One fixed table: 32 classes in the order of their first registration, each with 128 slots of methods. A
// class number is the place in the table plus 1; 0 is no class. Classes stay for good, a slot without a name
// is free. A class may bear a built-in word such as "double": methods are found by the class word of a value.
// The table is not locked: registration belongs to the thread that runs generated code.

#include <cstring>
#include <string_view>
#include <variant>

#include "quorvex/classes.h"
#include "quorvex/display.h"
#include "quorvex/sparse.h"
#include "quorvex/startup.h"
#include "value/keyword.h"

namespace {

using Method1 = Mm (*)(Mm);
using Method2 = Mm (*)(Mm, Mm);
using Method3 = Mm (*)(Mm, Mm, Mm);
using Method2Out = Mm (*)(Mm, Mm, i_o_t, Mm &, Mm &);
using Method = std::variant<Method1, Method2, Method3, Method2Out>;

struct Slot {
    const char *name = nullptr;
    Method function = Method1{};
};

constexpr int max_classes = 32, max_methods = 128, name_size = 40;

struct ClassRecord {
    char name[name_size] = {};
    Slot methods[max_methods];
};

constinit ClassRecord class_table[max_classes];
constinit int class_count = 0;

bool same(const char *a, const char *b) { return std::strcmp(a, b) == 0; }

// ---- Finding and adding: places in the table, -1 for none ----

int find_class(const char *cls) {
    for (int c = 0; c < class_count; c++)
        if (same(class_table[c].name, cls)) return c;
    return -1;
}

// When the table is full the last class answers.
int add_class(const char *cls) {
    int c = find_class(cls);
    if (c >= 0) return c;
    if (class_count == max_classes) {
        error("too many classes");
        return max_classes - 1;
    }
    std::string_view(cls).copy(class_table[class_count].name, name_size - 1);
    return class_count++;
}

Slot *find_method(int c, const char *name) {
    if (c < 0 || c >= class_count) return nullptr;
    for (Slot &slot : class_table[c].methods)
        if (slot.name && same(slot.name, name)) return &slot;
    return nullptr;
}

// Null when the class has no free slot.
Slot *add_method(int c, const char *name) {
    if (Slot *slot = find_method(c, name)) return slot;
    for (Slot &slot : class_table[c].methods) {
        if (slot.name) continue;
        slot.name = name;
        return &slot;
    }
    error("too many class functions");
    return nullptr;
}

void add(const char *cls, const char *name, Method f) {
    if (Slot *slot = add_method(add_class(cls), name)) slot->function = f;
}

// ---- Calling ----

// The engine hands over two operands even for an operation of one, so a method takes as many of the n
// operands as it has inputs. One that wants more, or has outputs, can't be meant.
Mm call(const char *name, const Mm &owner, const Mm *const *x, int n) {
    const char *cls = kn_class_word(owner);
    if (const Slot *slot = find_method(find_class(cls), name)) {
        const Method &f = slot->function;
        if (auto one = std::get_if<Method1>(&f)) return (*one)(*x[0]);
        if (auto two = std::get_if<Method2>(&f); two && n >= 2) return (*two)(*x[0], *x[1]);
        if (auto three = std::get_if<Method3>(&f); three && n >= 3) return (*three)(*x[0], *x[1], *x[2]);
    }
    error("class %s has no method named %s", cls, name);
    return x_M;
}

} // namespace

const char *kn_class_name(int classid) {
    if (classid >= 1 && classid <= class_count) return class_table[classid - 1].name;
    error("[]:wrong classid");
    return "";
}

const char *kn_class_word(const Mm &m) {
    if (m.isstr()) return "char";
    if (m.issparse()) return "sparse";
    if (m.isstruct()) return m.getclassid() ? kn_class_name(m.getclassid()) : "struct";
    if (m.gettype() == kn_Mm) return "cell";
    return m.gettype() == kn_uint8 ? "uint8" : "double";
}

// ---- Registration ----

void register_class_function(const char *cls, const char *name, Method1 f) { add(cls, name, f); }
void register_class_function(const char *cls, const char *name, Method2 f) { add(cls, name, f); }
void register_class_function(const char *cls, const char *name, Method3 f) { add(cls, name, f); }
void register_class_function(const char *cls, const char *name, Method2Out f) { add(cls, name, f); }

void unregister_class_function(const char *cls, const char *name) {
    if (Slot *slot = find_method(find_class(cls), name))
        slot->name = nullptr;
    else
        error("del: no function %s in class %s", name, cls);
}

int is_class_function(const char *cls, const char *name) {
    return find_method(find_class(cls), name) != nullptr;
}

Mm call_class_function(const char *name, const Mm &a) {
    const Mm *x[] = {&a};
    return call(name, a, x, 1);
}

Mm call_class_function(const char *name, const Mm &a, const Mm &b) {
    const Mm *x[] = {&a, &b};
    return call(name, a.isstruct() ? a : b, x, 2);
}

Mm call_class_function(const char *name, const Mm &a, const Mm &b, const Mm &c) {
    const Mm *x[] = {&a, &b, &c};
    return call(name, a.isstruct() ? a : b.isstruct() ? b : c, x, 3);
}

// ---- Classes of values ----

int isa(const Mm &m, const Mm &cls) {
    return (m.issparse() && kn::is_word(cls, "double")) || kn::is_word(cls, kn_class_word(m));
}

int isobject(const Mm &m) { return m.isstruct() && m.getclassid() != 0; }

Mm mclass(const Mm &m) { return TM(kn_class_word(m)); }

Mm mclass(const Mm &m, const Mm &cls) {
    char name[name_size];
    Mstr_row(cls, name, name_size);
    Mm out = m;
    out.setclassid(add_class(name) + 1);
    return out;
}

// ---- Conversions ----

Mm mdouble(const Mm &m) {
    if (m.isstruct()) return call_class_function("double", m);
    if (m.gettype() != kn_double) {
        Mm out;
        out.deepcopy(m, kn_double);
        return out;
    }
    Mm out = full(m);
    out.setstr(0);
    return out;
}

Mm muint8(const Mm &m) {
    if (m.gettype() == kn_uint8) return m;
    Mm out;
    out.deepcopy(m.isc(), 0, m, kn_uint8); // sparse storage is for doubles
    return out;
}

Mm muint16(const Mm &) {
    error("%s is not yet implemented", "uint16");
    return x_M;
}
