#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "ostrevan/file_info_builder.h"

namespace ostrevan::tags {

/// The steps of a rewrite, in order; each is announced when it has been done.
enum class rewrite_step {
    opened,          ///< the original was read and the edit asked for
    copy_made,       ///< an empty file is beside it
    copied,          ///< with the same content
    attributes_set,  ///< owner, mode, extended attributes
    edited,          ///< tags written, file closed
    verified,        ///< opened again: fields and sound are as they must be
    synced,          ///< on the disk
    checked,         ///< the original has not changed meanwhile
    renamed,         ///< the copy is the file now
    folder_synced,
};

/// Lets tests fail on demand: at a step (throw, or end the process), or at a write to the copy.
struct rewrite_faults {
    std::function<void(rewrite_step)> at_step;
    /// Receives the size of a write about to be made; a number other than 0 is the error that it fails with.
    std::function<int(std::size_t)> at_write;
};

struct rewrite_options {
    /// Keeps the time of last modification, so that programs which look for changed files do not see this one.
    bool preserve_modification_time = false;
    const rewrite_faults* faults = nullptr;
};

enum class rewrite_outcome { unchanged, rewritten };

struct rewrite_result {
    rewrite_outcome outcome = rewrite_outcome::unchanged;
    /// Side effects to tell the user of, such as a broken hard link.
    std::vector<std::string> notes;
    /// The file as it is now; saves reading it again.
    file_info_builder info;
};

/// Changes the file's fields; returns whether it did. May throw before anything has happened.
using field_edit = std::function<bool(file_info_builder&)>;

/// Edits the fields of one audio file without ever endangering it: a copy is edited, checked and then takes the file's place
/// in one step. Killed at any moment, the path holds either the old file or the new one, whole. Only the entries of fields
/// that the edit changed are touched. A symbolic link stays, its target is rewritten. Copies that an earlier kill has left
/// in the folder are removed. [any-thread] Two rewrites of one file at a time: one of them may fail and say that the file
/// changed meanwhile.
/// @throws tag_error naming the file, the reason and what to do; the file is unchanged then, and no copy is left.
rewrite_result rewrite_file(const std::string& path, const field_edit& edit, const rewrite_options& options = {});

}  // namespace ostrevan::tags
