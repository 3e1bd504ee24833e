// Values as lines of text through the print handler.

#include "quorvex/display.h"

#include <cstdint>
#include <cstdio>

#include "platform/platform.h"
#include "quorvex/classes.h"
#include "quorvex/messages.h"
#include "quorvex/startup.h"
#include "special/scalar_kernels.h"
#include "text/number_text.h"
#include "text/page.h"
#include "text/value_display.h"
#include "value/header.h"
#include "value/strings.h"

namespace kn {
namespace {

constexpr int long_precision = 12, short_precision = 4;

void print(TextBuffer &text) {
    if (text) kn_print_handler(text.c_str());
}

void print_fields(const Mm &m) {
    bool one = m.size() == 1;
    if (m.size() > 1) kn_print_handler("field list:\n");
    for (int k = 0; k < m.getnfields(); ++k) {
        TextBuffer line;
        line.append("  ");
        line.append(m.getfields()[k]);
        if (one) {
            const Mm &values = m.mr(1);
            if (values.gettype() != kn_Mm || values.size() != m.getnfields()) {
                error("structure '%s' is built wrong", kn_display_name(m));
                return;
            }
            line.append(": [");
            append_summary(line, values.mr(k + 1));
            line.append(']');
        }
        line.append('\n');
        print(line);
    }
}

void print_object(const Mm &m) {
    if (is_class_function(kn_class_word(m), "disp")) {
        call_class_function("disp", m);
        return;
    }
    kn_print_handler("field list:\n");
    for (int k = 0; k < m.getnfields(); ++k) kn_printf("%s\n", m.getfields()[k]);
}

void print_text(const Mm &m) {
    Codes codes(m);
    if (!codes) return;
    TextRows rows;
    for (kn_size r = 0; r < codes.rows(); ++r) {
        size_t n = static_cast<size_t>(codes.cols());
        char *to = rows.text.room(n);
        if (!to) return;
        for (kn_size c = 0; c < codes.cols(); ++c)
            to[c] = static_cast<char>(to_byte(codes.data()[r + c * codes.rows()]));
        rows.text.advance(n);
        rows.end_row();
    }
    if (rows) rows.print();
}

void print_matrix(const Mm &m) {
    if (m.isstr() && m.size() > 0 && m.gettype() != kn_none) {
        print_text(m);
        return;
    }
    TextRows rows;
    size_t width;
    if (!number_rows(m, format_short ? short_precision : long_precision, rows, width)) return;
    rows.print(format_short ? rows.leading_blanks() : 0);
}

// " (2x2)=4 double elements real (32 bytes)"
void append_description(TextBuffer &out, const Mm &m) {
    static constexpr size_t element_bytes[] = {0, sizeof(double), 1, sizeof(Mm)};
    const size_t bytes = element_bytes[m.gettype()] + (m.issparse() ? sizeof(kn_size) : 0);
    char numbers[64];
    out.append(" (");
    append_extents(out, m);
    std::snprintf(numbers, sizeof numbers, ")=%td ", m.size());
    out.append(numbers);
    out.append(kn_class_word(m));
    out.append(" elements ");
    if (!m.isstr()) out.append(m.isc() ? "complex" : "real");
    std::snprintf(numbers, sizeof numbers, " (%zu bytes)", bytes * static_cast<size_t>(m.getnnz()));
    out.append(numbers);
}

} // namespace

void append_extents(TextBuffer &out, const Mm &m) {
    char number[24];
    for (int k = 0; k < m.getndims(); ++k) {
        std::snprintf(number, sizeof number, k ? "x%td" : "%td", m.getdims()[k]);
        out.append(number);
    }
}

void each_page(const Mm &m, void (*work)(const Mm &page)) {
    const kn_size *d = m.getdims();
    if (m.getndims() == 3) {
        for (kn_size k = 1; k <= d[2]; ++k) {
            kn_printf("(:,:,%td)\n", k);
            work(page(m, k, 1));
        }
        return;
    }
    for (kn_size l = 1; l <= d[3]; ++l)
        for (kn_size k = 1; k <= d[2]; ++k) {
            kn_printf("(:,:,%td,%td)\n", k, l);
            work(page(m, k, l));
        }
}

} // namespace kn

using namespace kn;

Mm disp(const Mm &m) {
    if (same_block(m, x_M)) return x_M;
    if (m.isstruct())
        m.getclassid() ? print_object(m) : print_fields(m);
    else if (m.gettype() == kn_Mm)
        print_cell(m);
    else if (m.getndims() > 2)
        each_page(m, [](const Mm &p) { disp(p); });
    else
        print_matrix(m);
    return x_M;
}

Mm puts(const Mm &m) { return disp(m); }

Mm disp_header(const Mm &m) {
    if (same_block(m, x_M)) return x_M;
    TextBuffer description;
    append_description(description, m);
    kn_print_handler(m.getname() ? m.getname() : "ans");
    print(description);
    kn_print_handler(" = \n");
    return x_M;
}

Mm display(const Mm &m) {
    if (is_class_function(kn_class_word(m), "display")) {
        call_class_function("display", m);
        return x_M;
    }
    disp_header(m);
    return disp(m);
}

Mm get_whos_line(const Mm &m) {
    TextBuffer text;
    append_description(text, m);
    if (!text) return x_M;
    return TM(text.c_str());
}

void whos_line(const Mm &m) {
    constexpr size_t probed = 16;
    const char *name = m.getname();
    if (name && !os::readable(name, probed)) {
        kn_printf("whos: bad name pointer %08llX",
                  static_cast<unsigned long long>(reinterpret_cast<uintptr_t>(name)));
        return;
    }
    TextBuffer description;
    append_description(description, m);
    if (description) kn_printf("%-22s%s\n", name ? name : "", description.c_str());
}

Mm dump(const Mm &m) {
    auto address = [](const void *p) { return static_cast<unsigned long>(reinterpret_cast<uintptr_t>(p)); };
    const M_types &flags = m.getflags();
    kn_printf("**dump of %s this = %lx persistent = %d global = %d\n", kn_display_name(m), address(&m),
              flags.persistent, flags.global);
    kn_printf("pr = %lx pi = %lx index = %lx nnz = %td type = %d classid = %d class = %s\n",
              address(Header::pr(m)), address(Header::pi(m)), address(m.getindex()), m.getnnz(), flags.type,
              m.getclassid(), kn_class_word(m));
    const kn_size *d = m.getdims();
    kn_printf("ndims = %d  dims = %td %td %td %td \n", m.getndims(), d[0], d[1], d[2], d[3]);
    kn_printf("str = %d sparse = %d logical = %d nfields = %d\n", flags.str, flags.sparse, flags.logical,
              m.getnfields());
    if (!m.isstruct()) return x_M;
    kn_printf("fields: ");
    for (int k = 0; k < m.getnfields(); ++k) kn_printf("%s ", m.getfields()[k]);
    kn_printf("\n");
    return x_M;
}
