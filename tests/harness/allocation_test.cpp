// A workload over the public interface in which the n-th allocation fails, for every n, once or from there
// on, with an error handler that throws and with one that returns. Each time "Out of memory!" is reported,
// what comes back is a valid value, the inputs stay as they were, nothing leaks, and the next call works.
//
// All functions of the language take part by themselves; what is no such function has a line in `steps`.
#include <cstring>
#include <memory>
#include <new>
#include <set>

#include "base/scratch.h"
#include "support/functions.h"
#include "support/recording_engine.h"
#include "support/support.h"
#include "value/header.h"

#ifdef QUORVEX_ALLOC_PROBE

using kn::alloc_probe;
using test::M;

namespace {

struct Inputs {
    Mm x = M({{3, 1, 2}, {6, 5, 4}}), z = test::complex_of(x, M({{1, 0, 2}, {0, 0, 1}})),
       u = test::U8({{3, 1, 2}, {6, 5, 4}}), s = test::sparse_of(2, 3, {{1, 5}, {2, 6}, {5, 7}}),
       unsorted = test::sparse_of(2, 3, {{5, 1}, {0, 2}}), empty,
       c = test::cell_of(1, 2, {M({{1, 2}}), TM("text")}),
       st = test::struct_of({{"a", 1.0}, {"b", TM("text")}}), text = TM("one 2"), two = 2.0,
       long_rows = test::Random(3).matrix(2, 80, true);

