#pragma once

#include "ostrevan/track.h"

namespace ostrevan {

/// One track whose tags were edited. Pointers are valid for the duration of the call.
struct tag_edit {
    metadb_handle_ptr track;
    const file_info* before = nullptr;
    const file_info* after = nullptr;
    /// A second view of what was there before, when the player holds one: what the file itself said when it differs from
    /// what the player had cached. May be null.
    const file_info* before_in_file = nullptr;
};

/// Told after tags were edited through the player, when the files have been written. [main-thread]
class tag_edit_callback : public service_base {
public:
    static constexpr nuv::guid class_guid = nuv::guid_of("{86FAFDD6-B938-495E-AAF7-01B2B8004F06}");

    virtual void on_tags_edited(const nuv::list_base_const_t<tag_edit>& edits) = 0;
};

}  // namespace ostrevan
