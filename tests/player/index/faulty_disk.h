#pragma once

#include <sqlite3.h>

#include <atomic>
#include <map>

namespace ostrevan::index {

/// Comes between SQLite and the disk while it lives: from the n-th change of a file, every change fails until the disk is
/// healed. One at a time.
class faulty_disk {
public:
    faulty_disk() {
        base_ = sqlite3_vfs_find(nullptr);
        vfs_ = *base_;
        vfs_.zName = "faulty";
        vfs_.xOpen = open;
        sqlite3_vfs_register(&vfs_, 1);
    }
    ~faulty_disk() { sqlite3_vfs_unregister(&vfs_); }
    faulty_disk(const faulty_disk&) = delete;
    faulty_disk& operator=(const faulty_disk&) = delete;

    void fail_after(long good_changes, int code) {
        code_ = code;
        failures_ = 0;
        good_changes_ = good_changes;
    }
    void heal() { good_changes_ = healthy; }
    [[nodiscard]] bool has_failed() const { return failures_ > 0; }

private:
    static constexpr long healthy = 1'000'000'000;
    struct methods {
        sqlite3_io_methods patched;  // first, so that a file's methods point here
        const sqlite3_io_methods* original;
    };

    static bool fails() {
        if (good_changes_-- > 0) return false;
        ++failures_;
        return true;
    }
    static const sqlite3_io_methods& original(sqlite3_file* file) {
        return *reinterpret_cast<const methods*>(file->pMethods)->original;
    }
    static int write(sqlite3_file* file, const void* data, int size, sqlite3_int64 offset) {
        return fails() ? code_.load() : original(file).xWrite(file, data, size, offset);
    }
    static int truncate(sqlite3_file* file, sqlite3_int64 size) {
        return fails() ? code_.load() : original(file).xTruncate(file, size);
    }
    static int sync(sqlite3_file* file, int flags) {
        return fails() ? SQLITE_IOERR_FSYNC : original(file).xSync(file, flags);
    }

    static int open(sqlite3_vfs*, const char* name, sqlite3_file* file, int flags, int* out_flags) {
        const int code = base_->xOpen(base_, name, file, flags, out_flags);
        if (file->pMethods == nullptr) return code;
        static std::map<const sqlite3_io_methods*, methods> known;  // databases are opened on one thread
        auto& entry = known[file->pMethods];
        entry = {*file->pMethods, file->pMethods};
        entry.patched.xWrite = write;
        entry.patched.xTruncate = truncate;
        entry.patched.xSync = sync;
        file->pMethods = &entry.patched;
        return code;
    }

    static inline sqlite3_vfs* base_ = nullptr;
    static inline std::atomic<long> good_changes_ = healthy;
    static inline std::atomic<long> failures_ = 0;
    static inline std::atomic<int> code_ = SQLITE_OK;
    sqlite3_vfs vfs_{};
};

}  // namespace ostrevan::index
