#pragma once

#include <utility>

namespace ostrevan::system {

/// Owns an open file descriptor.
class descriptor {
public:
    descriptor() noexcept = default;
    explicit descriptor(int number) noexcept : number_(number) {}
    descriptor(descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    descriptor& operator=(descriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }
    descriptor(const descriptor&) = delete;
    descriptor& operator=(const descriptor&) = delete;
    ~descriptor();

    [[nodiscard]] int get() const noexcept { return number_; }
    explicit operator bool() const noexcept { return number_ >= 0; }
    /// Closes it. Returns 0 or the error of closing: network file systems report failed writes there.
    int close() noexcept;

private:
    int number_ = -1;
};

}  // namespace ostrevan::system
