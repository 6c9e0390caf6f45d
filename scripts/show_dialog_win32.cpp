// Shows one of the component's dialogs, for a picture: show_dialog full|full-without-library|short|import
// Prints its place on the screen, "WIDTHxHEIGHT+X+Y", and runs until its input ends.
#include <windows.h>

#include <cstdio>
#include <string_view>

#include "quorvel/interchange/export_dialog.h"
#include "quorvel/interchange/import_command.h"
#include "tests/support/memory_player.h"

namespace {

void draw_everything() {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE) DispatchMessageW(&message);
    GdiFlush();
}

bool open_dialog(support::memory_player& player, std::string_view name) {
    if (name == "short") quorvel::pcdb_export::open_export_dialog(support::make_tracks(1));
    else if (name == "import") quorvel::pcdb_export::importStatistics();
    else if (name == "full" || name == "full-without-library") {
        player.library.enabled = name == "full";
        quorvel::pcdb_export::open_export_dialog();
    } else return false;
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    SetProcessDpiAwarenessContext(DPI_AWARENESS_CONTEXT_SYSTEM_AWARE);
    support::memory_player player;
    player.withdraw(player.dialogs.class_guid);
    player.local_files.files["/s.xml"] = "";
    player.file_dialog.answer = "/s.xml";
    const HWND owner = CreateWindowW(L"Static", L"ostrevan", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 100, 50, 800, 600, nullptr,
                                     nullptr, nullptr, nullptr);
    player.window = owner;
    if (argc != 2 || !open_dialog(player, argv[1])) return 2;
    player.settle();
    draw_everything();

    RECT frame;
    GetWindowRect(GetLastActivePopup(owner), &frame);
    std::printf("%ldx%ld+%ld+%ld\n", frame.right - frame.left, frame.bottom - frame.top, frame.left, frame.top);
    std::fflush(stdout);
    while (std::getchar() != EOF) draw_everything();
    DestroyWindow(owner);
    return 0;
}
