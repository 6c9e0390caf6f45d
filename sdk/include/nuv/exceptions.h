#pragma once

#include <exception>

namespace nuv {

/// Base of the exceptions with a fixed text: it costs no allocation and its text never changes.
class fixed_exception : public std::exception {
public:
    [[nodiscard]] const char* what() const noexcept override { return text_; }

protected:
    explicit fixed_exception(const char* text) noexcept : text_(text) {}

private:
    const char* text_;
};

/// A number does not fit where it belongs.
class exception_overflow : public fixed_exception {
public:
    exception_overflow() noexcept : fixed_exception("Overflow") {}
};

/// A text or argument is not of the required form.
class exception_invalid_params : public fixed_exception {
public:
    exception_invalid_params() noexcept : fixed_exception("Invalid parameters") {}
};

}  // namespace nuv
