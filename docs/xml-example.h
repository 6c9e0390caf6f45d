#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "quorvel/xml/xml_node.h"
#include "quorvel/xml/xml_parser.h"

/// A file of lists, `<lists><list name="..."><track path="..."/>...</list>...</lists>`, read and written.
struct track_list {
    std::string name;
    std::vector<std::string> paths;
};

/// The tracks of one list.
class list_reader : public Vek::xmlParser {
public:
    explicit list_reader(track_list& list) : list_(list) {}

    void onElem(const Vek::xmlContext&, const char*, const char* name, const Vek::xmlAttributes& attributes, const char*,
                std::size_t) override {
        const std::string* path = attributes.find("path");
        if (std::string_view(name) == "track" && path != nullptr) list_.paths.push_back(*path);
    }

private:
    track_list& list_;
};

/// The lists of a file.
class lists_reader : public Vek::xmlParser {
public:
    explicit lists_reader(std::vector<track_list>& lists) : lists_(lists) {}

    void onElem(const Vek::xmlContext& context, const char*, const char*, const Vek::xmlAttributes& attributes,
                const char* content, std::size_t length) override {
        track_list& list = lists_.emplace_back();
        if (const std::string* name = attributes.find("name")) list.name = *name;
        list_reader(list).parse(context, content, length);
    }

private:
    std::vector<track_list>& lists_;
};

/// The top level.
class file_reader : public Vek::xmlParser {
public:
    std::vector<track_list> lists;

    void onElem(const Vek::xmlContext& context, const char*, const char* name, const Vek::xmlAttributes&,
                const char* content, std::size_t length) override {
        if (std::string_view(name) == "lists") lists_reader(lists).parse(context, content, length);
    }
};

inline std::vector<track_list> read_lists(std::string_view text) {
    file_reader reader;
    reader.parse({}, text.data(), text.size());
    return reader.lists;
}

inline std::string write_lists(const std::vector<track_list>& lists) {
    Vek::xmlNode root{.name = "lists"};
    for (const auto& [name, paths] : lists) {
        Vek::xmlNode& list = root.children.emplace_back(Vek::xmlNode{.name = "list", .attributes = {{"name", name}}});
        for (const auto& path : paths) list.children.push_back({.name = "track", .attributes = {{"path", path}}});
    }
    std::string out;
    Vek::writeNode(out, root);
    return out;
}
