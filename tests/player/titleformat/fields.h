#pragma once

#include <gtest/gtest.h>

#include <initializer_list>
#include <map>
#include <string>
#include <string_view>

#include "player/titleformat/script.h"

namespace ostrevan::titleformat {

/// A track as a table: fields that it has, and what it shows for some that it lacks.
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

    table found, absent;
};

/// What each of the scripts shows, after an arrow, and whether a field of it was found.
inline void expect_each(const field_source& track, bool found, std::initializer_list<std::string_view> rows) {
    constexpr std::string_view arrow = " → ";
    for (const auto row : rows) {
        const auto place = row.find(arrow);
        const result made = compile(row.substr(0, place)).run(track);
        EXPECT_EQ(made.text, row.substr(place + arrow.size())) << row;
        EXPECT_EQ(made.found, found) << row;
    }
}

}  // namespace ostrevan::titleformat
