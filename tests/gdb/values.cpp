// A program that stands still, so that gdb can show its values.
#include <quorvex.h>

int main() {
    initM2(QUORVEX_VERSION, sizeof(Mm));
    Mm x = (BR(1), 2.5, semi, 3, 4), c = (CL("one"), x), unset(i_o, "unset", 0);
    exitM();
    return x.size() + c.size() + unset.size();
}
