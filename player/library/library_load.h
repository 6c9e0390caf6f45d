#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "player/library/library_file.h"
#include "player/library/library_store.h"

namespace ostrevan::library {

/// Computes keys of tracks while their rows are read, so that no row is read again for its key.
class key_maker {
public:
    /// 0 when there is none. Called on several threads at once.
    [[nodiscard]] virtual std::uint64_t key_of(const file_info& info, const playable_location& location) noexcept = 0;
    /// The serial of the information from which the key was computed. Called on the thread of the load.
    virtual void remember(std::uint64_t serial, std::uint64_t key) noexcept = 0;

protected:
    ~key_maker() = default;
};

/// A file of the database with the handles of its tracks, whose path is the file's. A file without tracks has a handle all
/// the same: a sheet whose audio belongs to another one.
struct loaded_file {
    library_file file;
    track_ptr empty{};
    std::uint32_t path_hash = 0;
};

struct loaded_files {
    std::vector<loaded_file> files;
    std::vector<std::uint64_t> keys;  // of all tracks in their order, unless nobody makes any
};

/// Reads all files on two threads. Calls `enter` on the calling thread, in the order of the database. `keys` may be null.
void load_files(const library_store& store, key_maker* keys, const std::function<void(loaded_files&&)>& enter);

}  // namespace ostrevan::library
