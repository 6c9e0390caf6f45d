#include <windows.h>

#include <cstring>

#include "tests/support/memory_desk.h"

extern "C" {

/// Stands where the linker looks for the system's function.
static BOOL WINAPI count_beep(UINT) {
    if (support::counted_beeps::current != nullptr) ++support::counted_beeps::current->count;
    return TRUE;
}
decltype(&MessageBeep) __imp_MessageBeep = &count_beep;
}

namespace support {
namespace {

class opened_clipboard {
public:
    explicit opened_clipboard(HWND owner = nullptr) {
        if (!OpenClipboard(owner)) throw std::runtime_error("the clipboard does not open");
    }
    ~opened_clipboard() { CloseClipboard(); }
    opened_clipboard(const opened_clipboard&) = delete;
    opened_clipboard& operator=(const opened_clipboard&) = delete;
};

}  // namespace

/// A window that keeps the clipboard open, as a rude program does; without one it could be opened a second time.
struct memory_clipboard::state {
    HWND window = CreateWindowW(L"STATIC", nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
    std::unique_ptr<opened_clipboard> held;
    ~state() {
        held.reset();
        DestroyWindow(window);
    }
};

memory_clipboard::memory_clipboard() : state_(std::make_unique<state>()) {
    const opened_clipboard opened;
    EmptyClipboard();
}
memory_clipboard::~memory_clipboard() = default;

void memory_clipboard::block(bool blocked) {
    state_->held = blocked ? std::make_unique<opened_clipboard>(state_->window) : nullptr;
}

std::vector<std::uint8_t> memory_clipboard::bytes(const char* wanted) const {
    std::vector<std::uint8_t> out;
    get(wanted, out);
    return out;
}

bool memory_clipboard::has_format(const char* wanted) const {
    return IsClipboardFormatAvailable(RegisterClipboardFormatA(wanted)) != FALSE;
}

bool memory_clipboard::get(const char* wanted, std::vector<std::uint8_t>& out) const {
    const opened_clipboard opened;
    const HANDLE memory = GetClipboardData(RegisterClipboardFormatA(wanted));
    if (memory == nullptr) return false;
    const auto* const bytes = static_cast<const std::uint8_t*>(GlobalLock(memory));
    out.assign(bytes, bytes + GlobalSize(memory));
    GlobalUnlock(memory);
    return true;
}

void memory_clipboard::set(const char* new_format, std::span<const std::uint8_t> new_bytes) {
    const opened_clipboard opened;
    EmptyClipboard();
    const HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, new_bytes.size());
    if (!new_bytes.empty()) std::memcpy(GlobalLock(memory), new_bytes.data(), new_bytes.size());
    GlobalUnlock(memory);
    SetClipboardData(RegisterClipboardFormatA(new_format), memory);
}

}  // namespace support
