// Functions of the language on structures.
//
// What the header of a structure says and what its elements hold must agree: each element is a cell with one
// value per field name. An element that disagrees is reported ("structure '%s' is built wrong"), never read.
#include <algorithm>
#include <cstring>

#include "quorvex/classes.h"
#include "quorvex/display.h"
#include "quorvex/indexing.h"
#include "quorvex/startup.h"
#include "quorvex/structures.h"
#include "value/header.h"

namespace {

constexpr kn_size name_length = 40;

// A field name in a value: its characters in storage order.
struct FieldName {
    char text[name_length + 1] = {};
    FieldName(const Mm &x, const char *caller) {
        if (error_numeric(x, caller)) return;
        Mm codes = mdouble(x);
        kn_size n = std::min(codes.getnnz(), name_length);
        for (kn_size k = 0; k < n; k++)
            text[k] = static_cast<char>(static_cast<unsigned char>(double_to_int(codes.addr()[k])));
    }
};

// Position of the field, as far as the length of names goes; -1 for none.
int find_name(const Mm &s, const FieldName &name) {
    for (int f = 0; f < s.getnfields(); f++)
        if (std::strncmp(s.getfields()[f], name.text, name_length) == 0) return f;
    return -1;
}

// The name to read or write a field by.
const char *member_name(const Mm &s, const FieldName &name) {
    int f = find_name(s, name);
    return f >= 0 ? s.getfields()[f] : name.text;
}

bool built_right(const Mm &s, kn_size k) {
    const Mm &element = s.mr(k);
    if (element.gettype() == kn_Mm && element.getnnz() == s.getnfields()) return true;
    if (element.size() == 0 && s.getnfields() == 0) return true;
    error("structure '%s' is built wrong", kn_display_name(s));
    return false;
}

Mm without(const Mm &element, int f) {
    kn_size n = element.getnnz();
    Mm out(0, 0, 0, 1, n - 1, kn_Mm);
    if (kn::lacks(out, n - 1)) return element;
    for (kn_size k = 1, l = 1; k <= n; k++)
        if (k != f + 1) out.mr(l++) = element.mr(k);
    return out;
}

// A structure array without names, of elements that are still empty.
bool make_structures(Mm &out, kn_size ndims, const kn_size *dims) {
    kn_size n = kn::product(ndims, dims);
    Mm s(0, 0, 0, ndims, dims, kn_Mm);
    if (n < 0 || kn::lacks(s, n) || s.gettype() != kn_Mm) return false;
    s.extend_nfields(8);
    if (!s.isstruct()) return false;
    out = s;
    return true;
}

// Gives every element its cell of field values.
bool make_elements(const Mm &s) {
    int fields = s.getnfields();
    for (kn_size k = 1; k <= s.getnnz(); k++) {
        Mm element(0, 0, 0, 1, fields, kn_Mm);
        if (kn::lacks(element, fields)) return false;
        s.mr(k) = element;
    }
    return true;
}

// The first step is taken from s itself, so that messages name it.
Mm get(const Mm &s, std::initializer_list<const Mm *> steps) {
    Mm reached;
    const Mm *from = &s;
    for (const Mm *step : steps) {
        const Mm &x = *from;
        if (step->isstr()) {
            FieldName name(*step, "getfield");
            Mm next = x.member(member_name(x, name));
            reached = next;
        } else if (kn::is_cell(*step) && step->getnnz() >= 1 && step->getnnz() <= 4) {
            Mm subscripts[4];
            const Mm *list[4];
            kn_size n = step->getnnz();
            for (kn_size k = 0; k < n; k++) {
                subscripts[k] = step->mr(k + 1);
                list[k] = &subscripts[k];
            }
            Mm next = Mr(x, kn::is_cell(x) ? Mr_brace : Mr_paren, static_cast<int>(n), list);
            reached = next;
        } else {
            error("getfield: index must be a string or cell array");
            return x_M;
        }
        from = &reached;
    }
    return reached;
}

} // namespace

// ---- Names ----

Mm fieldnames(const Mm &s) {
    if (error_struct(s, "fieldnames")) return x_M;
    int n = s.getnfields();
    Mm out(0, 0, 0, n, 1, kn_Mm);
    if (kn::lacks(out, n)) return x_M;
    for (int f = 0; f < n; f++) out.mr(f + 1) = TM(s.getfields()[f]);
    return out;
}

Mm isfield(const Mm &s, const Mm &name) {
    if (!s.isstruct()) return 0.0;
    return mlogical(find_name(s, FieldName(name, "isfield")) >= 0 ? 1.0 : 0.0);
}

Mm rmfield(const Mm &s, const Mm &names) {
    if (error_struct(s, "rmfield")) return x_M;
    Mm out;
    out.deepcopy(s, kn_none);
    if (!out.isstruct()) return x_M;
    for (kn_size e = 1; e <= s.getnnz(); e++)
        if (!built_right(s, e)) return x_M;
    kn_size n = kn::is_cell(names) ? names.getnnz() : 1;
    for (kn_size k = 1; k <= n; k++) {
        FieldName name(kn::is_cell(names) ? names.mr(k) : names, "rmfield");
        int f = find_name(out, name);
        if (f < 0) {
            error("rmfield: structure has no field named '%s'", name.text);
            continue;
        }
        for (kn_size e = 1; e <= out.getnnz(); e++) out.mr(e) = without(out.mr(e), f);
        out.rmfield(out.getfields()[f]);
    }
    kn::check(out);
    return out;
}

