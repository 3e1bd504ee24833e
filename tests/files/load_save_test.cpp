// Which file is found and what it is taken for; text; files that are replaced whole or not at all.
#include <cmath>

#ifndef _WIN32
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

#include "files/atomic_write.h"
#include "files/folder.h"

namespace {

namespace fs = std::filesystem;
using std::string;
using test::M;
using test::named;
using test::row;

using LoadSave = test::Folder;

TEST_F(LoadSave, names_of_files) {
    saveV4(TM("a"), (CL(2.0)));
    fs::create_directory("d.x");
    saveV4(TM("d.x/c"), (CL(4.0)));
    saveascii(TM("e"), (CL(5.0)));
    for (const char *name : {"a.mat", "d.x/c", "e"}) EXPECT_TRUE(fs::exists(name)) << name;
    EXPECT_SAME(vbload(TM("a")), 2);
    EXPECT_SAME(load(TM("e")), 5) << "as named, when there is none with .mat";
    saveV4(TM("e"), (CL(6.0)));
    EXPECT_SAME(vbload(TM("e")), 6);
    EXPECT_RAISES(vbload(TM("b")), "load: b not found");
    EXPECT_RAISES(saveV4(TM("no/f"), (CL(1.0))), "saveV4: no/f could not be created");
    EXPECT_RAISES(saveascii(TM("no/f"), (CL(1.0))), "could not write no/f");
    const test::Path path("d.x");
    saveV4(TM("d.x/p.mat"), (CL(7.0)));
    EXPECT_SAME(vbload(TM("p")), 7);
}

TEST_F(LoadSave, structures_and_appending) {
    const Mm one = named("one", row({3, 4})), other = named("one", TM("other")), two = named("two", 2),
             of = named("of", nop_M);
    test::Warnings warnings;
    for (auto save_it : {+[](const Mm &n, const Mc &list) { save(n, list); },
                         +[](const Mm &n, const Mc &list) { saveV4(n, list); }}) {
        save_it(TM("f"), (CL(one), two, of));
        EXPECT_SAME(load(TM("f")), test::struct_of({{"one", one}, {"two", 2}, {"of", nop_M}}));
        Mm s, no;
        kn_feval(TM("load"), (CL(TM("f")), TM("x*"), TM("o*e"), TM("*w*o")), i_o, s, no, no, no, no, no);
        EXPECT_SAME(s, test::struct_of({{"one", one}, {"two", 2}}));
        EXPECT_EQ(warnings.texts().back(), "load: variable 'x*' not found in 'f'");
        EXPECT_SAME(who(TM("-file"), TM("f")), (CL("one"), semi, "two", semi, "of"));
        EXPECT_SAME(Mm(whos(TM("-file"), TM("f"))(1).member("size")), row({1, 2}));
    }
    EXPECT_RAISES(saveappend(TM("f"), (CL(one))), "save: f.mat is no MAT-file of level 5");
    saveappend(TM("g"), (CL(one)));
    fs::create_symlink("g.mat", "link.mat");
    saveappend(TM("link"), (CL(two), of));
    saveappend(TM("g"), (CL(other)));
    EXPECT_SAME(load(TM("g")), test::struct_of({{"two", 2}, {"of", nop_M}, {"one", TM("other")}}));
    const string whole = bytes("g.mat");
    put("g.mat", whole.substr(0, whole.size() - 8));
    EXPECT_RAISES(saveappend(TM("g"), (CL(two))), "load: 'g.mat' could not read data set");
    EXPECT_EQ(bytes("g.mat").size(), whole.size() - 8);
}

TEST_F(LoadSave, text) {
    const string digits(40, '7');
    for (const auto &[file, wanted] : std::vector<std::pair<string, Mm>>{
             {"% head\n  # more\n\n \t 1,2\t 3 \r\n4;5 6,,7\v;\n", M({{1, 2, 3}, {4, 6, 7}})},
             {"-1e3 +.5 1e400 0x1f 1d5\n", row({-1000, 0.5, INFINITY, 31, 1})},
             {"NaN Inf -Inf Index 1.#INF -1.#INF -1.#IND\n",
              row({NAN, INFINITY, -INFINITY, 0, INFINITY, -INFINITY, NAN})},
             {digits + "x 1", row({std::stod(digits.substr(0, 31)), 1})},
             {"%" + digits + string("\n1 2\0 3\n4 5", 11), M({{1, 2}, {4, 5}})},
             {"no numbers\n", nop_M}}) {
        put("f", file);
        EXPECT_SAME(vbload(TM("f")), wanted) << file;
    }
    put("f.txt", "1 2\n3\n");
    EXPECT_RAISES(vbload(TM("f.txt")), "loadascii: matrix in f.txt is not rectangular");
    put("f.txt", "1 2\n3 4\n");
    EXPECT_SAME(who(TM("-file"), TM("f.txt")), test::cell_of(1, 1, {TM("f")}));

    saveascii(TM("f"), (CL(M({{1, -2.5}, {NAN, INFINITY}})), TM("a"), test::C(-INFINITY, 4), sparse(7)));
    EXPECT_EQ(bytes("f"), "                      1                   -2.5\n"
                          "                    NaN                    Inf\n"
                          "                     97\n"
                          "                   -Inf\n"
                          "                      7\n");
    EXPECT_RAISES(saveascii(TM("f"), test::cell_of(1, 1, {test::cell_of(1, 1, {1.0})})),
                  "saveascii: numeric data expected, but matrix (temporary) is not");
}

TEST_F(LoadSave, the_old_file_stays) {
    saveV4(TM("f"), (CL(5.0)));
    const Mm deep = named("deep", zeros(2, 2, 2));
    const char *text = "save: matrix 'deep' has more than two dimensions and can not be saved in 4.0 format";
    EXPECT_RAISES(saveV4(TM("f"), (CL(2.0), deep)), text);
    EXPECT_SAME(vbload(TM("f")), 5);
    {
        test::Returning errors;
        saveV4(TM("f"), (CL(deep), 2.0));
        EXPECT_SAME(vbload(TM("f")), 2) << "without what can't be saved";
    }
#ifdef __linux__
    const Mm x = zeros(100, 100);
    fs::create_symlink("/dev/full", "full.mat");
    for (const Mm &v : {x, Mm(1.0)}) {
        EXPECT_RAISES(saveV4(TM("full"), (CL(v))), v.size() == 1 ? "saveV4: full.mat could not be written"
                                                                 : "save: could not write real part");
        EXPECT_RAISES(saveascii(TM("/dev/full"), (CL(v))), "could not write /dev/full");
    }
#endif
    EXPECT_EQ(std::distance(fs::directory_iterator("."), fs::directory_iterator()), 2)
        << "nothing is left behind";
}

#ifndef _WIN32

// Links, owner and permissions of what is replaced; what a killed process has left; a directory without
// permission.
TEST_F(LoadSave, a_file_keeps_its_place_and_permissions) {
    saveV4(TM("f"), (CL(5.0)));
    fs::permissions("f.mat", fs::perms(0640));
    const string own = "kn" + std::to_string(kn::os::process_id()) + "_";
    fs::create_symlink("nowhere", own + "0.tmp");
    {
        kn::Replacement file("f.mat");
        EXPECT_EQ(fs::status(own + "1.tmp").permissions(), fs::perms(0640));
    }
    saveV4(TM("f"), (CL(6.0)));
    EXPECT_EQ(fs::status("f.mat").permissions(), fs::perms(0640));
    EXPECT_SAME(vbload(TM("f")), 6);

    fs::create_symlink("f.mat", "link.mat");
    fs::create_hard_link("f.mat", "twin.mat");
    for (const char *name : {"f", "link", "twin"}) {
        saveV4(TM(name), (CL(randM(30, 30))));
        EXPECT_RAISES(saveV4(TM(name), (CL(1.0), cell(1.0))),
                      "Can not convert (temporary) into a numeric matrix");
        saveV4(TM(name), (CL(TM(name))));
        EXPECT_SAME(vbload(TM("f")), TM(name));
    }
    EXPECT_TRUE(fs::is_symlink("link.mat") && fs::equivalent("f.mat", "twin.mat"));

    ASSERT_EQ(mkfifo("pipe.mat", 0600), 0);
    std::FILE *reader = popen("cat pipe.mat > got.mat", "r");
    const Mm large = randM(100, 100);
    save(TM("pipe"), (CL(large)));
    pclose(reader);
    EXPECT_SAME(vbload(TM("got")), large);

    const pid_t gone = fork();
    if (gone == 0) _exit(0);
    waitpid(gone, nullptr, 0);
    fs::create_directory("d");
    const string left = "d/kn" + std::to_string(gone) + "_0.tmp", alive = "d/kn1_0.tmp",
                 held = "d/kn" + std::to_string(gone) + "_1.tmp";
    for (const string &name : {left, alive, held, string("d/kn_0.tmp")}) put(name.c_str(), "x");
    const kn::Stream holder(kn::io::open(held.c_str(), "rb")); // by a process that no number here means
    ASSERT_EQ(flock(fileno(holder.get()), LOCK_EX), 0);
    kn_save_to_disk = 1;
    saveV4(TM("d/f"), (CL(1.0)));
    EXPECT_FALSE(fs::exists(left));
    EXPECT_TRUE(fs::exists(alive) && fs::exists(held) && fs::exists("d/kn_0.tmp"));

    const uid_t me = geteuid(), other = me == 0 ? 65534 : me; // root may write anywhere
    ASSERT_EQ(chown("d/f.mat", other, getegid()), 0);
    fs::permissions(".", fs::perms(0755));
    fs::permissions("d", fs::perms(0555));
    ASSERT_EQ(seteuid(other), 0);
    EXPECT_EQ(test::raised([] { saveV4(TM("d/f"), (CL(2.0))); }), "(no error)");
    EXPECT_RAISES(saveV4(TM("d/new"), (CL(2.0))), "saveV4: d/new could not be created");
    ASSERT_EQ(seteuid(me), 0);
    fs::permissions("d", fs::perms(0755));
    EXPECT_SAME(vbload(TM("d/f")), 2);
    saveV4(TM("d/f"), (CL(3.0)));
    struct stat kept;
    EXPECT_TRUE(stat("d/f.mat", &kept) == 0 && kept.st_uid == other);
}

#endif

#ifdef QUORVEX_ALLOC_PROBE

// The n-th call of the stream library, or the n-th allocation, fails, once or from there on: it is told, the
// old file or the new one stands, whole, nothing is left open or behind, and what is loaded is all there.
TEST_F(LoadSave, every_failing_call_is_told) {
    const Mm old = named("x", row({3, 4, 5})), now = named("x", M({{1, 2}, {6, 7}}));
    auto failing = [](const std::function<void()> &work, const std::function<void(bool)> &then) {
        with_failures(kn::stream_probe, &kn::StreamProbe::calls, work, then);
        with_failures(kn::alloc_probe, &kn::AllocProbe::allocations, work, then);
    };
    const std::vector<std::pair<const char *, std::function<void(const Mm &)>>> kinds = {
        {"f.mat", [](const Mm &x) { saveV4(TM("f"), (CL(x), TM("text"), sparse(x))); }},
        {"g.mat", [](const Mm &x) { save(TM("g"), (CL(x), TM("text"), test::cell_of(1, 1, {x}))); }},
        {"h", [](const Mm &x) { saveascii(TM("h"), (CL(x), x)); }}};
    for (const auto &[file, save_it] : kinds) {
        const size_t head = file[0] == 'g' ? 128 : 0; // which holds the time
        auto content = [&] { return bytes(file).substr(head); };
        save_it(now);
        const string after = content();
        save_it(old);
        const string before = content();
        failing([&] { save_it(now); },
                [&](bool told) {
                    EXPECT_TRUE(content() == (told ? before : after)) << file;
                    save_it(old);
                });
        save_it(old);
        Mm x = named("x", nop_M);
        const Mm name = TM(file);
        load(name, (CL(x)));
        const Mm whole = x;
        failing([&] { load(name, (CL(x))); },
                [&](bool told) {
                    EXPECT_SAME(x, told ? Mm(9.0) : whole) << file;
                    x = 9;
                });
    }
    EXPECT_EQ(std::distance(fs::directory_iterator("."), fs::directory_iterator()), 3);
}

#endif

} // namespace
