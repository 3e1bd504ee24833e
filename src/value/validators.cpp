// Argument checks that name the caller and the value, and the language's own words about messages.

#include <cstdio>
#include <cstring>

#include "base/message_funnel.h"
#include "platform/platform.h"
#include "quorvex/classes.h"
#include "quorvex/display.h"
#include "quorvex/messages.h"
#include "quorvex/startup.h"

int error_2d(const Mm &x, const char *name) {
    if (x.getndims() < 3) return 0;
    char ndims[12];
    std::snprintf(ndims, sizeof ndims, "%d", x.getndims());
    error("%s: 2-d matrix expected, but matrix %s has %s dimensions", name, kn_display_name(x), ndims);
    return 1;
}

int error_square(const Mm &x, const char *name) {
    if (error_2d(x, name)) return 1;
    if (x.rows() == x.cols()) return 0;
    error("%s: square matrix expected, but matrix %s has %td rows and %td columns", name, kn_display_name(x),
          x.rows(), x.cols());
    return 1;
}

int error_sparse(const Mm &x, const char *name) {
    if (x.issparse()) return 0;
    error("%s: sparse matrix expected, but matrix %s is full", name, kn_display_name(x));
    return 1;
}

int error_struct(const Mm &x, const char *name) {
    if (x.isstruct()) return 0;
    error("%s: structure expected, but matrix %s is not", name, kn_display_name(x));
    return 1;
}

int error_numeric(const Mm &x, const char *name) {
    if (x.gettype() != kn_Mm) return 0;
    error("%s: numeric data expected, but matrix %s is not", name, kn_display_name(x));
    return 1;
}

void validate_narg(const char *name, int nargout, int nargin, int min_out, int max_out, int min_in,
                   int max_in) {
    if (nargout < min_out)
        error("Too few (%d<%d) outputs for %s", nargout, min_out, name);
    else if (nargout > max_out)
        error("Too many (%d>%d) outputs for %s", nargout, max_out, name);
    else if (nargin < min_in)
        error("Too few (%d<%d) inputs for %s", nargin, min_in, name);
    else if (nargin > max_in)
        error("Too many (%d>%d) inputs for %s", nargin, max_in, name);
}

double error_input(const char *name, int n) {
    error("%s does not accept %d input%s", name, n, n == 1 ? "" : "s");
    return 0.0;
}

namespace {

// The rows of a text, joined by newlines and cut at size - 1 characters. What is no text or number is
// reported in the caller's name, and false.
bool text_of(const char *caller, const Mm &x, char *buf, int size) {
    if (error_numeric(x, caller)) return false;
    int n = 0;
    Mm text = mdouble(x);
    kn_size rows = text.rows(), cols = rows ? text.getnnz() / rows : 0;
    for (kn_size r = 0; r < rows; ++r)
        for (kn_size c = r ? -1 : 0; c < cols && n < size - 1; ++c)
            buf[n++] = c < 0 ? '\n' : static_cast<char>(double_to_int(text.addr()[r + c * rows]));
    buf[n] = '\0';
    return true;
}

} // namespace

using kn::lasterr_buffer;

Mm error(const Mm &msg) {
    char text[kn::text_size];
    if (msg.size() > 0 && text_of("error", msg, text, sizeof text)) error("%s", text);
    return x_M;
}

Mm warning(const Mm &msg) {
    char text[1025];
    if (!text_of("warning", msg, text, sizeof text)) return x_M;
    if (std::strcmp(text, "on") != 0 && std::strcmp(text, "off") != 0) warning("%s", text);
    return x_M;
}

Mm warning() { return TM("on"); }

Mm lasterr() {
    Mm text = TM(lasterr_buffer);
    *lasterr_buffer = '\0';
    return text;
}

Mm lasterr(const Mm &text) {
    text_of("lasterr", text, lasterr_buffer, sizeof lasterr_buffer);
    return x_M;
}

Mm mfilename() {
    int depth = kn_error_stack.depth;
    if (depth < 1 || depth > 512 || !kn_error_stack.file[depth]) return TM("unknown");
    const char *file = kn::os::last_part(kn_error_stack.file[depth]);
    char name[512];
    std::snprintf(name, sizeof name, "%.*s", static_cast<int>(std::strcspn(file, ".")), file);
    return TM(name);
}

Mm mfileline() {
    int depth = kn_error_stack.depth;
    return depth < 1 || depth > 512 ? 0.0 : static_cast<double>(kn_error_stack.line[depth]);
}
