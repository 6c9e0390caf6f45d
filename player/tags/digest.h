#pragma once

#include <cstdint>
#include <cstring>
#include <string_view>

namespace ostrevan::tags {

/// A number for a sequence of bytes, however it is cut in pieces. Two sequences that differ in one word never have the same;
/// others with a chance of one in 2^64. No protection against forgery.
class digest {
public:
    void add(std::string_view bytes) noexcept {
        for (; used_ != 0 && !bytes.empty(); bytes.remove_prefix(1)) add_byte(bytes.front());
        for (; bytes.size() >= sizeof word_; bytes.remove_prefix(sizeof word_)) {
            std::uint64_t word;
            std::memcpy(&word, bytes.data(), sizeof word);
            mix(word);
        }
        for (const char byte : bytes) add_byte(byte);
    }
    void add_number(std::uint64_t number) noexcept {
        char bytes[sizeof number];
        std::memcpy(bytes, &number, sizeof number);
        add({bytes, sizeof bytes});
    }
    [[nodiscard]] std::uint64_t value() const noexcept {
        digest last = *this;
        last.mix(word_);
        last.mix(used_);
        return last.state_;
    }

private:
    void add_byte(char byte) noexcept {
        word_ |= std::uint64_t{static_cast<unsigned char>(byte)} << (8 * used_);
        if (++used_ < sizeof word_) return;
        mix(word_);
        word_ = used_ = 0;
    }
    /// Reversible for every word, so that a difference does not vanish.
    void mix(std::uint64_t word) noexcept {
        state_ = (state_ ^ word) * 0x9E3779B97F4A7C15;
        state_ ^= state_ >> 29;
    }

    std::uint64_t state_ = 0x243F6A8885A308D3;
    std::uint64_t word_ = 0;
    std::uint64_t used_ = 0;
};

}  // namespace ostrevan::tags
