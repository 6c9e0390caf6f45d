#pragma once

#include <exception>
#include <string>

#include "ostrevan/text_helpers.h"

namespace quorvel {

/// A call of the operating system failed; the text is the system's own.
class exception_system_error : public std::exception {
public:
    explicit exception_system_error(int error) : text_(ostrevan::uFormatSystemErrorMessage(error)) {}
    [[nodiscard]] const char* what() const noexcept override { return text_.c_str(); }

private:
    std::string text_;
};

}  // namespace quorvel
