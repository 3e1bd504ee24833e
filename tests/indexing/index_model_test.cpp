// Indexing against a slow and obvious model: lists of positions, elements one by one, no fast path, no block.
//
// Random reads, assignments, growths and deletions of every type of value, with every kind of subscript, for
// each instruction set, alone and with a second thread. A copy taken before a write stays untouched; after an
// error the value is whole.
#include <array>
#include <cmath>
#include <optional>
#include <set>

#include "base/parallel.h"
#include "kernels/kernel_table.h"
#include "support/support.h"
#include "value/header.h"

using namespace test;

namespace {

#if defined(__SANITIZE_ADDRESS__) || !defined(NDEBUG)
constexpr kn_size rounds = 8000;
#else
constexpr kn_size rounds = 70000;
#endif

using Extents = std::array<kn_size, 4>;
using Position = std::array<kn_size, 4>;

kn_size volume(const Extents &d) { return d[0] * d[1] * d[2] * d[3]; }
kn_size above_one(const Extents &d) {
    return static_cast<kn_size>(4 - std::count_if(d.begin(), d.end(), [](kn_size x) { return x <= 1; }));
}
bool flat(const Extents &d) { return d[2] <= 1 && d[3] <= 1; }
kn_size first_above_one(const Extents &d, kn_size none) {
    for (kn_size k = 0; k < 4; ++k)
        if (d[k] > 1) return k;
    return none;
}

struct Model {
    Mm like; // type, flags, field names
    bool complex = false;
    Extents d = {0, 0, 0, 0};
    std::vector<Mm> e = {}; // column-major: numbers, values of cells and structures

    bool values() const { return like.gettype() == kn_Mm; }
    bool general() const { return like.issparse() || like.isstruct() || !flat(d); }
    kn_size place(const Position &p, bool linear = false) const {
        return linear ? p[0] : p[0] + d[0] * (p[1] + d[1] * (p[2] + d[2] * p[3]));
    }
    Position split(kn_size k) const {
        return {k % d[0], k / d[0] % d[1], k / d[0] / d[1] % d[2], k / d[0] / d[1] / d[2]};
    }
    Mm blank() const {
        return like.isstruct() ? Mm(0, 0, 0, 1, like.getnfields(), kn_Mm) : values() ? Mm() : Mm(0.0);
    }
    // New extents; elements stay at their places, or in their order.
    void grow(const Extents &to, bool in_order) {
        Model old = *this;
        d = to;
        e.assign(static_cast<size_t>(volume(d)), blank());
        for (size_t k = 0; k < old.e.size(); ++k)
            e[in_order ? k : static_cast<size_t>(place(old.split(static_cast<kn_size>(k))))] = old.e[k];
    }
    void set_extents(const Extents &to) {
        d = to;
        if (volume(d) == 0) d = {0, 0, 0, 0};
    }
};

Mm kind_of(const Mm &m) { // type and flags, without a holder of the block
    Mm x(0, m.issparse(), 0, 0, 0, m.gettype());
    x.setstr(m.isstr());
    x.setlogical(m.islogical());
    return x;
}

Model model_of(const Mm &m) {
    Model x;
    x.like = kind_of(m);
    for (kn_size k = 0; k < m.getnfields(); ++k) x.like.addfield(m.getfields()[k], 0);
    x.complex = m.isc();
    std::copy_n(m.getdims(), 4, x.d.begin());
    const Mm all = x.values() ? m : mdouble(full(m));
    for (kn_size k = 1; k <= m.size(); ++k)
        x.e.push_back(x.values() ? m.mr(k) : x.complex ? C(all.r(k), all.i(k)) : Mm(all.r(k)));
    return x;
}

// Full: the model knows no other numbers.
Mm value_of(const Model &x) {
    Mm m(x.complex, 0, 0, 4, x.d.data(), x.values() ? kn_Mm : kn_double);
    for (kn_size k = 0; k < x.like.getnfields(); ++k) m.addfield(x.like.getfields()[k], 0);
    for (kn_size k = 1; k <= m.getnnz(); ++k) {
        const Mm &from = x.e[static_cast<size_t>(k) - 1];
        x.values() ? void(m.mr(k) = from) : void(m.r(k) = from.r());
        if (x.complex) m.i(k) = from.i();
    }
    if (x.like.gettype() == kn_uint8) m = muint8(m);
    m.setstr(x.like.isstr());
    m.setlogical(x.like.islogical());
    return m;
}

// -- What a subscript selects.

// Subscripts; that of a colon is empty, for it must come as the marker itself.
struct Call {
    std::vector<Mm> s;
    std::vector<bool> colon;

