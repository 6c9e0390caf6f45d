#pragma once

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "quorvel/xml/xml_parser.h"

namespace support {

/// Reads all levels of a text and keeps one line for each event. Elements whose names begin with `br` are empty, with `raw`
/// raw; these and `opaque` are not read on.
class event_list : public Vek::xmlParser {
public:
    /// What happened until the end or the first mistake. The text is read from memory of exactly its size.
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

}  // namespace support
