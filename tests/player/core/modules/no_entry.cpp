// A library that is no component.
#include "ostrevan/component.h"

extern "C" OSTREVAN_EXPORT int some_other_symbol() { return 0; }
