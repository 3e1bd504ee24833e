// Formats of formatted text as lists of pieces, for writing and for reading.
//
// A piece is a conversion with the text before it; the text after the last conversion is a piece, too. The C
// formatter is only ever given the one conversion of a piece, rebuilt from its parsed fields; literal text
// does not pass through it, so no stray percent sign makes it read missing arguments.
#ifndef QUORVEX_TEXT_FORMAT_FORMAT_LIST_H
#define QUORVEX_TEXT_FORMAT_FORMAT_LIST_H

#include <cstdio>
#include <optional>
#include <string_view>

#include "base/scratch.h"
#include "text/number_text.h"
#include "text/text_buffer.h"

namespace kn {

struct Piece {
    static constexpr char no_conversion = '=';

    char conversion = no_conversion; // a letter of "diouxXeEfFgGcsnp", or none
    char modifier = 0;               // of length: a letter of "lhLHbtBT"
    bool for_c = false;              // a conversion for C, too; else part of the text
    std::string_view text;           // all of it, or what precedes the conversion for C
    std::string_view shown;          // the same as C writes it: "%%" as a percent sign

    // For writing.
    char c_format[48] = "";     // "%-8.3lf"
    bool plain = false;         // no flag but "-"
    bool left = false;          // the flag "-" is present
    int columns = 0;            // least width
    int precision = -1;         // none
    std::string_view too_large; // width or precision beyond the bound

    // For reading.
    bool skip = false;       // contains a "*": what is read is not kept
    bool suppressed = false; // "%*d": it is not counted either
    bool readable = false;   // "%", "*", width, letter and nothing else
    int width = -1;          // none
};

class FormatList {
  public:
    // The format in a value, its backslashes resolved.
    explicit FormatList(const Mm &fmt);

    // False for a format that is not text (after a report) and when memory is exhausted.
    explicit operator bool() const { return pieces_ && *pieces_; }
    bool chars_only() const { return chars_only_; } // all conversions are c or s
    bool has(char conversion) const;
    // False after a report about a width or precision.
    bool printable() const;

    const Piece &piece() const { return (*pieces_)[cursor_]; }
    void advance() { cursor_ = cursor_ == last_ ? 0 : cursor_ + 1; }
    bool at_start() const { return cursor_ == 0; }

  private:
    const char *parse_piece(const char *at, Piece &piece);
    void understand(Piece &piece, size_t percent);

    TextBuffer text_;
    std::optional<Scratch<Piece>> pieces_;
    ptrdiff_t last_ = -1, cursor_ = 0;
    bool chars_only_ = true;
};

// The characters of a value in storage order, up to a null character. False after a report.
bool flatten(const Mm &m, TextBuffer &out);
// The format in a value, its backslashes resolved: "\n", "\r" and "\t" are newline, return and tab, any other
// pair its second character. A backslash at the end is dropped.
bool format_unescape(const Mm &fmt, TextBuffer &out);

// The values of a list: the elements of a cell, or the value itself.
kn_size values_of(const Mm &list);
const Mm &value_of(const Mm &list, kn_size k); // from 1

// Appends one value, starting at the current piece. False after a report.
bool format_print(FormatList &list, const Mm &value, TextBuffer &out);

// What sscanf and fscanf share: reads from the stream, or from the text when there is none, into the outputs.
// After a report false, and the outputs are unchanged.
bool format_scan(std::FILE *stream, std::string_view text, const Mm &fmt, const Mm &size, Mm &a, Mm &count,
                 Mm &msg);

} // namespace kn

#endif