    size_t size() const { return s.size(); }
    const Mm &operator[](size_t k) const { return s[k]; }
    const Mm &arg(size_t k) const { return colon[k] ? c_p : s[k]; }
    Mr on(const Mm &x) const {
        switch (size()) {
        case 1: return x(arg(0));
        case 2: return x(arg(0), arg(1));
        case 3: return x(arg(0), arg(1), arg(2));
        default: return x(arg(0), arg(1), arg(2), arg(3));
        }
    }
};

std::vector<double> elements(const Mm &s) {
    const Mm all = mdouble(full(s));
    return {all.addr(), all.addr() + all.getnnz()};
}

std::vector<kn_size> positions(const Call &s, size_t i, kn_size extent) {
    std::vector<kn_size> p;
    const std::vector<double> v = elements(s[i]);
    const kn_size n = s.colon[i] ? extent : s[i].size();
    for (kn_size k = 0; k < n; ++k) {
        const double x = s.colon[i] ? 1 : v[static_cast<size_t>(k)];
        if (s.colon[i] || (s[i].islogical() && (x > 0 || x < 0)))
            p.push_back(k);
        else if (!s[i].islogical())
            p.push_back(static_cast<kn_size>(std::trunc(x - 1)));
    }
    return p;
}

using Lists = std::vector<std::vector<kn_size>>;

// The position in a selection that comes after k others, the first subscript fastest.
Position chosen(const Lists &lists, size_t k) {
    Position p = {0, 0, 0, 0};
    for (size_t l = 0; l < lists.size(); k /= lists[l++].size()) p[l] = lists[l][k % lists[l].size()];
    return p;
}

bool sparse_with_zeros(const Call &s) {
    return std::ranges::any_of(
        s.s, [](const Mm &i) { return i.issparse() && !i.islogical() && i.getnnz() < i.size(); });
}

bool plain(const Model &x, const Call &s) {
    return !x.general() && s.size() <= 2 &&
           std::ranges::all_of(s.s, [](const Mm &i) { return i.getndims() <= 2; });
}

bool any_sparse(const Call &s) {
    return std::ranges::any_of(s.s, [](const Mm &i) { return i.issparse(); });
}

// -- Reading: nothing for an error.

Model narrowed(Model x) {
    x.complex = x.complex && std::ranges::any_of(x.e, [](const Mm &a) { return !(a.i() == 0); });
    return x;
}

std::optional<Model> read(const Model &x, const Call &s) {
    Model out = x;
    Lists lists;
    size_t n = s.size();
    if (n == 2 && s.colon[0] && s.colon[1]) return narrowed(x);
    bool direct = plain(x, s);
    if (!direct && sparse_with_zeros(s)) return std::nullopt;
    size_t total = 1;
    for (size_t k = 0; k < n; ++k) {
        kn_size extent = n == 1 ? volume(x.d) : x.d[k];
        lists.push_back(positions(s, k, extent));
        if (direct && s[k].islogical()) std::erase_if(lists[k], [&](kn_size p) { return p >= extent; });
        total *= lists[k].size();
    }
    for (size_t k = 0; k < n; ++k)
        for (kn_size p : lists[k])
            if ((direct || total > 0) && (p < 0 || p >= (n == 1 ? volume(x.d) : x.d[k]))) return std::nullopt;

    Extents d = {1, 1, 1, 1};
    if (n > 1) {
        for (size_t k = 0; k < n; ++k) d[k] = static_cast<kn_size>(lists[k].size());
    } else {
        const Mm &i = s[0];
        Extents own = {i.size(1), i.size(2), i.size(3), i.size(4)};
        kn_size count = static_cast<kn_size>(total);
        kn_size along = -1; // dimension of a result that is a vector
        bool many = volume(x.d) > 1;
        if (s.colon[0])
            along = 0;
        else if (direct && i.islogical())
            along = x.d[0] == 1 ? 1 : x.d[1] == 1 ? 0 : i.rows() == 1 ? 1 : 0;
        else if (above_one(own) <= 1)
            along = many && above_one(x.d) == 1 ? first_above_one(x.d, 1) : first_above_one(own, 1);
        else if (i.islogical())
            along = 0;
        if (along >= 0)
            d[static_cast<size_t>(along)] = count;
        else
            d = own;
    }
    out.e.clear();
    for (size_t k = 0; k < total; ++k)
        out.e.push_back(x.e[static_cast<size_t>(x.place(chosen(lists, k), n == 1))]);
    out.set_extents(d);
    return narrowed(out);
}

// -- Deletion: true when it went through.

bool remove(Model &x, const Call &s, bool direct) {
    size_t n = s.size();
    direct = direct && plain(x, s) && !any_sparse(s);
    size_t others = static_cast<size_t>(std::count(s.colon.begin(), s.colon.end(), false));
    if (!direct && others > 1) return false;
    if (others == 0) {
        if (n == 2 && direct) return true;
        x = {kind_of(x.like)};
        return true;
    }
    if (!direct && sparse_with_zeros(s)) return false;
    for (size_t k = 0; k < n; ++k)
        if (!s.colon[k] && positions(s, k, 0).empty()) return true;
    if (!direct && volume(x.d) == 0 && n > 1) return true;
    if (direct && n == 1 && x.e.empty()) return true;
    Model old = x;
    if (n == 1) old.d = {static_cast<kn_size>(x.e.size()), 1, 1, 1};
    std::array<std::set<kn_size>, 4> gone;
    for (size_t k = 0; k < n; ++k) {
        if (s.colon[k]) continue;
        for (kn_size p : positions(s, k, 0)) {
            if (p < 0 && (n == 1 || !direct)) return false;
            if (p >= old.d[k] && !direct && n == 1 && above_one(x.d) > 1) return false;
            if (p >= 0 && p < old.d[k]) gone[k].insert(p);
        }
    }
    if (std::ranges::all_of(gone, [](const auto &g) { return g.empty(); })) return true;
    Extents left = old.d;
    for (size_t k = 0; k < 4; ++k) left[k] -= static_cast<kn_size>(gone[k].size());
    x.e.clear();
    for (size_t k = 0; k < old.e.size(); ++k) {
        const Position p = old.split(static_cast<kn_size>(k));
        bool stays = true;
        for (size_t l = 0; l < 4; ++l) stays = stays && !gone[l].count(p[l]);
        if (stays) x.e.push_back(old.e[k]);
    }
    kn_size count = static_cast<kn_size>(x.e.size());
    if (n == 1 && direct)
        left = x.d[1] == 1 ? Extents{count, 1, 1, 1} : Extents{1, count, 1, 1};
    else if (n == 1) {
        left = {1, 1, 1, 1};
        left[above_one(x.d) == 1 ? first_above_one(x.d, 1) : 1] = count;
    } else if (direct && others == 2)
        left = {1, count, 1, 1};
    x.set_extents(left);
    return true;
}

// -- Assignment of a source of the target's type: true when it went through.

double rounded(double v) { return v <= 0 ? std::ceil(v - 0.5) : std::floor(v + 0.5); }

bool write(Model &x, const Call &s, const Model &y, bool takes_block) {
    size_t n = s.size();
    kn_size size = static_cast<kn_size>(y.e.size()), old_size = static_cast<kn_size>(x.e.size());
    if (size == 0) return remove(x, s, !y.like.issparse());
    bool direct = plain(x, s) && !y.like.issparse() && flat(y.d) && !any_sparse(s);
    if (!direct && sparse_with_zeros(s)) return false;

    if (direct && n == 1 && s.colon[0]) {
        x.complex = x.complex && y.complex;
        if (old_size == 0) return true;
        if (size != 1 && size != old_size) return false;
        x.complex = y.complex;
        for (kn_size k = 0; k < old_size; ++k)
            x.e[static_cast<size_t>(k)] = y.e[static_cast<size_t>(size == 1 ? 0 : k)];
        if (size > 1 && takes_block) x.like = y.like;
        return true;
    }

    Lists lists;
    size_t total = 1;
    for (size_t k = 0; k < n; ++k) {
        kn_size extent = n == 1 ? old_size : x.d[k];
        if (n > 1 && (direct ? size != 1 || old_size == 0 : old_size == 0)) extent = y.d[k];
        lists.push_back(positions(s, k, extent));
        if (lists[k].empty() && !(direct && n == 1 && s[k].size() > 0)) return true;
        total *= lists[k].size();
    }
    bool fits = size == 1 || static_cast<size_t>(size) == total;
    if (!fits && !(direct && n == 1)) return false;

    Extents d = x.d;
    if (old_size == 0) d = {1, 1, 1, 1};
    if (old_size == 0 && direct && n == 2) d = {0, 0, 1, 1};
    for (size_t k = 0; k < n; ++k) {
        kn_size end = 0;
        for (kn_size p : lists[k]) {
            if (p < 0) return false;
            end = std::max(end, p + 1);
        }
        if (direct && !s.colon[k]) {
            if (s[k].islogical())
                end = n == 1 ? s[k].size() : end;
            else
                for (double v : elements(s[k])) {
                    if (rounded(v) < 1) return false;
                    end = std::max(end, static_cast<kn_size>(rounded(v)));
                }
        }
        if (n > 1)
            d[k] = std::max(d[k], end);
        else if (end <= old_size)
            continue;
        else if (direct)
            d = x.d[0] > 1 ? Extents{end, 1, 1, 1} : Extents{1, end, 1, 1};
        else if (above_one(x.d) > 1)
            return false;
        else
            d[static_cast<size_t>(first_above_one(x.d, 1))] = end;
    }
    if (d != x.d) x.grow(d, n == 1);
    if (!fits) return false;
    x.complex = x.complex || y.complex;
    for (size_t k = 0; k < total; ++k)
        x.e[static_cast<size_t>(x.place(chosen(lists, k), n == 1))] = y.e[size == 1 ? 0 : k];
    return true;
}

// -- Random operands.

enum Type { real, complex, text, logical, bytes, cell, structure, sparse_real, sparse_complex, types };

Mm random_value(Random &random, Type type, std::vector<kn_size> d) {
    auto number = [&] { return double(random.below(90) + 1); };
    const bool values = type == cell || type == structure,
               thin = type == sparse_real || type == sparse_complex;
    Mm m(type == complex || type == sparse_complex, 0, 0, std::ssize(d), d.data(),
         values ? kn_Mm : kn_double);
    if (type == structure) m.addfield("a", 0), m.addfield("b", 0);
    for (kn_size k = 1; k <= m.getnnz(); ++k) {
        if (values)
            m.mr(k) = type == structure ? cell_of(1, 2, {number(), number()})
                      : random.below(3) ? Mm(number())
                                        : test::row({number(), number()});
        else
            m.r(k) = thin && random.below(2) ? 0.0 : type == logical ? random.below(2) : number();
        if (m.isc()) m.i(k) = random.below(2) ? number() : 0.0;
    }
    m.setstr(type == text);
    m.setlogical(type == logical);
    return thin ? sparse(m) : type == bytes ? muint8(m) : m;
}

std::vector<kn_size> random_extents(Random &random) {
    auto n = [&](kn_size most) { return 1 + random.below(most); };
    const std::vector<kn_size> kinds[] = {
        {0, 0},       {1, 1},      {1, n(6)}, {n(6), 1}, {n(3), n(3), n(3)}, {1, 1, n(4), n(2)},
        {n(4), n(4)}, {n(4), n(4)}};
    return kinds[random.below(8)];
}

// A subscript for an extent, at times beyond it, seldom not positive.
Mm random_subscript(Random &random, kn_size extent, bool beyond) {
    auto index = [&] {
        if (random.below(60) == 0) return double(-random.below(2));
        kn_size limit = extent + (beyond && random.below(4) == 0 ? 3 : 0);
        double v = limit > 0 ? 1 + random.below(limit) : 1;
        return random.below(20) == 0 ? v + 0.25 * random.below(4) : v;
    };
    switch (random.below(10)) {
    case 0: return Mm();
    case 1:
    case 2: return index();
    case 3: { // a mask
        kn_size n = std::max<kn_size>(extent + (random.below(3) == 0 ? random.below(3) : 0), 1);
        bool column = random.below(2);
        Mm m(0, 0, 0, column ? n : 1, column ? 1 : n, kn_double);
        bool thin = n > 1 && random.below(3) == 0;
        for (kn_size k = 1; k <= n; ++k)
            m.r(k) = (k <= extent || beyond) && random.below(2) ? 1.0 : thin || random.below(9) ? 0.0 : NAN;
        m.setlogical(1);
        return thin ? sparse(m) : m;
    }
    case 4:
    case 5: { // a run
        kn_size first = static_cast<kn_size>(std::max(index(), 1.0)), n = 1 + random.below(3);
        if (first + n > extent + (beyond ? 2 : 1)) n = 1;
        return colon(double(first), double(first + n - 1));
    }
    default: {
        const kn_size kind = random.below(6), n = 1 + random.below(4);
        Mm m = kind == 0   ? zeros(n, 1)
               : kind == 1 ? zeros(2, n)
               : kind == 2 ? zeros(1, 1 + random.below(2), 1 + random.below(2))
                           : zeros(1, n);
        for (kn_size k = 1; k <= m.getnnz(); ++k) m.r(k) = index();
        return random.below(12) == 0 ? sparse(m) : m;
    }
    }
}

Call random_call(Random &random, const Mm &x, bool beyond) {
    Call c;
    size_t n = random.below(4) == 0 ? 1 + random.below(4) : 1 + random.below(2);
    if (x.getndims() > 2 && random.below(2)) n = static_cast<size_t>(x.getndims());
    for (size_t k = 0; k < n; ++k) {
        c.colon.push_back(random.below(5) == 0);
        kn_size extent = n == 1 ? x.size() : x.size(static_cast<kn_size>(k) + 1);
        c.s.push_back(c.colon[k] ? Mm() : random_subscript(random, extent, beyond));
    }
    return c;
}

testing::AssertionResult agrees(const Mm &got, const Model &wanted) {
    kn::check(got);
    if (got.issparse() != wanted.like.issparse()) return testing::AssertionFailure() << "sparse or not";
    Mm flat = full(got);
    flat.setlogical(got.islogical());
    flat.setstr(got.isstr());
    return test::same(flat, value_of(wanted));
}

// A source for x(c): one element, none, or as many as are selected, mostly. None of more than `most`.
std::optional<Mm> random_source(Random &random, Type type, const Mm &x, const Call &c, kn_size most) {
    Type source = type;
    if (type <= logical && random.below(2)) source = static_cast<Type>(random.below(4));
    if ((type == sparse_real || type == sparse_complex) && random.below(2))
        source = random.below(2) ? real : complex;
    if (type <= logical && random.below(6) == 0) source = sparse_real;
    std::vector<kn_size> d = {1, 1};
    if (kn_size kind = random.below(5); kind == 0) {
        d = {0, 0};
    } else if (kind > 2) {
        d.clear();
        kn_size count = 1;
        for (size_t l = 0; l < c.size(); ++l) {
            kn_size extent = c.size() == 1 ? x.size() : x.size(static_cast<kn_size>(l) + 1);
            d.push_back(static_cast<kn_size>(positions(c, l, extent).size()));
            count *= d.back();
        }
        if (random.below(10) == 0) d = {1, random.below(4) + 1};
        if (d.size() == 1)
            d = random.below(2) ? std::vector<kn_size>{d[0], 1} : std::vector<kn_size>{1, d[0]};
        if (count > most) return std::nullopt;
    }
    Mm y = random_value(random, source, d);
    return source == structure && y.size() == 0 ? Mm(0, 0, 0, 0, 0, kn_Mm) : y;
}

// For each instruction set that there is; counts what went through, and what did not.
class IndexModel : public testing::Test {
  protected:
    ~IndexModel() override {
        kn::use_kernels(last_);
        kn::set_thread_count(0);
    }
    template <class F> void in_all_sets(unsigned seed, F f) {
        for (auto table = kn::available_kernels(); *table && !HasFatalFailure(); ++table) {
            SCOPED_TRACE((*table)->name);
            kn::use_kernels(**table);
            random = Random(seed);
            results = errors = 0;
            f();
            EXPECT_GT(results, 400);
            EXPECT_GT(errors, 10);
        }
    }
    bool goes_through(const std::function<void()> &f) {
        const bool through = raised(f) == "(no error)";
        return (through ? results : errors)++, through;
    }

