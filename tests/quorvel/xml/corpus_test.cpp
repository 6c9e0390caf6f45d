#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "tests/quorvel/xml/event_list.h"

namespace {

namespace fs = std::filesystem;

std::string content_of(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file) << path;
    return {std::istreambuf_iterator(file), {}};
}

std::vector<std::string> lines_of(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file) << path;
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);) lines.push_back(line);
    return lines;
}

std::vector<fs::path> files_in(const char* folder) {
    std::vector<fs::path> files;
    for (const auto& entry : fs::directory_iterator(fs::path(XML_CORPUS) / folder))
        if (entry.path().extension() == ".xml") files.push_back(entry.path());
    EXPECT_GT(files.size(), 7U) << folder;
    return files;
}

}  // namespace

TEST(xml_corpus, gives_the_events_beside_each_file) {
    for (const char* folder : {"good", "lax"})
        for (const fs::path& file : files_in(folder)) {
            const auto events = support::event_list::of(content_of(file));
            EXPECT_EQ(events.lines, lines_of(fs::path(file).replace_extension(".txt"))) << file;
            EXPECT_EQ(events.message, "") << file;
        }
}

TEST(xml_corpus, refuses_bad_files) {
    for (const fs::path& file : files_in("bad"))
        EXPECT_EQ(support::event_list::of(content_of(file)).message, "XML error") << file;
}

TEST(xml_corpus, a_file_cut_short_gives_an_error_or_the_first_of_its_events) {
    for (const char* folder : {"good", "lax"})
        for (const fs::path& file : files_in(folder)) {
            const std::string text = content_of(file);
            const auto whole = support::event_list::of(text).lines;
            for (std::size_t length = 0; length < text.size(); ++length) {
                const auto events = support::event_list::of(std::string_view(text).substr(0, length)).lines;
                ASSERT_LE(events.size(), whole.size()) << file << " " << length;
                for (std::size_t i = 0; i < events.size(); ++i) {
                    // A text may be cut too, if it is the last event.
                    const bool text_cut = i + 1 == events.size() && events[i].starts_with("text ");
                    ASSERT_EQ(events[i], text_cut ? whole[i].substr(0, events[i].size()) : whole[i])
                        << file << " " << length;
                }
            }
        }
}
