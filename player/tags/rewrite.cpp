#include "player/tags/rewrite.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <memory>
#include <optional>

#include "player/system/durable_file.h"
#include "player/tags/changes.h"
#include "player/tags/edit_tags.h"
#include "player/tags/encoded_sound.h"
#include "player/tags/errors.h"
#include "player/tags/open_file.h"
#include "player/tags/stale_copies.h"
#include "player/tags/tag_fields.h"
#include "player/tags/working_copy.h"

namespace ostrevan::tags {
namespace {

std::string resolved(const std::string& path) {
    const std::unique_ptr<char, decltype(&std::free)> real(realpath(path.c_str(), nullptr), std::free);
    if (!real) throw tag_error(path, "cannot be opened: " + reason_of_errno(errno));
    return real.get();
}

struct stat examined(const std::string& path, int file) {
    struct stat about {};
    if (fstat(file, &about) != 0) throw tag_error(path, "cannot be examined: " + reason_of_errno(errno));
    return about;
}

/// A rename would work on a read-only file too, but its owner protected it.
void require_writable(const std::string& path, const struct stat& about) {
    constexpr mode_t write_bits = S_IWUSR | S_IWGRP | S_IWOTH;
    if ((about.st_mode & write_bits) == 0 || faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) != 0)
        throw tag_error(path, "is read-only; allow writing to it and try again");
}

bool same_file(const struct stat& a, const struct stat& b) {
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino && a.st_size == b.st_size && a.st_mtim.tv_sec == b.st_mtim.tv_sec &&
           a.st_mtim.tv_nsec == b.st_mtim.tv_nsec;
}

/// Of several rewrites of one file one succeeds; the others find it changed. The lock on the original closes the gap between
/// this check and the rename, where the file system has locks.
void lock_and_require_same(const std::string& path, int original, const struct stat& before) {
    if (flock(original, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK)
        throw tag_error(path, "is being changed by another program; try again later");
    struct stat now {};
    if (stat(path.c_str(), &now) != 0 || !same_file(before, now))
        throw tag_error(path, "was changed by another program meanwhile; try again");
}

void edit_copy(const std::string& copy, const file_info_builder& before, const file_info_builder& after,
               const rewrite_options& options) {
    auto opened = open_audio(copy, file_stream::access::write);
    if (options.faults != nullptr && options.faults->at_write) opened.stream->set_write_fault(options.faults->at_write);
    std::string refusal;
    try {
        edit_tags(opened, before, after);
    } catch (const edit_error& refused) {
        refusal = refused.what();
    }
    opened.file.reset();
    // A failed write is the reason, whatever error the library made of it.
    if (const int error = opened.stream->close(); error != 0)
        throw tag_error(copy, "its edited copy cannot be written: " + reason_of_errno(error));
    if (!refusal.empty()) throw tag_error(copy, refusal);
}

/// Of the original. Sound that cannot be found could not be compared afterwards.
std::uint64_t known_sound(const std::string& path, const opened_file& opened) {
    std::uint64_t sound = 0;
    try {
        sound = digest_of_sound(opened.kind, *opened.stream);
    } catch (const edit_error& damage) {
        throw tag_error(path, damage.what());
    }
    if (const int error = opened.stream->error(); error != 0)
        throw tag_error(path, "cannot be read: " + reason_of_errno(error));
    return sound;
}

/// A field that does not hold the same in both.
std::optional<std::string> differing_field(const file_info_builder& a, const file_info_builder& b) {
    for (const auto* one : {&a, &b})
        for (std::size_t i = 0; i < one->meta_count(); ++i) {
            const auto& other = one == &a ? b : a;
            const auto index = other.meta_find(one->meta_name(i));
            if (index == file_info_builder::npos || other.meta_values(index) != one->meta_values(i))
                return one->meta_name(i);
        }
    return std::nullopt;
}

bool same_sound(const opened_file& opened, const file_info_builder& now, const file_info_builder& before,
                std::uint64_t sound) try {
    return now.length == before.length && now.sample_rate == before.sample_rate && now.channels == before.channels &&
           now.codec == before.codec && digest_of_sound(opened.kind, *opened.stream) == sound;
} catch (const edit_error&) {
    return false;
}

file_info_builder verified_copy(const std::string& copy, const file_info_builder& before, const file_info_builder& after,
                                std::uint64_t sound) {
    const auto opened = open_audio(copy);
    file_info_builder now = info_of(opened);
    if (!same_sound(opened, now, before, sound))
        throw tag_error(copy, "the edit would have changed its sound; the file may be damaged, play it to find out");
    if (const int error = opened.stream->error(); error != 0)
        throw tag_error(copy, "its edited copy cannot be read: " + reason_of_errno(error));
    if (const auto field = differing_field(now, after))
        throw tag_error(copy, "a tag of its format (" + std::string(name_of(opened.kind)) +
                                  ") cannot hold this value of the field \"" + *field + "\": it read back differently");
    return now;
}

rewrite_result rewrite_resolved(const std::string& path, const field_edit& edit, const rewrite_options& options) {
    const auto done = [&](rewrite_step step) {
        if (options.faults != nullptr && options.faults->at_step) options.faults->at_step(step);
    };
    rewrite_result result;
    opened_file original = open_audio(path);
    const struct stat about = examined(path, original.stream->file());
    const file_info_builder before = info_of(original);
    original.file.reset();

    result.info = before;
    file_info_builder edited = before;
    if (!edit(edited)) return result;
    const file_info_builder after = canonical(edited);
    if (same_fields(before, after)) return result;
    if (before.length <= 0) throw tag_error(path, "has no known length and may be damaged; repair or replace it first");
    require_writable(path, about);
    const std::uint64_t sound = known_sound(path, original);
    done(rewrite_step::opened);

    const std::string folder = system::folder_of(path);
    remove_stale_copies(folder);
    working_copy copy(path);
    done(rewrite_step::copy_made);
    copy.take_content(original.stream->file(), about);
    done(rewrite_step::copied);
    if (!copy.take_attributes(original.stream->file(), about))
        result.notes.emplace_back("its owner or group could not be kept; the file belongs to you now");
    done(rewrite_step::attributes_set);
    edit_copy(copy.path(), before, after, options);
    done(rewrite_step::edited);
    result.info = verified_copy(copy.path(), before, after, sound);
    done(rewrite_step::verified);
    if (options.preserve_modification_time) copy.take_times(about);
    copy.sync();
    done(rewrite_step::synced);
    lock_and_require_same(path, original.stream->file(), about);
    done(rewrite_step::checked);
    copy.take_place();
    result.outcome = rewrite_outcome::rewritten;
    done(rewrite_step::renamed);
    if (system::sync_to_disk(folder) != 0)
        result.notes.emplace_back(
            "its folder could not be brought to the disk; a power failure now may bring back the old file");
    done(rewrite_step::folder_synced);
    if (about.st_nlink > 1) result.notes.emplace_back("it had other names (hard links); they still lead to the old content");
    return result;
}

}  // namespace

rewrite_result rewrite_file(const std::string& path, const field_edit& edit, const rewrite_options& options) try {
    return rewrite_resolved(resolved(path), edit, options);
} catch (const tag_error& error) {
    // The user knows the file by the given name, not by that of the copy or of a link's target.
    const bool exists = access(path.c_str(), F_OK) == 0;
    throw tag_error(path, error.reason() + (exists ? " (the file is unchanged)" : ""));
}

}  // namespace ostrevan::tags
