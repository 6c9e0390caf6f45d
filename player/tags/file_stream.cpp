#include "player/tags/file_stream.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <vector>

namespace ostrevan::tags {

file_stream::file_stream(std::string path, system::descriptor file, access mode)
    : path_(std::move(path)), file_(std::move(file)), mode_(mode) {
    struct stat about {};
    if (fstat(file_.get(), &about) != 0) error_ = errno;
    else length_ = static_cast<long>(about.st_size);
}

int file_stream::close() {
    const int closing = file_.close();
    if (error_ == 0) error_ = closing;
    return error_;
}

long file_stream::read_at(char* to, long size, long offset) {
    long done = 0;
    while (done < size) {
        const auto got = pread(file_.get(), to + done, static_cast<std::size_t>(size - done), offset + done);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0 && error_ == 0) error_ = errno;
        if (got <= 0) break;
        done += static_cast<long>(got);
    }
    return done;
}

const file_stream::window* file_stream::window_for(long offset, long size) {
    for (std::size_t i = 0; i < windows_.size(); ++i)
        if (offset >= windows_[i].start && offset + size <= windows_[i].start + windows_[i].size) {
            last_window_ = i;
            return &windows_[i];
        }
    // A window near the end is laid so that it ends with the file: tags there are searched backwards.
    last_window_ = 1 - last_window_;
    window& chosen = windows_[last_window_];
    chosen.start = std::max(0L, std::min(offset, length_ - window_size));
    chosen.size = read_at(chosen.bytes.data(), std::min(window_size, length_ - chosen.start), chosen.start);
    return offset + size <= chosen.start + chosen.size ? &chosen : nullptr;
}

void file_stream::forget_windows() noexcept {
    for (auto& each : windows_) each.size = 0;
}

TagLib::ByteVector file_stream::readBlock(unsigned long length) {
    const long available = std::max(0L, length_ - position_);
    const long size = length > static_cast<unsigned long>(available) ? available : static_cast<long>(length);
    if (size == 0) return {};
    if (size <= window_size) {
        if (const auto* found = window_for(position_, size)) {
            const char* from = found->bytes.data() + (position_ - found->start);
            position_ += size;
            return {from, static_cast<unsigned int>(size)};
        }
    }
    TagLib::ByteVector result(static_cast<unsigned int>(size), 0);
    const long got = read_at(result.data(), size, position_);
    result.resize(static_cast<unsigned int>(got));
    position_ += got;
    return result;
}

void file_stream::write_at(const char* from, long size, long offset) {
    forget_windows();
    long done = 0;
    while (error_ == 0 && done < size) {
        const auto wanted = static_cast<std::size_t>(size - done);
        if (fault_ && (error_ = fault_(wanted)) != 0) return;
        const auto put = pwrite(file_.get(), from + done, wanted, offset + done);
        if (put < 0 && errno == EINTR) continue;
        if (put < 0) error_ = errno;
        if (put == 0) error_ = ENOSPC;
        if (put > 0) done += static_cast<long>(put);
    }
    if (error_ == 0) length_ = std::max(length_, offset + size);
}

void file_stream::writeBlock(const TagLib::ByteVector& data) {
    write_at(data.data(), static_cast<long>(data.size()), position_);
    position_ += static_cast<long>(data.size());
}

void file_stream::move_tail(long from, long to) {
    constexpr long block = 1 << 20;
    std::vector<char> buffer(static_cast<std::size_t>(std::min(block, std::max(0L, length_ - from))));
    const long size = length_ - from;
    // Towards the end the last block goes first, so that nothing is overwritten before it has been read.
    for (long done = 0; error_ == 0 && done < size;) {
        const long part = std::min(block, size - done);
        const long at = to > from ? size - done - part : done;
        if (read_at(buffer.data(), part, from + at) != part) {
            if (error_ == 0) error_ = EIO;
            return;
        }
        write_at(buffer.data(), part, to + at);
        done += part;
    }
}

void file_stream::insert(const TagLib::ByteVector& data, unsigned long start, unsigned long replace) {
    const long begin = static_cast<long>(start);
    const long old_end = std::min(length_, begin + static_cast<long>(replace));
    const long new_end = begin + static_cast<long>(data.size());
    const long new_length = length_ + (new_end - old_end);
    if (new_end != old_end) move_tail(old_end, new_end);
    write_at(data.data(), static_cast<long>(data.size()), begin);
    if (new_length < length_) truncate(new_length);
    position_ = new_end;
}

void file_stream::removeBlock(unsigned long start, unsigned long length) { insert({}, start, length); }

void file_stream::truncate(long length) {
    forget_windows();
    if (error_ != 0) return;
    if (ftruncate(file_.get(), length) != 0) error_ = errno;
    else length_ = length;
}

void file_stream::seek(long offset, Position from) {
    const long base = from == Beginning ? 0 : from == Current ? position_ : length_;
    position_ = std::max(0L, base + offset);
}

}  // namespace ostrevan::tags
