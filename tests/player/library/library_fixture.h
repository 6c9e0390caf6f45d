#pragma once

#include <sqlite3.h>

#include <atomic>
#include <cstring>
#include <iostream>

#include "player/library/media_library.h"
#include "tests/player/temporary_folder.h"

namespace library_test {

namespace fs = std::filesystem;
using namespace ostrevan::library;

/// Reads "name=value" lines where a tag reader would read audio; "length", "codec" and the mark "sound" are the sound.
inline ostrevan::tags::audio_reading read_lines(const std::string& path) {
    std::ifstream file(path);
    if (!file) throw std::runtime_error(path + ": " + std::strerror(errno));
    ostrevan::file_info_builder info;
    std::uint64_t sound = 0;
    for (std::string line; std::getline(file, line);) {
        const auto equals = line.find('=');
        if (equals == line.npos) throw std::runtime_error("the file is damaged");
        const auto name = line.substr(0, equals);
        auto value = line.substr(equals + 1);
        for (auto& each : value)
            if (each == ';') each = '\n';  // for a sheet in a field
        if (name == "length") info.length = std::stod(value);
        else if (name == "codec") info.codec = value;
        else if (name == "sound") sound = std::stoull(value);
        else info.meta_add(name, value);
    }
    return {std::move(info), sound};
}

/// A temporary music folder and database.
class library_files_test : public ostrevan::temporary_folder, public library_observer {
protected:
    void SetUp() override {
        library_.reset();
        fs::remove_all(folder_);
        fs::create_directories(music_);
    }

    void on_library_changed(const library_changes& changes) override { changes_ = changes; }
    void on_failure(const std::string& message) override { ADD_FAILURE() << message; }

    /// Gives every write its own time, however coarse the clock of the file system.
    fs::path put(const fs::path& path, const std::string& contents) {
        const auto full = music_ / path;
        fs::create_directories(full.parent_path());
        std::ofstream(full, std::ios::binary) << contents;
        fs::last_write_time(full, fs::file_time_type() + std::chrono::nanoseconds(++writes_));
        return full;
    }

    /// Changes the database behind the library's back.
    void change_database(const char* sql) {
        library_.reset();
        sqlite3* database = nullptr;
        ASSERT_EQ(sqlite3_open((folder_ / "library.sqlite").c_str(), &database), SQLITE_OK);
        EXPECT_EQ(sqlite3_exec(database, sql, nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(database);
        sqlite3_close(database);
    }

    /// The library as seen by a new process.
    media_library& reopen() {
        library_.reset();
        tracks_ = std::make_unique<track_table>();
        const auto counted = [this](const std::string& path) {
            ++reads_;
            return reader_(path);
        };
        library_ = std::make_unique<media_library>((folder_ / "library.sqlite").string(), *tracks_, counted, *this);
        library_->load();
        return *library_;
    }
    scan_summary add_music() { return shown(reopen().add_folders(std::vector{music_.string()})); }
    scan_summary rescan() {
        changes_ = {};
        return shown(library_->rescan());
    }
    /// Shows problems as well when an expectation fails.
    static scan_summary shown(scan_summary summary) {
        for (const auto& [path, reason] : summary.problems) std::clog << path << ": " << reason << '\n';
        return summary;
    }

    /// Path below the music folder, the name after a slash if it lies elsewhere, "|subsong" if it is not 0, and the title,
    /// in order.
    std::string listing() {
        std::string text;
        for (const auto& track : library_->items()) {
            const auto& [path, subsong] = track->location();
            const auto inside = path.starts_with(music_.string()) ? music_.string().size() + 1 : path.rfind('/');
            text += path.substr(inside);
            if (subsong != 0) text += "|" + std::to_string(subsong);
            const auto info = track->info();
            const auto title = info ? info->info().meta_find("title") : ostrevan::file_info::npos;
            text += title == ostrevan::file_info::npos ? "\n" : ":" + std::string(info->info().meta_value(title, 0)) + "\n";
        }
        return text;
    }

    const fs::path folder_{temporary_folder::folder_}, music_ = folder_ / "music";
    info_reader reader_ = read_lines;
    std::atomic<int> reads_ = 0;
    int writes_ = 0;
    std::unique_ptr<track_table> tracks_;
    std::unique_ptr<media_library> library_;
    library_changes changes_;
};

}  // namespace library_test
