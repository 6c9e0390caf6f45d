#pragma once

#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "player/cli/prepared_answers.h"

namespace ostrevan::cli {

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
struct library_rescan {};
struct library_folders {};

struct list_tracks {
    std::string query;
    std::vector<std::string> columns;
    std::optional<std::string> format;
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
};
struct context_menu {
    std::optional<std::string> command;
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

using command =
    std::variant<library_add, library_remove, library_rescan, library_folders, list_tracks, play_tracks, format_tracks,
                 show_properties, edit_tags, main_menu, context_menu, show_settings, playlist_list, playlist_show,
                 playlist_create, playlist_remove, show_keys, index_dump, index_prune, list_components>;

struct arguments {
    std::string profile;
    std::string components;
    bool quiet = false;
    prepared_answers answers;
    command chosen;
};

/// Reads the command line. When there is nothing to run (help, version, a mistake, which it has printed), gives the exit
/// status instead.
std::variant<arguments, int> parse_arguments(int count, const char* const* values);

}  // namespace ostrevan::cli