    Mm all() const { return test::cell_of(1, 10, {x, z, u, s, unsorted, empty, c, st, text, two}); }
};

struct Step {
    std::string name;
    std::function<Mm(const Inputs &)> work;
};

// What the change makes of a shared copy of an input.
Step changed(const char *name, Mm Inputs::*input, void (*change)(Mm &, const Inputs &)) {
    return {name, [=](const Inputs &in) {
                Mm m = in.*input;
                change(m, in);
                return m;
            }};
}

void extend(Mm &m, const Inputs &) {
    int stored = m.getnnz();
    m.extend_nnz(stored + 20);
    m.getnnz() = stored; // the new entries have no positions yet
}

void add_and_remove_fields(Mm &m, const Inputs &) {
    for (const char *f : {"c", "d", "e", "f", "g", "h", "i", "j"}) m.addfield(f, 0);
    while (m.getnfields() > 2) m.rmfield(m.getfield(2));
}

void remove_field(Mm &m, const Inputs &) {
    m.rmfield("a");
    if (m.getnfields() == 1) m = x_M;
}

void sort_if_it_can(Mm &m, const Inputs &) {
    m.sort();
    if (m.getindex()[0] != 0) m = x_M; // without memory the positions stay as they are
}

Mm call_back(const Inputs &) {
    test::RecordingEngine engine;
    kn_set_engine(&engine);
    struct Back {
        ~Back() { kn_set_engine(nullptr); }
    } back;
    miniM text(miniM::Dims(1, 1), 1);
    if (text.count()) text.r(1) = '1';
    engine.eval(&text);
    return x_M;
}

// What functions of one to three inputs are called with.
std::vector<std::vector<Mm>> argument_lists(const Inputs &in, int count) {
    if (count == 0) return {{}};
    std::vector<std::vector<Mm>> lists;
    for (const Mm &first : {in.x, in.z, in.u, in.s, in.c, in.st, in.text, in.two}) {
        lists.push_back(std::vector<Mm>(static_cast<size_t>(count), first));
        lists.push_back(std::vector<Mm>(static_cast<size_t>(count), in.two));
        lists.back()[0] = first;
    }
    return lists;
}

std::vector<Step> steps(const Inputs &inputs) {
    using In = const Inputs &;
    std::vector<Step> list = {
        {"deep cells",
         [](In in) {
             Mm deep = in.c;
             for (int k = 0; k < 9; ++k) deep = test::cell_of(1, 1, {deep});
             celldisp(deep);
             return isequal(deep, upper(deep));
         }},
        {"on the heap", [](In in) { return *std::unique_ptr<Mm>(new Mm(in.x)); }},
        changed("bytes", &Inputs::u, [](Mm &m, In in) { m.deepcopy(1, in.u, kn_uint8); }),
        changed("numbers to a cell", &Inputs::x, [](Mm &m, In in) { m.deepcopy(in.x, kn_Mm); }),
        changed("struct", &Inputs::st, [](Mm &m, In in) { m.deepcopy(in.st, kn_none); }),
        changed("getcomplex", &Inputs::x, [](Mm &m, In) { m.getcomplex(); }),
        changed("addfield", &Inputs::st, add_and_remove_fields),
        changed("rmfield", &Inputs::st, remove_field),
        changed("extend_nfields", &Inputs::st, [](Mm &m, In) { m.extend_nfields(30); }),
        changed("sort", &Inputs::unsorted, sort_if_it_can),
        changed("resparse", &Inputs::s, [](Mm &m, In) { m.resparse(); }),
        changed("extend_nnz", &Inputs::s, extend),
        changed("write", &Inputs::x, [](Mm &m, In in) { m(in.two) = in.two; }),
        changed("growing write", &Inputs::x, [](Mm &m, In in) { m(in.two, 9.0) = in.two; }),
        changed("sparse write", &Inputs::s, [](Mm &m, In in) { m(1.0, 1.0) = in.two; }),
        changed("complex write", &Inputs::x, [](Mm &m, In) { m(1.0) = j; }),
        changed("element write", &Inputs::c, [](Mm &m, In in) { m.br(4.0) = in.x; }),
        changed("field write", &Inputs::st, [](Mm &m, In in) { m.member("new") = in.x; }),
        changed("deletion", &Inputs::x, [](Mm &m, In in) { m(c_p, in.two) = nop_M; }),
        {"miniM", [](In) { return Mm(miniM(miniM::Dims(3, 3)).count()); }},
        {"callback", call_back},
        {"constants", [](In) { return initM2(QUORVEX_VERSION, sizeof(Mm)), x_M; }},
        {"operators", [](In in) { return -in.x + in.x * 2.0 - (in.x == in.x) / 3.0; }},
        {"sparse factors",
         [](In in) {
             Mm l, u, p;
             lu(in.s * transpose(in.s), i_o, l, u, p);
             return l;
         }},
        {"sparse products", [](In in) { return in.s * transpose(in.s) * in.s * transpose(in.z); }},
        {"compressed columns",
         [](In in) {
             freeIrJc(getIr(in.s), nullptr);
             freeIrJc(nullptr, getJc(in.s));
             return x_M;
         }},
        {"read", [](In in) { return Mm(in.x(in.two, c_p)); }},
        {"read at a byte", [](In in) { return Mm(in.x(muint8(in.two), c_p)); }},
        {"brackets", [](In in) { return Mm((BR(in.x), in.x, semi, in.x, in.x)); }},
        {"long rows shown", [](In in) { return disp(in.long_rows); }},
    };
    for (const test::Function &f : test::functions()) {
        // What one call leaves, or the time, makes the next one differ.
        static const std::set<std::string> with_state = {"randM",  "randn", "randperm", "sprand", "sprandn",
                                                         "mkdir",  "rmdir", "cd",       "chdir",  "tempname",
                                                         "clockM", "now",   "toc",      "dir"};
        if (!f.form || with_state.count(f.about.name)) continue;
        for (const std::vector<Mm> &values : argument_lists(inputs, f.count))
            list.push_back({f.title(), [f, values](const Inputs &) { return f.call(values.data()); }});
    }
    return list;
}

// The n-th allocation of the work fails, and all later ones if `after` is set; n 0: none.
struct Outcome {
    long allocations;
    bool reported, foreign; // "Out of memory!"; an exception that no handler threw
    long live;              // blocks more than before, when the result is gone
    std::string result;     // as text, of a work that came to its end
};

bool reported;
void record(const char *text) { reported = reported || std::strcmp(text, "Out of memory!") == 0; }
void record_and_throw(const char *text) {
    record(text);
    throw test::Raised{text};
}

Outcome run(const Step &step, const Inputs &inputs, bool throwing, long n, bool after) {
    Outcome out = {};
    reported = false;
    const long live = alloc_probe.live, start = alloc_probe.allocations;
    kn_text_handler old = kn_set_error_handler(throwing ? record_and_throw : record);
    test::printed([&] {
        try {
            alloc_probe.fail_at = n ? start + n : 0;
            alloc_probe.fail_after = after;
            Mm result = step.work(inputs);
            alloc_probe.fail_at = 0;
            kn::check(result);
            out.result = testing::PrintToString(result);
        } catch (const test::Raised &) {
        } catch (const std::bad_alloc &) {
            out.foreign = throwing; // else of a header on the heap, after its report
        } catch (const std::exception &) {
            out.foreign = true;
        }
        alloc_probe.fail_at = 0;
    });
    kn_set_error_handler(old);
    out.allocations = alloc_probe.allocations - start;
    out.reported = reported;
    out.live = alloc_probe.live - live;
    return out;
}

TEST(Allocation, every_failure_is_reported_and_leaves_no_trace) {
    const Inputs inputs, before;
    const Mm now = inputs.all(), then = before.all();
    test::Warnings warnings;
    test::Unattended unattended;
    long failures = 0;
    for (const Step &step : steps(inputs)) {
        bool faulty = false;
        for (bool throwing : {true, false}) {
            run(step, inputs, throwing, 0, false); // builds what stays
            const Outcome clean = run(step, inputs, throwing, 0, false);
            EXPECT_EQ(clean.live, 0) << step.name << ": leaks without any failure";
            for (long n = 1; n <= 2 * clean.allocations && !faulty; ++n, ++failures) {
                const long at = (n + 1) / 2;
                const bool after = n % 2 == 0;
                Outcome out = run(step, inputs, throwing, at, after);
                if (out.live != 0) out = run(step, inputs, throwing, at, after);
                const bool changed = !test::same(now, then);
                const bool works = run(step, inputs, throwing, 0, false).result == clean.result;
                faulty = out.live != 0 || !out.reported || out.foreign || changed || !works;
                EXPECT_FALSE(faulty) << step.name << ", allocation " << at << (after ? " and later" : "")
                                     << ", throwing " << throwing << ": leaks " << out.live << out.reported
                                     << out.foreign << changed << works;
            }
        }
    }
    EXPECT_GT(failures, 5000);
}

} // namespace

#else

TEST(Allocation, every_failure_is_reported_and_leaves_no_trace) {
    GTEST_SKIP() << "a build with QUORVEX_ALLOC_PROBE counts allocations";
}

#endif
