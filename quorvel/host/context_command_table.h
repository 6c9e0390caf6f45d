#pragma once

#include <cstddef>
#include <span>
#include <string>

#include "ostrevan/context_menu.h"

namespace quorvel {

/// One command of the track context menu. The player keeps shortcuts under `id`, so it never changes.
struct context_command_entry {
    const char* name;
    nuv::guid id;
    const char* description;
    void (*execute)(ostrevan::metadb_handle_list_cref items);
};

/// A group of commands, made from a table, in the "Playback Statistics" submenu.
class context_command_table : public ostrevan::context_menu_item {
public:
    context_command_table(const nuv::guid& parent, std::span<const context_command_entry> entries) noexcept
        : parent_(parent), entries_(entries) {}

    std::size_t get_item_count() const noexcept override { return entries_.size(); }
    std::string get_item_name(std::size_t index) const override { return entry(index).name; }
    nuv::guid get_item_guid(std::size_t index) const override { return entry(index).id; }
    std::string get_item_default_path(std::size_t /*index*/) const override { return "Playback Statistics"; }
    bool get_item_description(std::size_t index, std::string& out) const override {
        if (index >= entries_.size()) return false;
        out = entries_[index].description;
        return true;
    }
    nuv::guid get_parent() const noexcept override { return parent_; }
    void context_command(std::size_t index, ostrevan::metadb_handle_list_cref items, const nuv::guid& /*caller*/) override {
        entry(index).execute(items);
    }

protected:
    const context_command_entry& entry(std::size_t index) const {
        if (index >= entries_.size()) ostrevan::uBugCheck();
        return entries_[index];
    }

private:
    nuv::guid parent_;
    std::span<const context_command_entry> entries_;
};

}  // namespace quorvel