    void check_read(const Mm &x, const Call &c) {
        std::optional<Model> wanted = read(model_of(x), c);
        Mm before = x, got;
        bool through = goes_through([&] { got = c.on(x); });
        ASSERT_EQ(through, wanted.has_value());
        ASSERT_SAME(x, before);
        if (!through) return;
        ASSERT_TRUE(agrees(got, *wanted));
        ASSERT_TRUE(agrees(Mm(c.on(x), 0), *wanted)) << "a tolerant read that finds it";
    }

    void check_write(Type type, Mm &x, const Call &c, kn_size most) {
        std::optional<Mm> source = random_source(random, type, x, c, most);
        if (!source) return;
        const Mm &y = *source;
        Model target = model_of(x), old = target, from = model_of(y);
        const std::optional<Mm> held = random.below(2) ? std::optional(x) : std::nullopt;
        bool takes_block = !held && y.size() <= x.getp();
        bool wanted = write(target, c, from, takes_block);
        ASSERT_EQ(goes_through([&] { c.on(x) = y; }), wanted);
        ASSERT_TRUE(agrees(x, target));
        ASSERT_TRUE(agrees(y, from));
        ASSERT_TRUE(!held || agrees(*held, old));
    }

    Random random{0};
    kn_size results, errors;

  private:
    const kn::KernelTable &last_ = kn::kernels();
};

TEST_F(IndexModel, reads) {
    in_all_sets(41, [this] {
        for (kn_size k = 0; k < rounds && !HasFatalFailure(); ++k) {
            Mm x = random_value(random, static_cast<Type>(random.below(types)), random_extents(random));
            check_read(x, random_call(random, x, random.below(8) == 0));
        }
    });
}

TEST_F(IndexModel, lines_of_a_large_array_are_shared_among_threads) {
    const Mm x = reshape(colon(1.0, 720000.0), 600.0, 10.0, 120.0), odd = colon(1.0, 2.0, 600.0),
             back = colon(10.0, -1.0, 1.0), last = colon(120.0, -1.0, 1.0);
    kn::set_thread_count(1);
    const Mm alone = x(odd, back, last);
    kn::set_thread_count(3);
    EXPECT_SAME(x(odd, back, last), alone);
}

TEST_F(IndexModel, writes) {
    in_all_sets(43, [this] {
        for (kn_size k = 0; k < rounds && !HasFatalFailure(); ++k) {
            Type type = static_cast<Type>(random.below(types));
            Mm x = random_value(random, type, random_extents(random));
            for (kn_size step = 0; step < 3 && !HasFatalFailure(); ++step) {
                if (type == structure && !x.isstruct()) break; // x(:) = [] left a cell
                check_write(type, x, random_call(random, x, true), 500);
                if (x.size() > 2000) break;
            }
        }
    });
}

// A mask, thin, even or thick, or index values: any, ascending, with long runs, seldom one that is none.
Mm long_subscript(Random &random, kn_size extent) {
    static constexpr kn_size density[] = {2, 50, 98};
    kn_size kind = random.below(6), n = kind < 3 ? extent : 1 + random.below(extent + extent / 2);
    bool faulty = kind >= 3 && random.below(8) == 0;
    Mm s(0, 0, 0, 1, n, kn_double);
    for (kn_size k = 1; k <= n; ++k) {
        kn_size any = random.below(100);
        s.r(k) = kind < 3    ? (any < density[kind] ? 1.0
                                : any == 50         ? NAN
                                                    : 0.0)
                 : kind == 3 ? 1 + random.below(extent)
                 : kind == 4 ? 1 + (k - 1) * double(extent - 1) / n
                             : 1 + (k + (k / 700) * 13) % extent;
    }
    if (kind == 4 && random.below(2)) s = floor(s); // else fractions, which are cut
    if (faulty) s.r(1 + random.below(n)) = random.below(2) ? 0.0 : NAN;
    if (kind < 3) s.setlogical(1);
    return s;
}

// Where vectors, blocks and threads come in.
TEST_F(IndexModel, long_selections) {
    in_all_sets(47, [this] {
        const Type all[] = {real, complex, bytes, cell, logical};
        for (kn_size n : {63, 64, 65, 127, 700, 1500, 40000, 280000})
            for (kn_size k = 0; k < (n < 10000 ? 60 : n < 100000 ? 12 : 4) && !HasFatalFailure(); ++k) {
                kn::set_thread_count(1 + k % 2);
                Type type = n < 100000 ? all[random.below(5)] : all[k % 3];
                bool row = random.below(2);
                Mm x =
                    random_value(random, type, row ? std::vector<kn_size>{1, n} : std::vector<kn_size>{n, 1});
                Call c;
                c.colon = {false};
                c.s.push_back(long_subscript(random, n));
                if (n < 2000 && random.below(3) == 0) { // lines of a matrix
                    x = random_value(random, type, {n, 3});
                    c.colon.push_back(random.below(2));
                    c.s.push_back(c.colon[1] ? Mm() : test::row({3, 1}));
                }
                check_read(x, c);
                if (!HasFatalFailure()) check_write(type, x, c, 4 * n);
            }
    });
}

} // namespace
