#pragma once

#include <exception>
#include <string>

namespace quorvel {

/// A call of the system failed; the text is the system's own, in the language of the user.
class exception_system_error : public std::exception {
public:
    /// A number from `GetLastError`.
    explicit exception_system_error(unsigned long error);
    [[nodiscard]] const char* what() const noexcept override { return text_.c_str(); }

private:
    std::string text_;
};

/// Throws the error that `GetLastError` returns.
[[noreturn]] void throw_last_error();

}  // namespace quorvel
