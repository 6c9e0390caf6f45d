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

/// The reason for a number of `errno`, in words that say what to do about it.
std::string reason_of_errno(int error);

}  // namespace ostrevan::tags
