// Evaluation of text, calls by name, and the M path.
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "files/search_path.h"
#include "host/workspace.h"
#include "support/support.h"
#include "value/call_by_name.h"

using kn::Scopes;
using test::row;

namespace {

// ---- eval ----

std::vector<std::string> statements;
int answer = 0;

// A host that knows one statement: NAME=text gives NAME the length of the text.
int run(const char *statement) {
    statements.push_back(statement);
    const char *sign = std::strchr(statement, '=');
    if (!sign) return answer;
    if (Mm *m = Scopes::lookup(std::string(statement, sign).c_str(), Scopes::level()))
        *m = static_cast<double>(std::strlen(sign + 1));
    return answer;
}

class Evaluation : public testing::Test {
  protected:
    Evaluation() {
        kn_interactive_flag = 1;
        statements.clear();
        answer = 0;
    }
    ~Evaluation() override {
        kn_interactive_flag = 0;
        eval_func = nullptr;
        Scopes::remove_all(1);
    }
};

TEST_F(Evaluation, the_hook_assigns_the_result) {
    EXPECT_SAME(eval(TM("1 2")), row({1, 2})) << "without a hook";
    eval_func = run;
    Mm x(i_o, "x", 0);
    x = 5.0;
    test::printed([] { EXPECT_SAME(eval(TM("1+2")), Mm(3.0)); });
    EXPECT_EQ(Scopes::count(1), 1) << "nothing stays in the workspace";
    EXPECT_SAME(eval(TM("x")), x);
    EXPECT_EQ(statements.size(), 1u);
    for (const char *text : {"load f", "global g", "playshow", "x.tripdata"}) {
        test::printed([&] { EXPECT_SAME(eval(TM(text)), x_M); });
        EXPECT_EQ(statements.back(), text);
    }
    test::printed([] { eval(TM(std::string(3000, '1').c_str())); });
    EXPECT_EQ(statements.back().size(), 2048u);

    answer = 1;
    test::printed([] { EXPECT_RAISES(eval(TM("load f")), "error evaluating."); });
    test::Returning errors;
    test::printed([] { EXPECT_SAME(eval(TM("2")), x_M); });
}

TEST_F(Evaluation, argument_words) {
    EXPECT_SAME(inputname(1.0), TM(""));
    EXPECT_SAME(nargchk(1, 2, 0), TM("too few input arguments"));
    EXPECT_SAME(nargchk(3, 1, 2), TM("too many input arguments")) << "the later test wins";
    Mm name, message = 1.0;
    prefcnchk(TM("f"), 1, 2, 3, i_o, name, message);
    EXPECT_SAME(name, TM("f"));
}

// ---- Calls by name ----

TEST(Library, feval_goes_by_the_hook) {
    EXPECT_RAISES(feval(TM("sum"), row({1, 2})), "feval was not linked with the program.");
    const kn_feval_hook old = feval_func;
    feval_func = kn_feval;
    nargout_val = 7;
    EXPECT_SAME(feval(TM("max"), row({1, 4, 2})), Mm(4.0));
    EXPECT_EQ(nargout_val, 7);
    EXPECT_RAISES(feval(TM("pi_")), "Undefined function 'pi_'");
    EXPECT_EQ(nargout_val, 1) << "of the interrupted call";
    feval_func = old;
    nargout_val = 0;
}

TEST(Library, every_form_of_a_function_can_be_called) {
    Mm y[3];
    Mm *const out[] = {&y[0], &y[1], &y[2]};
    auto call = [&](const char *name, const Mm &args, int n) { kn_call_function(name, args, n, out); };
    const Mm x = test::M({{3, 8}, {5, 1}});
    call("max", CL(x), 2);
    EXPECT_SAME(y[1], row({2, 1}));
    call("rand", (CL(2.0), 3.0), 0);
    EXPECT_EQ(y[0].cols(), 3) << "the language's name; one output without being asked";
    call("struct", (CL(TM("a")), 1.0, TM("b"), 2.0), 1);
    EXPECT_SAME(Mm(y[0].member("b")), Mm(2.0));
    call("abs", -3.0, 1);
    EXPECT_SAME(y[0], Mm(3.0)) << "one plain input needs no cell";
    y[0] = CL(4.0);
    call("abs", y[0], 1);
    EXPECT_SAME(y[0], Mm(4.0)) << "an output may hold the inputs";

    test::Returning errors;
    call("max", CL(1.0), 3);
    EXPECT_SAME(y[0], x_M);
    call("sin", CL(1.0), -1);
    nargout_val = 7, nargout_set = 1;
    kn_feval(TM("max"), CL(1.0), i_o, y[0], y[1], y[2], y[0], y[1], y[2]);
    call("max", CL(CL(1.0)), 2);
    EXPECT_SAME(y[1], x_M);
    EXPECT_EQ(errors.errors(),
              (std::vector<std::string>{"Too many (3>2) outputs for max", "Too few (-1<0) outputs for sin",
                                        "Too many (7>2) outputs for max",
                                        "Operation can not be performed on non-numerical datatypes"}));
}

TEST(Library, the_table_is_in_order_and_described) {
    const kn_function *list;
    const int n = kn_functions(&list);
    for (int k = 0; k < n; ++k) {
        EXPECT_EQ(kn_find_function(list[k].name), &list[k]);
        EXPECT_TRUE(*list[k].description && list[k].inputs && list[k].outputs) << list[k].name;
        EXPECT_TRUE(k == 0 || std::strcmp(list[k - 1].name, list[k].name) < 0) << list[k].name;
    }
    EXPECT_PRINTS(lookfor(TM("no such text")), "No function found for 'no such text'.\n");
}

// ---- The M path ----

class Path : public testing::Test {
  protected:
    Path() { mpath_pointer = kn_new_path_record("/host"); }
    ~Path() override { kn_delete_path_record(mpath_pointer); }

