#include "player/terminal/standard_output.h"

#include <unistd.h>

#include <utility>

#include "player/system/write_all.h"
#include "player/terminal/terminal_text.h"

namespace ostrevan::terminal {
namespace {

constexpr std::size_t block = std::size_t{64} * 1024;

}  // namespace

standard_output::standard_output(int descriptor, const std::atomic<bool>& stop, std::function<void()> before_writing)
    : std::ostream(static_cast<std::streambuf*>(this)),
      descriptor_(descriptor),
      is_terminal_(::isatty(descriptor) != 0),
      stop_(stop),
      before_writing_(std::move(before_writing)) {}

standard_output::~standard_output() { write_out(waiting_.size()); }

void standard_output::write_out(std::size_t size) {
    if (size == 0) return;
    before_writing_();
    const std::string_view bytes(waiting_.data(), size);
    if (error_ == 0)
        error_ = is_terminal_ ? system::write_all(descriptor_, shown_on_terminal(bytes), stop_)
                              : system::write_all(descriptor_, bytes, stop_);
    waiting_.erase(0, size);
}

int standard_output::sync() {
    write_out(waiting_.size());
    return error_ == 0 ? 0 : -1;
}

standard_output::int_type standard_output::overflow(int_type c) {
    if (traits_type::eq_int_type(c, traits_type::eof())) return traits_type::not_eof(c);
    const char one = traits_type::to_char_type(c);
    return xsputn(&one, 1) == 1 ? c : traits_type::eof();
}

std::streamsize standard_output::xsputn(const char* text, std::streamsize size) {
    waiting_.append(text, static_cast<std::size_t>(size));
    // Whole lines, so that no character is split.
    if (is_terminal_) write_out(waiting_.find_last_of('\n') + 1);
    else if (waiting_.size() >= block) write_out(waiting_.size());
    return error_ == 0 ? size : 0;
}

}  // namespace ostrevan::terminal
