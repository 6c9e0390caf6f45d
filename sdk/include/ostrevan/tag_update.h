#pragma once

#include "ostrevan/track.h"

namespace ostrevan {

/// Told once when asynchronous work is done. [main-thread]
class completion_notify : public service_base {
public:
    static constexpr unsigned status_success = 0;
    static constexpr unsigned status_failed = 1;
    static constexpr unsigned status_aborted = 2;

    virtual void on_completion(unsigned status) = 0;
};
using completion_notify_ptr = service_ptr_t<completion_notify>;

/// Edits the tags of one file.
class file_info_filter : public service_base {
public:
    /// `info` holds what the file says now; edit it in place and answer whether it changed. A file for which the answer is
    /// no is not written. Called once a track, from one thread at a time. [worker]
    virtual bool apply_filter(const metadb_handle_ptr& track, file_info& info) = 0;
};

/// Rewrites file tags: asynchronous, one progress display for the whole batch, a file that fails is reported and the rest go
/// on. [main-thread]
class tag_update_service : public service_base {
public:
    static constexpr nuv::guid class_guid = nuv::guid_of("{DFE57C9C-B917-4EA9-A9B8-59971E30C26B}");

    /// Option bits. `option_silent | option_background` (5): no progress display, errors to the console only, and whatever
    /// the user does goes first.
    static constexpr unsigned option_silent = 1;
    static constexpr unsigned option_background = 4;

    /// Copies the list and returns at once. `notify` may be empty.
    virtual void update_async(metadb_handle_list_cref tracks, service_ptr_t<file_info_filter> filter, void* parent_window,
                              unsigned options, completion_notify_ptr notify) = 0;
};

/// Reads tags again from the files. [main-thread]
class info_reload_service : public service_base {
public:
    static constexpr nuv::guid class_guid = nuv::guid_of("{F1F90C21-4259-4C9E-9E95-59EE95368AA8}");

    /// Whose information is read: none that is known already, that of files that have changed, or all.
    static constexpr unsigned mode_unknown_only = 0;
    static constexpr unsigned mode_if_changed = 1;
    static constexpr unsigned mode_force = 2;
    /// No progress display for what is done at once.
    static constexpr unsigned option_delayed_progress = 4;

    /// Copies the list and returns at once. Success means that every track could be read.
    virtual void reload_async(metadb_handle_list_cref tracks, unsigned mode, void* parent_window, unsigned options,
                              completion_notify_ptr notify) = 0;
};

}  // namespace ostrevan
