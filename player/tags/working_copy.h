#pragma once

#include <sys/stat.h>

#include <string>

#include "player/system/descriptor.h"

namespace ostrevan::tags {

/// A copy of a file in its own folder, to be edited and then put in its place. It is hidden, keeps the extension, is locked
/// as long as its maker lives, and is removed unless it has taken the original's place.
class working_copy {
public:
    /// Makes an empty file beside `original`. @throws tag_error naming the original.
    explicit working_copy(const std::string& original);
    working_copy(const working_copy&) = delete;
    working_copy& operator=(const working_copy&) = delete;
    ~working_copy();

    [[nodiscard]] const std::string& path() const noexcept { return path_; }
    [[nodiscard]] int file() const noexcept { return file_.get(); }

    /// Fills it with the bytes of the original: shared where the file system can, copied otherwise.
    void take_content(int original, const struct stat& about);
    /// Owner, group, mode without set-user-id bits, and extended attributes, access lists among them. Returns false when the
    /// owner could not be kept.
    bool take_attributes(int original, const struct stat& about);
    /// Times of last access and modification. @throws tag_error
    void take_times(const struct stat& about);
    /// Forces the content to the disk. @throws tag_error
    void sync();
    /// Puts it in the place of the original. @throws tag_error
    void take_place();

private:
    [[noreturn]] void fail(const char* doing, int error) const;

    std::string original_;
    std::string path_;
    system::descriptor file_;
};

}  // namespace ostrevan::tags
