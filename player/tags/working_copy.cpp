#include "player/tags/working_copy.h"

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <vector>

#include "nuv/text.h"
#include "player/system/durable_file.h"
#include "player/tags/errors.h"
#include "player/tags/stale_copies.h"

namespace ostrevan::tags {
namespace {

constexpr std::size_t copy_block_size = 1 << 20;

/// Returns 0 or an error. Goes on where an earlier call stopped, so that a faster way may fail half way.
int copy_by_kernel(int from, int to, off_t size) {
    for (off_t at = lseek(to, 0, SEEK_CUR); at < size;) {
        off_t source = at;
        const auto done = copy_file_range(from, &source, to, nullptr, static_cast<std::size_t>(size - at), 0);
        if (done < 0 && errno == EINTR) continue;
        if (done < 0) return errno;
        if (done == 0) return EIO;
        at += done;
    }
    return 0;
}

int copy_by_hand(int from, int to, off_t size) {
    std::vector<char> buffer(copy_block_size);
    for (off_t at = lseek(to, 0, SEEK_CUR); at < size;) {
        const auto got =
            pread(from, buffer.data(), std::min<std::size_t>(buffer.size(), static_cast<std::size_t>(size - at)), at);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return errno;
        if (got == 0) return EIO;
        const auto put = write(to, buffer.data(), static_cast<std::size_t>(got));
        if (put < 0 && errno != EINTR) return errno;
        if (put > 0) at += put;
    }
    return 0;
}

/// Errors of `copy_file_range` that another way of copying does not have; others are about the files.
bool needs_another_way(int error) {
    constexpr int errors[] = {ENOSYS, EXDEV, EINVAL, EOPNOTSUPP, EPERM, EIO, EBADF};
    return std::ranges::find(errors, error) != std::end(errors);
}

std::vector<std::string> attribute_names(int file) {
    const auto size = flistxattr(file, nullptr, 0);
    if (size <= 0) return {};
    std::string list(static_cast<std::size_t>(size), '\0');
    const auto got = flistxattr(file, list.data(), list.size());
    std::vector<std::string> names;
    for (std::size_t at = 0; got > 0 && at < static_cast<std::size_t>(got); at += names.back().size() + 1)
        names.emplace_back(list.c_str() + at);
    return names;
}

/// Set by a user or an administrator. The system fills in the other name spaces by itself.
bool belongs_to_user(const std::string& name) { return name.starts_with("user.") || name.starts_with("system.posix_acl"); }

int copy_attribute(int from, int to, const std::string& name) {
    const auto size = fgetxattr(from, name.c_str(), nullptr, 0);
    if (size < 0) return errno;
    std::string value(static_cast<std::size_t>(size), '\0');
    const auto got = fgetxattr(from, name.c_str(), value.data(), value.size());
    if (got < 0) return errno;
    return fsetxattr(to, name.c_str(), value.data(), static_cast<std::size_t>(got), 0) == 0 ? 0 : errno;
}

}  // namespace

working_copy::working_copy(const std::string& original) : original_(original) {
    do {
        path_ = system::folder_of(original) + "/" + next_copy_name(original);
        file_ = system::descriptor(open(path_.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR));
    } while (!file_ && errno == EEXIST);
    if (!file_) {
        path_.clear();
        fail("a working copy cannot be made beside it", errno);
    }
    // Without locks, the process in the name still protects it.
    flock(file_.get(), LOCK_EX | LOCK_NB);
}

working_copy::~working_copy() {
    if (!path_.empty()) unlink(path_.c_str());
}

void working_copy::fail(const char* doing, int error) const {
    throw tag_error(original_, std::string(doing) + ": " + reason_of_errno(error));
}

void working_copy::take_content(int original, const struct stat& about) {
    if (ioctl(file_.get(), FICLONE, original) == 0) return;
    int error = copy_by_kernel(original, file_.get(), about.st_size);
    if (needs_another_way(error)) error = copy_by_hand(original, file_.get(), about.st_size);
    if (error != 0) fail("it cannot be copied", error);
}

bool working_copy::take_attributes(int original, const struct stat& about) {
    struct stat own {};
    if (fstat(file_.get(), &own) != 0) fail("its working copy cannot be examined", errno);
    bool kept = own.st_uid == about.st_uid && own.st_gid == about.st_gid;
    if (!kept) kept = fchown(file_.get(), about.st_uid, about.st_gid) == 0;
    // The group matters to those who share the file, even where the owner cannot be given away.
    const bool group_kept = kept || fchown(file_.get(), static_cast<uid_t>(-1), about.st_gid) == 0;
    // Rights of one group are not given to another, nor set-user-id bits to content that another user wrote.
    const mode_t group_rights = group_kept ? S_IRWXG : 0;
    const mode_t mode = about.st_mode & (S_ISVTX | S_IRWXU | S_IRWXO | group_rights);
    if (fchmod(file_.get(), mode) != 0) fail("its mode cannot be kept", errno);
    for (const auto& name : attribute_names(original))
        if (const int error = copy_attribute(original, file_.get(), name); error != 0 && belongs_to_user(name))
            fail(("its extended attribute " + name + " cannot be kept").c_str(), error);
    return kept;
}

void working_copy::take_times(const struct stat& about) {
    const timespec times[] = {about.st_atim, about.st_mtim};
    if (futimens(file_.get(), times) != 0) fail("its times cannot be kept", errno);
}

void working_copy::sync() {
    if (const int error = system::sync_to_disk(file_.get()); error != 0)
        fail("the edited copy cannot be brought to the disk", error);
}

void working_copy::take_place() {
    if (rename(path_.c_str(), original_.c_str()) != 0) fail("the edited copy cannot take its place", errno);
    path_.clear();
}

}  // namespace ostrevan::tags
