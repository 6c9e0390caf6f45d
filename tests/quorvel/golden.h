#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

/// A written or displayed text that others rely on, kept in golden/.
inline std::string golden(const std::string& name) {
    std::ifstream file(std::string(GOLDEN_FOLDER) + "/" + name, std::ios::binary);
    EXPECT_TRUE(file) << name;
    return {std::istreambuf_iterator<char>(file), {}};
}
