#pragma once

#include <sys/syscall.h>
#include <unistd.h>

#include <climits>
#include <string>
#include <vector>

namespace ostrevan {

/// The files synced by this thread, by their names at that moment: only this shows what a power failure leaves.
inline thread_local std::vector<std::string> synced;

}  // namespace ostrevan

/// Replaces the C library's function in the test program.
extern "C" __attribute__((used)) inline int fsync(int file) {
    char name[PATH_MAX];
    const auto size = ::readlink(("/proc/self/fd/" + std::to_string(file)).c_str(), name, sizeof name);
    if (size > 0) ostrevan::synced.emplace_back(name, static_cast<std::size_t>(size));
    return static_cast<int>(::syscall(SYS_fsync, file));
}
