// The hooks through which generated code or a host evaluates text.
#ifndef QUORVEX_EVALUATION_H
#define QUORVEX_EVALUATION_H

#include "quorvex/values.h"

// Runs the text of a graphics callback. The standard one evaluates numeric text only.
typedef Mm (*kn_callback)(Mm text);
extern QUORVEX_API kn_callback callback_func;

#endif
