#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "player/library/file_stamp.h"

namespace ostrevan::library {

/// The kind of a directory entry, before symbolic links are followed.
enum class entry_kind { file, directory, link, other };

/// Device and number: equal for the same file under different names.
using file_identity = std::pair<std::uint64_t, std::uint64_t>;

/// The status of a file or directory, with symbolic links followed.
struct file_status {
    entry_kind kind = entry_kind::other;
    file_stamp stamp;
    file_identity identity;
};

/// An open directory. Failures throw std::system_error. No function opens a file, so pipes and devices never block.
class directory {
public:
    explicit directory(const std::string& path);

    struct entry {
        std::string_view name;  // valid until the next call
        entry_kind kind;
    };
    /// The next name except "." and ".."; empty at the end.
    std::optional<entry> next();

    [[nodiscard]] file_status status() const;
    /// Follows links; throws for a broken link.
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
