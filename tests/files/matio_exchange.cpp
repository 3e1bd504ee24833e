// matio_exchange: files that libmatio writes are loaded by the library, and files that the
// library saves are read by libmatio; each value is that of one table. Prints what differs; status 1 if
// anything does.
#include <matio.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <deque>
#include <filesystem>
#include <string>
#include <vector>

#include "quorvex.h"

namespace {

using std::string;
using std::vector;

// A value as both sides can tell it: class, extents, and elements. Of a sparse one the elements are all of
// them; of a cell or structure they are values, those of a structure field after field in each element.
struct Value {
    matio_classes type;
    vector<size_t> dims;
    vector<double> re, im;
    bool logical = false;
    vector<string> fields;
    vector<Value> parts;
};

size_t count(const Value &v) {
    size_t n = 1;
    for (size_t d : v.dims) n *= d;
    return n;
}

Value numbers(matio_classes type, vector<size_t> dims, vector<double> re, vector<double> im = {}) {
    return {type, std::move(dims), std::move(re), std::move(im), false, {}, {}};
}
Value text(vector<size_t> dims, const char *s) {
    return numbers(MAT_C_CHAR, std::move(dims), vector<double>(s, s + std::strlen(s)));
}
Value logical(Value v) {
    v.logical = true;
    return v;
}
Value cell(vector<size_t> dims, vector<Value> parts) {
    return {MAT_C_CELL, std::move(dims), {}, {}, false, {}, std::move(parts)};
}
Value structure(vector<size_t> dims, vector<string> fields, vector<Value> parts) {
    return {MAT_C_STRUCT, std::move(dims), {}, {}, false, std::move(fields), std::move(parts)};
}

struct Named {
    const char *name;
    Value value;
    bool level4; // can be held by level 4
};

const vector<Named> &table() {
    const Value pi_ = numbers(MAT_C_DOUBLE, {1, 1}, {3.14159}), none = numbers(MAT_C_DOUBLE, {0, 0}, {}),
                word = text({1, 4}, "word"), nested = cell({1, 3}, {word, none, cell({1, 1}, {pi_})});
    static const vector<Named> values = [&] {
        vector<Named> all{
            {"one", pi_, true},
            {"real", numbers(MAT_C_DOUBLE, {2, 3}, {1, -2.5, INFINITY, NAN, 1e300, -0.0}), true},
            {"cplx", numbers(MAT_C_DOUBLE, {2, 2}, {1, 2, 3, 4}, {-1, 0, 0.5, 1e-300}), true},
            {"word", word, true},
            {"page", text({2, 3}, "adbecf"), true},
            {"none", none, false}, // matio takes one of level 4 for the end of the file
            {"flags", logical(numbers(MAT_C_UINT8, {1, 3}, {1, 0, 1})), false},
            {"single_complex", numbers(MAT_C_SINGLE, {1, 2}, {0.5, -3}, {2, 4}), true},
            {"sparse", numbers(MAT_C_SPARSE, {3, 4}, {0, 2, 0, 0, 0, 0, -1, 0, 3.5, 0, 0, 0}), true},
            {"sparse_complex", numbers(MAT_C_SPARSE, {2, 2}, {1, 0, 0, 2}, {0, 0, 0, -3}), true},
            {"three", numbers(MAT_C_DOUBLE, {2, 2, 3}, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}), false},
            {"cells", cell({2, 2}, {pi_, word, nested, none}), false},
            {"record", structure({1, 1}, {"a", "b", "c"}, {pi_, nested, structure({1, 1}, {"in"}, {word})}),
             false},
            {"records", structure({1, 2}, {"n", "s"}, {pi_, word, none, nested}), false}};
        for (int type = MAT_C_SINGLE; type <= MAT_C_UINT64; ++type) {
            static const char *const names[] = {"single", "int8",   "uint8", "int16", "uint16",
                                                "int32",  "uint32", "int64", "uint64"};
            const bool is_signed = type % 2 == 0 || type == MAT_C_SINGLE;
            all.push_back(
                {names[type - MAT_C_SINGLE],
                 numbers(static_cast<matio_classes>(type), {1, 3}, {is_signed ? -128.0 : 255, 0, 100}),
                 type != MAT_C_INT8 && type <= MAT_C_INT32});
        }
        return all;
    }();
    return values;
}

