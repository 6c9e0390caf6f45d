#include <windows.h>

#include "quorvel/platform/beep.h"

namespace quorvel {

void beep() { MessageBeep(MB_OK); }

}  // namespace quorvel
