#pragma once

#include <functional>
#include <mutex>
#include <streambuf>
#include <string>

namespace ostrevan::terminal {

/// The buffer of `std::cout`. On a terminal, text is written line by line with control characters replaced; to a file or a
/// pipe, bytes are unchanged. After the first failure nothing more is written. [any-thread] except construction and
/// destruction.
class standard_output final : private std::streambuf {
public:
    /// Replaces the buffer of `std::cout` while it lives.
    standard_output();
    ~standard_output() override;
    standard_output(const standard_output&) = delete;
    standard_output& operator=(const standard_output&) = delete;

    /// `work` runs before each write, to clear drawings on the same terminal. Set it before other threads start.
    void before_writing(std::function<void()> work) { before_writing_ = std::move(work); }
    void flush() { sync(); }
    /// The system's error number of the first failure; 0 without one.
    [[nodiscard]] int error() const noexcept { return error_; }

private:
    int sync() override;
    int_type overflow(int_type c) override;
    std::streamsize xsputn(const char* text, std::streamsize size) override;
    /// Writes the first `size` bytes of the buffer.
    void write_out(std::size_t size);

    const bool is_terminal_;
    std::streambuf* const former_;
    std::function<void()> before_writing_;
    std::mutex mutex_;
    std::string waiting_;
    int error_ = 0;
};

}  // namespace ostrevan::terminal