int differences = 0;

bool differs(const string &where) {
    std::printf("%s\n", where.c_str());
    ++differences;
    return false;
}

bool same(double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); }

// ---- libmatio's side ----

template <class T> matvar_t *created(const char *name, const Value &v, matio_types type) {
    vector<T> re(v.re.begin(), v.re.end()), im(v.im.begin(), v.im.end());
    mat_complex_split_t both{re.data(), im.data()};
    void *data = im.empty() ? static_cast<void *>(re.data()) : &both;
    return Mat_VarCreate(name, v.type, type, static_cast<int>(v.dims.size()),
                         const_cast<size_t *>(v.dims.data()), data,
                         (im.empty() ? 0 : MAT_F_COMPLEX) | (v.logical ? MAT_F_LOGICAL : 0));
}

matvar_t *created_sparse(const char *name, const Value &v) {
    vector<double> re, im;
    vector<mat_uint32_t> ir, jc{0};
    for (size_t k = 0; k < v.re.size(); ++k) {
        if (v.re[k] != 0 || (!v.im.empty() && v.im[k] != 0)) {
            ir.push_back(static_cast<mat_uint32_t>(k % v.dims[0]));
            re.push_back(v.re[k]);
            if (!v.im.empty()) im.push_back(v.im[k]);
        }
        if (k % v.dims[0] == v.dims[0] - 1) jc.push_back(static_cast<mat_uint32_t>(ir.size()));
    }
    const auto n = static_cast<mat_uint32_t>(ir.size());
    mat_complex_split_t both{re.data(), im.data()};
    mat_sparse_t sparse{n,
                        ir.data(),
                        n,
                        jc.data(),
                        static_cast<mat_uint32_t>(jc.size()),
                        n,
                        im.empty() ? static_cast<void *>(re.data()) : &both};
    return Mat_VarCreate(name, MAT_C_SPARSE, MAT_T_DOUBLE, 2, const_cast<size_t *>(v.dims.data()), &sparse,
                         im.empty() ? 0 : MAT_F_COMPLEX);
}

matvar_t *created(const char *name, const Value &v) {
    const int rank = static_cast<int>(v.dims.size());
    auto *dims = const_cast<size_t *>(v.dims.data());
    switch (v.type) {
    case MAT_C_CELL: {
        vector<matvar_t *> parts;
        for (const Value &part : v.parts) parts.push_back(created(nullptr, part));
        return Mat_VarCreate(name, MAT_C_CELL, MAT_T_CELL, rank, dims, parts.data(), 0);
    }
    case MAT_C_STRUCT: {
        vector<const char *> fields;
        for (const string &field : v.fields) fields.push_back(field.c_str());
        fields.push_back(nullptr);
        matvar_t *out = Mat_VarCreateStruct2(name, rank, dims, fields.data());
        for (size_t k = 0, n = v.fields.size(); k < v.parts.size(); ++k)
            Mat_VarSetStructFieldByIndex(out, k % n, k / n, created(nullptr, v.parts[k]));
        return out;
    }
    case MAT_C_SPARSE: return created_sparse(name, v);
    case MAT_C_CHAR: return created<unsigned char>(name, v, MAT_T_UINT8);
    case MAT_C_SINGLE: return created<float>(name, v, MAT_T_SINGLE);
    case MAT_C_INT8: return created<mat_int8_t>(name, v, MAT_T_INT8);
    case MAT_C_UINT8: return created<mat_uint8_t>(name, v, MAT_T_UINT8);
    case MAT_C_INT16: return created<mat_int16_t>(name, v, MAT_T_INT16);
    case MAT_C_UINT16: return created<mat_uint16_t>(name, v, MAT_T_UINT16);
    case MAT_C_INT32: return created<mat_int32_t>(name, v, MAT_T_INT32);
    case MAT_C_UINT32: return created<mat_uint32_t>(name, v, MAT_T_UINT32);
    case MAT_C_INT64: return created<mat_int64_t>(name, v, MAT_T_INT64);
    case MAT_C_UINT64: return created<mat_uint64_t>(name, v, MAT_T_UINT64);
    default: return created<double>(name, v, MAT_T_DOUBLE);
    }
}

