#include "player/terminal/arguments.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>

#include "player/system/default_folders.h"
#include "player/terminal/exit_status.h"
#include "player/terminal/help_texts.h"
#include "player/terminal/wrong_words.h"

namespace ostrevan::terminal {
namespace {

/// Everything that CLI11 fills while it reads the command line.
class command_line {
public:
    command_line();
    std::variant<arguments, nothing_to_run> parse(int count, const char* const* values);

private:
    CLI::App* add(CLI::App& parent, const char* name, const char* what, const char* examples);
    void add_tracks(CLI::App& app, track_arguments& tracks);
    template <typename Command>
    void choose(CLI::App* app, Command& filled) {
        app->final_callback([this, &filled] { result_.chosen = filled; });
    }
    void add_library();
    void add_track_commands();
    void add_menus();
    void add_playlists();
    void add_index();
    void split_context_words();
    void check_answers() const;

    CLI::App app_{main_description, "ostrevan"};
    arguments result_;
    bool yes_ = false;
    bool no_ = false;

    library_add library_add_;
    library_remove library_remove_;
    library_rescan library_rescan_;
    library_ignore library_ignore_;
    library_folders library_folders_;
    list_tracks list_;
    play_tracks play_;
    std::string audio_ = "auto";
    format_tracks format_;
    show_properties properties_;
    edit_tags edit_;
    std::vector<std::string> assignments_;
    main_menu menu_;
    context_menu context_;
    std::vector<std::string> context_words_;
    rate_tracks rate_;
    show_settings settings_;
    playlist_list playlist_list_;
    playlist_show playlist_show_;
    playlist_create playlist_create_;
    playlist_remove playlist_remove_;
    show_keys keys_;
    index_dump dump_;
    index_prune prune_;
    list_components components_;
};

CLI::App* command_line::add(CLI::App& parent, const char* name, const char* what, const char* examples) {
    auto* const app = parent.add_subcommand(name, what);
    app->fallthrough();  // --profile, --yes and the like may stand behind the command as well
    app->footer(examples);
    return app;
}

void command_line::add_tracks(CLI::App& app, track_arguments& tracks) {
    auto* const paths = app.add_option("TRACK", tracks.paths, "A path, path|subsong, or a folder");
    app.add_option("--where", tracks.where, "Every track of the library that matches this query")->excludes(paths);
}

void command_line::add_library() {
    auto* const library = add(app_, "library", "Folders of the media library", library_examples);
    library->require_subcommand(1);
    auto* const added = add(*library, "add", "Add folders and scan them", "");
    added->add_option("FOLDER", library_add_.folders)->required();
    choose(added, library_add_);
    auto* const removed = add(*library, "remove", "Forget folders; files and statistics stay", "");
    removed->add_option("FOLDER", library_remove_.folders)->required();
    choose(removed, library_remove_);
    auto* const rescan = add(*library, "rescan", "Look for new, changed and removed files", "");
    rescan->add_option("FOLDER", library_rescan_.folders, "Only the folder of the library that this is or lies in");
    choose(rescan, library_rescan_);
    auto* const ignore = add(*library, "ignore", "Leave files or folders out, or list those that are", "");
    auto* const ignored = ignore->add_option("PATH", library_ignore_.paths, "A file or folder inside the library");
    ignore->add_flag("--undo", library_ignore_.undo, "Take them in again at the next rescan")->needs(ignored);
    choose(ignore, library_ignore_);
    choose(add(*library, "folders", "List the folders", ""), library_folders_);
}

void command_line::add_track_commands() {
    auto* const list = add(app_, "list", "List tracks of the library", list_examples);
    list->add_option("QUERY", list_.query, "A query, or words to search for; all tracks without one");
    list->add_option("--column", list_.columns, "A column to show, or a part of its name; may be repeated")
        ->allow_extra_args(false);
    auto* const sort = list->add_option("--sort", list_.sort, "The column to sort by, whether it is shown or not");
    list->add_flag("--descending", list_.descending, "The largest first")->needs(sort);
    auto* const script = list->add_option("--format", list_.format, "One line a track by this title formatting script");
    list->add_flag("--json", list_.json, "An array of objects")->excludes(script);
    choose(list, list_);

    auto* const play = add(app_, "play", "Play tracks", play_examples);
    add_tracks(*play, play_.tracks);
    play->add_option("--audio", audio_, "auto: the sound device; null: none")->check(CLI::IsMember({"auto", "null"}));
    play->add_flag("--fast", play_.fast, "Decode as fast as possible, without sound");
    play->final_callback([this] {
        play_.null_audio = audio_ == "null";
        result_.chosen = play_;
    });

    auto* const format = add(app_, "format", "Print one line a track", format_examples);
    format->add_option("SCRIPT", format_.script, "A title formatting script")->required();
    add_tracks(*format, format_.tracks);
    choose(format, format_);

    auto* const properties = add(app_, "properties", "The property sections of a selection", properties_examples);
    add_tracks(*properties, properties_.tracks);
    choose(properties, properties_);

    auto* const edit = add(app_, "edit", "Edit tags in the files", edit_examples);
    add_tracks(*edit, edit_.tracks);
    edit->add_option("--set", assignments_, "FIELD=VALUE, may be repeated")->allow_extra_args(false);
    edit->add_option("--remove", edit_.remove, "A field to remove, may be repeated")->allow_extra_args(false);
    edit->final_callback([this] {
        for (const auto& text : assignments_) {
            const auto equals = text.find('=');
            if (equals == 0 || equals == std::string::npos)
                throw CLI::ValidationError("--set", "'" + text + "' is not of the form FIELD=VALUE");
            edit_.set.emplace_back(text.substr(0, equals), text.substr(equals + 1));
        }
        if (edit_.set.empty() && edit_.remove.empty())
            throw CLI::ValidationError("edit", "say what to do: --set or --remove");
        result_.chosen = edit_;
    });
}

void command_line::add_menus() {
    auto* const menu = add(app_, "menu", "List the main menu, or run one command", menu_examples);
    menu->add_option("PATH", menu_.command, "A menu path, the end of one or a part of its name, or {GUID}");
    menu->add_option("VALUE", menu_.value, "on or off, for a command with a mark");
    choose(menu, menu_);

    auto* const context = add(app_, "context", "List the context menu of a selection, or run one command", context_examples);
    context->add_option("PATH", context_words_, "A menu path or {GUID}, then the tracks");
    context->add_option("--where", context_.tracks.where, "Every track of the library that matches this query");
    context->final_callback([this] {
        split_context_words();
        result_.chosen = context_;
    });

    auto* const rate = add(app_, "rate", "Rate tracks", rate_examples);
    rate->add_option("STARS", rate_.stars, "An entry of the Rating menu: 1 to 5, - or + for a step, none")->required();
    add_tracks(*rate, rate_.tracks);
    choose(rate, rate_);
}

/// The first word is a track when a file of that name is there, and a command otherwise.
void command_line::split_context_words() {
    auto& words = context_words_;
    if (!words.empty()) {
        std::error_code error;
        const auto path = words.front().substr(0, words.front().rfind('|'));
        if (!std::filesystem::exists(words.front(), error) && !std::filesystem::exists(path, error)) {
            context_.command = words.front();
            words.erase(words.begin());
        }
    }
    context_.tracks.paths = std::move(words);
}

void command_line::add_playlists() {
    auto* const playlist = add(app_, "playlist", "Named lists of tracks", playlist_examples);
    playlist->require_subcommand(1);
    choose(add(*playlist, "list", "List the playlists", ""), playlist_list_);
    auto* const show = add(*playlist, "show", "List the tracks of one", "");
    show->add_option("NAME", playlist_show_.name)->required();
    choose(show, playlist_show_);
    auto* const create = add(*playlist, "create", "Make a playlist of tracks", "");
    create->add_option("NAME", playlist_create_.name)->required();
    add_tracks(*create, playlist_create_.tracks);
    choose(create, playlist_create_);
    auto* const remove = add(*playlist, "remove", "Remove a playlist; its tracks stay", "");
    remove->add_option("NAME", playlist_remove_.name)->required();
    choose(remove, playlist_remove_);
}

void command_line::add_index() {
    auto* const settings = add(app_, "settings", "Show or change advanced settings", settings_examples);
    settings->add_option("NAME", settings_.name, "Label, part of a label, or {GUID}");
    settings->add_option("VALUE", settings_.value, "on or off");
    choose(settings, settings_);

    auto* const key = add(app_, "key", "The key of tracks in the statistics index", key_examples);
    add_tracks(*key, keys_.tracks);
    choose(key, keys_);

    auto* const index = add(app_, "index", "Look into the track-information index", index_examples);
    index->require_subcommand(1);
    auto* const dump = add(*index, "dump", "GUID, key and bytes of every stored record", "");
    dump->add_option("GUID", dump_.index, "Only this index");
    choose(dump, dump_);
    choose(add(*index, "prune", "Remove records of tracks that left the library long ago", ""), prune_);

    choose(add(app_, "components", "What is loaded: name, version, file", ""), components_);
}

command_line::command_line() {
    result_.profile = system::default_profile();
    result_.components = system::default_components();
    app_.footer(main_examples);
    app_.set_version_flag("--version", OSTREVAN_VERSION);
    app_.add_option("--profile", result_.profile, "Folder that keeps everything")->type_name("DIR")->capture_default_str();
    app_.add_option("--components", result_.components, "Folder with the components")->type_name("DIR");
    app_.add_flag("--quiet", result_.quiet, "No progress and no notes, only results and errors");
    auto* const yes = app_.add_flag("--yes", yes_, "Answer every question with yes, every dialog with OK");
    app_.add_flag("--no", no_, "Answer every question with no, every dialog with Cancel")->excludes(yes);
    auto& answers = result_.answers;
    app_.add_option("--file", answers.file, "The file, when a command asks for one")->type_name("PATH");
    app_.add_option("--check", answers.check, "A control to check in a dialog, may be repeated")
        ->type_name("LABEL")
        ->allow_extra_args(false);
    app_.add_option("--uncheck", answers.uncheck, "A control to uncheck, may be repeated")
        ->type_name("LABEL")
        ->allow_extra_args(false);
    app_.require_subcommand(1);
    add_library();
    add_track_commands();
    add_menus();
    add_playlists();
    add_index();
}

/// Commands that open no dialog ask for nothing that these could answer.
void command_line::check_answers() const {
    const auto& answers = result_.answers;
    const auto* const menu = std::get_if<main_menu>(&result_.chosen);
    const auto* const context = std::get_if<context_menu>(&result_.chosen);
    const bool runs_command = (menu != nullptr && menu->command) || (context != nullptr && context->command);
    if (answers.fill_dialogs() && !runs_command)
        throw CLI::ValidationError("--file, --check, --uncheck", "only commands of 'menu' and 'context' ask for these");
    if (answers.file && answers.file->empty()) throw CLI::ValidationError("--file", "name a file");
}

/// From the last to the first, as the parser wants them.
std::vector<std::string> reversed_words(int count, const char* const* values) {
    std::vector<std::string> words(values + 1, values + count);
    std::error_code error;
    for (auto& word : words)  // the parser takes [a,b] for a list; the name of a file can look like one
        if (word.starts_with('[') && std::filesystem::exists(word, error)) word.insert(0, "./");
    std::ranges::reverse(words);
    return words;
}

std::variant<arguments, nothing_to_run> command_line::parse(int count, const char* const* values) {
    try {
        app_.parse(reversed_words(count, values));
        check_answers();
    } catch (const CLI::ParseError& error) {
        if (const auto wrong = describe_unknown_words(app_); !wrong.empty()) return nothing_to_run{exit_usage, wrong};
        if (dynamic_cast<const CLI::CallForVersion*>(&error) != nullptr) return nothing_to_run{exit_done, OSTREVAN_VERSION};
        if (error.get_exit_code() == 0) return nothing_to_run{exit_done, app_.help()};
        return nothing_to_run{exit_usage, describe_mistake(app_, error.what())};
    }
    if (yes_ || no_) result_.answers.yes = yes_;
    return result_;
}

}  // namespace

std::variant<arguments, nothing_to_run> parse_arguments(int count, const char* const* values) {
    return command_line().parse(count, values);
}

}  // namespace ostrevan::terminal
