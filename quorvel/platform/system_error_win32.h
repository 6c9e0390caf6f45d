#pragma once

#include <exception>
#include <string>

namespace quorvel {

/// A call of the system failed; the text is the system's own, in the language of the user.
class exception_system_error : public std::exception {
public:
    /// A number as `GetLastError` gives it.
    explicit exception_system_error(unsigned long error);
    [[nodiscard]] const char* what() const noexcept override { return text_.c_str(); }

private:
    std::string text_;
};

/// Reports what `GetLastError` says.
[[noreturn]] void throw_last_error();

}  // namespace quorvel
