// Numbers as fields of text: the %g formatter, the field of one element, and whole values as rows of fields.
#ifndef QUORVEX_TEXT_NUMBER_TEXT_H
#define QUORVEX_TEXT_NUMBER_TEXT_H

#include "text/text_buffer.h"

extern int format_short; // 1: 4 significant digits, 0: 12

namespace kn {

// The conversion %.Pg. A negative P is 6 and 0 is 1, as for printf. No double has more than 767 significant
// digits and %g drops trailing zeros, so P above max_precision changes nothing and every text is shorter than
// `room`.
class Digits {
  public:
    static constexpr int max_precision = 780, room = 800;

    explicit Digits(int precision);
    // The text, without a null character; returns its length.
    size_t write(char *out, double x) const;

  private:
    int precision_;
    double whole_; // whole numbers below it have no exponent
};

// The first element of `digits` as the P of Digits.
int precision_of(const Mm &digits);

// The format %{width}.{P}g after this many blanks.
struct NumberFormat {
    Digits digits;
    size_t width = 0, blanks = 0;
};

// Appends a number as displayed: NaN, Inf and -Inf in the language's spelling, within the same width.
void append_number(TextBuffer &out, double x, const NumberFormat &f);

// Replaces the formatter's spelling of a number that isn't finite, in the text from `start` on.
void respell(TextBuffer &out, size_t start, double x);

// Appends the field of a complex element. The imaginary part is a blank, its sign, its magnitude by im_format
// and "i"; all blanks when it is 0.
void append_field(TextBuffer &out, double re, double im, const NumberFormat &re_format,
                  const NumberFormat &im_format);

// The text of a value that is neither a character value nor empty: a row of fields per row, a line per stored
// element of a sparse value; `width` is that of the first field. An imaginary plane of zeros is dropped from
// m. "Can not convert %s into a numerical matrix" for cells and structures; false then, and when memory is
// exhausted.
bool number_rows(const Mm &m, int precision, TextRows &out, size_t &width);

} // namespace kn

#endif
