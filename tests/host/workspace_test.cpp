// The workspace against a model, its limits, and the words about variables.
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "base/scratch.h"
#include "host/workspace.h"
#include "support/support.h"
#include "value/header.h"

using kn::Scopes;
using test::row;

namespace {

class Workspace : public testing::Test {
  protected:
    Workspace() { kn_interactive_flag = 1; }
    ~Workspace() override {
        kn_interactive_flag = 0;
        variables_scope.reset();
        Scopes::remove_all(1);
        Scopes::remove_all(0);
    }
};

// ---- Random sequences against a model ----

const char *const names[] = {"a", "b", "long_name_of_a_variable", "a_", "x1", "x2"};

struct Value {
    std::unique_ptr<Mm> mm; // null: a copy that the workspace made
    std::string name;
    double content;
    bool persistent;
    int level; // -1 outside of every slot
};

// The rules once more, in the plainest way: a name has a pile of values, whose uppermost is the variable.
class Model {
  public:
    using Pile = std::vector<std::shared_ptr<Value>>;
    std::vector<std::map<std::string, Pile>> levels{2};
    std::vector<std::shared_ptr<Value>> living;

    int level() const { return static_cast<int>(levels.size()) - 1; }

    void declare(const char *name, bool global, double content) {
        const int at = global ? 0 : level();
        auto v = std::make_shared<Value>(Value{std::make_unique<Mm>(i_o, name, global), name, 0, at < 2, at});
        Pile &pile = levels[at][name];
        if (!pile.empty()) {
            EXPECT_SAME(*v->mm, Mm(pile.back()->content)) << "declared again it sees its old content";
            if (!pile.back()->mm) pile.pop_back();
        }
        pile.push_back(v);
        living.push_back(v);
        assign(*v, content);
    }

    static void assign(Value &v, double content) { *v.mm = v.content = content; }

    void end_value(size_t k) {
        std::shared_ptr<Value> v = living[k];
        living.erase(living.begin() + static_cast<long>(k));
        if (v->level >= 0) {
            Pile &pile = levels[v->level][v->name];
            const bool top = pile.back() == v;
            std::erase(pile, v);
            if (top && !pile.empty())
                pile.back()->content = v->content;
            else if (top && v->persistent)
                pile.push_back(std::make_shared<Value>(Value{nullptr, v->name, v->content, false, v->level}));
            if (pile.empty()) levels[v->level].erase(v->name);
        }
        v->mm.reset();
    }

    void forget(int at, const std::string &name) {
        for (auto &v : levels[at][name]) v->level = -1;
        levels[at].erase(name);
    }
    void forget_all(int at) {
        while (!levels[at].empty()) forget(at, std::string(levels[at].begin()->first));
    }

    void begin() {
        levels.emplace_back();
        variables_scope.begin();
    }
    void end() {
        forget_all(level());
        levels.pop_back();
        variables_scope.end();
    }

