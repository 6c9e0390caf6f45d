#include "quorvel/platform/utf16_win32.h"

#include <windows.h>

namespace quorvel {

std::wstring to_utf16(std::string_view utf8) {
    const auto bytes = static_cast<int>(utf8.size());
    std::wstring text(static_cast<std::size_t>(MultiByteToWideChar(CP_UTF8, 0, utf8.data(), bytes, nullptr, 0)), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, utf8.data(), bytes, text.data(), static_cast<int>(text.size()));
    return text;
}

std::string to_utf8(std::wstring_view utf16) {
    const auto units = static_cast<int>(utf16.size());
    const int bytes = WideCharToMultiByte(CP_UTF8, 0, utf16.data(), units, nullptr, 0, nullptr, nullptr);
    std::string text(static_cast<std::size_t>(bytes), '\0');
    WideCharToMultiByte(CP_UTF8, 0, utf16.data(), units, text.data(), bytes, nullptr, nullptr);
    return text;
}

}  // namespace quorvel
