#include <windows.h>

#include <cstring>
#include <map>
#include <new>
#include <string>

#include "quorvel/platform/clipboard.h"
#include "quorvel/platform/system_error_win32.h"

namespace quorvel::clipboard {
namespace {

/// The number of a format, registered on first use and kept until the process ends.
UINT format_number(const char* format) {
    static std::map<std::string, UINT, std::less<>> numbers;
    if (const auto known = numbers.find(format); known != numbers.end()) return known->second;
    const UINT number = RegisterClipboardFormatA(format);
    if (number == 0) throw_last_error();
    return numbers[format] = number;
}

class opened_clipboard {
public:
    opened_clipboard() noexcept : opened_(OpenClipboard(nullptr) != FALSE) {}
    ~opened_clipboard() {
        if (opened_) CloseClipboard();
    }
    opened_clipboard(const opened_clipboard&) = delete;
    opened_clipboard& operator=(const opened_clipboard&) = delete;

    explicit operator bool() const noexcept { return opened_; }

private:
    bool opened_;
};

/// A block of global memory, freed unless it is given to the clipboard.
class global_block {
public:
    explicit global_block(std::size_t size) : handle_(GlobalAlloc(GMEM_DDESHARE, size)) {
        if (handle_ == nullptr) throw std::bad_alloc();
    }
    ~global_block() {
        if (handle_ != nullptr) GlobalFree(handle_);
    }
    global_block(const global_block&) = delete;
    global_block& operator=(const global_block&) = delete;

    void fill(std::span<const std::uint8_t> bytes) {
        void* const memory = GlobalLock(handle_);
        if (memory == nullptr) throw std::bad_alloc();
        std::memcpy(memory, bytes.data(), bytes.size());
        GlobalUnlock(handle_);
    }
    void hand_over(UINT format) {
        if (SetClipboardData(format, handle_) == nullptr) throw_last_error();
        handle_ = nullptr;
    }

private:
    HGLOBAL handle_;
};

}  // namespace

bool has_format(const char* format) { return IsClipboardFormatAvailable(format_number(format)) != FALSE; }

void set(const char* format, std::span<const std::uint8_t> bytes) {
    const UINT number = format_number(format);
    const opened_clipboard opened;
    if (!opened || EmptyClipboard() == FALSE) throw_last_error();
    global_block block(bytes.size());
    block.fill(bytes);
    block.hand_over(number);
}

std::optional<std::vector<std::uint8_t>> get(const char* format) {
    const UINT number = format_number(format);
    const opened_clipboard opened;
    if (!opened) return std::nullopt;
    const HANDLE block = GetClipboardData(number);
    if (block == nullptr) return std::nullopt;
    const auto* const memory = static_cast<const std::uint8_t*>(GlobalLock(block));
    if (memory == nullptr) return std::nullopt;
    std::optional<std::vector<std::uint8_t>> bytes;
    try {
        bytes.emplace(memory, memory + GlobalSize(block));
    } catch (...) {
        GlobalUnlock(block);
        throw;
    }
    GlobalUnlock(block);
    return bytes;
}

}  // namespace quorvel::clipboard
