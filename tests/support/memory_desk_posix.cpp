#include "tests/support/memory_desk.h"

namespace support {

struct memory_clipboard::state {
    bool blocked = false;
    std::string format;
    std::vector<std::uint8_t> bytes;
};

memory_clipboard::memory_clipboard() : state_(std::make_unique<state>()) {}
memory_clipboard::~memory_clipboard() = default;

void memory_clipboard::block(bool blocked) { state_->blocked = blocked; }

std::vector<std::uint8_t> memory_clipboard::bytes(const char* wanted) const {
    return has_format(wanted) ? state_->bytes : std::vector<std::uint8_t>();
}

bool memory_clipboard::has_format(const char* wanted) const { return state_->format == wanted; }

bool memory_clipboard::get(const char* wanted, std::vector<std::uint8_t>& out) const {
    if (state_->blocked || !has_format(wanted)) return false;
    out = state_->bytes;
    return true;
}

void memory_clipboard::set(const char* new_format, std::span<const std::uint8_t> new_bytes) {
    if (state_->blocked) throw std::runtime_error("clipboard cannot be written");
    state_->format = new_format;
    state_->bytes.assign(new_bytes.begin(), new_bytes.end());
}

}  // namespace support
