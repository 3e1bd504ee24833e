// Walks through nested values without recursion: the path to the present one is kept on the heap, so that the
// stack holds any depth.
#ifndef QUORVEX_VALUE_NESTING_H
#define QUORVEX_VALUE_NESTING_H

#include <cstring>
#include <type_traits>

#include "base/poll.h"
#include "base/scratch.h"
#include "quorvex/startup.h"
#include "value/header.h"

namespace kn {

// A stack of plain records; the first few lie in the object. When memory is exhausted "Out of memory!" is
// reported, and push answers false.
template <class T> class Path {
    static_assert(std::is_trivially_copyable_v<T>);

  public:
    Path() = default;
    ~Path() {
        if (steps_ != near_) heap_free(steps_);
    }
    Path(const Path &) = delete;
    Path &operator=(const Path &) = delete;

    bool empty() const { return count_ == 0; }
    T &top() { return steps_[count_ - 1]; }
    void pop() { --count_; }
    bool push(const T &step) {
        if (count_ == room_ && !grow()) return false;
        steps_[count_++] = step;
        return true;
    }

  private:
    static constexpr size_t few = 8;
    T near_[few];
    T *steps_ = near_;
    size_t count_ = 0, room_ = few;

    bool grow() {
        T *more = static_cast<T *>(scratch_alloc(static_cast<ptrdiff_t>(2 * room_), sizeof(T)));
        if (!more) return false;
        std::memcpy(more, steps_, count_ * sizeof(T));
        if (steps_ != near_) heap_free(steps_);
        steps_ = more;
        room_ *= 2;
        return true;
    }
};

// Element k, from 0, of a value of values.
inline const Mm &element_at(const Mm &m, kn_size k) { return m.getpr(static_cast<Mm *>(nullptr))[k]; }

// Calls f(x) for each value inside nested cells that is no cell, in order, until it answers false, which is
// then the result, as when memory is exhausted. Of what is no cell, for itself.
template <class F> bool each_leaf(const Mm &m, F f) {
    if (!is_cell(m)) return f(m);
    struct Step {
        const Mm *cell;
        kn_size next;
    };
    const Mm held = m; // should an error handler assign to the variable
    Path<Step> path;
    for (const Mm *cell = &held; cell || !path.empty();) {
        if (cell && !path.push({cell, 0})) return false;
        cell = nullptr;
        Step &step = path.top();
        if (step.next == step.cell->getnnz()) {
            path.pop();
            continue;
        }
        const Mm &x = element_at(*step.cell, step.next++);
        if (is_cell(x))
            cell = &x;
        else if (!f(x))
            return false;
    }
    return true;
}

// f(x) in the place of each of these: cells nested as those of m are. x_M when memory is exhausted or the
// host interrupts.
template <class F> Mm map_leaves(const Mm &m, F f) {
    if (!is_cell(m)) return f(m);
    struct Step {
        const Mm *from;
        Mm *to;
        kn_size next;
    };
    const Mm held = m;
    Mm out;
    Path<Step> path;
    Step cell = {&held, &out, 0};
    while (cell.from || !path.empty()) {
        if (cell.from) {
            *cell.to = fresh_like(*cell.from, 0, kn_Mm);
            if (lacks(*cell.to, cell.from->getnnz()) || !path.push(cell)) return x_M;
        }
        cell.from = nullptr;
        Step &step = path.top();
        if (step.next == step.from->getnnz()) {
            path.pop();
            continue;
        }
        if (interrupted()) return x_M;
        const kn_size k = step.next++;
        const Mm &x = element_at(*step.from, k);
        Mm &place = step.to->getpr(static_cast<Mm *>(nullptr))[k];
        if (is_cell(x))
            cell = {&x, &place, 0};
        else
            place = f(x);
    }
    return out;
}

} // namespace kn

#endif
