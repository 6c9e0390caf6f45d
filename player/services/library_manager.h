#pragma once

#include "ostrevan/library.h"
#include "player/core/main_loop.h"
#include "player/library/media_library.h"

namespace ostrevan::services {

/// The library for components. One that asks at an early stage of the start has it loaded.
class library_manager_impl : public library_manager {
public:
    explicit library_manager_impl(library::media_library& library) : library_(library) {}
    [[nodiscard]] bool is_library_enabled() const override {
        core::check_main_thread("is_library_enabled");
        return library_.is_enabled();
    }
    void get_all_items(metadb_handle_list& out) const override {
        core::check_main_thread("library_manager::get_all_items");
        library_.load();
        out = metadb_handle_list(std::vector<metadb_handle_ptr>(library_.items().begin(), library_.items().end()));
    }
    void get_unordered_items(metadb_handle_list& out) const override {
        library_.load();
        out = metadb_handle_list(*library_.unordered_items());
    }

private:
    library::media_library& library_;
};

}  // namespace ostrevan::services
