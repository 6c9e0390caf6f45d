#include <windows.h>

#include <cstring>
#include <memory>
#include <stdexcept>

#include "tests/support/memory_player.h"

extern "C" {

/// Replaces the system's function for the linker.
static BOOL WINAPI count_beep(UINT) {
    if (const auto beeps = ostrevan::find_service<ostrevan::beep_service>()) beeps->beep();
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

/// A window keeps the clipboard open while it is blocked, like a misbehaving program; without a window it could be opened a
/// second time.
class system_clipboard : public memory_clipboard {
public:
    system_clipboard() {
        const opened_clipboard opened;
        EmptyClipboard();
    }
    ~system_clipboard() override {
        held_.reset();
        DestroyWindow(window_);
    }

    void block(bool blocked) override { held_ = blocked ? std::make_unique<opened_clipboard>(window_) : nullptr; }

    bool has_format(const char* wanted) const override {
        return IsClipboardFormatAvailable(RegisterClipboardFormatA(wanted)) != FALSE;
    }
    bool get(const char* wanted, std::vector<std::uint8_t>& out) const override {
        const opened_clipboard opened;
        const HANDLE memory = GetClipboardData(RegisterClipboardFormatA(wanted));
        if (memory == nullptr) return false;
        const auto* const bytes = static_cast<const std::uint8_t*>(GlobalLock(memory));
        out.assign(bytes, bytes + GlobalSize(memory));
        GlobalUnlock(memory);
        return true;
    }
    void set(const char* format, std::span<const std::uint8_t> bytes) override {
        const opened_clipboard opened;
        EmptyClipboard();
        const HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, bytes.size());
        if (!bytes.empty()) std::memcpy(GlobalLock(memory), bytes.data(), bytes.size());
        GlobalUnlock(memory);
        SetClipboardData(RegisterClipboardFormatA(format), memory);
    }

private:
    const HWND window_ = CreateWindowW(L"STATIC", nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
    std::unique_ptr<opened_clipboard> held_;
};

}  // namespace

std::unique_ptr<memory_clipboard> make_clipboard() {
    return std::make_unique<ostrevan::service_uncounted_t<system_clipboard>>();
}

}  // namespace support
