#pragma once

#include <optional>
#include <string>
#include <utility>

namespace ostrevan::sqlite {

/// A copy of a database and its log in a private temporary folder, removed with the object.
class reading_copy {
public:
    /// Uses the first temporary folder with enough room. Empty when the database cannot be read or is empty, or there is no
    /// room.
    static std::optional<reading_copy> of(const std::string& database);

    reading_copy(reading_copy&& other) noexcept : folder_(std::exchange(other.folder_, {})) {}
    reading_copy& operator=(reading_copy&& other) noexcept {
        std::swap(folder_, other.folder_);
        return *this;
    }
    ~reading_copy();

    [[nodiscard]] std::string file() const { return folder_ + "/copy.sqlite"; }

private:
    explicit reading_copy(std::string folder) noexcept : folder_(std::move(folder)) {}
    std::string folder_;
};

}  // namespace ostrevan::sqlite