// ---- Fields ----

Mm setfield(const Mm &s, const Mm &name, const Mm &v) {
    FieldName field(name, "setfield");
    Mm out = s;
    out.member(member_name(out, field)) = v;
    return out;
}

Mm getfield(const Mm &s, const Mm &step) { return get(s, {&step}); }
Mm getfield(const Mm &s, const Mm &step1, const Mm &step2) { return get(s, {&step1, &step2}); }
Mm getfield(const Mm &s, const Mm &step1, const Mm &step2, const Mm &step3) {
    return get(s, {&step1, &step2, &step3});
}
Mm getfield(const Mm &s, const Mm &step1, const Mm &step2, const Mm &step3, const Mm &step4) {
    return get(s, {&step1, &step2, &step3, &step4});
}

// ---- Construction ----

Mm mstruct(const Mm &args) {
    kn_size nargs = args.getnnz();
    if (!kn::is_cell(args)) return args;
    if (nargs == 1) return args.mr(1);
    if (nargs % 2 != 0) {
        error("struct: odd numbers of inputs");
        return x_M;
    }
    auto value = [&args](kn_size pair) -> const Mm & { return args.mr(2 * pair); };
    kn_size pairs = nargs / 2, one[] = {1, 1}, ndims = 2;
    const kn_size *dims = one;
    for (kn_size p = 1; p <= pairs; p++)
        if (kn::is_cell(value(p))) {
            ndims = value(p).getndims();
            dims = value(p).getdims();
        }
    kn_size n = kn::product(ndims, dims);
    for (kn_size p = 1; p <= pairs; p++)
        if (kn::is_cell(value(p)) && value(p).getnnz() != n) {
            error("struct: all cell arrays must be of same size");
            return x_M;
        }

    Mm out;
    if (!make_structures(out, ndims, dims)) return x_M;
    for (kn_size p = 1; p <= pairs; p++)
        if (out.addfield(FieldName(args.mr(2 * p - 1), "struct").text, 0) < 0) return x_M;
    if (!make_elements(out)) return x_M;
    for (kn_size p = 1; p <= pairs; p++) {
        int f = find_name(out, FieldName(args.mr(2 * p - 1), "struct"));
        for (kn_size k = 1; k <= n; k++)
            out.mr(k).mr(f + 1) = kn::is_cell(value(p)) ? value(p).mr(k) : value(p);
    }
    kn::check(out);
    return out;
}

// ---- Structures as cells ----

Mm struct2cell(const Mm &s) {
    if (error_struct(s, "struct2cell")) return x_M;
    if (s.getndims() > 3) {
        error("struct2cell: matrix %s has %d dimensions", kn_display_name(s), s.getndims());
        return x_M;
    }
    const kn_size fields = s.getnfields(), n = s.getnnz();
    kn_size dims[4] = {fields};
    std::copy_n(s.getdims(), 3, dims + 1);
    kn_size size = kn::product(4, dims);
    Mm out(0, 0, 0, 4, dims, kn_Mm);
    if (size < 0 || kn::lacks(out, size)) return x_M;
    for (kn_size k = 1; k <= n; k++) {
        if (!built_right(s, k)) return x_M;
        for (kn_size f = 1; f <= fields; f++) out.mr((k - 1) * fields + f) = s.mr(k).mr(f);
    }
    return out;
}

Mm cell2struct(const Mm &c, const Mm &fields, const Mm &dim) {
    const char *name = "cell2struct";
    if (!kn::is_cell(c)) {
        error("%s: first argument is not a cell", name);
        return x_M;
    }
    if (!kn::is_cell(fields)) {
        error("%s: second argument is not a cell", name);
        return x_M;
    }
    const int d = double_to_int(mdouble(dim).r(1));
    const kn_size nfields = c.size(d);
    if (d < 1 || d > 4) return x_M; // reported by size
    if (fields.length() != nfields) {
        error("%s: length(fields)!=size(x,dim)", name);
        return x_M;
    }

    // What remains without the dimension; a vector of structures is a column.
    kn_size dims[4] = {1, 1, 1, 1}, ndims = 0;
    for (int k = 1; k <= c.getndims(); k++)
        if (k != d) dims[ndims++] = c.size(k);
    if (nfields == 0) dims[0] = dims[1] = 0;
    Mm out;
    if (!make_structures(out, std::max<kn_size>(ndims, 2), dims)) return x_M;
    for (kn_size f = 1; f <= nfields; f++) {
        FieldName field(fields.mr(f), name);
        if (out.findfield(field.text, 0) >= 0) {
            error("%s: duplicate field '%s'", name, field.text);
            return x_M;
        }
        if (out.addfield(field.text, 1) < 0) return x_M;
    }
    if (!make_elements(out)) return x_M;
    kn_size stride = kn::product(d - 1, c.getdims());
    for (kn_size k = 0; k < out.getnnz(); k++)
        for (kn_size f = 0; f < nfields; f++)
            out.mr(k + 1).mr(f + 1) = c.mr(k / stride * stride * nfields + f * stride + k % stride + 1);
    kn::check(out);
    return out;
}

Mm mlogical(const Mm &x) {
    x.warn_uninit();
    if (error_numeric(x, "logical")) return x_M;
    if (x.isc()) {
        error("logical: argument is complex");
        return x_M;
    }
    Mm out = x;
    out.setlogical(1);
    return out;
}
