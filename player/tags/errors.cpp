#include "player/tags/errors.h"

#include <cerrno>
#include <iterator>
#include <system_error>

namespace ostrevan::tags {
namespace {

struct reason {
    int error;
    const char* text;
};

constexpr reason reasons[] = {
    {ENOENT, "there is no such file"},
    {ENOTDIR, "there is no such file: a part of its path is not a folder"},
    {EACCES, "permission denied; check the permissions of the file and its folder"},
    {EPERM, "the system does not permit it; the file may be protected or belong to someone else"},
    {EROFS, "the file system is read-only; mount it writable or copy the file elsewhere"},
    {ENOSPC, "the disk is full; free some space and try again"},
    {EDQUOT, "the disk quota is used up; free some space and try again"},
    {ELOOP, "too many symbolic links lead to it"},
    {ENAMETOOLONG, "its path is too long"},
    {EIO, "the device reports an input/output error; check the disk"},
    {EMFILE, "too many files are open; close some and try again"},
};

}  // namespace

std::string reason_of_errno(int error) {
    for (const auto& known : reasons)
        if (known.error == error) return known.text;
    return std::generic_category().message(error);
}

}  // namespace ostrevan::tags
