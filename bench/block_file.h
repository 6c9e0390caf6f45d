#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

namespace bench {

/// The floor for durable writes: 4 KiB into a file of final length, synced to disk.
class block_file {
public:
    explicit block_file(const std::filesystem::path& path);
    ~block_file();
    block_file(const block_file&) = delete;
    block_file& operator=(const block_file&) = delete;

    void write_durably();

private:
    void write(std::uint64_t number) const;

    const int file_;
    const std::vector<char> block_;
    std::uint64_t written_ = 0;
};

}  // namespace bench