    void check() {
        ASSERT_EQ(Scopes::level(), level());
        for (int at = 0; at <= level(); ++at) {
            ASSERT_EQ(Scopes::count(at), static_cast<int>(levels[at].size()));
            for (const char *name : names) {
                auto found = levels[at].find(name);
                if (found == levels[at].end()) found = levels[at].find(std::string(name) + "_");
                const Mm *m = Scopes::lookup(name, at);
                ASSERT_EQ(m != nullptr, found != levels[at].end()) << name;
                if (!m) continue;
                ASSERT_SAME(*m, Mm(found->second.back()->content)) << name;
                const Mm *own = found->second.back()->mm.get(); // else a copy that the workspace made
                ASSERT_TRUE(!own || own == m) << name;
            }
        }
        for (auto &v : living) ASSERT_SAME(*v->mm, Mm(v->content)) << v->name;
    }
};

// Functions that are left by an error: their values end, their levels stay until the reset.
void fail_inside(test::Random &random, int depth) {
    variables_scope.begin();
    Mm a(i_o, names[random.below(6)], 0), b(i_o, "only_here", 0);
    a = random.number();
    if (depth == 0) return error("fails");
    fail_inside(random, depth - 1);
}

TEST_F(Workspace, random_sequences_follow_the_model) {
    test::Random random(1);
    constexpr int sequences = 60;
    for (int sequence = 0; sequence < 2 * sequences;
         ++sequence) { // all of them again with tables of their room
        if (sequence == sequences) random = test::Random(1);
        const long live = kn::alloc_probe.live;
        {
            Model model;
            for (int step = 0; step < 120; ++step) {
                const char *name = names[random.below(6)];
                const size_t n = model.living.size();
                switch (random.below(11)) {
                default: model.declare(name, random.below(4) == 0, random.below(1000)); break;
                case 4:
                case 5: // mostly the last one
                    if (n)
                        model.end_value(random.below(3) ? n - 1 : static_cast<size_t>(random.below(int(n))));
                    break;
                case 6:
                    if (n) Model::assign(*model.living[static_cast<size_t>(random.below(int(n)))], step);
                    break;
                case 7: model.begin(); break;
                case 8:
                    if (model.level() > 1) model.end();
                    break;
                case 9:
                    model.forget(model.level(), name);
                    if (Scopes::find(name, model.level()) >= 0)
                        Scopes::remove(*Scopes::lookup(name, model.level()));
                    break;
                case 10:
                    EXPECT_RAISES(fail_inside(random, random.below(4)), "fails");
                    while (model.level() > 1) {
                        model.forget_all(model.level());
                        model.levels.pop_back();
                    }
                    variables_scope.reset();
                    break;
                }
                model.check();
                if (HasFatalFailure()) return;
            }
            while (model.level() > 1) model.end();
            model.forget_all(1);
            clear();
            model.forget_all(0);
            Scopes::remove_all(0);
            model.check();
        }
        EXPECT_TRUE(sequence < sequences || kn::alloc_probe.live == live) << "sequence " << sequence;
    }
}

// ---- Single rules ----

TEST_F(Workspace, levels_end_at_512) {
    for (int level = 2; level <= 512; ++level) variables_scope.begin();
    EXPECT_EQ(Scopes::level(), 512);
    EXPECT_RAISES(variables_scope.begin(), "Call stack too deep");
    for (int k = 0; k < 2; ++k) {
        test::Returning errors;
        variables_scope.begin();
    }
    for (int k = 0; k < 3; ++k) variables_scope.end(); // the two whose error returned, and level 512
    EXPECT_EQ(Scopes::level(), 511);
    EXPECT_RAISES(Scopes::name(0, 511), "variable_scope: index out of range");
    variables_scope.reset();
    EXPECT_EQ(Scopes::level(), 1);
}

TEST_F(Workspace, names_that_change_and_values_that_move) {
    variables_scope.begin();
    Mm x(i_o, "x", 0), y(i_o, "y", 0);
    x = 1.0, y = 2.0;
    x.setname("y");
    EXPECT_SAME(x, Mm(2.0)) << "it covers y";
    EXPECT_EQ(Scopes::find("x", 2), -1);
    x.setname(nullptr);

    Mm c = test::cell_of(1, 1, {5.0});
    c.mr(1).setname("element");
    for (int k = 2; k < 40; ++k) c.br(k) = static_cast<double>(k);
    EXPECT_EQ(Scopes::find("element", 2), -1) << "elements lose their names when the cell grows";
    Mm cover(i_o, "y", 0);
    cover = 4.0;
    y.getflags().global = 1; // looked for where it was registered
    y.setname(nullptr);
    EXPECT_EQ(Scopes::lookup("y", 2), &cover);
}

TEST_F(Workspace, owned_values_and_lists) {
    auto owned = [](const char *name, double content) {
        const size_t n = std::strlen(name) + 1;
        char *copy = static_cast<char *>(kn_block_alloc(n));
        Mm *m = new Mm(content);
        kn::Header::lend_name(*m, std::strcpy(copy, name));
        Scopes::add(*m, true);
        return m;
    };
    clear(CL(*owned("p", 1.0))); // it ends, and is not emptied after that
    EXPECT_EQ(Scopes::find("p", 1), -1);
    Mm q(i_o, "q", 0);
    q = 2.0;
    EXPECT_SAME(*owned("q", 3.0), Mm(2.0)) << "it takes the content of what it covers";
    clear();
    EXPECT_EQ(Scopes::lookup("q", 1), &q) << "what was covered is the variable again";
    Mm g(i_o, "g", 1), out, *const to = &out;
    kn_call_function("clear", CL(TM("global")), 0, &to);
    EXPECT_TRUE(Scopes::find("g", 0) < 0 && Scopes::find("q", 1) == 0);
    clear(CL(q));
    EXPECT_TRUE(Scopes::find("q", 1) < 0 && q.size() == 0);
}

TEST_F(Workspace, exist_which_who_whos) {
    const std::string directory = testing::TempDir() + "exist words";
    std::filesystem::create_directories(directory);
    std::ofstream(directory + "/found.m") << "% help\n";
    std::ofstream(directory + "/plain") << "";
    auto in = [&](const char *name) { return TM((directory + "/" + name).c_str()); };

    EXPECT_SAME(whos(), cell(0, 0));
    variables_scope.begin();
    Mm x(i_o, "x", 0), t(i_o, "t_", 0), bytes(i_o, "bytes", 0), none(i_o, "none", 0);
    x = row({1, 2}), t = TM("abc"), bytes = test::U8({{1, 2, 3}});
    const std::pair<Mm, int> answers[] = {
        {TM("x"), 1},     {TM("t"), 1},     {TM("none"), 0},  {TM("_TARVEK_"), 9},
        {in("found"), 2}, {in("plain"), 2}, {in("other"), 0}, {TM(directory.c_str()), 7},
        {TM(""), 0}};
    for (const auto &[name, answer] : answers) {
        EXPECT_EQ(exist(name), answer);
        for (auto [kind, agreed] : {std::pair{"var", 1}, {"file", 2}, {"dir", 7}, {"?", 0}})
            EXPECT_EQ(exist(name, TM(kind)), agreed == answer ? answer : 0);
    }
    EXPECT_RAISES(exist(1.0), "exist: argument is not string");
    EXPECT_SAME(which(in("found")), in("found.m"));

    EXPECT_SAME(who(), test::cell_of(4, 1, {TM("x"), TM("t_"), TM("bytes"), TM("none")}));
    const Mm all = whos();
    EXPECT_SAME(Mm(all(3).member("bytes")), Mm(24.0)) << "8 for each element, whatever its type";
    EXPECT_PRINTS(openvar(TM("  nobody")), "Variable 'nobody' not found.\n");
    EXPECT_PRINTS(openvar(TM(" t")), "t_ (1x3)=3 char elements  (24 bytes) = \nabc\n") << "without a viewer";
}

} // namespace
