#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

namespace ostrevan::tags {

/// A file could not be read or rewritten. The text names the file, the reason and, where there is something to do, what.
class tag_error : public std::runtime_error {
public:
    tag_error(std::string_view path, std::string_view reason)
        : std::runtime_error(std::string(path) + ": " + std::string(reason)), reason_(reason) {}

    /// The text without the name of the file.
    [[nodiscard]] const std::string& reason() const noexcept { return reason_; }

private:
    std::string reason_;
};

/// The tag's format cannot hold what is asked, or the tag is damaged or cannot be edited without loss. The text says which
/// field or what about the tag; the caller names the file.
class edit_error : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// An `errno` value in words, with advice where there is any.
std::string reason_of_errno(int error);

}  // namespace ostrevan::tags
