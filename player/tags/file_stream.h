#pragma once

#include <tiostream.h>

#include <array>
#include <cstddef>
#include <functional>
#include <string>

#include "player/system/descriptor.h"

namespace ostrevan::tags {

/// The stream under TagLib. Reads go through two small windows, so that one can stay on the tags at the head while the other
/// is at the tail. Writes are unbuffered, and the first error is kept, because the library reports success even when a write
/// failed. One thread at a time.
class file_stream final : public TagLib::IOStream {
public:
    enum class access { read, write };
    /// Called before every write with its size; a number other than 0 is the error that the write then fails with.
    using write_fault = std::function<int(std::size_t)>;

    file_stream(std::string path, system::descriptor file, access mode);

    [[nodiscard]] const std::string& path() const noexcept { return path_; }
    [[nodiscard]] int file() const noexcept { return file_.get(); }
    /// The first error of reading or writing, as in `errno`; 0 when all went well.
    [[nodiscard]] int error() const noexcept { return error_; }
    void set_write_fault(write_fault fault) { fault_ = std::move(fault); }
    /// Closes the file. Returns the first error, that of closing included.
    int close();

    /// Reads past the windows. Returns how many bytes there were.
    long read_at(char* to, long size, long offset);

    [[nodiscard]] TagLib::FileName name() const override { return path_.c_str(); }
    TagLib::ByteVector readBlock(unsigned long length) override;
    void writeBlock(const TagLib::ByteVector& data) override;
    void insert(const TagLib::ByteVector& data, unsigned long start, unsigned long replace) override;
    void removeBlock(unsigned long start, unsigned long length) override;
    [[nodiscard]] bool readOnly() const override { return mode_ == access::read; }
    [[nodiscard]] bool isOpen() const override { return static_cast<bool>(file_); }
    void seek(long offset, Position from) override;
    [[nodiscard]] long tell() const override { return position_; }
    long length() override { return length_; }
    void truncate(long length) override;

private:
    static constexpr long window_size = 8192;
    struct window {
        long start = 0;
        long size = 0;
        std::array<char, window_size> bytes;
    };

    const window* window_for(long offset, long size);
    void forget_windows() noexcept;
    void write_at(const char* from, long size, long offset);
    void move_tail(long from, long to);

    std::string path_;
    system::descriptor file_;
    access mode_;
    int error_ = 0;
    long position_ = 0;
    long length_ = 0;
    std::array<window, 2> windows_;
    std::size_t last_window_ = 0;
    write_fault fault_;
};

}  // namespace ostrevan::tags
