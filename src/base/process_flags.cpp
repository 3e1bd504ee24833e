// The flags of the process that a host sets.

#include "quorvex/startup.h"

constinit int kn_threads_flag = 0;
constinit int kn_interactive_flag = 0;
