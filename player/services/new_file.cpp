#include "player/services/new_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <system_error>
#include <utility>

#include "ostrevan/exceptions.h"
#include "player/services/local_file.h"
#include "player/system/durable_file.h"

namespace ostrevan::services {
namespace {

namespace fs = std::filesystem;

class new_file : public local_file {
public:
    new_file(std::string final, std::string part, system::descriptor opened, unfinished_file_sink on_unfinished) noexcept
        : local_file(std::move(final), std::move(opened)),
          part_(std::move(part)),
          on_unfinished_(std::move(on_unfinished)) {}

    ~new_file() override {
        if (is_in_place_) return;
        struct stat status {};
        if (::fstat(file_.get(), &status) == 0 && status.st_size == 0) {
            ::unlink(part_.c_str());
        } else if (on_unfinished_) {
            std::error_code ignored;
            on_unfinished_(path_ + " was not finished: what was written of it is in " + part_ +
                           (fs::exists(path_, ignored) ? ", and the older file is as it was." : "."));
        }
    }

    void flush() override {
        local_file::flush();
        if (is_in_place_) return;
        if (::rename(part_.c_str(), path_.c_str()) != 0) fail("replaced", errno);
        is_in_place_ = true;
        (void)system::sync_to_disk(system::folder_of(path_));
    }

private:
    const std::string part_;
    const unfinished_file_sink on_unfinished_;
    bool is_in_place_ = false;
};

/// The file to replace: absolute, since the process may change its folder, with links resolved.
std::string place_of(const std::string& path) {
    std::error_code error;
    const auto target = fs::canonical(path, error);
    return (error ? fs::absolute(path, error) : target).string();
}

}  // namespace

file_ptr open_new_file(const std::string& path, const unfinished_file_sink& on_unfinished) {
    constexpr mode_t everybody = 0666;  // reduced by the user's mask
    struct stat older {};
    const bool is_there = ::stat(path.c_str(), &older) == 0;
    if (is_there && !S_ISREG(older.st_mode)) return open_local_file(path, filesystem::open_mode::write_new);
    if (is_there && ::access(path.c_str(), W_OK) != 0) throw_io_error(path + " cannot be replaced", errno);

    const auto place = place_of(path);
    // Never overwrites an unfinished file of an earlier attempt.
    constexpr int most_parts = 100;
    std::string part;
    system::descriptor file;
    for (int number = 1; number <= most_parts && (number == 1 || (!file && errno == EEXIST)); ++number) {
        part = place + ".part" + (number == 1 ? "" : std::to_string(number));
        file = system::descriptor(::open(part.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, everybody));
    }
    if (!file) throw_io_error(part + " cannot be made beside " + path, errno);
    if (is_there) (void)!::fchmod(file.get(), older.st_mode & 0777);
    return service_new<new_file>(place, part, std::move(file), on_unfinished);
}

}  // namespace ostrevan::services
