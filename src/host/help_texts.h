// The texts of the functions, made from the public headers when the library is built
// (docs/reference/generator.cpp).
#ifndef QUORVEX_HOST_HELP_TEXTS_H
#define QUORVEX_HOST_HELP_TEXTS_H

namespace kn {

struct HelpText {
    const char *name; // in C++
    const char *text; // lines: the ways to call it, then what the header says
};

extern const HelpText help_texts[]; // by name
extern const int help_text_count;

} // namespace kn

#endif
