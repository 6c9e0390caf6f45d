#pragma once

#include "ostrevan/file_info_builder.h"
#include "ostrevan/track.h"

namespace ostrevan {

/// Called once when asynchronous work is done. [main-thread]
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
    /// `info` holds the tags that are in the file. Edit it in place and return whether it changed; only then is the file
    /// written. Called once for each track, on one thread at a time. [worker]
    virtual bool apply_filter(const metadb_handle_ptr& track, file_info_builder& info) = 0;
};

/// Rewrites file tags asynchronously, with one progress display for the batch. A file that fails is reported and the others
/// are still written. [main-thread]
class tag_update_service : public service_base {
public:
    static constexpr nuv::guid class_guid = nuv::guid_of("{DFE57C9C-B917-4EA9-A9B8-59971E30C26B}");

    /// Option bits. `option_silent | option_background` (5): no progress display, errors to the console only, and
    /// requests of the user take precedence.
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

    /// Which tracks are read: those without information, those whose files have changed, or all.
    static constexpr unsigned mode_unknown_only = 0;
    static constexpr unsigned mode_if_changed = 1;
    static constexpr unsigned mode_force = 2;
    /// No progress display for work that takes only a moment.
    static constexpr unsigned option_delayed_progress = 4;

    /// Copies the list and returns at once. Success means that every track could be read.
    virtual void reload_async(metadb_handle_list_cref tracks, unsigned mode, void* parent_window, unsigned options,
                              completion_notify_ptr notify) = 0;
};

}  // namespace ostrevan
