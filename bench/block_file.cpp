#include "bench/block_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>

namespace bench {
namespace {

constexpr std::uint64_t blocks = 1024;

}  // namespace

block_file::block_file(const std::filesystem::path& path)
    : file_(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600)), block_(4096, 'x') {
    for (std::uint64_t i = 0; i < blocks; ++i) write(i);
    if (fsync(file_) != 0) std::abort();
}

block_file::~block_file() { close(file_); }

void block_file::write_durably() {
    write(written_++ % blocks);
    if (fdatasync(file_) != 0) std::abort();
}

void block_file::write(std::uint64_t number) const {
    const auto size = block_.size();
    if (pwrite(file_, block_.data(), size, static_cast<off_t>(number * size)) != static_cast<ssize_t>(size)) std::abort();
}

}  // namespace bench
