// Comma lists: pointers to values that live until the end of the full expression. The first 16 stand in the
// list itself; a longer list has an array on the C heap.
#include <algorithm>

#include "core/scratch.h"
#include "quorvex/indexing.h"
#include "quorvex/messages.h"

namespace {

constexpr int inline_capacity = 16;

const Mm **pointers(int n) {
    return static_cast<const Mm **>(kn::heap_alloc(sizeof(const Mm *) * static_cast<size_t>(n)));
}

} // namespace

Mc::Mc() : items(inline_items), capacity(inline_capacity), last(-1), cell(1) {}

Mc::Mc(int is_cell, const Mm &x) : items(inline_items), capacity(inline_capacity), last(0), cell(is_cell) {
    inline_items[0] = &x;
}

// Without memory the copy is the empty list.
Mc::Mc(const Mc &src) : items(inline_items), capacity(inline_capacity), last(-1), cell(src.cell) {
    if (src.capacity > inline_capacity) {
        const Mm **array = pointers(src.capacity);
        if (!array) {
            kn::out_of_memory();
            return;
        }
        items = array;
        capacity = src.capacity;
    }
    last = src.last;
    std::copy_n(src.items, last + 1, items);
}

Mc::~Mc() {
    if (capacity > inline_capacity) kn::heap_free(items);
}

// Without memory the item is left out.
Mc &Mc::operator,(const Mm &x) {
    if (last + 1 == capacity) {
        const Mm **longer = pointers(2 * capacity);
        if (!longer) {
            kn::out_of_memory();
            return *this;
        }
        std::copy_n(items, capacity, longer);
        if (capacity > inline_capacity) kn::heap_free(items);
        items = longer;
        capacity *= 2;
    }
    items[++last] = &x;
    return *this;
}

void Mc::operator=(const Mc &) { error("Mc=Mc called"); }

Mc BR(const Mm &x) { return Mc(0, x); }
Mc CL(const Mm &x) { return Mc(1, x); }
