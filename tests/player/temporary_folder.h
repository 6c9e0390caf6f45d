#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace ostrevan {

/// The message of a failed call.
template <class Call>
std::string failure_of(Call call) {
    try {
        call();
    } catch (const std::exception& error) {
        return error.what();
    }
    return "(no error)";
}

/// A temporary folder for one test.
class temporary_folder : public testing::Test {
protected:
    temporary_folder() { folder_ = ::mkdtemp(folder_.data()); }
    ~temporary_folder() override { std::filesystem::remove_all(folder_); }

    [[nodiscard]] std::string path(const std::string& name) const { return folder_ + "/" + name; }
    static std::string content(const std::string& file) {
        std::ifstream stream(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    static void write(const std::string& file, const std::string& text) { std::ofstream(file) << text; }
    static unsigned mode(const std::string& file) {
        struct stat status {};
        return ::stat(file.c_str(), &status) == 0 ? status.st_mode & 0777 : 0;
    }
    [[nodiscard]] std::vector<std::string> names() const {
        std::vector<std::string> found;
        for (const auto& entry : std::filesystem::directory_iterator(folder_))
            found.push_back(entry.path().filename().string());
        std::ranges::sort(found);
        return found;
    }

    std::string folder_ = testing::TempDir() + "player-XXXXXX";
};

}  // namespace ostrevan
