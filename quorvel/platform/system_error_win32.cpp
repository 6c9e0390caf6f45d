#include "quorvel/platform/system_error_win32.h"

#include <windows.h>

#include "ostrevan/text_helpers.h"
#include "quorvel/platform/utf16_win32.h"

namespace quorvel {
namespace {

/// Without the line end and the full stop, because it ends a sentence of ours. UTF-16, because the narrow call uses the code
/// page of the system.
std::string text_of(DWORD error) {
    WCHAR* text = nullptr;
    constexpr DWORD from_system =
        FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS;
    DWORD length = FormatMessageW(from_system, nullptr, error, 0, reinterpret_cast<LPWSTR>(&text), 0, nullptr);
    if (length == 0) return ostrevan::uFormatSystemErrorMessage(static_cast<int>(error));
    while (length > 0 && (text[length - 1] <= L' ' || text[length - 1] == L'.')) --length;
    std::string utf8 = to_utf8({text, length});
    LocalFree(text);
    return utf8;
}

}  // namespace

exception_system_error::exception_system_error(unsigned long error) : text_(text_of(error)) {}

void throw_last_error() { throw exception_system_error(GetLastError()); }

}  // namespace quorvel
