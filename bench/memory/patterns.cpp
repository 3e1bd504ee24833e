// The memory that a program takes beside what malloc takes for the same arrays: the peak of each pattern, and
// what is still resident after all has been dropped. Each side of a pattern runs in a separate process.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include <quorvex.h>

namespace {

volatile double touched; // so that nothing is left out

// An array of doubles, every element written, as malloc gives it.
class Plain {
  public:
    explicit Plain(size_t n) : p_(static_cast<double *>(std::malloc(n * sizeof(double)))) {
        for (size_t k = 0; k < n; ++k) p_[k] = 1;
        if (n > 0) touched = p_[n / 2];
    }
    ~Plain() { std::free(p_); }
    Plain(const Plain &) = delete;
    Plain &operator=(Plain &&other) {
        std::swap(p_, other.p_);
        return *this;
    }
    double *data() { return p_; }

  private:
    double *p_;
};

using Sizes = std::vector<size_t>; // in elements

constexpr size_t MB = (1 << 20) / sizeof(double);

Sizes rising() {
    Sizes s;
    for (double n = 20000; n < 300 * MB; n *= 1.3) s.push_back(static_cast<size_t>(n));
    return s;
}

Sizes random_sizes() {
    Sizes s;
    unsigned long long state = 1;
    for (int k = 0; k < 300; ++k) {
        state = state * 6364136223846793005u + 1442695040888963407u;
        s.push_back(1 + (state >> 33) % (64 * MB));
    }
    return s;
}

// One variable that holds an array of each size in turn.
void in_turn(const Sizes &sizes) {
    Mm x;
    for (size_t n : sizes) x = ones(1.0, static_cast<double>(n));
}
void in_turn_plain(const Sizes &sizes) {
    Plain x(0);
    for (size_t n : sizes) x = Plain(n);
}

void all_at_once(int count, size_t n) {
    Mm c = cell(1.0, count);
    for (int k = 1; k <= count; ++k) c.br(k) = ones(1.0, static_cast<double>(n));
}
void all_at_once_plain(int count, size_t n) {
    std::vector<Plain *> c;
    for (int k = 0; k < count; ++k) c.push_back(new Plain(n));
    for (Plain *p : c) delete p;
}

void growth() {
    Mm x;
    for (size_t k = 1; k <= 80 * MB; ++k) x(static_cast<double>(k)) = 1.0;
}
void growth_plain() {
    std::vector<double> x;
    for (size_t k = 1; k <= 80 * MB; ++k) x.push_back(1.0);
}

constexpr int order = 3200;
void products() {
    Mm a = ones(order), b = ones(order), c;
    for (int k = 0; k < 5; ++k) c = a * b;
}
void products_plain() {
    Plain a(order * order), b(order * order), c(0);
    for (int k = 0; k < 5; ++k) {
        Plain d(order * order);
        touched = touched + a.data()[k] + b.data()[k];
        c = std::move(d);
    }
}

void hardly_touched() {
    Mm c = cell(1.0, 20000);
    for (int k = 1; k <= 20000; ++k) {
        Mm x(0, 0, 0, 1, 17000, kn_double);
        x.r() = 1;
        c.br(k) = x;
    }
}
void hardly_touched_plain() {
    std::vector<double *> c;
    for (int k = 0; k < 20000; ++k) {
        c.push_back(static_cast<double *>(std::malloc(17000 * sizeof(double))));
        c.back()[0] = 1;
    }
    for (double *p : c) std::free(p);
}

void numbers() {
    Mm c = cell(1.0, 3e6);
    for (int k = 1; k <= 3000000; ++k) c.br(k) = k;
}
void numbers_plain() {
    struct Number {
        Mm *header;
        double *block;
    };
    std::vector<Number> c;
    for (int k = 0; k < 3000000; ++k)
        c.push_back({static_cast<Mm *>(std::malloc(sizeof(Mm))),
                     static_cast<double *>(std::malloc(10 * sizeof(double)))});
    for (auto [header, block] : c) *reinterpret_cast<double *>(header) = *block = 1;
    for (auto [header, block] : c) std::free(header), std::free(block);
}

struct Use {
    double peak, left; // MB over the start
};

double resident() {
    long pages = 0;
    if (std::FILE *f = std::fopen("/proc/self/statm", "r")) {
        if (std::fscanf(f, "%*d %ld", &pages) != 1) pages = 0;
        std::fclose(f);
    }
    return pages * 4096.0 / (1 << 20);
}

Use measure(const std::function<void()> &run) {
    int ends[2];
    if (pipe(ends) != 0) std::abort();
    const pid_t child = fork();
    if (child == 0) {
        const double start = resident();
        run();
        rusage use;
        getrusage(RUSAGE_SELF, &use);
        const Use u = {use.ru_maxrss / 1024.0 - start, resident() - start};
        _exit(write(ends[1], &u, sizeof u) == sizeof u ? 0 : 1);
    }
    Use u = {};
    close(ends[1]);
    if (read(ends[0], &u, sizeof u) != sizeof u) std::abort();
    close(ends[0]);
    waitpid(child, nullptr, 0);
    return u;
}

} // namespace

int main() {
    initM2(QUORVEX_VERSION, sizeof(Mm));
    const Sizes up = rising(), any = random_sizes();
    const struct {
        const char *name;
        std::function<void()> ours, plain;
    } patterns[] = {
        {"sizes rising by 1.3 to 300 MB", [&] { in_turn(up); }, [&] { in_turn_plain(up); }},
        {"300 random sizes up to 64 MB", [&] { in_turn(any); }, [&] { in_turn_plain(any); }},
        {"growth to 80 MB by elements", growth, growth_plain},
        {"100 live of 8 MB", [] { all_at_once(100, MB * 8); }, [] { all_at_once_plain(100, MB * 8); }},
        {"5 products of 80 MB", products, products_plain},
        {"20,000 of 40 KB", [] { all_at_once(20000, 5000); }, [] { all_at_once_plain(20000, 5000); }},
        {"20,000 of 136 KB, one element written", hardly_touched, hardly_touched_plain},
        {"3,000,000 numbers in a cell", numbers, numbers_plain},
    };
    std::printf("%-40s %10s %10s %7s %10s\n", "pattern (MB)", "peak", "malloc's", "ratio", "left");
    for (const auto &p : patterns) {
        const Use ours = measure(p.ours), plain = measure(p.plain);
        std::printf("%-40s %10.1f %10.1f %7.2f %10.1f\n", p.name, ours.peak, plain.peak,
                    ours.peak / plain.peak, ours.left);
    }
}
