# Values as gdb shows them: class, extents and the first elements, of cells and structures each by itself. gdb loads
# this file with the library (libquorvex.so.<version>-gdb.py; cmake/install.cmake tells where it stands).
import gdb
import gdb.printing

MOST = 10  # elements shown


def first(val, n, kind):
    """The first elements of the real plane, as gdb's values of a type."""
    plane = val["pr"].cast(gdb.lookup_type(kind).pointer())
    return [plane[k] for k in range(min(n, MOST))]


class ValuePrinter:
    def __init__(self, val):
        self.val = val
        self.flags = val["flags"]
        self.type = int(self.flags["type"])
        self.ndims = int(val["ndims"])
        self.n = max(int(val["nnz"]), 0)
        self.fields = []
        if int(val["fields"]) != 0:
            self.fields = [val["fields"][k].string("latin-1") for k in range(int(val["nfields"]))]
        self.is_struct = int(val["fields"]) != 0

    def word(self):
        if self.type == 0:
            return "no value"
        if int(self.flags["str"]):
            return "char"
        if int(self.flags["sparse"]):
            return "sparse"
        if self.is_struct:
            return "object" if int(self.val["classid"]) else "struct"
        if self.type == 3:
            return "cell"
        if int(self.flags["logical"]):
            return "logical"
        return "uint8" if self.type == 2 else "double"

    def elements(self):
        if self.type == 2:
            shown = ["%d" % int(x) for x in first(self.val, self.n, "unsigned char")]
        else:
            shown = ["%.15g" % float(x) for x in first(self.val, self.n, "double")]
            if int(self.val["pi"]) != 0:
                plane = self.val["pi"].cast(gdb.lookup_type("double").pointer())
                shown = [re + "%+.15gi" % float(plane[k]) for k, re in enumerate(shown)]
        if int(self.flags["sparse"]):
            index = self.val["index"]
            rows = int(self.val["dims"][0])
            shown = [
                "(%d,%d) %s" % (int(index[k]) % rows + 1, int(index[k]) // rows + 1, x) for k, x in enumerate(shown)
            ]
        if self.n > MOST:
            shown.append("...")
        return "[" + ", ".join(shown) + "]"

    def text(self):
        plane = self.val["pr"].cast(gdb.lookup_type("double").pointer())
        rows, cols = int(self.val["dims"][0]), int(self.val["dims"][1])
        most = 200

        def row(r):
            codes = [int(float(plane[r + c * rows])) & 255 for c in range(min(cols, most))]
            return '"' + bytes(codes).decode("latin-1") + ('"...' if cols > most else '"')

        return "[" + "; ".join(row(r) for r in range(min(rows, MOST))) + ("; ...]" if rows > MOST else "]")

    def to_string(self):
        if self.ndims < 2 or self.ndims > 4:
            return "(destroyed or not constructed)"
        if self.type == 0:
            return "(no value)"
        extents = "x".join(str(int(self.val["dims"][k])) for k in range(self.ndims))
        head = extents + " " + self.word()
        if self.is_struct:
            return head + " with the fields " + ", ".join(self.fields)
        if self.type == 3 or self.n == 0:
            return head
        if int(self.flags["str"]) and self.type == 1 and self.ndims == 2:
            return head + " " + self.text()
        return head + " " + self.elements()

    def children(self):
        if self.type != 3 or self.ndims < 2:
            return
        elements = self.val["pr"].cast(self.val.type.unqualified().pointer())
        for k in range(min(self.n, MOST)):
            if not self.is_struct:
                yield "{%d}" % (k + 1), elements[k]
                continue
            values = elements[k]["pr"].cast(self.val.type.unqualified().pointer())
            for f, name in enumerate(self.fields):
                if f < int(elements[k]["nnz"]):
                    yield (".%s" % name if self.n == 1 else "(%d).%s" % (k + 1, name)), values[f]


printers = gdb.printing.RegexpCollectionPrettyPrinter("quorvex")
printers.add_printer("Mm", "^Mm$", ValuePrinter)
gdb.printing.register_pretty_printer(gdb.current_objfile(), printers, replace=True)
