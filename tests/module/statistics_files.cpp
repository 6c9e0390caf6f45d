// A player for scripts: statistics_files MODULE, with commands on standard input, a line each. It writes what crosses from
// one system to another into files, so that those of two systems can be compared byte by byte.
#include <fstream>
#include <functional>
#include <iostream>
#include <map>
#include <stdexcept>

#include "ostrevan/statistics_collector.h"
#include "tests/module/loaded_component.h"

namespace {

using module_test::tiny_player;
using ostrevan::metadb_handle_list;

constexpr nuv::guid statistics_index = nuv::guid_of("{C653739F-14B3-4EF2-819B-A3E2883230AE}");
constexpr const char* clipboard_format = "{9B7A2C92-BC1E-4a96-BB97-B19884AB2141}";

/// Tags of many kinds of letters, a path to be stripped of its scheme and one to be kept whole.
metadb_handle_list tracks() {
    return {
        support::make_track("file:///music/one.flac", {{"artist", "Ann & Bob"}, {"title", "<\"Quoted\">"}}),
        support::make_track("FILE:///m\xC3\xBAsica/dos.mp3", {{"artist", "\xC3\x89TOILE"}, {"title", "\xC4\xB0stanbul"}}),
        support::make_track("http://host/three?a=1&b=2", {{"artist", "\xD0\x9A\xD0\x98\xD0\x9D\xD0\x9E"}, {"title", "3"}}),
        support::make_track("/four", {{"artist", "\xF0\x90\x90\x80"}, {"title", "\xE9\x9F\xB3\xE6\xA5\xBD"}}, 61.5),
        support::make_track("/five", {{"artist", "a"}, {"artist", "b"}, {"album", "x"}, {"title", "five"}}),
    };
}

std::string contents_of(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

template <typename Bytes>
void write_file(const std::string& path, const Bytes& bytes) {
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    if (!file.flush()) throw std::runtime_error("cannot write " + path);
}

/// Every stored record, key first, in the order of the keys.
std::vector<std::uint8_t> index_bytes(tiny_player& player) {
    std::vector<std::uint8_t> all;
    for (const auto key : player->index.keys(statistics_index)) {
        for (unsigned i = 0; i < 8; ++i) all.push_back(static_cast<std::uint8_t>(key >> 8 * i));
        std::uint8_t blob[64];
        all.insert(all.end(), blob, blob + player->index.read(statistics_index, key, blob, sizeof blob));
    }
    return all;
}

void answer_dialog(tiny_player& player) {
    player->dialogs.press(ostrevan::dialog_ok);
    player->settle();
    for (const auto& question : std::exchange(player->popups.questions(), {})) throw std::runtime_error(question.text);
}

int run(tiny_player& player) {
    const auto selection = tracks();
    player->library.items = selection.items();
    player->start();
    player->settle();
    const std::map<std::string, std::function<void(const std::string&)>> commands{
        {"import",
         [&](const std::string& path) {
             player->local_files.files["/import.xml"] = contents_of(path);
             player->file_dialog.answer = "/import.xml";
             player.run_main("Import statistics...");
             answer_dialog(player);
         }},
        {"export",
         [&](const std::string& path) {
             player->file_dialog.answer = "/export.xml";
             player.run_main("Export statistics...");
             player->dialogs.set_checked(1004, true);
             answer_dialog(player);
             write_file(path, player->local_files.files.at("/export.xml"));
         }},
        {"copy", [&](const std::string&) { player.run_context("Copy statistics", selection); }},
        {"paste",
         [&](const std::string&) {
             player.run_context("Paste statistics", selection);
             player->popups.answer(ostrevan::popup_message_v3::answer_ok);
             player->settle();
         }},
        {"can-paste",
         [&](const std::string&) { std::cout << (player.is_grayed("Paste statistics", selection) ? "no" : "yes") << '\n'; }},
        {"clipboard", [&](const std::string& path) { write_file(path, player->clipboard.bytes(clipboard_format)); }},
        {"index", [&](const std::string& path) { write_file(path, index_bytes(player)); }},
    };
    for (std::string line; std::getline(std::cin, line);) {
        if (line.ends_with('\r')) line.pop_back();
        const auto blank = line.find(' ');
        commands.at(line.substr(0, blank))(blank == std::string::npos ? "" : line.substr(blank + 1));
        std::cout << "done\n" << std::flush;
    }
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        tiny_player player(argc == 2 ? argv[1] : throw std::runtime_error("MODULE, and commands on its input"));
        return run(player);
    } catch (const std::exception& e) {
        std::cerr << "statistics_files: " << e.what() << '\n';
        return 1;
    }
}
