#include <malloc.h>
#include <sqlite3.h>

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>

#include "player/index/index_store.h"
#include "player/library/media_library.h"
#include "player/tags/reader.h"

// Opens the parts of a player's profile one after the other, and prints the memory of each as JSON: library_memory PROFILE

namespace {

constexpr double megabyte = 1024.0 * 1024;

class nobody final : public ostrevan::library::library_observer {
    void on_library_changed(const ostrevan::library::library_changes& /*changes*/) override {}
    void on_failure(const std::string& message) override { std::fprintf(stderr, "%s\n", message.c_str()); }
};

double resident_megabytes() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with("VmRSS:")) return std::stod(line.substr(6)) / 1024;
    std::abort();
}

/// The heap in use; SQLite's part is counted separately.
double allocated_megabytes() {
    const auto heap = mallinfo2();
    return static_cast<double>(heap.uordblks + heap.hblkhd) / megabyte;
}
double sqlite_megabytes() { return static_cast<double>(sqlite3_memory_used()) / megabyte; }

/// Prints the growth since the previous step.
class steps {
public:
    void note(const char* what) {
        malloc_trim(0);
        const double allocated = allocated_megabytes(), resident = resident_megabytes(), sqlite = sqlite_megabytes();
        std::printf("%s{\"part\": \"%s\", \"allocated\": %.1f, \"sqlite\": %.1f, \"resident\": %.1f}", separator_, what,
                    allocated - allocated_ - (sqlite - sqlite_), sqlite - sqlite_, resident - resident_);
        allocated_ = allocated;
        resident_ = resident;
        sqlite_ = sqlite;
        separator_ = ",\n ";
    }

private:
    const char* separator_ = "[";
    double allocated_ = 0, resident_ = 0, sqlite_ = 0;
};

void open_parts(const std::filesystem::path& profile) {
    steps parts;
    parts.note("program");
    const ostrevan::index::index_store records(profile / "index.sqlite",
                                               [](const std::string& text) { std::fprintf(stderr, "%s\n", text.c_str()); });
    static_cast<void>(records.keys(nuv::guid()));  // waits for the load
    parts.note("records of the index");
    ostrevan::library::track_table tracks;
    nobody observer;
    ostrevan::library::media_library library((profile / "library.sqlite").string(), tracks, ostrevan::tags::read_audio,
                                             observer);
    library.load();
    parts.note("tracks, their tags on the disk");
    static_cast<void>(library.items());
    parts.note("list of all tracks, sorted");
    for (int time = 0; time < 4; ++time)
        for (const auto& track : library.items()) static_cast<void>(track->info());
    parts.note("tags, when they have been asked for several times");
    std::printf("]\n");
}

}  // namespace

int main(int count, char** values) {
    if (count != 2) {
        std::fprintf(stderr, "library_memory PROFILE\n");
        return 2;
    }
    try {
        open_parts(values[1]);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "library_memory: %s\n", error.what());
        return 1;
    }
    return 0;
}
