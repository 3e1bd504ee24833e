// Scalars as a simple interpreter holds them: malloc gives each number its own memory. The library's scalars
// are compared with these, because a plain loop over doubles takes only as long as its additions.
#ifndef QUORVEX_BENCH_BOXES_H
#define QUORVEX_BENCH_BOXES_H

#include <cstdlib>
#include <new>
#include <utility>

#include <benchmark/benchmark.h>

namespace native {

class Box {
  public:
    Box(double x = 0) : at_(static_cast<double *>(std::malloc(sizeof(double)))) {
        if (!at_) throw std::bad_alloc();
        *at_ = x;
        benchmark::DoNotOptimize(at_); // otherwise the compiler removes malloc and free
    }
    Box(const Box &b) : Box(*b) {}
    Box(Box &&b) noexcept : at_(std::exchange(b.at_, nullptr)) {}
    Box &operator=(Box b) noexcept {
        std::swap(at_, b.at_);
        return *this;
    }
    ~Box() { std::free(at_); }
    double operator*() const { return *at_; }

  private:
    double *at_;
};

inline Box operator+(const Box &x, const Box &y) { return *x + *y; }
inline Box operator-(const Box &x, const Box &y) { return *x - *y; }
inline Box operator*(const Box &x, const Box &y) { return *x * *y; }
inline Box operator<(const Box &x, const Box &y) { return *x < *y ? 1.0 : 0.0; }

// for k = 1:n
template <class F> void loop(Box &k, int n, F body) {
    for (double x = 1; x <= n; ++x) {
        k = x;
        body();
    }
}

} // namespace native

#endif
