// The list of field names in the header of a structure.
//
// `fields` holds nfields duplicated names, then free slots with the address of one constant text, then a null
// slot that ends the array: the slot at nfields is null when the array is full. The list belongs to the
// block, so a shared value takes its own first.

#include "value/fields.h"

#include <algorithm>

#include "base/scratch.h"
#include "quorvex/messages.h"
#include "value/header.h"

namespace {
constexpr char free_slot[] = "char";
constexpr int first_slots = 8;

// Names belong to the block, and only a block of values can own them.
bool takes_fields(const Mm &m, const char *field) {
    if (m.gettype() == kn_Mm) return true;
    error("%s.%s: not a structure", kn_display_name(m), field);
    return false;
}
} // namespace

bool kn::copy_fields(Mm &to, const Mm &from) {
    if (!from.isstruct()) return true;
    to.extend_nfields(std::max(from.getnfields(), first_slots));
    if (!to.isstruct()) return false;
    for (int k = 0; k < from.getnfields(); ++k)
        if (to.addfield(from.getfields()[k], 1) < 0) return false;
    to.setclassid(from.getclassid());
    return true;
}

using namespace kn;

int Mm::findfield(const char *field, int strict) const {
    int f = find_field(*this, field);
    if (f < 0 && strict)
        error(fields ? "%s.%s: structure field does not exist" : "%s.%s: not a structure",
              kn_display_name(*this), field);
    return f;
}

const char *Mm::getfield(int k) const {
    if (k >= 0 && k < nfields) return fields[k];
    error("getfield: index=%d out of range [0..%d)", k, nfields);
    return "";
}

void Mm::extend_nfields(int n) {
    if (n <= nfields || !takes_fields(*this, "extend_nfields") || !unshared(*this)) return;
    const char **slots =
        static_cast<const char **>(heap_alloc(sizeof(char *) * (static_cast<size_t>(n) + 1)));
    if (!slots) {
        out_of_memory();
        return;
    }
    for (int k = 0; k < n; ++k) slots[k] = k < nfields ? fields[k] : free_slot;
    slots[n] = nullptr;
    heap_free(fields);
    fields = slots;
}

int Mm::addfield(const char *field, int force) {
    int found = force ? -1 : findfield(field, 0);
    if (found >= 0) return found;
    if (!takes_fields(*this, field) || !unshared(*this)) return -1;
    bool full = fields && !fields[nfields];
    int room = fields ? (full ? 2 * nfields : nfields) : first_slots;
    extend_nfields(room);
    if (!fields || !fields[nfields]) return -1;
    const char *copy = heap_copy(field);
    if (!copy) {
        out_of_memory();
        return -1;
    }
    fields[nfields] = copy;
    return nfields++;
}

int Mm::rmfield(const char *field) {
    int k = findfield(field, 1);
    if (k < 0 || !unshared(*this)) return -1;
    heap_free(const_cast<char *>(fields[k]));
    --nfields;
    for (int l = k; l < nfields; ++l) fields[l] = fields[l + 1];
    fields[nfields] = free_slot;
    return k;
}
