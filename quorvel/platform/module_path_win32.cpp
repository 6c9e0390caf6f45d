#include "quorvel/platform/module_path.h"

#include "quorvel/platform/module_win32.h"
#include "quorvel/platform/system_error_win32.h"
#include "quorvel/platform/utf16_win32.h"

namespace quorvel {

/// Asks the system, which knows the file that this code was loaded from.
std::string module_path() {
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = GetModuleFileNameW(this_module(), path.data(), static_cast<DWORD>(path.size()));
        if (length == 0) throw_last_error();
        if (length < path.size()) return to_utf8({path.data(), length});
        path.resize(path.size() * 2);  // longer than this buffer
    }
}

}  // namespace quorvel
