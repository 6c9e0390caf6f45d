#pragma once

#include <atomic>
#include <functional>
#include <ostream>
#include <streambuf>
#include <string>

namespace ostrevan::terminal {

/// The results of a command. On a terminal, text is written line by line with control characters replaced; to a file or a
/// pipe, bytes are unchanged. After the first failure nothing more is written. Used by one thread at a time.
class standard_output final : private std::streambuf, public std::ostream {
public:
    /// `before_writing` runs before each write, to clear drawings on the same terminal. When `stop` is true, nobody waits
    /// for a reader that reads no more.
    standard_output(int descriptor, const std::atomic<bool>& stop, std::function<void()> before_writing);
    ~standard_output() override;

    /// The system's error number of the first failure; 0 without one.
    [[nodiscard]] int error() const noexcept { return error_; }

private:
    using traits_type = std::streambuf::traits_type;
    using int_type = traits_type::int_type;

    int sync() override;
    int_type overflow(int_type c) override;
    std::streamsize xsputn(const char* text, std::streamsize size) override;
    /// Writes the first `size` bytes of the buffer.
    void write_out(std::size_t size);

    const int descriptor_;
    const bool is_terminal_;
    const std::atomic<bool>& stop_;
    const std::function<void()> before_writing_;
    std::string waiting_;
    int error_ = 0;
};

}  // namespace ostrevan::terminal
