// Growing text, and rows of text that are printed or become a character matrix.
//
// Memory comes from the C heap through the allocation probe. When it is exhausted "Out of memory!" is
// reported once; if the handler returns, the buffer keeps its content, accepts nothing more, and converts to
// false.
#ifndef QUORVEX_TEXT_TEXT_BUFFER_H
#define QUORVEX_TEXT_TEXT_BUFFER_H

#include <cstddef>
#include <cstring>
#include <string_view>

#include "base/poll.h"
#include "quorvex/values.h"

namespace kn {

class TextBuffer {
  public:
    TextBuffer() = default;
    ~TextBuffer();
    TextBuffer(const TextBuffer &) = delete;
    TextBuffer &operator=(const TextBuffer &) = delete;

    explicit operator bool() const { return !failed_; }
    // The same, tested for each element of a long text: an interrupted call accepts nothing more either.
    bool goes_on() {
        if (poll_.interrupted()) failed_ = true;
        return !failed_;
    }
    size_t size() const { return size_; }
    char *data() { return data_; }
    std::string_view view() const { return {data_, size_}; }
    const char *c_str(); // ends with a null character

    // Room for n more characters; `advance` then adds the count written. Null when memory is exhausted.
    char *room(size_t n) { return n < capacity_ - size_ || grow(n) ? data_ + size_ : nullptr; }
    void advance(size_t n) { size_ += n; }

    void append(std::string_view text) {
        if (char *to = room(text.size())) {
            std::memcpy(to, text.data(), text.size());
            size_ += text.size();
        }
    }
    void append(char c) { append(std::string_view(&c, 1)); }
    void append_blanks(size_t n) {
        if (char *to = room(n)) {
            std::memset(to, ' ', n);
            size_ += n;
        }
    }
    // Replaces the n characters at `at` by `text`.
    void replace(size_t at, size_t n, std::string_view text);
    void clear() { size_ = 0; }
    void swap(TextBuffer &other);

  private:
    bool grow(size_t n);

    static constexpr size_t inline_size = 256;
    char inline_[inline_size];
    char *heap_ = nullptr;
    char *data_ = inline_;
    size_t size_ = 0, capacity_ = inline_size; // one byte of the capacity is kept for the null character
    bool failed_ = false;
    Poll poll_{64};
};

// Rows of text, each followed by a newline. Write a row through `text`, then call `end_row`; after `finish`
// all have the width of the longest, padded with blanks.
class TextRows {
  public:
    TextBuffer text;

    explicit operator bool() const { return static_cast<bool>(text); }
    kn_size rows() const { return rows_; }
    size_t width() const { return width_; }
    void end_row();
    bool finish();

    // The number of leading columns that are blank in every row.
    size_t leading_blanks();
    // The rows from column `from` on: to the print handler, one call a row (a row ends at a null character);
    // as a character matrix, x_M when memory is exhausted.
    void print(size_t from = 0);
    Mm value(size_t from = 0);

  private:
    kn_size rows_ = 0;
    size_t width_ = 0, start_ = 0;
    bool even_ = true;
};

} // namespace kn

#endif
