// The help texts of the functions, generated from the public headers when the library is built
// (docs/reference/generator.cpp).
#ifndef QUORVEX_HOST_HELP_TEXTS_H
#define QUORVEX_HOST_HELP_TEXTS_H

namespace kn {

struct HelpText {
    const char *name; // the C++ name
    const char *text; // lines: the forms of the call, then the description from the header
};

extern const HelpText help_texts[]; // sorted by name
extern const int help_text_count;

} // namespace kn

#endif
