#pragma once

#include "ostrevan/track.h"

namespace ostrevan {

/// One track whose tags were edited, or whose file was renamed. Pointers are valid for the duration of the call.
struct tag_edit {
    metadb_handle_ptr track;
    const file_info* before = nullptr;
    const file_info* after = nullptr;
    /// The tags that were in the file, if they differed from `before`, which the player had cached; else null.
    const file_info* before_in_file = nullptr;
    /// The earlier location, if the file was moved or renamed; else null.
    const playable_location* location_before = nullptr;
};

/// Called after tags were edited through the player and the files were written. [main-thread]
class tag_edit_callback : public service_base {
public:
    static constexpr nuv::guid class_guid = nuv::guid_of("{86FAFDD6-B938-495E-AAF7-01B2B8004F06}");

    virtual void on_tags_edited(const nuv::list_base_const_t<tag_edit>& edits) = 0;
};

/// Extension of the callback, found by `service_query`, for a component whose work goes on after the call has returned.
class tag_edit_outcome : public service_base {
public:
    static constexpr nuv::guid class_guid = nuv::guid_of("{5AC9EC79-E6B3-4EB3-9A93-850FA905C8AC}");

    /// True when the work for all edits since the last call succeeded. The player asks after the shutdown notifications,
    /// when no task is running. After a failure it reports the same edits again at its next start. [main-thread]
    virtual bool all_followed() noexcept = 0;
};

}  // namespace ostrevan
