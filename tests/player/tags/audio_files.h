#pragma once

#include "player/tags/rewrite.h"
#include "tests/player/temporary_folder.h"

namespace ostrevan::tags {

namespace fs = std::filesystem;

/// The file's bytes; a way to put others there.
inline std::string bytes_of(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline void put_bytes(const fs::path& path, const std::string& bytes) { std::ofstream(path, std::ios::binary) << bytes; }

/// A change of one byte: that at an offset from the last occurrence of a marker.
struct harm {
    std::string marker = {};
    std::size_t offset = 0;
    int change = 0;

    std::string operator()(std::string bytes) const {
        if (change != 0) bytes.at(bytes.rfind(marker) + offset) += static_cast<char>(change);
        return bytes;
    }
};

/// What a command prints; a test that needs a missing program fails.
inline std::string output_of(const std::string& command) {
    FILE* pipe = popen(command.c_str(), "r");
    std::string text;
    char part[4096];
    while (const auto size = fread(part, 1, sizeof part, pipe)) text.append(part, size);
    EXPECT_EQ(pclose(pipe), 0) << command;
    return text;
}

/// Paths as arguments of a command.
inline std::string quoted(const std::vector<fs::path>& paths) {
    std::string text;
    for (const auto& path : paths) text += " '" + path.string() + "'";
    return text;
}

/// A folder of the test's own with copies of the audio files that all tests share.
class audio_files : public temporary_folder {
protected:
    fs::path copy(const std::string& name) const {
        fs::copy_file(fs::path(AUDIO_FIXTURES) / name, folder_ / name, fs::copy_options::overwrite_existing);
        return folder_ / name;
    }

    /// Of every file made for the tests, those with crowded tags included.
    [[nodiscard]] std::vector<fs::path> copy_all() const {
        std::vector<fs::path> paths;
        for (const auto& entry : fs::directory_iterator(AUDIO_FIXTURES))
            if (entry.path().filename() != ".made") paths.push_back(copy(entry.path().filename().string()));
        return paths;
    }

    /// One checksum of the decoded sound a file. Monkey's Audio is left out: the frames made for the tests do not decode.
    static std::string sounds_of(std::vector<fs::path> paths) {
        std::erase_if(paths, [](const auto& path) { return path.extension() == ".ape"; });
        std::string command = "ffmpeg -nostdin -v quiet";
        for (const auto& path : paths) command += " -i" + quoted({path});
        for (std::size_t i = 0; i < paths.size(); ++i) command += " -map " + std::to_string(i) + ":a";
        return output_of(command + " -f streamhash -hash sha256 -");
    }

    [[nodiscard]] std::size_t files_in_folder() const {
        return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder_), {}));
    }

    /// The only file of the folder has these bytes: nothing was left beside it.
    void expect_alone(const fs::path& path, const std::string& bytes) const {
        EXPECT_TRUE(bytes_of(path) == bytes) << path;
        EXPECT_EQ(files_in_folder(), 1u);
    }

    const fs::path folder_{temporary_folder::folder_};
};

inline field_edit set_field(std::string name, std::string value) {
    return [=](file_info_builder& info) {
        info.meta_set(name, value);
        return true;
    };
}

inline std::string first_value(const file_info_builder& info, std::string_view name) {
    const auto index = info.meta_find(name);
    return index == file_info_builder::npos ? "(none)" : info.meta_values(index).front();
}

/// What a rewrite says that should fail.
inline std::string refusal_of(const fs::path& path, const field_edit& edit = set_field("title", "new"),
                              const rewrite_faults* faults = nullptr) {
    return failure_of([&] { rewrite_file(path.string(), edit, {.faults = faults}); });
}

}  // namespace ostrevan::tags
