#include "quorvel/platform/module_path.h"

#include <windows.h>

#include "quorvel/platform/system_error_win32.h"
#include "quorvel/platform/utf16_win32.h"

namespace quorvel {

/// The player's word is not needed here: the system knows which file this code came from.
std::string module_path() {
    HMODULE module = nullptr;
    constexpr DWORD by_address = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    if (!GetModuleHandleExW(by_address, reinterpret_cast<LPCWSTR>(&module_path), &module)) throw_last_error();
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size()));
        if (length == 0) throw_last_error();
        if (length < path.size()) return to_utf8({path.data(), length});
        path.resize(path.size() * 2);  // longer than this buffer
    }
}

}  // namespace quorvel
