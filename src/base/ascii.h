// Kinds and cases of characters as ASCII has them, whatever locale the program has chosen: of chars, of what
// getc answers, and of the codes in text values alike.
#ifndef QUORVEX_BASE_ASCII_H
#define QUORVEX_BASE_ASCII_H

namespace kn {

template <class T> constexpr bool is_white(T c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
template <class T> constexpr bool is_digit(T c) { return c >= '0' && c <= '9'; }
template <class T> constexpr bool is_upper(T c) { return c >= 'A' && c <= 'Z'; }
template <class T> constexpr bool is_lower(T c) { return c >= 'a' && c <= 'z'; }
template <class T> constexpr bool is_letter(T c) { return is_upper(c) || is_lower(c); }
template <class T> constexpr T to_upper(T c) { return is_lower(c) ? static_cast<T>(c - 32) : c; }
template <class T> constexpr T to_lower(T c) { return is_upper(c) ? static_cast<T>(c + 32) : c; }

} // namespace kn

#endif
