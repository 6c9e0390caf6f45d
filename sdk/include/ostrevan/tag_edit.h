#pragma once

#include "ostrevan/track.h"

namespace ostrevan {

/// One track whose tags were edited, or whose file was renamed. Pointers are valid for the duration of the call.
struct tag_edit {
    metadb_handle_ptr track;
    const file_info* before = nullptr;
    const file_info* after = nullptr;
    /// A second view of what was there before, when the player holds one: what the file itself said when it differs from
    /// what the player had cached. May be null.
    const file_info* before_in_file = nullptr;
    /// Where the track was when it said what is before, if the file has been moved or renamed since; else null.
    const playable_location* location_before = nullptr;
};

/// Told after tags were edited through the player, when the files have been written. [main-thread]
class tag_edit_callback : public service_base {
public:
    static constexpr nuv::guid class_guid = nuv::guid_of("{86FAFDD6-B938-495E-AAF7-01B2B8004F06}");

    virtual void on_tags_edited(const nuv::list_base_const_t<tag_edit>& edits) = 0;
};

/// Extension of the callback, found by `service_query`, for what follows edits after the call has returned.
class tag_edit_outcome : public service_base {
public:
    static constexpr nuv::guid class_guid = nuv::guid_of("{5AC9EC79-E6B3-4EB3-9A93-850FA905C8AC}");

    /// Whether nothing failed that was to follow from the edits told since the last call. The player asks after the shutdown
    /// has been announced and no task is under way. When something failed it keeps the edits, and tells of them again at its
    /// next start. [main-thread]
    virtual bool all_followed() noexcept = 0;
};

}  // namespace ostrevan