    static std::string text() {
        const Mm m = path();
        return {m.addr(), m.addr() + m.getnnz()};
    }
};

TEST_F(Path, directories_in_order) {
    EXPECT_EQ(text(), "");
    addpath(test::cell_of(1, 3, {TM("/b"), TM("/c/../d; /e"), TM("/b/")}));
    EXPECT_EQ(text(), "/e/;/d/;/b/;") << "each goes to the front; /b was there";
    path(TM("one;two x"), TM("/f"));
    EXPECT_EQ(text(), "/f/;one;two x;") << "a path that is set is taken as it stands";
    matlabpath(TM(""));
    addpath(TM("diary x;;  ;/tmp_mnt;/tmp_mnt/g"));
    EXPECT_EQ(text(), "/g/;");
    kn::path_add(*mpath_pointer, "/last;", true);
    EXPECT_EQ(text(), "/g/;/last/;");
    kn_delete_path_record(mpath_pointer);
    EXPECT_RAISES(addpath(TM("a")), "path is not available in compiled programs.");
}

TEST_F(Path, full) {
    const std::string longest(1000, 'x');
    for (int k = 0; k < 200; ++k) addpath(TM(("/" + std::to_string(k) + longest).c_str()));
    EXPECT_LT(text().size(), size_t{kn_path_size} - 2);
    addpath(TM(("/" + std::string(1030, 'y')).c_str()));
    EXPECT_EQ(text().find('y'), std::string::npos) << "a name that is too long is passed over";
}

TEST_F(Path, search_and_open) {
    namespace fs = std::filesystem;
    const std::string root = testing::TempDir() + "m path";
    for (const char *d : {"/one/private", "/two"}) fs::create_directories(root + d);
    for (const char *f : {"/one/f.m", "/two/f.m", "/two/plain", "/one/private/hidden.m"})
        std::ofstream(root + f) << "first line\n";
    const std::string one = root + "/one/", two = root + "/two/";
    addpath(test::cell_of(1, 2, {TM(one.c_str()), TM(two.c_str())}));
    EXPECT_SAME(which(TM("f")), TM((one + "f.m").c_str()));
    auto found = [](const char *caller, const char *name) -> std::string {
        char directory[kn::path_name_size];
        return kn::path_search(mpath_pointer, caller, name, directory, sizeof directory) ? directory : "?";
    };
    EXPECT_EQ(found(two.c_str(), "hidden.m"), "?");
    EXPECT_EQ(found(one.c_str(), "hidden.m"), one + "private/");
    EXPECT_EQ(found(nullptr, (one + "f.m").c_str()), "") << "a file that is there as it is named";
    EXPECT_NE(test::printed([] { help(TM("f")); }).find("f.m\n"), std::string::npos);
    auto open_files = [] { return std::distance(fs::directory_iterator("/proc/self/fd"), {}); };
    const auto before = open_files();
    EXPECT_RAISES(
        test::printed([] { kn_set_print_handler([](const char *) { error("full"); }), help(TM("f")); }),
        "full");
    EXPECT_EQ(open_files(), before) << "the file is closed";
    char name[40] = "f";
    EXPECT_EQ(kn::path_open(mpath_pointer, nullptr, name, 3, true), nullptr) << "no room for the name";
}

} // namespace
