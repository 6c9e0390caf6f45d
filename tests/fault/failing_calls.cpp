// Preloaded into the player: counts the calls that change files below one folder, fails or kills at a chosen one, and shifts
// the clock. The harness talks to it through a small file that both map, so that it can look and change while the player
// runs.
//
//   FAULT_FOLDER    the folder, absolute and without links; other files are not affected
//   FAULT_CONTROL   the file: a `control` as below, made by the harness
//
// Everything is a bare system call: no allocation and no lock that the player could be holding.
#include <dlfcn.h>
#include <fcntl.h>
#include <pthread.h>
#include <sys/mman.h>
#include <sys/sendfile.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <sys/uio.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

namespace {

constexpr std::int64_t from_then_on = 1;  // in `mode`; otherwise the one call
constexpr std::int64_t kill_after = -1;   // in `error`, instead of an errno

struct control {
    std::atomic<std::int64_t> clock_offset;  // ns
    std::atomic<std::int64_t> calls;         // counted so far
    std::atomic<std::int64_t> chosen;        // the call to fail, from 1; 0 for none
    std::atomic<std::int64_t> error;
    std::atomic<std::int64_t> mode;
    std::atomic<std::int64_t> failed;  // how many failed
    char first_failed[512];            // its name and path
};

control idle{};
control* shared = &idle;
const char* folder = nullptr;
std::size_t folder_size = 0;

__attribute__((constructor)) void start() {
    const char* const path = std::getenv("FAULT_CONTROL");
    if (path == nullptr) return;
    const auto file = static_cast<int>(syscall(SYS_openat, AT_FDCWD, path, O_RDWR | O_CLOEXEC));
    void* const map = mmap(nullptr, sizeof(control), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    if (map == MAP_FAILED) std::abort();
    syscall(SYS_close, file);
    shared = static_cast<control*>(map);
    folder = std::getenv("FAULT_FOLDER");
    folder_size = folder == nullptr ? 0 : std::strlen(folder);
}

bool is_below(const char* path) {
    return folder_size != 0 && std::strncmp(path, folder, folder_size) == 0 &&
           (path[folder_size] == '/' || path[folder_size] == '\0');
}

/// Counts one call and returns the errno to fail with, or 0.
int next_call(const char* name, const char* path) {
    const auto number = shared->calls.fetch_add(1) + 1;
    const auto chosen = shared->chosen.load();
    if (chosen == 0 || (shared->mode.load() == from_then_on ? number < chosen : number != chosen)) return 0;
    if (shared->failed.fetch_add(1) == 0)
        std::snprintf(shared->first_failed, sizeof shared->first_failed, "%s %s", name, path);
    return static_cast<int>(shared->error.load());
}

/// Makes the call unless it is to fail.
template <typename Call>
auto unless_failing(const char* name, const char* path, Call call) -> decltype(call()) {
    const int error = is_below(path) ? next_call(name, path) : 0;
    if (error > 0) {
        errno = error;
        return -1;
    }
    const auto result = call();
    if (error == kill_after) syscall(SYS_kill, getpid(), SIGKILL);
    return result;
}

template <typename Call>
auto unless_failing(const char* name, int file, Call call) -> decltype(call()) {
    char link[32], path[PATH_MAX];
    std::snprintf(link, sizeof link, "/proc/self/fd/%d", file);
    const auto size = syscall(SYS_readlinkat, AT_FDCWD, link, path, sizeof path - 1);
    path[size < 0 ? 0 : size] = '\0';
    return unless_failing(name, path, call);
}

int open_at(const char* name, int at, const char* path, int flags, mode_t mode) {
    const auto call = [&] { return static_cast<int>(syscall(SYS_openat, at, path, flags, mode)); };
    const bool changes = (flags & (O_CREAT | O_TRUNC)) != 0 || (flags & O_ACCMODE) != O_RDONLY;
    return changes ? unless_failing(name, path, call) : call();
}

timespec shifted(timespec time, std::int64_t by) {
    constexpr std::int64_t second = 1'000'000'000;
    auto rest = time.tv_nsec + by % second;
    time.tv_sec += by / second + (rest >= second) - (rest < 0);
    rest += rest < 0 ? second : rest >= second ? -second : 0;
    time.tv_nsec = rest;
    return time;
}

timespec now() {
    timespec time{};
    syscall(SYS_clock_gettime, CLOCK_REALTIME, &time);
    return shifted(time, shared->clock_offset.load());
}

}  // namespace

#define SAME_AS(name) __attribute__((alias(name)))
// The kernel ignores the mode where none is needed.
#define OPEN_MODE(last)                     \
    va_list rest;                           \
    va_start(rest, last);                   \
    const auto mode = va_arg(rest, mode_t); \
    va_end(rest);

extern "C" {

int open(const char* path, int flags, ...) {
    OPEN_MODE(flags)
    return open_at("open", AT_FDCWD, path, flags, mode);
}
int open64(const char* path, int flags, ...) SAME_AS("open");
int openat(int at, const char* path, int flags, ...) {
    OPEN_MODE(flags)
    return open_at("openat", at, path, flags, mode);
}
int openat64(int at, const char* path, int flags, ...) SAME_AS("openat");
// Fortified builds call these when there is no mode.
int __open_2(const char* path, int flags) { return open_at("open", AT_FDCWD, path, flags, 0); }
int __open64_2(const char* path, int flags) SAME_AS("__open_2");
int mkstemp(char* path) {
    static const auto real = reinterpret_cast<int (*)(char*)>(dlsym(RTLD_NEXT, "mkstemp"));
    return unless_failing("mkstemp", path, [&] { return real(path); });
}
int mkstemp64(char* path) SAME_AS("mkstemp");

// On an open file, by its descriptor `file`; the kernel's call has the same arguments.
#define ON_FILE(type, name, parameters, ...)                                                         \
    type name parameters {                                                                           \
        return static_cast<type>(unless_failing(#name, file, [&] { return syscall(__VA_ARGS__); })); \
    }
ON_FILE(ssize_t, write, (int file, const void* data, size_t size), SYS_write, file, data, size)
ON_FILE(ssize_t, pwrite, (int file, const void* data, size_t size, off_t at), SYS_pwrite64, file, data, size, at)
ON_FILE(ssize_t, writev, (int file, const iovec* parts, int count), SYS_writev, file, parts, count)
ON_FILE(ssize_t, pwritev, (int file, const iovec* parts, int count, off_t at), SYS_pwritev, file, parts, count, at, 0L)
ON_FILE(ssize_t, copy_file_range, (int from, off64_t* at, int file, off64_t* to, size_t size, unsigned flags),
        SYS_copy_file_range, from, at, file, to, size, flags)
ON_FILE(ssize_t, sendfile, (int file, int from, off_t* at, size_t size), SYS_sendfile, file, from, at, size)
ON_FILE(int, fsync, (int file), SYS_fsync, file)
ON_FILE(int, fdatasync, (int file), SYS_fdatasync, file)
ON_FILE(int, ftruncate, (int file, off_t size), SYS_ftruncate, file, size)
ON_FILE(int, fallocate, (int file, int mode, off_t at, off_t size), SYS_fallocate, file, mode, at, size)
ON_FILE(int, fchmod, (int file, mode_t mode), SYS_fchmod, file, mode)
ssize_t pwrite64(int file, const void* data, size_t size, off64_t at) SAME_AS("pwrite");
ssize_t pwritev64(int file, const iovec* parts, int count, off64_t at) SAME_AS("pwritev");
ssize_t sendfile64(int file, int from, off64_t* at, size_t size) SAME_AS("sendfile");
int ftruncate64(int file, off64_t size) SAME_AS("ftruncate");
int fallocate64(int file, int mode, off64_t at, off64_t size) SAME_AS("fallocate");
int posix_fallocate(int file, off_t at, off_t size) { return fallocate(file, 0, at, size) == 0 ? 0 : errno; }
int posix_fallocate64(int file, off64_t at, off64_t size) SAME_AS("posix_fallocate");

// By a path that the call makes or removes.
#define ON_PATH(name, parameters, path, ...)                                                        \
    int name parameters {                                                                           \
        return static_cast<int>(unless_failing(#name, path, [&] { return syscall(__VA_ARGS__); })); \
    }
ON_PATH(renameat2, (int from_at, const char* from, int to_at, const char* to, unsigned flags), to, SYS_renameat2, from_at,
        from, to_at, to, flags)
ON_PATH(linkat, (int from_at, const char* from, int to_at, const char* to, int flags), to, SYS_linkat, from_at, from, to_at,
        to, flags)
ON_PATH(unlinkat, (int at, const char* path, int flags), path, SYS_unlinkat, at, path, flags)
ON_PATH(mkdirat, (int at, const char* path, mode_t mode), path, SYS_mkdirat, at, path, mode)
int renameat(int from_at, const char* from, int to_at, const char* to) { return renameat2(from_at, from, to_at, to, 0); }
int rename(const char* from, const char* to) { return renameat2(AT_FDCWD, from, AT_FDCWD, to, 0); }
int link(const char* from, const char* to) { return linkat(AT_FDCWD, from, AT_FDCWD, to, 0); }
int unlink(const char* path) { return unlinkat(AT_FDCWD, path, 0); }
int rmdir(const char* path) { return unlinkat(AT_FDCWD, path, AT_REMOVEDIR); }
int remove(const char* path) {
    const int done = unlink(path);
    return done != 0 && errno == EISDIR ? rmdir(path) : done;
}
int mkdir(const char* path, mode_t mode) { return mkdirat(AT_FDCWD, path, mode); }

int clock_gettime(clockid_t clock, timespec* time) {
    if (clock != CLOCK_REALTIME && clock != CLOCK_REALTIME_COARSE)
        return static_cast<int>(syscall(SYS_clock_gettime, clock, time));
    *time = now();
    return 0;
}
time_t time(time_t* out) {
    const time_t seconds = now().tv_sec;
    if (out != nullptr) *out = seconds;
    return seconds;
}
int gettimeofday(timeval* out, void* /*zone*/) {
    const auto time = now();
    *out = {time.tv_sec, time.tv_nsec / 1000};
    return 0;
}
/// The kernel compares with its own clock. Deadlines on the clock since the start of the machine are far smaller.
int pthread_cond_timedwait(pthread_cond_t* condition, pthread_mutex_t* mutex, const timespec* until) {
    using function = int (*)(pthread_cond_t*, pthread_mutex_t*, const timespec*);
    static const auto real = reinterpret_cast<function>(dlsym(RTLD_NEXT, "pthread_cond_timedwait"));
    constexpr time_t year_2001 = 1'000'000'000;
    if (until->tv_sec < year_2001) return real(condition, mutex, until);
    const auto deadline = shifted(*until, -shared->clock_offset.load());
    return real(condition, mutex, &deadline);
}

}  // extern "C"
