#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "player/titleformat/script.h"

namespace ostrevan::titleformat {

/// A track as a table: its fields, and texts of some that it lacks.
struct table_of_fields final : field_source {
    using table = std::map<std::string, std::string, std::less<>>;

    explicit table_of_fields(table has, table lacks = {}) : found(std::move(has)), absent(std::move(lacks)) {}

    bool field(std::string_view name, std::string& out) const override {
        if (const auto value = found.find(name); value != found.end()) {
            out += value->second;
            return true;
        }
        if (const auto value = absent.find(name); value != absent.end()) out += value->second;
        return false;
    }

    [[nodiscard]] std::optional<std::uint64_t> sort_value(std::string_view name) const override {
        const auto value = moments.find(name);
        return value == moments.end() ? std::nullopt : std::optional(value->second);
    }

    table found, absent;
    std::map<std::string, std::uint64_t, std::less<>> moments;
};

/// The rows of a table in a file, without comments and blank lines.
inline std::vector<std::string> rows_of(const std::string& path) {
    std::ifstream file(path);
    std::vector<std::string> rows;
    for (std::string line; std::getline(file, line);)
        if (!line.empty() && line.front() != '#') rows.push_back(line);
    EXPECT_GT(rows.size(), 10U) << path;
    return rows;
}

}  // namespace ostrevan::titleformat
