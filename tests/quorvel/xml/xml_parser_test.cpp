#include "quorvel/xml/xml_parser.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace {

/// Reads all levels of a text and keeps one line for each event. Elements whose names begin with `br` are empty, with `raw`
/// raw; these and `opaque` are not read on.
class event_list : public Vek::xmlParser {
public:
    /// The events up to the end or the first mistake. The text is in memory of exactly its size.
    static event_list of(std::string_view text) {
        event_list events;
        const auto copy = std::make_unique<char[]>(text.size());
        std::ranges::copy(text, copy.get());
        try {
            events.parse({}, copy.get(), text.size());
        } catch (const error& failure) {
            events.message = failure.what();
        }
        return events;
    }

    std::vector<std::string> lines;
    std::string message;  ///< of the mistake; empty when there was none

    void onElem(const Vek::xmlContext& context, const char* ns, const char* name, const Vek::xmlAttributes& attributes,
                const char* content, std::size_t length) override {
        const bool opaque = isRawContent(name, 0, 0) || std::strcmp(name, "opaque") == 0;
        std::string line = "elem " + (*ns != 0 ? "{" + std::string(ns) + "}" : "") + name;
        std::vector<Vek::xmlAttributes::value_type> sorted(attributes.begin(), attributes.end());
        std::ranges::sort(sorted);
        for (const auto& [key, value] : sorted) line += " " + key + "=[" + value + "]";
        if (content == nullptr) line += " /";
        if (opaque) line += " raw " + std::string(content, length);
        add(line);
        if (opaque || content == nullptr) return;
        ++depth_;
        parse(context, content, length);
        --depth_;
    }
    void onText(const char* text, std::size_t length) override { add("text " + std::string(text, length)); }
    bool isEmptyElement(const char* name) override { return std::strncmp(name, "br", 2) == 0; }
    bool isRawContent(const char* name, std::size_t, std::size_t) override { return std::strncmp(name, "raw", 3) == 0; }

private:
    void add(std::string_view event) {
        std::string& line = lines.emplace_back(2 * depth_, ' ');
        for (const char byte : event) {
            char shown[5] = {byte};
            if (byte < ' ' || byte > '~') std::snprintf(shown, sizeof shown, "\\x%02X", static_cast<unsigned char>(byte));
            line += shown;
        }
    }

    std::size_t depth_ = 0;
};

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

std::string repeated(std::string_view text, std::size_t times) {
    std::string all;
    all.reserve(text.size() * times);
    while (times-- > 0) all += text;
    return all;
}

/// Passes each element to a function.
template <typename Function>
class for_each_element : public Vek::xmlParser {
public:
    for_each_element(std::string_view text, Function function) : function_(function) { parse({}, text.data(), text.size()); }
    void onElem(const Vek::xmlContext& context, const char*, const char*, const Vek::xmlAttributes& attributes,
                const char* content, std::size_t length) override {
        function_(context, attributes, std::string_view(content, length));
    }

private:
    Function function_;
};

}  // namespace

TEST(xml_corpus, gives_the_events_beside_each_file) {
    for (const char* folder : {"good", "lax"})
        for (const fs::path& file : files_in(folder)) {
            const auto events = event_list::of(content_of(file));
            EXPECT_EQ(events.lines, lines_of(fs::path(file).replace_extension(".txt"))) << file;
            EXPECT_EQ(events.message, "") << file;
        }
}

TEST(xml_corpus, refuses_bad_files) {
    for (const fs::path& file : files_in("bad")) EXPECT_EQ(event_list::of(content_of(file)).message, "XML error") << file;
}

TEST(xml_corpus, a_file_cut_short_gives_an_error_or_the_first_of_its_events) {
    for (const char* folder : {"good", "lax"})
        for (const fs::path& file : files_in(folder)) {
            const std::string text = content_of(file);
            const auto whole = event_list::of(text).lines;
            for (std::size_t length = 0; length < text.size(); ++length) {
                const auto events = event_list::of(std::string_view(text).substr(0, length)).lines;
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

TEST(xml_parser, nests_as_deep_as_the_buffer_is_long) {
    const std::string inside = repeated("<a b=\">\">", 100000) + repeated("</a>", 100000);
    std::size_t seen = 0;
    for_each_element("<r>" + inside + "</r>", [&](auto&, auto&, std::string_view content) { seen += content == inside; });
    EXPECT_EQ(seen, 1U);
    EXPECT_EQ(event_list::of(repeated("<a>", 100000)).message, "XML error");
}

// The storage of a large element is used again for small ones and for others that are just large enough to be indexed.
TEST(xml_parser, forgets_the_attributes_of_the_element_before) {
    std::string many;
    for (int i = 0; i < 40; ++i) many += " n" + std::to_string(i) + "=\"\"";
    const std::string seventeen = many.substr(0, many.find(" n17"));
    std::vector<std::size_t> sizes;
    for_each_element("<a" + many + "/><b n39=\"1\"/><c" + seventeen + "/><d" + seventeen + " xmlns=\"u\"/><e/>",
                     [&](auto&, const Vek::xmlAttributes& attributes, auto) {
                         sizes.push_back(attributes.size());
                         EXPECT_EQ(attributes.find("n39") != nullptr, sizes.size() <= 2);
                         EXPECT_EQ(attributes.find("xmlns"), nullptr);
                     });
    EXPECT_EQ(sizes, (std::vector<std::size_t>{40, 1, 17, 17, 0}));
    EXPECT_EQ(event_list::of("<a" + many + " n20=\"\"/>").message, "XML error");
}

TEST(xml_parser, declarations_hold_for_their_element_alone) {
    std::string many = "<a xmlns:p=\"outer\"";
    for (int i = 0; i < 100000; ++i) many += " xmlns:n" + std::to_string(i) + "=\"u\"";
    many += "/>" + repeated("<b xmlns:p=\"1\" xmlns:q=\"2\"/><c/>", 100000);
    std::vector<std::size_t> sizes;
    for_each_element(many, [&](const Vek::xmlContext& context, const Vek::xmlAttributes& attributes, auto) {
        sizes.push_back(context.size());
        EXPECT_TRUE(attributes.empty());
    });
    ASSERT_EQ(sizes.size(), 200001U);
    EXPECT_EQ(sizes[0], 100001U);
    for (std::size_t i = 1; i < sizes.size(); ++i) ASSERT_EQ(sizes[i], i % 2 == 1 ? 2U : 0U);
}
