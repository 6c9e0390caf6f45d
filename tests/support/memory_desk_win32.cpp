#include <windows.h>

#include <cstring>
#include <future>
#include <thread>

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

/// Another thread that keeps the clipboard open, as a rude program does.
struct memory_clipboard::state {
    std::promise<void> release;
    std::thread holder;
};

memory_clipboard::memory_clipboard() : state_(std::make_unique<state>()) {
    const opened_clipboard opened;
    EmptyClipboard();
}
memory_clipboard::~memory_clipboard() { block(false); }

void memory_clipboard::block(bool blocked) {
    if (blocked == state_->holder.joinable()) return;
    if (!blocked) {
        state_->release.set_value();
        state_->holder.join();
        return;
    }
    state_->release = {};
    std::promise<void> held;
    auto is_held = held.get_future();
    state_->holder = std::thread([this, held = std::move(held)]() mutable {
        // Without a window it could be opened a second time.
        const HWND window = CreateWindowW(L"STATIC", nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
        {
            const opened_clipboard opened(window);
            held.set_value();
            state_->release.get_future().wait();
        }
        DestroyWindow(window);
    });
    is_held.wait();
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
