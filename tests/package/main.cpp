// A program outside the tree: constants of the library, an operator, text, and the end of the graphics side.
#include <quorvex.h>

int main() {
    initM2(QUORVEX_VERSION, sizeof(Mm));
    Mm x = Mm(2.0) * Mm(3.0) + Mm(1.0);
    disp(x);
    disp(pi);
    disp(TM("one library to link"));
    exitM();
}
