// A library that is not a component.
#include "ostrevan/component.h"

extern "C" OSTREVAN_EXPORT int some_other_symbol() { return 0; }
