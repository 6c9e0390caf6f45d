#pragma once

#include <optional>
#include <string>
#include <utility>

namespace ostrevan::system {

/// A folder for this user only, removed with its content when the object is destroyed.
class temporary_folder {
public:
    /// Empty when no folder can be made there.
    static std::optional<temporary_folder> in(const std::string& parent);

    temporary_folder(temporary_folder&& other) noexcept : path_(std::exchange(other.path_, {})) {}
    temporary_folder& operator=(temporary_folder&& other) noexcept {
        std::swap(path_, other.path_);
        return *this;
    }
    ~temporary_folder();

    [[nodiscard]] const std::string& path() const noexcept { return path_; }

private:
    explicit temporary_folder(std::string path) noexcept : path_(std::move(path)) {}
    std::string path_;
};

}  // namespace ostrevan::system
