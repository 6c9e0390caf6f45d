#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "player/library/file_stamp.h"

namespace ostrevan::library {

/// What a name in a directory stands for, before symbolic links are followed.
enum class entry_kind { file, directory, link, other };

/// Device and number: equal for the same file under different names.
using file_identity = std::pair<std::uint64_t, std::uint64_t>;

/// What is known of a file or directory behind all symbolic links.
struct file_status {
    entry_kind kind = entry_kind::other;
    file_stamp stamp;
    file_identity identity;
};

/// An open directory. Functions that fail throw std::system_error; no function opens a file, so that pipes and devices
/// are never waited for.
class directory {
public:
    explicit directory(const std::string& path);

    struct entry {
        std::string_view name;  // valid until the next call
        entry_kind kind;
    };
    /// The next name, without "." and ".."; nothing at the end.
    std::optional<entry> next();

    [[nodiscard]] file_status status() const;
    /// Follows links; throws for a link that leads nowhere.
    [[nodiscard]] file_status status(std::string_view name) const;

private:
    struct closer {
        void operator()(void* handle) const noexcept;
    };
    std::unique_ptr<void, closer> handle_;
};

/// Follows links.
file_status status_of(const std::string& path);

}  // namespace ostrevan::library
