// quorvex: the run-time library of compiled M programs. Generated code includes this header and nothing else.
#ifndef QUORVEX_H
#define QUORVEX_H

#include "quorvex/arrays.h"
#include "quorvex/builders.h"
#include "quorvex/classes.h"
#include "quorvex/concat.h"
#include "quorvex/conversions.h"
#include "quorvex/dates.h"
#include "quorvex/display.h"
#include "quorvex/evaluation.h"
#include "quorvex/files.h"
#include "quorvex/formatted.h"
#include "quorvex/functions.h"
#include "quorvex/graphics.h"
#include "quorvex/host.h"
#include "quorvex/indexing.h"
#include "quorvex/library.h"
#include "quorvex/matfiles.h"
#include "quorvex/memory.h"
#include "quorvex/messages.h"
#include "quorvex/operations.h"
#include "quorvex/selo.h"
#include "quorvex/solving.h"
#include "quorvex/sparse.h"
#include "quorvex/startup.h"
#include "quorvex/structures.h"
#include "quorvex/text.h"
#include "quorvex/values.h"
#include "quorvex/workspace.h"

#endif
