#pragma once

#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "fuzz/check.h"

extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*)(const volatile void*, std::size_t),
                                                         void (*)(const volatile void*));
extern "C" std::size_t __sanitizer_get_allocated_size(const volatile void*);
extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t*, std::size_t, std::size_t);

namespace fuzz {

/// A folder with only the audio file of an input. Its name leaves the container to the content, and makes MPEG audio of
/// unknown content.
class tag_file {
public:
    tag_file() {
        std::string name = std::filesystem::exists("/dev/shm") ? "/dev/shm/fuzz-XXXXXX" : "/tmp/fuzz-XXXXXX";
        check(mkdtemp(name.data()) != nullptr, "a folder can be made");
        folder_ = name;
        path_ = name + "/input.mp3";
    }
    tag_file(const tag_file&) = delete;
    tag_file& operator=(const tag_file&) = delete;
    ~tag_file() { std::filesystem::remove_all(folder_); }

    void put(const std::uint8_t* data, std::size_t size) const {
        std::ofstream(path_, std::ios::binary)
            .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    }
    [[nodiscard]] std::string bytes() const {
        std::ifstream file(path_, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    [[nodiscard]] const std::string& path() const noexcept { return path_; }
    [[nodiscard]] bool is_alone() const { return std::distance(std::filesystem::directory_iterator(folder_), {}) == 1; }

private:
    std::filesystem::path folder_;
    std::string path_;
};

/// The limits of one input: memory of ten times its size plus a constant for compressed data, and two seconds of processor
/// time, sanitizers included.
class cost {
public:
    explicit cost(std::size_t size) : most_(10 * size + (64u << 20)), began_(used()) {
        static const int hooks = __sanitizer_install_malloc_and_free_hooks(
            [](const volatile void*, std::size_t got) {
                const auto now = held_ += static_cast<std::int64_t>(got);
                if (now > peak_) peak_ = now;
            },
            [](const volatile void* gone) {
                if (gone != nullptr) held_ -= static_cast<std::int64_t>(__sanitizer_get_allocated_size(gone));
            });
        check(hooks > 0, "memory can be counted");
        start_ = held_;
        peak_ = start_;
    }
    void require_bounded() const {
        check(peak_ - start_ <= static_cast<std::int64_t>(most_), "memory is in proportion to the file");
        check(used() - began_ <= 2, "an input takes two seconds at most");
    }

private:
    static double used() {
        timespec now{};
        clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
        return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
    }

    static inline std::int64_t held_ = 0;
    static inline std::int64_t peak_ = 0;
    std::size_t most_;
    double began_;
    std::int64_t start_ = 0;
};

/// Makes half of the changes in the first and the last kilobytes, where the tags are.
inline std::size_t mutate_tags(std::uint8_t* data, std::size_t size, std::size_t most, unsigned seed) {
    constexpr std::size_t part = 3000;
    if (size <= part || seed % 4 >= 2) return LLVMFuzzerMutate(data, size, most);
    const std::size_t begin = seed % 4 == 0 ? 0 : size - part;
    std::string piece(reinterpret_cast<char*>(data) + begin, part);
    const std::string rest(reinterpret_cast<char*>(data) + begin + part, size - begin - part);
    piece.resize(part + std::min<std::size_t>(most - size, 1000));
    piece.resize(LLVMFuzzerMutate(reinterpret_cast<std::uint8_t*>(piece.data()), part, piece.size()));
    piece += rest;
    std::memcpy(data + begin, piece.data(), piece.size());
    return begin + piece.size();
}

}  // namespace fuzz
