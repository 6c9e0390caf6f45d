#pragma once

#include <cstdint>
#include <string>

namespace ostrevan::library {

/// Identifies the state of a file that was read: it is not opened again while both are unchanged.
struct file_stamp {
    std::int64_t size = 0;   // bytes
    std::int64_t mtime = 0;  // ns since 1970

    bool operator==(const file_stamp&) const = default;
};

/// An audio file that a CUE sheet refers to.
struct source_file {
    std::string path;
    file_stamp stamp;

    bool operator==(const source_file&) const = default;
};

}  // namespace ostrevan::library
