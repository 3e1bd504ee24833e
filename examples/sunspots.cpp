// Yearly sunspot numbers, 1700 to 2008: a program as the compiler of the language emits it.
//
// The hand-shake comes first. Every variable is a named Mm, every function of the program a C++ function of
// values, every function of the language is called by its name. Each statement first stores its line of the
// source file, whose text stands above it as a comment.
//
// Two things wait for later parts of the library. The numbers stand in the program as an array, until file
// streams can read examples/data/sunspots.txt. And single elements are reached through r(), i() and addr(),
// until there are subscripts.
#include <quorvex.h>

namespace {

const double sunspot_data[] = {
    5,     11,    16,    23,    36,    58,    29,    20,    10,    8,     3,     0,     0,     2,     11,
    27,    47,    63,    60,    39,    28,    26,    22,    11,    21,    40,    78,    122,   103,   73,
    47,    35,    11,    5,     16,    34,    70,    81,    111,   101,   73,    40,    20,    16,    5,
    11,    22,    40,    60,    80.9,  83.4,  47.7,  47.8,  30.7,  12.2,  9.6,   10.2,  32.4,  47.6,  54.0,
    62.9,  85.9,  61.2,  45.1,  36.4,  20.9,  11.4,  37.8,  69.8,  106.1, 100.8, 81.6,  66.5,  34.8,  30.6,
    7.0,   19.8,  92.5,  154.4, 125.9, 84.8,  68.1,  38.5,  22.8,  10.2,  24.1,  82.9,  132.0, 130.9, 118.1,
    89.9,  66.6,  60.0,  46.9,  41.0,  21.3,  16.0,  6.4,   4.1,   6.8,   14.5,  34.0,  45.0,  43.1,  47.5,
    42.2,  28.1,  10.1,  8.1,   2.5,   0.0,   1.4,   5.0,   12.2,  13.9,  35.4,  45.8,  41.1,  30.1,  23.9,
    15.6,  6.6,   4.0,   1.8,   8.5,   16.6,  36.3,  49.6,  64.2,  67.0,  70.9,  47.8,  27.5,  8.5,   13.2,
    56.9,  121.5, 138.3, 103.2, 85.7,  64.6,  36.7,  24.2,  10.7,  15.0,  40.1,  61.5,  98.5,  124.7, 96.3,
    66.6,  64.5,  54.1,  39.0,  20.6,  6.7,   4.3,   22.7,  54.8,  93.8,  95.8,  77.2,  59.1,  44.0,  47.0,
    30.5,  16.3,  7.3,   37.6,  74.0,  139.0, 111.2, 101.6, 66.2,  44.7,  17.0,  11.3,  12.4,  3.4,   6.0,
    32.3,  54.3,  59.7,  63.7,  63.5,  52.2,  25.4,  13.1,  6.8,   6.3,   7.1,   35.6,  73.0,  85.1,  78.0,
    64.0,  41.8,  26.2,  26.7,  12.1,  9.5,   2.7,   5.0,   24.4,  42.0,  63.5,  53.8,  62.0,  48.5,  43.9,
    18.6,  5.7,   3.6,   1.4,   9.6,   47.4,  57.1,  103.9, 80.6,  63.6,  37.6,  26.1,  14.2,  5.8,   16.7,
    44.3,  63.9,  69.0,  77.8,  64.9,  35.7,  21.2,  11.1,  5.7,   8.7,   36.1,  79.7,  114.4, 109.6, 88.8,
    67.8,  47.5,  30.6,  16.3,  9.6,   33.2,  92.6,  151.6, 136.3, 134.7, 83.9,  69.4,  31.5,  13.9,  4.4,
    38.0,  141.7, 190.2, 184.8, 159.0, 112.3, 53.9,  37.6,  27.9,  10.2,  15.1,  47.0,  93.8,  105.9, 105.5,
    104.5, 66.6,  68.9,  38.0,  34.5,  15.5,  12.6,  27.5,  92.5,  155.4, 154.6, 140.4, 115.9, 66.6,  45.9,
    17.9,  13.4,  29.4,  100.2, 157.6, 142.6, 145.7, 94.3,  54.6,  29.9,  17.5,  8.6,   21.5,  64.3,  93.3,
    119.6, 111.0, 104.0, 63.7,  40.4,  29.8,  15.2,  7.5,   2.9};

// One entry on the stack of source positions: pushed on entry to a function, popped on every way out.
struct Frame {
    explicit Frame(const char *file) { // the stack has 512 entries; deeper calls share the last
        if (kn_error_stack.depth < 512) ++kn_error_stack.depth;
        kn_error_stack.file[kn_error_stack.depth] = file;
        kn_error_stack.line_ptr = kn_error_stack.line + kn_error_stack.depth;
        *kn_error_stack.line_ptr = 0;
    }
    ~Frame() {
        kn_error_stack.depth = caller;
        kn_error_stack.line_ptr = kn_error_stack.line + caller;
    }
    int caller = kn_error_stack.depth;
};

void line(int n) { *kn_error_stack.line_ptr = n; }

// x = sunspot_numbers()
Mm sunspot_numbers() {
    Frame frame("sunspot_numbers.m");
    const int n = sizeof sunspot_data / sizeof *sunspot_data;
    Mm x = zeros(n, 1.0);
    for (int k = 0; k < x.rows(); ++k) x.addr()[k] = sunspot_data[k];
    return x;
}

// m = average(x)
Mm average(Mm x) {
    Frame frame("average.m");
    x.setname("x");
    Mm m(i_o, "m", 0);
    // m = sum(x) / length(x)
    line(2), m = sum(x) / length(x);
    return m;
}

// s = deviation(x)
Mm deviation(Mm x) {
    Frame frame("deviation.m");
    x.setname("x");
    Mm d(i_o, "d", 0), s(i_o, "s", 0);
    // d = x - average(x)
    line(2), d = x - average(x);
    // s = sqrt(sum(d .* d) / (length(x) - 1))
    line(3), s = sqrt(sum(times(d, d)) / (length(x) - 1));
    return s;
}

// w = windows(x, m, n): column k holds m elements of x from the k-th on, and zeros behind the last
Mm windows(Mm x, Mm m, Mm n) {
    Frame frame("windows.m");
    x.setname("x");
    Mm w(i_o, "w", 0);
    // w = zeros(m, n)
    line(2), w = zeros(m, n);
    // for k = 1:n, l = min(m, length(x) - k + 1); w(1:l, k) = x(k : k+l-1); end
    line(3);
    for (int k = 1; k <= w.cols(); ++k)
        for (int l = 1; l <= w.rows() && k + l - 1 <= x.length(); ++l) w.r(l, k) = x.r(k + l - 1);
    return w;
}

void sunspots() {
    Frame frame("sunspots.m");
    Mm x(i_o, "x", 0), n(i_o, "n", 0), title(i_o, "title", 0), mu(i_o, "mu", 0), middle(i_o, "middle", 0),
        sigma(i_o, "sigma", 0), top(i_o, "top", 0), low(i_o, "low", 0), at(i_o, "at", 0),
        year(i_o, "year", 0), spotless(i_o, "spotless", 0), decades(i_o, "decades", 0),
        active(i_o, "active", 0), smooth(i_o, "smooth", 0), d(i_o, "d", 0), lag(i_o, "lag", 0),
        r(i_o, "r", 0), level(i_o, "level", 0), chart(i_o, "chart", 0), ticks(i_o, "ticks", 0),
        cycle(i_o, "cycle", 0), period(i_o, "period", 0), t(i_o, "t", 0), z(i_o, "z", 0), fit(i_o, "fit", 0),
        square(i_o, "square", 0);

    // x = sunspot_numbers;
    line(1), x = sunspot_numbers();
    // title = 'yearly sunspot numbers, 1700 to 2008';
    line(2), title = TM("yearly sunspot numbers, 1700 to 2008");
    // disp(setstr(title - 32 * (title >= 97)))
    line(3), disp(setstr(title - 32 * (title >= 97)));

    // n = length(x)
    line(5), n = length(x), display(n);
    // mu = average(x)
    line(6), mu = average(x), display(mu);
    // middle = median(x)
    line(7), middle = median(x), display(middle);
    // sigma = deviation(x)
    line(8), sigma = deviation(x), display(sigma);
    // [top, at] = max(x)
    line(9), max(x, i_o, top, at), display(top), display(at);
    // year = 1699 + at
    line(10), year = 1699 + at, display(year);
    // [low, at] = min(x)
    line(11), min(x, i_o, low, at), display(low), display(at);
    // spotless = sum(x == 0)
    line(12), spotless = sum(x == 0), display(spotless);

    // disp('means of the decades; a column is a century')
    line(14), disp(TM("means of the decades; a column is a century"));
    // decades = reshape(sum(reshape(x(1:300), 10, 30)) / 10, 10, 3)
    line(15), decades = reshape(sum(reshape(windows(x, 300, 1), 10, 30)) / 10, 10, 3), display(decades);
    // active = decades > mu
    line(16), active = decades > mu, display(active);

    // disp('means of eleven years in a row: the highest, the lowest, and their middle years')
    line(18), disp(TM("means of eleven years in a row: the highest, the lowest, and their middle years"));
    // smooth = windows(x, n - 10, 11) * ones(11, 1) / 11;
    line(19), smooth = windows(x, n - 10, 11) * ones(11, 1) / 11;
    // [top, at] = max(smooth), year = 1704 + at
    line(20), max(smooth, i_o, top, at), display(top), display(at), year = 1704 + at, display(year);
    // [low, at] = min(smooth), year = 1704 + at
    line(21), min(smooth, i_o, low, at), display(low), display(at), year = 1704 + at, display(year);

    // disp('autocorrelation at lags of 0 to 60 years, a tick every eleven')
    line(23), disp(TM("autocorrelation at lags of 0 to 60 years, a tick every eleven"));
    // d = x - mu;
    line(24), d = x - mu;
    // lag = 0:60;
    line(25), lag = colon(0, 60);
    // r = d' * windows(d, n, 61) / (d' * d);
    line(26), r = ctranspose(d) * windows(d, n, 61) / (ctranspose(d) * d);
    // level = 1 - cumsum(ones(8, 1)) / 8;
    line(27), level = 1 - cumsum(ones(8, 1)) / 8;
    // chart = ones(8, 1) * r > level * ones(1, 61);
    line(28), chart = ones(8, 1) * r > level * ones(1, 61);
    // ticks = mod(lag, 11) == 0;
    line(29), ticks = mod(lag, 11) == 0;
    // disp(strvcat(setstr(32 + 10 * chart), setstr(32 + 92 * ticks)))
    line(30), disp(strvcat(setstr(32 + 10 * chart), setstr(32 + 92 * ticks)));
    // [top, at] = max(r .* (lag > 5)), cycle = lag(at)
    line(31), max(times(r, lag > 5), i_o, top, at), display(top), display(at);
    line(31), cycle = lag.r(scalar(at)), display(cycle);

    // disp('Fourier coefficients of periods of 10 to 12 years')
    line(33), disp(TM("Fourier coefficients of periods of 10 to 12 years"));
    // period = 10:0.5:12
    line(34), period = colon(10, 0.5, 12), display(period);
    // t = cumsum(ones(n, 1));
    line(35), t = cumsum(ones(n, 1));
    // z = 2 / n * d' * exp(-2 * pi * i * t * (1 ./ period))
    line(36), z = 2 / n * ctranspose(d) * exp(-2 * pi * i * t * rdivide(1, period)), display(z);
    // [top, at] = max(abs(z));
    line(37), max(abs(z), i_o, top, at);
    // cycle = period(at)
    line(38), cycle = period.r(scalar(at)), display(cycle);
    // fit = z(at);
    line(39), fit = z.r(scalar(at)) + z.i(scalar(at)) * i;
    // format long, disp(fit), disp(abs(fit)), format short
    line(40), format(TM("long")), disp(fit), disp(abs(fit)), format(TM("short"));

    // try, square = x * x; catch, disp(lasterr), end
    line(42);
    kn_set_default_error_flags(16, 1);
    try {
        square = x * x;
    } catch (const char *) { // the frames that the error left have popped their entries
        disp(lasterr());
    }
    kn_set_default_error_flags(16, 0);
}

} // namespace

int main() {
    initM2(QUORVEX_VERSION, sizeof(Mm));
    sunspots();
    exitM();
}
