#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

/// A text that is written or shown, kept in golden/ for as long as others rely on it.
inline std::string golden(const std::string& name) {
    std::ifstream file(std::string(GOLDEN_FOLDER) + "/" + name, std::ios::binary);
    EXPECT_TRUE(file) << name;
    return {std::istreambuf_iterator<char>(file), {}};
}