// Element k of the numbers that libmatio read: those the library writes are of these types.
double number(const void *data, matio_types type, size_t k) {
    switch (type) {
    case MAT_T_DOUBLE: return static_cast<const double *>(data)[k];
    case MAT_T_UINT16:
    case MAT_T_UTF16: return static_cast<const mat_uint16_t *>(data)[k];
    case MAT_T_UINT8:
    case MAT_T_UTF8: return static_cast<const mat_uint8_t *>(data)[k];
    default: return NAN;
    }
}

// All elements, of a sparse matrix too.
vector<double> elements(const matvar_t *m, bool imaginary, size_t n) {
    const mat_sparse_t *sparse =
        m->class_type == MAT_C_SPARSE ? static_cast<mat_sparse_t *>(m->data) : nullptr;
    const void *data = sparse ? sparse->data : m->data;
    if (m->isComplex) {
        const auto *both = static_cast<const mat_complex_split_t *>(data);
        data = imaginary ? both->Im : both->Re;
    }
    vector<double> out(n);
    if (n == 0) return out;
    if (!sparse)
        for (size_t k = 0; k < n; ++k) out[k] = number(data, m->data_type, k);
    else
        for (size_t c = 0; c < m->dims[1]; ++c)
            for (size_t k = sparse->jc[c]; k < sparse->jc[c + 1]; ++k)
                out[c * m->dims[0] + sparse->ir[k]] = number(data, m->data_type, k);
    return out;
}

bool compare(const string &where, matvar_t *m, const Value &v, bool level4) {
    if (!m) return differs(where + " is missing");
    if (vector<size_t>(m->dims, m->dims + m->rank) != v.dims) return differs(where + " has other extents");
    const bool number = v.type >= MAT_C_SINGLE && (level4 || v.type != MAT_C_UINT8); // comes back as double
    if (m->class_type != (number ? MAT_C_DOUBLE : v.type) || (m->isLogical != 0) != v.logical)
        return differs(where + " is of another class");
    bool good = true;
    if (v.type == MAT_C_CELL) {
        for (size_t k = 0; k < v.parts.size(); ++k)
            good &= compare(where + "{}", Mat_VarGetCell(m, static_cast<int>(k)), v.parts[k], level4);
    } else if (v.type == MAT_C_STRUCT) {
        const size_t n = v.fields.size();
        if (Mat_VarGetNumberOfFields(m) != n) return differs(where + " has other fields");
        for (size_t k = 0; k < v.parts.size(); ++k)
            good &=
                compare(where + "." + v.fields[k % n],
                        Mat_VarGetStructFieldByName(m, v.fields[k % n].c_str(), k / n), v.parts[k], level4);
    } else {
        if ((m->isComplex != 0) == v.im.empty()) return differs(where + " is complex or isn't");
        const vector<double> re = elements(m, false, count(v)), im = elements(m, true, v.im.size());
        for (size_t k = 0; k < re.size(); ++k) good = good && same(re[k], v.re[k]);
        for (size_t k = 0; k < im.size(); ++k) good = good && same(im[k], v.im[k]);
        if (!good) return differs(where + " has other elements");
    }
    return good;
}

// ---- The library's side ----

