// The methods of user classes, and the conversions between the element types.
//
// An object is a structure with a class number. Generated code registers each method of a class by name, and
// operators, display and indexing call it. There are at most 32 classes ("too many classes") with 128 methods
// each ("too many class functions").
#ifndef QUORVEX_CLASSES_H
#define QUORVEX_CLASSES_H

#include "quorvex/counts.h"

// Registers a method of a class, or replaces it; unregister_class_function removes it, is_class_function
// tests for it. `name` is not copied. The class name is cut to 39 characters.
QUORVEX_API void register_class_function(const char *cls, const char *name, Mm (*f)(Mm));
QUORVEX_API void register_class_function(const char *cls, const char *name, Mm (*f)(Mm, Mm));
QUORVEX_API void register_class_function(const char *cls, const char *name, Mm (*f)(Mm, Mm, Mm));
QUORVEX_API void register_class_function(const char *cls, const char *name,
                                         Mm (*f)(Mm, Mm, i_o_t, Mm &, Mm &));
QUORVEX_API void unregister_class_function(const char *cls, const char *name);
QUORVEX_API int is_class_function(const char *cls, const char *name);
// Calls the method of the first operand that is a structure or object: "class %s has no method named %s".
QUORVEX_API Mm call_class_function(const char *name, const Mm &a);
QUORVEX_API Mm call_class_function(const char *name, const Mm &a, const Mm &b);
QUORVEX_API Mm call_class_function(const char *name, const Mm &a, const Mm &b, const Mm &c);

QUORVEX_API const char *kn_class_name(int classid); // error "[]:wrong classid" for an unknown number

// -- Classes of values and conversions.

// Whether m is of the class that a text names, 1 or 0. A sparse value is both "sparse" and "double".
QUORVEX_API int isa(const Mm &m, const Mm &cls);

// Whether m is an object, a structure with a class number: 1 or 0.
QUORVEX_API int isobject(const Mm &m);

// The class name of m as text: "double", "char", "sparse", "uint8", "cell", "struct", or that of an object;
// with a second input, a copy of m that is an object of that class.
QUORVEX_API Mm mclass(const Mm &m);
QUORVEX_API Mm mclass(const Mm &m, const Mm &cls);

// The elements of m in another type, with the same size. mdouble gives a full value; text becomes character
// codes; a structure goes to its class method "double". muint8 truncates, keeps the low byte, and gives 0 for
// NaN. For cells "Can not convert %s into a numeric matrix".
QUORVEX_API Mm mdouble(const Mm &m);
QUORVEX_API Mm muint8(const Mm &m);
QUORVEX_API Mm muint16(const Mm &m); // error "%s is not yet implemented"

#define QUORVEX_CLASS_COUNTS(ROW)                                  \
    ROW(isa, "whether a value is of a class", 2)                   \
    ROW(isobject, "whether a value is an object", 1)               \
    ROW(mclass, "class of a value, or an object of a class", 1, 2) \
    ROW(mdouble, "conversion to double", 1)                        \
    ROW(muint8, "conversion to uint8", 1)                          \
    ROW(muint16, "reports that uint16 is not implemented", 1)
QUORVEX_CLASS_COUNTS(QUORVEX_REPORT_OTHER_COUNTS)

#endif
