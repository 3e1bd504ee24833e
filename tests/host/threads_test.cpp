// Threads with unshared values work at the same time, and see nothing of each other.
#include <string>
#include <thread>
#include <vector>

#include "support/support.h"

using namespace test;

namespace {

// Work of many kinds, and what came out of it, which depends on n alone.
std::string work(double n) {
    Mm log = TM(""), k, m, fid;
    auto note = [&](const Mm &x) { log = strvcat(log, mat2str(x)); };
    nargin_val = n;
    kn_error_stack.line[kn_error_stack.depth = 1] = static_cast<int>(n);

    Mm a = colon(1.0, n), b = ones(n) * n + diag(a), large = ones(20000.0, n);
    note(b * b + inv(b) - pi / (a * transpose(a)));
    note(max(fliplr(a), i_o, m, k));
    note((BR(m), k, Inf, semi, zeros(1.0, 3.0)) + i);
    note(sum(large + large) + a);
    note(mldivide(b, ones(n, 1.0)));
    note(full(sparse(a, a, a) * b));
    Mm c = cell(1.0, n), s;
    for (double e = 1; e <= n; ++e) {
        c.br(e) = (CL(TM("text")), e, x_M);
        s(e).member("field") = c;
    }
    while (c.size() > 1) c(Mm(c.size())) = nop_M;
    note(isequal(s(n).member("field"), s(n).member("field")));
    note(size(randM(n)) + size(randn(n)));
    log = strvcat(log, sprintf(TM("%g %s|"), (CL(Mm(n)), TM("x"))), upper(num2str(b, 3.0)));

    const Mm name = tempname();
    fopen(name, TM("w+"), i_o, fid, m);
    fwrite(fid, a, TM("double"));
    frewind(fid);
    note(fread(fid, Inf, TM("double")));
    fclose(fid);
    deleteM(name);

    try {
        Mm(n).r(2.0) = 0;
    } catch (const char *text) {
        log = strvcat(log, TM(text), lasterr());
    }
    note(nargin() + kn_error_stack.line[kn_error_stack.depth]);
    kn_error_stack.depth = 0;
    return {log.addr(), log.addr() + log.getnnz()};
}

TEST(Threads, with_values_of_their_own) {
    constexpr int threads = 4, rounds = 20;
    const kn_text_handler handler = kn_set_error_handler(nullptr);
    const unsigned flags = kn_default_error_flags;
    kn_default_error_flags = 16;
    std::string wanted[threads], got[threads];
    for (int t = 0; t < threads; ++t) wanted[t] = got[t] = work(t + 2.0);
    kn_set_MT(1);
    std::vector<std::thread> at_work;
    for (int t = 0; t < threads; ++t)
        at_work.emplace_back([&, t] {
            for (int round = 0; round < rounds && got[t] == wanted[t]; ++round) got[t] = work(t + 2.0);
        });
    for (std::thread &thread : at_work) thread.join();
    kn_set_MT(0);
    kn_default_error_flags = flags;
    kn_set_error_handler(handler);
    for (int t = 0; t < threads; ++t) EXPECT_EQ(got[t], wanted[t]);
}

} // namespace
