#pragma once

#include <array>
#include <optional>
#include <span>

#include "player/index/index_store.h"
#include "tests/player/temporary_folder.h"

namespace ostrevan::index {

constexpr nuv::guid plays = nuv::guid_of("{C653739F-14B3-4EF2-819B-A3E2883230AE}");
constexpr nuv::guid moods = nuv::guid_of("{11111111-2222-3333-4444-555555555555}");

using record_bytes = std::vector<std::byte>;

/// Bytes that show their key and version throughout.
inline record_bytes record_of(std::uint64_t key, std::uint64_t version = 0, std::size_t size = 40) {
    record_bytes data(size);
    const std::array<std::uint64_t, 2> pattern{key, version};
    for (std::size_t i = 0; i < size; ++i) data[i] = std::as_bytes(std::span(pattern))[i % 16];
    return data;
}

/// The stored record, or empty where there is none.
inline std::optional<record_bytes> stored(const index_store& store, const nuv::guid& index, std::uint64_t key) {
    record_bytes data(store.read(index, key, nullptr, 0));
    data.resize(store.read(index, key, data.data(), data.size()));
    return data.empty() ? std::nullopt : std::optional(data);
}

class index_folder : public temporary_folder {
protected:
    [[nodiscard]] std::string file_bytes() const { return content(path_); }
    static void fail_on_report(const std::string& text) { ADD_FAILURE() << "reported: " << text; }

    std::filesystem::path path_ = path("index.sqlite");
};

}  // namespace ostrevan::index
