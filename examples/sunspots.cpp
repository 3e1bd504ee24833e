// Yearly sunspot numbers, 1700 to 2008: a program as the compiler of the language emits it.
//
// docs/generated-code.md explains the style. The hand-shake comes first. Each statement stores its line
// number in the source file; the comment above it is the text of that line.
//
// sunspots FILE RESULTS reads the numbers, a line "year number" each, and writes what it found to
// RESULTS.mat, and a table of it to RESULTS.txt.
#include <quorvex/generated.h>

namespace {

using generated::end_of, generated::Frame, generated::line;

// [t, x, title] = sunspot_numbers(file): years and numbers; the title is the comment in the first line
Mm sunspot_numbers(Mm file, i_o_t, Mm &t_, Mm &x_, Mm &title_) {
    Frame frame("sunspot_numbers.m");
    file.setname("file");
    Mm f(i_o, "f", 0), message(i_o, "message", 0), first(i_o, "first", 0), a(i_o, "a", 0), t(i_o, "t", 0),
        x(i_o, "x", 0), title(i_o, "title", 0);
    // [f, message] = fopen(file, 'r');
    line(2), fopen(file, TM("r"), i_o, f, message);
    // if f < 0, error([file ': ' message]), end
    line(3);
    if (istrue(f < 0)) error(Mm((BR(file), ": ", message)));
    // title = fgetl(f);
    line(4), title = fgetl(f);
    // title = title(3:end);
    line(5), title = title(colon(3, end_of(title)));
    // first = sscanf(fgetl(f), '%f');
    line(6), first = sscanf(fgetl(f), TM("%f"));
    // a = [first fscanf(f, '%f', [2 Inf])];
    line(7), a = (BR(first), fscanf(f, TM("%f"), (BR(2), Inf)));
    // fclose(f);
    line(8), fclose(f);
    // t = a(1,:)'; x = a(2,:)';
    line(9), t = ctranspose(a(1, c_p)), x = ctranspose(a(2, c_p));
    return t_ = t, x_ = x, title_ = title, x_M;
}

// report(file, title, c): a table of the cycles
void report(Mm file, Mm title, Mm c) {
    Frame frame("report.m");
    file.setname("file"), title.setname("title"), c.setname("c");
    Mm f(i_o, "f", 0), k(i_o, "k", 0);
    // f = fopen(file, 'wt');
    line(2), f = fopen(file, TM("wt"));
    // fprintf(f, 'Cycles of the %s', title);
    line(3), fprintf(f, TM("Cycles of the %s"), CL(title));
    // fprintf(f, '\n\nstart  peak  number  years\n');
    line(4), fprintf(f, TM("\\n\\nstart  peak  number  years\\n"));
    // for k = 1:length(c)
    line(5);
    for (double k_ = 1, end = scalar(length(c)); k_ <= end; ++k_) {
        k = k_;
        // fprintf(f, '%5d %5d %7.1f %6d\n', c(k).start, c(k).peak, c(k).value, c(k).length);
        line(6), fprintf(f, TM("%5d %5d %7.1f %6d\\n"),
                         (CL(c(k).member("start")), c(k).member("peak"), c(k).member("value"),
                          c(k).member("length")));
    }
    // fclose(f);
    line(8), fclose(f);
}

// w = windows(x, m, n): column k holds m elements of x from the k-th on, and zeros after the last
Mm windows(Mm x, Mm m, Mm n) {
    Frame frame("windows.m");
    x.setname("x"), m.setname("m"), n.setname("n");
    Mm i(i_o, "i", 0), j(i_o, "j", 0), w(i_o, "w", 0);
    // x = [x; zeros(n, 1)];
    line(2), x = (BR(x), semi, zeros(n, 1));
    // [i, j] = ndgrid(1:m, 0:n-1);
    line(3), ndgrid(colon(1, m), colon(0, n - 1), i_o, i, j);
    // w = x(i + j);
    line(4), w = x(i + j);
    return w;
}

// c = cycles(t, x): a structure for each cycle of x over the years t, which lasts from a minimum (the lowest
// of seven years) to the next
Mm cycles(Mm t, Mm x) {
    Frame frame("cycles.m");
    t.setname("t"), x.setname("x");
    Mm k(i_o, "k", 0), first(i_o, "first", 0), low(i_o, "low", 0), at(i_o, "at", 0), lows(i_o, "lows", 0),
        span(i_o, "span", 0), value(i_o, "value", 0), c(i_o, "c", 0);
    // lows = [];
    line(2), lows = nop_M;
    // for k = 2:length(x)
    line(3);
    for (double k_ = 2, end = scalar(length(x)); k_ <= end; ++k_) {
        k = k_;
        // first = max(1, k - 3);
        line(4), first = max(1, k - 3);
        // [low, at] = min(x(first : min(k + 3, length(x))));
        line(5), min(x(colon(first, min(k + 3, length(x)))), i_o, low, at);
        // if first + at - 1 == k, lows(end + 1) = k; end
        line(6);
        if (scalar(first + at - 1 == k)) lows(end_of(lows) + 1) = k;
    }
    // for k = 1 : length(lows) - 1
    line(8);
    for (double k_ = 1, end = scalar(length(lows)) - 1; k_ <= end; ++k_) {
        k = k_;
        // span = lows(k) : lows(k + 1) - 1;
        line(9), span = colon(lows(k), lows(k + 1) - 1);
        // [value, at] = max(x(span));
        line(10), max(x(span), i_o, value, at);
        // c(k).start = t(lows(k));
        line(11), c(k).member("start") = t(lows(k));
        // c(k).peak = t(span(at));
        line(12), c(k).member("peak") = t(span(at));
        // c(k).value = value;
        line(13), c(k).member("value") = value;
        // c(k).length = length(span);
        line(14), c(k).member("length") = length(span);
    }
    return c;
}

void sunspots(Mm file, Mm written) {
    Frame frame("sunspots.m");
    file.setname("file"), written.setname("written");
    Mm x(i_o, "x", 0), t(i_o, "t", 0), title(i_o, "title", 0), lower(i_o, "lower", 0),
        summary(i_o, "summary", 0), high(i_o, "high", 0), records(i_o, "records", 0),
        spotless(i_o, "spotless", 0), decades(i_o, "decades", 0), c(i_o, "c", 0), m(i_o, "m", 0),
        k(i_o, "k", 0), odd(i_o, "odd", 0), outlier(i_o, "outlier", 0), table(i_o, "table", 0),
        s(i_o, "s", 0), correlation(i_o, "correlation", 0), top(i_o, "top", 0), at(i_o, "at", 0),
        low(i_o, "low", 0), last(i_o, "last", 0), extremes(i_o, "extremes", 0), d(i_o, "d", 0),
        lag(i_o, "lag", 0), r(i_o, "r", 0), level(i_o, "level", 0), chart(i_o, "chart", 0),
        ticks(i_o, "ticks", 0), period(i_o, "period", 0), z(i_o, "z", 0);

    // [t, x, title] = sunspot_numbers(file);
    line(2), sunspot_numbers(file, i_o, t, x, title);
    // lower = title >= 97 & title <= 122;
    line(3), lower = title >= 97 && title <= 122;
    // title(lower) = title(lower) - 32;
    line(4), title(lower) = title(lower) - 32;
    // disp(title)
    line(6), disp(title);

    // summary = {'years', length(x); 'mean', mean(x); 'median', median(x); 'deviation', std(x)};
    line(8), summary = (CL("years"), length(x), semi, "mean", mean(x), semi, "median", median(x), semi,
                        "deviation", stdM(x));
    // disp(summary)
    line(9), disp(summary);
    // high = x > 150;
    line(10), high = x > 150;
    // records = [t(high) x(high)]'
    line(11), records = ctranspose((BR(t(high)), x(high))), display(records);
    // spotless = t(x == 0)'
    line(12), spotless = ctranspose(t(x == 0)), display(spotless);

    // disp('means of the decades; a column is a century')
    line(14), disp(TM("means of the decades; a column is a century"));
    // decades = reshape(mean(reshape(x(1:300), 10, 30)), 10, 3);
    line(15), decades = reshape(mean(reshape(x(colon(1, 300)), 10, 30)), 10, 3);
    // disp([0 1700:100:1900; (0:10:90)' decades])
    line(16), disp((BR(0), colon(1700, 100, 1900), semi, ctranspose(colon(0, 10, 90)), decades));

    // disp('the cycles, from minimum to minimum')
    line(18), disp(TM("the cycles, from minimum to minimum"));
    // c = cycles(t, x);
    line(19), c = cycles(t, x);
    // report([written '.txt'], title, c), save([written '.mat'], t, x, c)
    line(19), report(Mm((BR(written), ".txt")), title, c), save(Mm((BR(written), ".mat")), (CL(t), x, c));
    // disp([fieldnames(c)'; squeeze(struct2cell(c))'])
    line(20), disp((BR(ctranspose(fieldnames(c))), semi, ctranspose(squeeze(struct2cell(c)))));
    // m = [];
    line(21), m = nop_M;
    // for k = 1:length(c), m = [m; c(k).peak - c(k).start, c(k).value, c(k).length]; end
    line(22);
    for (double k_ = 1, end = scalar(length(c)); k_ <= end; ++k_) {
        k = k_;
        m = (BR(m), semi, c(k).member("peak") - c(k).member("start"), c(k).member("value"),
             c(k).member("length"));
    }
    // odd = abs(m(:,3) - mean(m(:,3))) > 2 * std(m(:,3));
    line(23), odd = abs(m(c_p, 3) - mean(m(c_p, 3))) > 2 * stdM(m(c_p, 3));
    // outlier = c(odd)
    line(24), outlier = c(odd), display(outlier);
    // c(odd) = [];
    line(25), c(odd) = nop_M;
    // m(odd,:) = [];
    line(26), m(odd, c_p) = nop_M;

    // disp('without the outlier: years of rise, height of the peak, years in all')
    line(28), disp(TM("without the outlier: years of rise, height of the peak, years in all"));
    // table = num2cell([mean(m); std(m)]);
    line(29), table = num2cell((BR(mean(m)), semi, stdM(m)));
    // disp([{'cycles', 'rise', 'height', 'length'}; {'mean'; 'deviation'} table])
    line(30),
        disp((BR((CL("cycles"), "rise", "height", "length")), semi, (CL("mean"), semi, "deviation"), table));
    // s = cov(m(:,1), m(:,2));
    line(31), s = cov(m(c_p, 1), m(c_p, 2));
    // correlation = s(1,2) / sqrt(s(1,1) * s(2,2))
    line(32), correlation = s(1, 2) / sqrt(s(1, 1) * s(2, 2)), display(correlation);
    // [top, at] = max(m(:,2));
    line(33), max(m(c_p, 2), i_o, top, at);
    // [low, last] = min(m(:,2));
    line(34), min(m(c_p, 2), i_o, low, last);
    // extremes = {'strongest', c(at); 'weakest', c(last)};
    line(35), extremes = (CL("strongest"), c(at), semi, "weakest", c(last));
    // celldisp(extremes)
    line(36), celldisp(extremes);

    // disp('autocorrelation at lags of 0 to 60 years, a tick every eleven')
    line(38), disp(TM("autocorrelation at lags of 0 to 60 years, a tick every eleven"));
    // d = x - mean(x);
    line(39), d = x - mean(x);
    // lag = 0:60;
    line(40), lag = colon(0, 60);
    // r = d' * windows(d, length(d), 61) / (d' * d);
    line(41), r = ctranspose(d) * windows(d, length(d), 61) / (ctranspose(d) * d);
    // level = (7:-1:0)' / 8;
    line(42), level = ctranspose(colon(7, -1, 0)) / 8;
    // chart = repmat(r, 8, 1) > repmat(level, 1, 61);
    line(43), chart = repmat(r, 8, 1) > repmat(level, 1, 61);
    // ticks = mod(lag, 11) == 0;
    line(44), ticks = mod(lag, 11) == 0;
    // disp(setstr([32 + 10 * chart; 32 + 92 * ticks]))
    line(45), disp(setstr((BR(32 + 10 * chart), semi, 32 + 92 * ticks)));
    // [top, at] = max(r(7:end));
    line(46), max(r(colon(7, end_of(r))), i_o, top, at);
    // period = lag(at + 6)
    line(47), period = lag(at + 6), display(period);

    // disp('Fourier coefficients of periods of 10 to 12 years, and the largest')
    line(49), disp(TM("Fourier coefficients of periods of 10 to 12 years, and the largest"));
    // period = 10:0.5:12;
    line(50), period = colon(10, 0.5, 12);
    // z = 2 / length(d) * d' * exp(-2 * pi * i * t * (1 ./ period));
    line(51), z = 2 / length(d) * ctranspose(d) * exp(-2 * pi * i * t * rdivide(1, period));
    // [top, at] = max(abs(z));
    line(52), max(abs(z), i_o, top, at);
    // disp([period; z]), disp([period(at) z(at)])
    line(53), disp((BR(period), semi, z)), disp((BR(period(at)), z(at)));

    // try, x(end + 1), catch, disp(lasterr), end
    line(55);
    try {
        generated::Try armed;
        display(x(end_of(x) + 1));
    } catch (const char *) {
        disp(lasterr());
    }
}

} // namespace

int main(int argc, char **argv) {
    initM2(QUORVEX_VERSION, sizeof(Mm));
    sunspots(TM(argc > 1 ? argv[1] : "sunspots.txt"), TM(argc > 2 ? argv[2] : "sunspots_results"));
    exitM();
}
