#include "player/terminal/standard_output.h"

#include <unistd.h>

#include <cerrno>
#include <iostream>

#include "player/terminal/terminal_text.h"

namespace ostrevan::terminal {
namespace {

constexpr std::size_t block = 64 * 1024;

/// Returns 0 or the system's error number.
int write_all(std::string_view bytes) {
    while (!bytes.empty()) {
        const auto written = ::write(STDOUT_FILENO, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return errno;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return 0;
}

}  // namespace

standard_output::standard_output() : is_terminal_(::isatty(STDOUT_FILENO) != 0), former_(std::cout.rdbuf(this)) {}

standard_output::~standard_output() {
    sync();
    std::cout.rdbuf(former_);
}

void standard_output::write_out(std::size_t size) {
    if (size == 0) return;
    if (before_writing_) before_writing_();
    const std::string_view bytes(waiting_.data(), size);
    if (error_ == 0) error_ = is_terminal_ ? write_all(shown_on_terminal(bytes)) : write_all(bytes);
    waiting_.erase(0, size);
}

int standard_output::sync() {
    const std::lock_guard lock(mutex_);
    write_out(waiting_.size());
    return error_ == 0 ? 0 : -1;
}

standard_output::int_type standard_output::overflow(int_type c) {
    if (traits_type::eq_int_type(c, traits_type::eof())) return traits_type::not_eof(c);
    const char one = traits_type::to_char_type(c);
    return xsputn(&one, 1) == 1 ? c : traits_type::eof();
}

std::streamsize standard_output::xsputn(const char* text, std::streamsize size) {
    const std::lock_guard lock(mutex_);
    waiting_.append(text, static_cast<std::size_t>(size));
    // Whole lines, so that no character is split.
    if (is_terminal_) write_out(waiting_.find_last_of('\n') + 1);
    else if (waiting_.size() >= block) write_out(waiting_.size());
    return error_ == 0 ? size : 0;
}

}  // namespace ostrevan::terminal