bool compare(const string &where, const Mm &m, const Value &v, bool level4) {
    if (!std::equal(v.dims.begin(), v.dims.end(), m.getdims(), m.getdims() + m.getndims()))
        return differs(where + " has other extents");
    const kn_matrix_types type = v.type == MAT_C_CELL || v.type == MAT_C_STRUCT ? kn_Mm
                                 : v.type == MAT_C_UINT8 && !level4             ? kn_uint8
                                                                                : kn_double;
    if (m.gettype() != type || (m.isstruct() != 0) != (v.type == MAT_C_STRUCT) ||
        (m.isstr() != 0) != (v.type == MAT_C_CHAR) || (m.issparse() != 0) != (v.type == MAT_C_SPARSE) ||
        (m.islogical() != 0) != v.logical)
        return differs(where + " is of another class");
    bool good = true;
    if (type == kn_Mm) {
        const Mm *parts = m.getpr(static_cast<Mm *>(nullptr));
        const size_t n = v.fields.size();
        if (static_cast<size_t>(m.getnfields()) != n) return differs(where + " has other fields");
        for (size_t k = 0; k < v.parts.size(); ++k) {
            if (n > 0 && v.fields[k % n] != m.getfields()[k % n]) return differs(where + " has other fields");
            const Mm &part = n > 0 ? parts[k / n].getpr(static_cast<Mm *>(nullptr))[k % n] : parts[k];
            good &= compare(where + "{}", part, v.parts[k], level4);
        }
        return good;
    }
    const Mm x = mdouble(full(m));
    if ((x.isc() != 0) == v.im.empty()) return differs(where + " is complex or isn't");
    for (size_t k = 0; k < v.re.size(); ++k)
        good = good && same(x.addr()[k], v.re[k]) && (!x.isc() || same(x.addi()[k], v.im[k]));
    return good || differs(where + " has other elements");
}

// What libmatio wrote is loaded and saved, and read by libmatio again.
void exchange(const string &directory, const char *kind, mat_ft version, matio_compression compression) {
    const bool level4 = version == MAT_FT_MAT4;
    const string first = directory + "/matio" + kind + ".mat",
                 second = directory + "/matio" + kind + ".again.mat";
    std::deque<Mm> values;
    vector<Named> held;
    Mc list;
    mat_t *file = Mat_CreateVer(first.c_str(), nullptr, version);
    if (!file) return void(differs(first + " could not be created"));
    for (const Named &x : table()) {
        if (level4 && !x.level4) continue;
        matvar_t *m = created(x.name, x.value);
        if (!m || Mat_VarWrite(file, m, compression) != 0) differs(string(x.name) + " could not be written");
        Mat_VarFree(m);
        list, values.emplace_back(i_o, x.name, 0);
        held.push_back(x);
    }
    Mat_Close(file);

    load(TM(first.c_str()), list);
    for (size_t k = 0; k < held.size(); ++k)
        compare(string("loaded") + kind + ": " + held[k].name, values[k], held[k].value, level4);
    level4 ? saveV4(TM(second.c_str()), list) : save(TM(second.c_str()), list);

    file = Mat_Open(second.c_str(), MAT_ACC_RDONLY);
    if (!file) return void(differs(second + " could not be opened"));
    for (const Named &x : held) {
        matvar_t *m = Mat_VarRead(file, x.name);
        compare(string("saved") + kind + ": " + x.name, m, x.value, level4);
        Mat_VarFree(m);
    }
    Mat_Close(file);
}

} // namespace

int main() {
    char directory[] = "/tmp/kn_matio_XXXXXX";
    if (!mkdtemp(directory)) return 2;
    kn_set_error_handler([](const char *text) { differs(text); });
    kn_set_warning_handler([](const char *text) { differs(text); });
    exchange(directory, "4", MAT_FT_MAT4, MAT_COMPRESSION_NONE);
    exchange(directory, "5", MAT_FT_MAT5, MAT_COMPRESSION_NONE);
    exchange(directory, "5_packed", MAT_FT_MAT5, MAT_COMPRESSION_ZLIB);
    std::filesystem::remove_all(directory);
    std::printf("%d differences\n", differences);
    return differences ? 1 : 0;
}
