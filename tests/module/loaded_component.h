#pragma once

#include <memory>
#include <string>

#include "tests/support/memory_player.h"

namespace module_test {

/// A library file in this process, until this is destroyed.
class loaded_library {
public:
    /// UTF-8. Throws `std::runtime_error` with the system's reason.
    explicit loaded_library(const std::string& path);
    ~loaded_library();
    loaded_library(const loaded_library&) = delete;
    loaded_library& operator=(const loaded_library&) = delete;

    [[nodiscard]] ostrevan::get_interface_function entry() const;
    /// Calls a function `int name()` of the library.
    int call(const char* name) const;

private:
    [[nodiscard]] void* address_of(const char* name) const;

    void* handle_;
};

/// A tiny player: services in memory, and the component loaded from its file as a player does it.
class tiny_player {
public:
    explicit tiny_player(const std::string& path) : library_(path), player_(library_.entry(), path.c_str()) {}

    support::memory_player* operator->() noexcept { return &player_; }
    support::memory_player& operator*() noexcept { return player_; }

    /// Runs a command of the main menu.
    void run_main(const std::string& name);
    /// A command of the context menu and how it is shown for these tracks.
    void run_context(const std::string& name, const ostrevan::metadb_handle_list& tracks);
    [[nodiscard]] bool is_grayed(const std::string& name, const ostrevan::metadb_handle_list& tracks);

private:
    loaded_library library_;
    support::memory_player player_;
};

}  // namespace module_test
