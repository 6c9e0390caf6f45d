#pragma once

#include <memory>

#include "ostrevan_test/memory_player.h"
#include "tests/support/memory_tracks.h"

namespace support {

/// The clipboard that the component reaches: the player's, or the system's own on Windows.
std::unique_ptr<memory_clipboard> make_clipboard();

/// Unicode lower-casing, of the system or of a library.
std::uint32_t lower_case_of(std::uint32_t code_point) noexcept;

/// The player in memory with lower-casing of all letters.
class memory_player : public ostrevan_test::memory_player {
public:
    /// With the component whose objects are linked into the test.
    memory_player();
    memory_player(ostrevan::get_interface_function entry, const char* library_path);
    ~memory_player() override { shut_down(); }

private:
    const std::unique_ptr<memory_clipboard> reached_clipboard_ = make_clipboard();

public:
    memory_clipboard& clipboard = *reached_clipboard_;
};

}  // namespace support
