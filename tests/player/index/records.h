#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "player/index/index_store.h"

namespace ostrevan {

constexpr nuv::guid plays = nuv::guid_of("{C653739F-14B3-4EF2-819B-A3E2883230AE}");
constexpr nuv::guid moods = nuv::guid_of("{11111111-2222-3333-4444-555555555555}");

using record_bytes = std::vector<std::byte>;

/// Bytes that tell which key and which version they belong to, all through.
inline record_bytes record_of(std::uint64_t key, std::uint64_t version = 0, std::size_t size = 40) {
    record_bytes data(size);
    const std::array<std::uint64_t, 2> pattern{key, version};
    for (std::size_t i = 0; i < size; ++i) data[i] = std::as_bytes(std::span(pattern))[i % 16];
    return data;
}

/// What the store answers, or nothing where it has no record.
inline std::optional<record_bytes> stored(const index_store& store, const nuv::guid& index, std::uint64_t key) {
    record_bytes data(store.read(index, key, nullptr, 0));
    data.resize(store.read(index, key, data.data(), data.size()));
    return data.empty() ? std::nullopt : std::optional(data);
}

/// A folder of its own for a test that is gone afterwards.
class index_folder : public testing::Test {
protected:
    index_folder() {
        std::string pattern = testing::TempDir() + "indexXXXXXX";
        folder_ = mkdtemp(pattern.data());
        path_ = folder_ / "index.sqlite";
    }
    ~index_folder() override { std::filesystem::remove_all(folder_); }

    [[nodiscard]] std::string file_bytes() const {
        std::ifstream file(path_, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    static void fail_on_report(const std::string& text) { ADD_FAILURE() << "reported: " << text; }

    std::filesystem::path folder_;
    std::filesystem::path path_;
};

}  // namespace ostrevan
