// Poisson's equation on the unit square with zero boundary values, by `\` on a sparse matrix: a program as
// the compiler of the language emits it (sunspots.cpp explains the style).
//
// A grid of m by m inner points gives a matrix of m^2 rows: a million for the larger grid. The right-hand
// side belongs to a solution that is known, so the error of the grid can be shown: it is about that of second
// differences, (pi h)^2 / 12.
//
// poisson M takes a grid of M by M points instead of 300 by 300 and 1000 by 1000.
#include <quorvex/generated.h>

namespace {

using generated::Frame, generated::line;

// a = laplacian(m): minus the five-point Laplacian of an m by m grid, times h^2
Mm laplacian(Mm m) {
    Frame frame("laplacian.m");
    m.setname("m");
    Mm k(i_o, "k", 0), right(i_o, "right", 0), down(i_o, "down", 0), n(i_o, "n", 0), a(i_o, "a", 0),
        rows(i_o, "rows", 0), cols(i_o, "cols", 0), values(i_o, "values", 0);
    // n = m * m;
    line(2), n = m * m;
    // k = reshape(1:n, m, m);
    line(3), k = reshape(colon(1, n), m, m);
    // down = k(1:m-1,:); right = k(:,1:m-1);
    line(4), down = k(colon(1, m - 1), c_p), right = k(c_p, colon(1, m - 1));
    // down = down(:); right = right(:);
    line(5), down = Mm(down(c_p)), right = Mm(right(c_p));
    // rows = [k(:); down; down + 1; right; right + m];
    line(6), rows = (BR(k(c_p)), semi, down, semi, down + 1, semi, right, semi, right + m);
    // cols = [k(:); down + 1; down; right + m; right];
    line(7), cols = (BR(k(c_p)), semi, down + 1, semi, down, semi, right + m, semi, right);
    // values = [4 * ones(n, 1); -ones(4 * length(down), 1)];
    line(8), values = (BR(4 * ones(n, 1)), semi, -ones(4 * length(down), 1));
    // a = sparse(rows, cols, values, n, n);
    line(9), a = sparse(rows, cols, values, n, n);
    return a;
}

// u = solution(m): on a grid of m by m; tells the time, the residual and the error
Mm solution(Mm m) {
    Frame frame("solution.m");
    m.setname("m");
    Mm h(i_o, "h", 0), t(i_o, "t", 0), x(i_o, "x", 0), y(i_o, "y", 0), exact(i_o, "exact", 0), b(i_o, "b", 0),
        a(i_o, "a", 0), u(i_o, "u", 0), seconds(i_o, "seconds", 0), residual(i_o, "residual", 0),
        difference(i_o, "difference", 0), expected(i_o, "expected", 0);

    // h = 1 / (m + 1);
    line(2), h = 1 / (m + 1);
    // t = (1:m) * h;
    line(3), t = colon(1, m) * h;
    // [x, y] = meshgrid(t, t);
    line(4), meshgrid(t, t, i_o, x, y);
    // exact = sin(pi * x) .* sin(pi * y);
    line(5), exact = times(sin(pi * x), sin(pi * y));
    // b = 2 * pi ^ 2 * h ^ 2 * exact(:);
    line(6), b = 2 * power(pi, 2) * power(h, 2) * Mm(exact(c_p));
    // a = laplacian(m);
    line(7), a = laplacian(m);
    // tic, u = a \ b; seconds = toc
    line(8), tic(), u = mldivide(a, b), seconds = toc(), display(seconds);
    // residual = max(abs(b - a * u)) / max(abs(b))
    line(9), residual = max(abs(b - a * u)) / max(abs(b)), display(residual);
    // difference = max(abs(u - exact(:)))
    line(10), difference = max(abs(u - Mm(exact(c_p)))), display(difference);
    // expected = (pi * h) ^ 2 / 12
    line(11), expected = power(pi * h, 2) / 12, display(expected);
    // u = reshape(u, m, m);
    line(12), u = reshape(u, m, m);
    return u;
}

void poisson(Mm grids) {
    Frame frame("poisson.m");
    grids.setname("grids");
    Mm k(i_o, "k", 0), m(i_o, "m", 0), u(i_o, "u", 0);

    // for k = 1:length(grids)
    line(2);
    for (double k_ = 1, end = scalar(length(grids)); k_ <= end; ++k_) {
        k = k_;
        // m = grids(k)
        line(3), m = grids(k), display(m);
        // u = solution(m);
        line(4), u = solution(m);
        // end
    }
    // disp('the last solution from above, in tenths')
    line(6), disp(TM("the last solution from above, in tenths"));
    // disp(setstr(48 + floor(9.99 * u(ceil(m/40:m/20:m),ceil(m/80:m/40:m)))))
    line(7),
        disp(setstr(48 + floor(9.99 * u(ceil(colon(m / 40, m / 20, m)), ceil(colon(m / 80, m / 40, m))))));
}

} // namespace

int main(int argc, char **argv) {
    initM2(QUORVEX_VERSION, sizeof(Mm));
    poisson(argc > 1 ? str2num(TM(argv[1])) : Mm((BR(300.0), 1000.0)));
    exitM();
}
