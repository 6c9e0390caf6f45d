#pragma once

#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "player/terminal/prepared_answers.h"

namespace ostrevan::terminal {

/// The tracks a command is for: locations (`path`, `path|subsong`, a folder) or everything a query matches.
struct track_arguments {
    std::vector<std::string> paths;
    std::optional<std::string> where;
};

struct library_add {
    std::vector<std::string> folders;
};
struct library_remove {
    std::vector<std::string> folders;
};
struct library_rescan {
    std::vector<std::string> folders;  // all without any
};
struct library_ignore {
    std::vector<std::string> paths;  // lists without any
    bool undo = false;
};
struct library_folders {};

struct list_tracks {
    /// The query, in one word or several.
    std::vector<std::string> query;
    std::vector<std::string> columns;
    std::optional<std::string> format;
    std::optional<std::string> sort;
    bool descending = false;
    bool json = false;
};
struct play_tracks {
    track_arguments tracks;
    bool null_audio = false;
    bool fast = false;
};
struct format_tracks {
    std::string script;
    track_arguments tracks;
};
struct show_properties {
    track_arguments tracks;
};
struct edit_tags {
    track_arguments tracks;
    std::vector<std::pair<std::string, std::string>> set;
    std::vector<std::string> remove;
};
struct main_menu {
    std::optional<std::string> command;
    /// "on" or "off": the mark that the command is to have afterwards.
    std::optional<std::string> value;
};
struct context_menu {
    std::optional<std::string> command;
    track_arguments tracks;
};
struct rate_tracks {
    std::string stars;
    track_arguments tracks;
};
struct show_settings {
    std::optional<std::string> name;
    std::optional<std::string> value;
};
struct playlist_list {};
struct playlist_show {
    std::string name;
};
struct playlist_create {
    std::string name;
    track_arguments tracks;
};
struct playlist_remove {
    std::string name;
};
struct show_keys {
    track_arguments tracks;
};
struct index_dump {
    std::optional<std::string> index;
};
struct index_prune {};
struct list_components {};

using command = std::variant<library_add, library_remove, library_rescan, library_ignore, library_folders, list_tracks,
                             play_tracks, format_tracks, show_properties, edit_tags, main_menu, context_menu, rate_tracks,
                             show_settings, playlist_list, playlist_show, playlist_create, playlist_remove, show_keys,
                             index_dump, index_prune, list_components>;

struct arguments {
    std::string profile;
    std::string components;
    bool quiet = false;
    prepared_answers answers;
    command chosen;
};

/// What is said in place of running a command: help or the version, or what is wrong.
struct nothing_to_run {
    int status;
    std::string text;
};

std::variant<arguments, nothing_to_run> parse_arguments(int count, const char* const* values);

}  // namespace ostrevan::terminal
