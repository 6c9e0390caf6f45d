#pragma once

#include "ostrevan/track.h"

namespace ostrevan {

/// The media library: the tracks of the folders that the user has added. [main-thread]
class library_manager : public service_base {
public:
    static constexpr nuv::guid class_guid = nuv::guid_of("{FEBD85B5-C12D-45B5-B55D-0D3F432B0C6B}");

    /// False while the user has added no folder.
    [[nodiscard]] virtual bool is_library_enabled() const = 0;
    /// By path, then subsong.
    virtual void get_all_items(metadb_handle_list& out) const = 0;
    /// In any order, which is much faster with a large library.
    virtual void get_unordered_items(metadb_handle_list& out) const { get_all_items(out); }
};

/// Called when the contents of the library change. [main-thread]
class library_callback : public service_base {
public:
    static constexpr nuv::guid class_guid = nuv::guid_of("{E4134152-8536-453B-963A-61E6FEF6E516}");

    virtual void on_items_added(metadb_handle_list_cref /*items*/) {}
    virtual void on_items_removed(metadb_handle_list_cref /*items*/) {}
    virtual void on_items_modified(metadb_handle_list_cref /*items*/) {}
};

}  // namespace ostrevan
