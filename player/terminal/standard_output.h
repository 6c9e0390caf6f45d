#pragma once

#include <functional>
#include <mutex>
#include <streambuf>
#include <string>

namespace ostrevan::terminal {

/// What `std::cout` writes to. On a terminal text goes out line by line, made harmless; to a file or a pipe the bytes go as
/// they are. The first failed write is remembered, and nothing more is written. [any-thread] but for construction and
/// destruction.
class standard_output final : private std::streambuf {
public:
    /// Takes the place of the buffer of `std::cout` while it lives.
    standard_output();
    ~standard_output() override;
    standard_output(const standard_output&) = delete;
    standard_output& operator=(const standard_output&) = delete;

    /// Called before anything is written, to clear what is drawn on the same terminal. Set before there are other threads.
    void before_writing(std::function<void()> work) { before_writing_ = std::move(work); }
    void flush() { sync(); }
    /// The system's number of the first failure; 0 while there is none.
    [[nodiscard]] int error() const noexcept { return error_; }

private:
    int sync() override;
    int_type overflow(int_type c) override;
    std::streamsize xsputn(const char* text, std::streamsize size) override;
    /// Writes the first bytes of what is waiting.
    void write_out(std::size_t size);

    const bool is_terminal_;
    std::streambuf* const former_;
    std::function<void()> before_writing_;
    std::mutex mutex_;
    std::string waiting_;
    int error_ = 0;
};

}  // namespace ostrevan::terminal
