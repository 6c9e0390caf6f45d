#include "tests/support/memory_files.h"

#include <algorithm>
#include <cstring>

#include "ostrevan/exceptions.h"

namespace support {

class memory_filesystem::memory_file : public ostrevan::file {
public:
    memory_file(memory_filesystem& owner, std::string& content) noexcept : owner_(owner), content_(content) {}

    std::optional<std::uint64_t> size() override {
        return owner_.knows_sizes ? std::optional<std::uint64_t>(content_.size()) : std::nullopt;
    }
    void seek(std::uint64_t position) override { position_ = static_cast<std::size_t>(position); }
    std::size_t read(void* buffer, std::size_t bytes) override {
        const auto count = std::min(bytes, content_.size() - std::min(position_, content_.size()));
        std::memcpy(buffer, content_.data() + position_, count);
        position_ += count;
        return count;
    }
    void write(const void* bytes, std::size_t size) override {
        owner_.largest_write = std::max(owner_.largest_write, size);
        const auto fits = std::min(size, owner_.room);
        content_.append(static_cast<const char*>(bytes), fits);
        owner_.room -= fits;
        if (fits < size) throw ostrevan_io::exception_io_system("disk full");
    }
    void flush() override { ++owner_.flushes; }

private:
    memory_filesystem& owner_;
    std::string& content_;
    std::size_t position_ = 0;
};

ostrevan::file_ptr memory_filesystem::open(const char* path, open_mode mode) {
    const auto name = name_of(path);
    if (mode == open_mode::read && !files.contains(name)) throw ostrevan_io::exception_io_not_found(name + " not found");
    if (name.ends_with('/')) throw ostrevan_io::exception_io_denied(name + " is a folder");
    auto& content = files[name];
    if (mode == open_mode::write_new) content.clear();
    return ostrevan::service_new<memory_file>(*this, content);
}

void memory_filesystem::remove(const char* path) {
    if (refuses_removal) throw ostrevan_io::exception_io_denied("cannot be removed");
    if (sharing_violations != 0) {
        --sharing_violations;
        throw ostrevan_io::exception_io_sharing_violation("in use");
    }
    if (files.erase(name_of(path)) == 0) throw ostrevan_io::exception_io_not_found("not found");
}

}  // namespace support
