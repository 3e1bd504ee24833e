// The methods of user classes, and the conversions between the element types.
//
// An object is a structure with a class number. Generated code registers each method of a class by name;
// operators, display and indexing call it. At most 32 classes ("too many classes") of 128 methods each ("too
// many class functions").
#ifndef QUORVEX_CLASSES_H
#define QUORVEX_CLASSES_H

#include "quorvex/counts.h"

// `name` is not copied. Registering again replaces the function. Of the class name 39 characters are kept.
QUORVEX_API void register_class_function(const char *cls, const char *name, Mm (*f)(Mm));
QUORVEX_API void register_class_function(const char *cls, const char *name, Mm (*f)(Mm, Mm));
QUORVEX_API void register_class_function(const char *cls, const char *name, Mm (*f)(Mm, Mm, Mm));
QUORVEX_API void register_class_function(const char *cls, const char *name,
                                         Mm (*f)(Mm, Mm, i_o_t, Mm &, Mm &));
QUORVEX_API void unregister_class_function(const char *cls, const char *name);
QUORVEX_API int is_class_function(const char *cls, const char *name);
// The method of the first operand that is a structure or object; "class %s has no method named %s".
QUORVEX_API Mm call_class_function(const char *name, const Mm &a);
QUORVEX_API Mm call_class_function(const char *name, const Mm &a, const Mm &b);
QUORVEX_API Mm call_class_function(const char *name, const Mm &a, const Mm &b, const Mm &c);

QUORVEX_API const char *kn_class_name(int classid); // error "[]:wrong classid" for a number that is no class

QUORVEX_API int isa(const Mm &m, const Mm &cls);   // a sparse value is both "sparse" and "double"
QUORVEX_API int isobject(const Mm &m);             // a structure with a class number
QUORVEX_API Mm mclass(const Mm &m);                // the class word
QUORVEX_API Mm mclass(const Mm &m, const Mm &cls); // a copy of m that is an object of the class
QUORVEX_API Mm mdouble(const Mm &m);               // full double without the string flag
QUORVEX_API Mm muint8(const Mm &m);                // truncates, keeps the low byte
QUORVEX_API Mm muint16(const Mm &m);               // error "%s is not yet implemented"

#define QUORVEX_CLASS_COUNTS(ROW)                                  \
    ROW(isa, "whether a value is of a class", 2)                   \
    ROW(isobject, "whether a value is an object", 1)               \
    ROW(mclass, "class of a value, or an object of a class", 1, 2) \
    ROW(mdouble, "conversion to double", 1)                        \
    ROW(muint8, "conversion to uint8", 1)                          \
    ROW(muint16, "conversion to uint16, which is not implemented", 1)
QUORVEX_CLASS_COUNTS(QUORVEX_REPORT_OTHER_COUNTS)

#endif
