// Comma lists: pointers to values that live until the end of the full expression, numbers and texts. The
// first 16 items are in the list itself; a longer list has an array on the C heap.
#include <algorithm>
#include <utility>

#include "base/scratch.h"
#include "quorvex/display.h"
#include "quorvex/indexing.h"
#include "quorvex/memory.h"
#include "quorvex/messages.h"
#include "quorvex/startup.h"

Mc::Mc() : Mc(1, 0) {}

Mc::Mc(int is_cell, const Mm &x) : Mc(is_cell, 0) { *this, x; }
Mc::Mc(int is_cell, double x) : Mc(is_cell, 0) { *this, x; }
Mc::Mc(int is_cell, const char *characters) : Mc(is_cell, 0) { append_text(characters); }

// Without memory the copy is the empty list.
Mc::Mc(const Mc &src) : Mc(src.cell, 0) {
    if (src.capacity > near_capacity) {
        auto *array = static_cast<Item *>(kn::heap_alloc(sizeof(Item) * static_cast<size_t>(src.capacity)));
        if (!array) {
            kn::out_of_memory();
            return;
        }
        items = array;
        capacity = src.capacity;
    }
    last = src.last;
    std::copy_n(src.items, last + 1, items);
    for (kn_size k = 0; k <= last; ++k)
        if (items[k].kind != Item::borrowed) items[k].value = nullptr;
}

void Mc::release() {
    for (kn_size k = 0; made && k <= last; ++k)
        if (items[k].kind != Item::borrowed && items[k].value != &nop_M) delete items[k].value;
    if (capacity > near_capacity) kn::heap_free(items);
}

// Room for one more item; null when memory is exhausted, and the item is left out.
Mc::Item *Mc::next() {
    if (last + 1 == capacity) {
        auto *longer = static_cast<Item *>(kn::heap_alloc(2 * sizeof(Item) * static_cast<size_t>(capacity)));
        if (!longer) {
            kn::out_of_memory();
            return nullptr;
        }
        std::copy_n(items, capacity, longer);
        if (capacity > near_capacity) kn::heap_free(items);
        items = longer;
        capacity *= 2;
    }
    return items + ++last;
}

Mc &Mc::operator,(const Mm &x) {
    if (Item *item = next()) *item = {&x, {}, Item::borrowed};
    return *this;
}

Mc &Mc::operator,(double x) {
    if (Item *item = next()) *item = {nullptr, {.x = x}, Item::number};
    return *this;
}

Mc &Mc::append_text(const char *characters) {
    if (Item *item = next()) *item = {nullptr, {.characters = characters}, Item::text};
    return *this;
}

// Without memory the item is empty.
const Mm &Mc::make(const Item &item) const {
    Item &literal = const_cast<Item &>(item);
    Mm value = item.kind == Item::number ? Mm(item.x) : TM(item.characters);
    if (void *room = kn_block_alloc(sizeof(Mm))) {
        literal.value = new (room) Mm(std::move(value));
        made = 1;
    } else {
        kn::out_of_memory();
        literal.value = &nop_M;
    }
    return *literal.value;
}

void Mc::operator=(const Mc &) { error("Mc=Mc called"); }

Mc BR(const Mm &x) { return Mc(0, x); }
Mc BR(double x) { return Mc(0, x); }
Mc CL(const Mm &x) { return Mc(1, x); }
Mc CL(double x) { return Mc(1, x); }
