#pragma once

/// What `--help` says besides the options.
namespace ostrevan::terminal {

inline constexpr const char* main_description =
    "A small music player that keeps playback statistics.\n"
    "TRACK is a path, path|subsong or a folder; --where QUERY stands for every track of the library that matches.";

inline constexpr const char* main_examples =
    "Examples:\n"
    "  ostrevan library add ~/Music\n"
    "  ostrevan play ~/Music/song.flac\n"
    "  ostrevan list --column Title --column \"Play Count\"\n"
    "  ostrevan list low water\n"
    "  ostrevan list '%last_played% DURING LAST 1 WEEK SORT DESCENDING BY %last_played% LIMIT 20'\n"
    "  ostrevan rate 4 ~/Music/song.flac\n"
    "Exit status: 0 done, 1 failed, 2 wrong usage, 3 declined, 130 interrupted.";

inline constexpr const char* library_examples =
    "Examples:\n"
    "  ostrevan library add ~/Music /mnt/disk/Music\n"
    "  ostrevan library rescan\n"
    "  ostrevan library ignore ~/Music/broken.mp3\n"
    "  ostrevan library ignore --undo ~/Music/broken.mp3\n"
    "A folder that is not there keeps its tracks and their statistics. What is ignored stays on the disk and keeps its\n"
    "statistics.";

inline constexpr const char* list_examples =
    "Examples:\n"
    "  ostrevan list low water\n"
    "  ostrevan list '%artist% HAS bach AND %rating% GREATER 3 LIMIT 20'\n"
    "  ostrevan list --column Title --column \"Last Played\" --sort \"Last Played\" --descending\n"
    "  ostrevan list --format '%artist% - %title%[ (%play_count%)]'\n"
    "  ostrevan list --json | jq '.[].path'";

inline constexpr const char* play_examples =
    "Examples:\n"
    "  ostrevan play ~/Music/song.flac 'album.cue|3'\n"
    "  ostrevan play --where '%rating% IS 5'\n"
    "  ostrevan play --audio null --fast ~/Music/album";

inline constexpr const char* format_examples =
    "Examples:\n"
    "  ostrevan format '%title% %rating_stars_fixed%' ~/Music/song.flac\n"
    "  ostrevan format '$if2(%album artist%,%artist%)' --where 'ALL'";

inline constexpr const char* properties_examples =
    "Examples:\n"
    "  ostrevan properties ~/Music/song.flac\n"
    "  ostrevan properties --where '%album% IS Blue'";

inline constexpr const char* edit_examples =
    "Examples:\n"
    "  ostrevan edit ~/Music/song.flac --set 'title=New name' --remove comment\n"
    "  ostrevan edit --where '%artist% IS Bjork' --set artist=Björk";

inline constexpr const char* menu_examples =
    "Examples:\n"
    "  ostrevan menu\n"
    "  ostrevan menu 'Library/Playback Statistics/Show recently played'\n"
    "  ostrevan menu 'recently played'\n"
    "  ostrevan menu monitor off\n"
    "  ostrevan menu export\n"
    "  ostrevan --yes --file backup.xml --check 'Full backup' menu export\n"
    "  ostrevan --yes --file backup.xml --uncheck Rating menu import\n"
    "Without a path, prints the menu with marks and greyed entries. Dialogs are asked on the terminal; without one,\n"
    "--yes presses OK and --no Cancel, after --check and --uncheck have changed the marks with these labels.";

inline constexpr const char* context_examples =
    "Examples:\n"
    "  ostrevan context song.flac\n"
    "  ostrevan context 'Playback Statistics/Rating/4' song.flac\n"
    "  ostrevan context rating/4 song.flac\n"
    "  ostrevan --yes context 'Playback Statistics/Write statistics to file tags' --where ALL\n"
    "  ostrevan --yes --file blue.xml context 'Playback Statistics/Export statistics to XML...' --where '%album% IS Blue'\n"
    "Without a path, prints the menu with marks and greyed entries. A first word that is a file on disk is a track.";

inline constexpr const char* rate_examples =
    "Examples:\n"
    "  ostrevan rate 4 ~/Music/song.flac\n"
    "  ostrevan rate + --where '%play_count% GREATER 20'\n"
    "  ostrevan rate none ~/Music/album";

inline constexpr const char* playlist_examples =
    "Examples:\n"
    "  ostrevan playlist create Favourites --where '%rating% IS 5'\n"
    "  ostrevan playlist show Favourites";

inline constexpr const char* settings_examples =
    "Examples:\n"
    "  ostrevan settings\n"
    "  ostrevan settings synchronize on";

inline constexpr const char* key_examples =
    "Examples:\n"
    "  ostrevan key ~/Music/song.flac";

inline constexpr const char* index_examples =
    "Examples:\n"
    "  ostrevan index dump\n"
    "  ostrevan index dump '{C653739F-14B3-4EF2-819B-A3E2883230AE}'\n"
    "  ostrevan index prune\n"
    "Records are kept until you prune them, and a copy of the index is put aside first.";

}  // namespace ostrevan::terminal
