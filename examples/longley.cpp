// Longley's regression of employment on six economic series: a program as the compiler of the language emits
// it (sunspots.cpp explains the style).
//
// The columns are so nearly dependent that the normal equations lose half of all digits; `\` on the
// rectangular system keeps them.
//
// longley FILE reads the numbers as columns of text.
#include <quorvex/generated.h>

namespace {

using generated::Frame, generated::line;

// d = numbers(file): the lines after the first as rows of text, and their numbers; employment, price
// deflator, national product, unemployed, armed forces, population, year
Mm numbers(Mm file) {
    Frame frame("numbers.m");
    file.setname("file");
    Mm f(i_o, "f", 0), message(i_o, "message", 0), text(i_o, "text", 0), row(i_o, "row", 0), d(i_o, "d", 0);
    // [f, message] = fopen(file, 'r');
    line(2), fopen(file, TM("r"), i_o, f, message);
    // if f < 0, error([file ': ' message]), end
    line(3);
    if (istrue(f < 0)) error(Mm((BR(file), ": ", message)));
    // fgetl(f); text = '';
    line(4), fgetl(f), text = TM("");
    // row = fgetl(f);
    line(5), row = fgetl(f);
    // while ischar(row)
    line(6);
    while (istrue(ischar(row))) {
        // text = strvcat(text, row);
        line(7), text = strvcat(text, row);
        // row = fgetl(f);
        line(8), row = fgetl(f);
    }
    // fclose(f);
    line(10), fclose(f);
    // d = str2num(text);
    line(11), d = str2num(text);
    return d;
}

void longley(Mm file, Mm written) {
    Frame frame("longley.m");
    file.setname("file"), written.setname("written");
    Mm d(i_o, "d", 0), x(i_o, "x", 0), y(i_o, "y", 0), m(i_o, "m", 0), n(i_o, "n", 0), b(i_o, "b", 0),
        r(i_o, "r", 0), s(i_o, "s", 0), e(i_o, "e", 0), names(i_o, "names", 0), table(i_o, "table", 0),
        l(i_o, "l", 0), u(i_o, "u", 0), p(i_o, "p", 0), g(i_o, "g", 0), f(i_o, "f", 0),
        normal(i_o, "normal", 0), factored(i_o, "factored", 0), explained(i_o, "explained", 0);

    // d = numbers(file);
    line(1), d = numbers(file);
    // y = d(:,1);
    line(2), y = d(c_p, 1);
    // x = [ones(16,1) d(:,2:7)];
    line(3), x = (BR(ones(16, 1)), d(c_p, colon(2, 7)));
    // [m, n] = size(x);
    line(4), size(x, i_o, m, n);
    // b = x \ y;
    line(5), b = mldivide(x, y);
    // r = y - x * b;
    line(6), r = y - x * b;
    // s = sqrt(r' * r / (m - n));
    line(7), s = sqrt(ctranspose(r) * r / (m - n));
    // [l, u, p] = lu(x' * x);
    line(8), lu(ctranspose(x) * x, i_o, l, u, p);
    // g = u \ (l \ p);
    line(9), g = mldivide(u, mldivide(l, p));
    // e = s * sqrt(diag(g));
    line(10), e = s * sqrt(diag(g));
    // names = {'constant'; 'prices'; 'product'; 'unemployed'; 'forces'; 'population'; 'year'};
    line(11), names = (CL("constant"), semi, "prices", semi, "product", semi, "unemployed", semi, "forces",
                       semi, "population", semi, "year");
    // table = num2cell([b e b ./ e]);
    line(12), table = num2cell((BR(b), e, rdivide(b, e)));
    // disp([{'series', 'coefficient', 'std. error', 'ratio'}; names table])
    line(13), disp((BR((CL("series"), "coefficient", "std. error", "ratio")), semi, names, table));
    // explained = 1 - r' * r / sum((y - mean(y)) .^ 2)
    line(14), explained = 1 - ctranspose(r) * r / sum(power(y - mean(y), 2)), display(explained);
    // s
    line(15), display(s);
    // disp('year, employment, fitted, residual')
    line(16), disp(TM("year, employment, fitted, residual"));
    // disp([d(:,7) y x * b r])
    line(17), disp((BR(d(c_p, 7)), y, x * b, r));

    // disp('largest relative difference from x \ y of the normal equations, by \ and by lu')
    line(19), disp(TM("largest relative difference from x \\ y of the normal equations, by \\ and by lu"));
    // normal = (x' * x) \ (x' * y);
    line(20), normal = mldivide(ctranspose(x) * x, ctranspose(x) * y);
    // factored = u \ (l \ (p * (x' * y)));
    line(21), factored = mldivide(u, mldivide(l, p * (ctranspose(x) * y)));
    // disp([max(abs(normal ./ b - 1)) max(abs(factored ./ b - 1))])
    line(22), disp((BR(max(abs(rdivide(normal, b) - 1))), max(abs(rdivide(factored, b) - 1))));
    // f = rcond(x' * x)
    line(23), f = rcond(ctranspose(x) * x), display(f);
    // save(written, d, b, e)
    line(25), save(written, (CL(d), b, e));
    // clear d b e, load(written, b, e)
    line(26), clear((CL(d), b, e)), load(written, (CL(b), e));
    // fprintf('%14.6f %14.6f\n', [b e]')
    line(27), fprintf(TM("%14.6f %14.6f\\n"), ctranspose((BR(b), e)));
}

} // namespace

int main(int argc, char **argv) {
    initM2(QUORVEX_VERSION, sizeof(Mm));
    longley(TM(argc > 1 ? argv[1] : "longley.txt"), TM(argc > 2 ? argv[2] : "longley_results"));
    exitM();
}
