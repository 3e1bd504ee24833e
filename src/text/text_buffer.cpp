// Growing text and rows of text.

#include "text/text_buffer.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "base/scratch.h"
#include "quorvex/messages.h"
#include "quorvex/startup.h"
#include "value/header.h"

namespace kn {

TextBuffer::~TextBuffer() { heap_free(heap_); }

bool TextBuffer::grow(size_t n) {
    if (failed_) return false;
    char *bigger = nullptr;
    size_t room = 0;
    if (n < SIZE_MAX / 4) {
        room = std::max(2 * capacity_, size_ + n + 1);
        bigger = static_cast<char *>(heap_alloc(room));
    }
    if (!bigger) {
        failed_ = true;
        out_of_memory();
        return false;
    }
    std::memcpy(bigger, data_, size_);
    heap_free(heap_);
    heap_ = data_ = bigger;
    capacity_ = room;
    return true;
}

const char *TextBuffer::c_str() {
    data_[size_] = '\0';
    return data_;
}

void TextBuffer::replace(size_t at, size_t n, std::string_view text) {
    if (text.size() > n && !room(text.size() - n)) return;
    std::memmove(data_ + at + text.size(), data_ + at + n, size_ - at - n);
    std::memcpy(data_ + at, text.data(), text.size());
    size_ = size_ - n + text.size();
}

void TextBuffer::swap(TextBuffer &other) {
    std::swap(inline_, other.inline_);
    std::swap(heap_, other.heap_);
    std::swap(size_, other.size_);
    std::swap(capacity_, other.capacity_);
    std::swap(failed_, other.failed_);
    data_ = heap_ ? heap_ : inline_;
    other.data_ = other.heap_ ? other.heap_ : other.inline_;
}

void TextRows::end_row() {
    size_t n = text.size() - start_;
    even_ = even_ && (rows_ == 0 || n == width_);
    width_ = std::max(width_, n);
    text.append('\n');
    start_ = text.size();
    ++rows_;
}

bool TextRows::finish() {
    if (!text || even_) return static_cast<bool>(text);
    TextBuffer padded;
    const char *row = text.data();
    for (kn_size r = 0; r < rows_; ++r) {
        const size_t left = static_cast<size_t>(text.data() + text.size() - row);
        size_t n = static_cast<size_t>(static_cast<const char *>(std::memchr(row, '\n', left)) - row);
        padded.append({row, n});
        padded.append_blanks(width_ - n);
        padded.append('\n');
        row += n + 1;
    }
    text.swap(padded);
    return static_cast<bool>(text);
}

size_t TextRows::leading_blanks() {
    size_t blanks = width_;
    for (size_t r = 0; r < static_cast<size_t>(rows_); ++r) {
        const char *row = text.data() + r * (width_ + 1);
        blanks = static_cast<size_t>(std::find_if(row, row + blanks, [](char c) { return c != ' '; }) - row);
    }
    return blanks;
}

void TextRows::print(size_t from) {
    text.c_str();
    for (size_t r = 0; r < static_cast<size_t>(rows_) && text.goes_on(); ++r) {
        char *row = text.data() + r * (width_ + 1), *end = row + width_ + 1, after = *end;
        if (void *null = std::memchr(row + from, '\0', width_ - from)) {
            char *cut = static_cast<char *>(null);
            cut[0] = '\n';
            cut[1] = '\0';
        }
        *end = '\0';
        kn_print_handler(row + from);
        *end = after;
    }
}

Mm TextRows::value(size_t from) {
    size_t n = width_ - from;
    kn_size m = rows_, cols = static_cast<kn_size>(n);
    Mm out(0, 0, 0, m, cols, kn_double);
    if (m > 0 && cols > 0 && out.getnnz() == 0) return x_M;
    out.setstr(1);
    double *to = out.addr();
    for (size_t c = from; c < from + n; ++c) {
        const char *at = text.data() + c;
        for (kn_size r = 0; r < m; ++r, at += width_ + 1) *to++ = static_cast<unsigned char>(*at);
    }
    return out;
}

} // namespace kn
