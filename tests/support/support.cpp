#include "support/support.h"

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <limits>
#include <ostream>
#include <stdexcept>

#include "value/header.h"

namespace test {

std::string new_directory() {
    std::string name = (std::filesystem::temp_directory_path() / "kn_test_XXXXXX").string();
    return mkdtemp(name.data()) ? name : throw std::runtime_error("no directory for a test");
}
namespace {

void throw_raised(const char *text) { throw Raised{text}; }

class Handlers : public testing::Environment {
    void SetUp() override { kn_set_error_handler(throw_raised); }
};
[[maybe_unused]] testing::Environment *const handlers = testing::AddGlobalTestEnvironment(new Handlers);

// Distance in units in the last place of `wanted`; 0 for two NaN or equal numbers.
double distance(double got, double wanted) {
    if (got == wanted || (std::isnan(got) && std::isnan(wanted))) return 0;
    if (!std::isfinite(got) || !std::isfinite(wanted)) return std::numeric_limits<double>::infinity();
    double unit =
        std::nextafter(std::fabs(wanted), std::numeric_limits<double>::infinity()) - std::fabs(wanted);
    return std::fabs(got - wanted) / unit;
}

bool alike(const Mm &a, const Mm &b, double ulps) {
    if (a.gettype() != b.gettype() || !a.isstr() != !b.isstr() || !a.islogical() != !b.islogical() ||
        !a.issparse() != !b.issparse() || a.isc() != b.isc() || a.getndims() != b.getndims() ||
        std::memcmp(a.getdims(), b.getdims(), 4 * sizeof(int)) != 0 || a.getnnz() != b.getnnz() ||
        a.getnfields() != b.getnfields())
        return false;
    for (int k = 0; k < a.getnfields(); ++k)
        if (std::strcmp(a.getfields()[k], b.getfields()[k]) != 0) return false;
    for (int k = 0; k < a.getnnz(); ++k) {
        if (a.issparse() && a.getindex()[k] != b.getindex()[k]) return false;
        if (a.gettype() == kn_Mm      ? !alike(a.mr(k + 1), b.mr(k + 1), ulps)
            : a.gettype() == kn_uint8 ? a.ur(k + 1) != b.ur(k + 1)
                                      : distance(a.addr()[k], b.addr()[k]) > ulps ||
                                            (a.isc() && distance(a.addi()[k], b.addi()[k]) > ulps))
            return false;
    }
    return true;
}

} // namespace

Mm M(std::initializer_list<Row> rows) {
    const int m = static_cast<int>(rows.size()), n = m ? static_cast<int>(rows.begin()->size()) : 0;
    Mm x(0, 0, 0, m, n, kn_double);
    int k = 0;
    for (const Row &row : rows)
        for (double v : row) x.addr()[k / n + m * (k % n)] = v, ++k;
    return x;
}
Mm U8(std::initializer_list<Row> rows) { return muint8(M(rows)); }

Mm nd(const std::vector<kn_size> &dims, const std::vector<double> &x) {
    Mm m(0, 0, 0, std::ssize(dims), dims.data(), kn_double);
    EXPECT_EQ(m.getnnz(), std::ssize(x));
    std::copy(x.begin(), x.end(), m.addr());
    return m;
}
Mm row(const std::vector<double> &x) { return nd({1, std::ssize(x)}, x); }
Mm col(const std::vector<double> &x) { return nd({std::ssize(x), 1}, x); }

Mm complex_of(const Mm &re, const Mm &im) {
    Mm z;
    z.deepcopy(1, re, kn_double);
    std::copy(im.addr(), im.addr() + im.getnnz(), z.addi());
    return z;
}
Mm C(double re, double im) { return complex_of(re, im); }

Mm logical_of(const Mm &m) {
    Mm x = m;
    x.setlogical(1);
    return x;
}

Mm named(const char *name, const Mm &m) { return Mm(m, name); }

Mm sparse_of(int rows, int cols, const std::vector<std::pair<int, double>> &entries) {
    Mm s(0, 1, static_cast<int>(entries.size()), rows, cols, kn_double);
    for (size_t k = 0; k < entries.size(); ++k) {
        s.getindex()[k] = entries[k].first;
        s.addr()[k] = entries[k].second;
    }
    return s;
}

Mm cell_of(int rows, int cols, const std::vector<Mm> &elements) {
    Mm c(0, 0, 0, rows, cols, kn_Mm);
    for (size_t k = 0; k < elements.size(); ++k) c.mr(static_cast<int>(k) + 1) = elements[k];
    return c;
}

Mm struct_of(const std::vector<std::pair<const char *, Mm>> &fields) {
    Mm s(0, 0, 0, 1, 1, kn_Mm), values(0, 0, 0, 1, static_cast<int>(fields.size()), kn_Mm);
    for (const auto &[name, value] : fields) s.addfield(name, 0), values.mr(s.getnfields()) = value;
    s.mr(1) = values;
    return s;
}

double Random::number() {
    constexpr double inf = std::numeric_limits<double>::infinity();
    static const double special[] = {NAN,    inf,    -inf, 0.0,  -0.0,         1e300,
                                     -1e300, 1e-310, 0.5,  -0.5, 2147483648.0, 4294967296.0};
    switch (below(4)) {
    case 0: return below(21) - 10;
    case 1: return special[below(static_cast<int>(std::size(special)))];
    default: return std::uniform_real_distribution<double>(-4, 4)(engine_);
    }
}

Mm Random::matrix(int rows, int cols, bool complex) {
    Mm m(complex, 0, 0, rows, cols, kn_double);
    for (int k = 0; k < m.getnnz(); ++k) {
        m.addr()[k] = number();
        if (complex) m.addi()[k] = number();
    }
    return m;
}

Mm Random::any() {
    static constexpr int limits[] = {4, 4, 3, 2};
    kn_size dims[4], ndims = 2 + (below(3) == 0) + (below(6) == 0);
    for (int k = 0; k < ndims; ++k) dims[k] = below(8) == 0 ? 0 : 1 + below(limits[k]);
    if (below(4) == 0) dims[0] = dims[1] = 1;
    int kind = below(10);
    if (kind == 0) {
        Mm c(0, 0, 0, ndims, dims, kn_Mm);
        for (int k = 1; k <= c.getnnz(); ++k) c.mr(k) = below(4) ? matrix(below(3), below(3)) : any();
        return c;
    }
    if (kind == 1) return struct_of({{"a", matrix(2, 1 + below(2))}, {"b", TM("text")}});
    if (kind == 2) return below(2) ? Mm(i_o, "unset", 0) : nop_M;
    if (kind == 3) {
        Mm b(0, 0, 0, ndims, dims, kn_uint8);
        for (int k = 1; k <= b.getnnz(); ++k) b.ur(k) = static_cast<unsigned char>(engine_());
        b.setstr(below(2));
        return b;
    }
    if (kind == 4) {
        Mm f = matrix(1 + below(4), 1 + below(4), below(2));
        for (int k = 0; k < f.getnnz(); ++k)
            if (below(2)) f.addr()[k] = 0;
        return sparse(f);
    }
    Mm m(below(3) == 0, 0, 0, ndims, dims, kn_double);
    for (int k = 0; k < m.getnnz(); ++k) {
        m.addr()[k] = kind == 5 ? 32 + below(95) : kind == 6 ? below(2) : number();
        if (m.isc()) m.addi()[k] = number();
    }
    if (kind == 5) m.getreal(1), m.setstr(1);
    if (kind == 6) m.setlogical(1);
    return m;
}

Mm Random::thin(int rows, int cols, int every, bool complex) {
    std::vector<std::pair<int, double>> entries;
    for (int k = 0; k < rows * cols; ++k)
        if (below(every) == 0) entries.push_back({k, below(7) - 2.0});
    Mm s = sparse_of(rows, cols, entries);
    if (complex) s.getcomplex();
    for (int k = 0; complex && k < s.getnnz(); ++k) s.addi()[k] = below(5) - 2;
    return s;
}

bool same_bits(double x, double y) {
    return (std::isnan(x) && std::isnan(y)) || std::memcmp(&x, &y, sizeof x) == 0;
}

testing::AssertionResult near(const Mm &got, const Mm &wanted, double ulps) {
    if (alike(got, wanted, ulps)) return testing::AssertionSuccess();
    return testing::AssertionFailure()
           << "\n   got " << testing::PrintToString(got) << "\nwanted " << testing::PrintToString(wanted);
}
testing::AssertionResult same(const Mm &got, const Mm &wanted) { return near(got, wanted, 0); }

std::string printed(const std::function<void()> &work) {
    const Prints prints;
    work();
    std::string all;
    for (const std::string &text : prints.texts()) all += text;
    return all;
}

std::string raised(const std::function<void()> &work) {
    kn_text_handler old = kn_set_error_handler(throw_raised);
    std::string text = "(no error)";
    try {
        work();
    } catch (const Raised &r) {
        text = r.text;
    }
    kn_set_error_handler(old);
    return text;
}

} // namespace test

void PrintTo(const Mm &m, std::ostream *out) {
    *out << kn_class_word(m) << (m.islogical() ? " logical " : " ");
    for (int k = 0; k < m.getndims(); ++k) *out << (k ? "x" : "") << m.getdims()[k];
    *out << " [";
    out->precision(17);
    for (int k = 0; k < m.getnnz() && k < 40; ++k) {
        *out << (k ? " " : "");
        if (m.issparse()) *out << m.getindex()[k] << ":";
        if (m.gettype() == kn_Mm)
            PrintTo(m.mr(k + 1), out);
        else if (m.gettype() == kn_uint8)
            *out << int(m.ur(k + 1));
        else
            *out << m.addr()[k];
        if (m.isc() && m.gettype() != kn_uint8) *out << "+" << m.addi()[k] << "i";
    }
    *out << (m.getnnz() > 40 ? " ...]" : "]");
}
