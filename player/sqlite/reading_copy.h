#pragma once

#include <optional>
#include <string>
#include <utility>

#include "player/system/temporary_folder.h"

namespace ostrevan::sqlite {

/// A copy of a database and its log in a private temporary folder, removed with the object.
class reading_copy {
public:
    /// Uses the first temporary folder with enough room. Empty when the database cannot be read or is empty, or there is no
    /// room.
    static std::optional<reading_copy> of(const std::string& database);

    [[nodiscard]] std::string file() const { return folder_.path() + "/copy.sqlite"; }

private:
    explicit reading_copy(system::temporary_folder folder) noexcept : folder_(std::move(folder)) {}
    system::temporary_folder folder_;
};

}  // namespace ostrevan::sqlite
