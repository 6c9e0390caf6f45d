#include "quorvel/platform/dialog.h"

#include <functional>

#include "quorvel/platform/separator_win32.h"
#include "tests/quorvel/platform/native_dialogs_win32.h"

namespace {

using namespace support;
using quorvel::pcdb_export::open_export_dialog;

constexpr int library_only = 1003, full_backup = 1004, times_played = 1005;

TEST_F(native_dialogs, are_made_from_the_tables) {
    const std::pair<const char*, std::function<void()>> rows[]{
        {"Export Playback Statistics", [&] { open_export_dialog(); }},
        {"Export Playback Statistics", [&] { open_export_dialog(tracks); }},
        {"Import Playback Statistics", [&] { import(); }},
        {"Export Playback Statistics", [&] { player.library.enabled = false, open_export_dialog(); }}};
    for (const auto& [title, open] : rows) {
        player.offer(player.dialogs.class_guid, player.dialogs);
        open();
        const auto expected = player.dialogs.picture();
        player.dialogs.press(ostrevan::dialog_cancel);
        player.withdraw(player.dialogs.class_guid);

        open();
        ASSERT_NE(dialog(), nullptr);
        EXPECT_EQ(picture(), expected);
        EXPECT_EQ(text_of(dialog()), title);
        EXPECT_TRUE(IsWindowVisible(dialog()));
        EXPECT_TRUE(SendMessageW(control(ostrevan::dialog_ok), WM_GETDLGCODE, 0, 0) & DLGC_DEFPUSHBUTTON);
        EXPECT_EQ(GetFocus(), GetNextDlgTabItem(dialog(), nullptr, FALSE));
        LOGFONTW font{};
        GetObjectW(font_of(dialog()), sizeof font, &font);
        // The system may put the font in place that the name stands for there.
        EXPECT_TRUE(std::wstring_view(font.lfFaceName).starts_with(L"MS Shell Dlg"));
        EXPECT_EQ(font.lfHeight, -MulDiv(8, static_cast<int>(GetDpiForWindow(dialog())), 72));
        for (const HWND control : controls_of(dialog())) EXPECT_EQ(font_of(control), font_of(dialog())) << text_of(control);
        click(ostrevan::dialog_cancel);
        EXPECT_EQ(dialog(), nullptr);
    }
}

TEST_F(native_dialogs, keys_go_round_and_choose) {
    open_export_dialog();
    for (const int id : {library_only, 1005, 1006, 1007, 1008, 1009, 1, 2}) {
        EXPECT_EQ(GetDlgCtrlID(GetFocus()), id);
        type(VK_TAB);
    }
    EXPECT_EQ(GetDlgCtrlID(GetFocus()), library_only);
    type(VK_DOWN);
    EXPECT_FALSE(is_checked(control(library_only)));
    EXPECT_TRUE(is_checked(control(full_backup)));
    type(VK_DOWN);
    EXPECT_TRUE(is_checked(control(library_only))) << "the arrows stay in their group";
    type(VK_DOWN);
    type(VK_TAB);
    type(VK_SPACE);
    EXPECT_FALSE(is_checked(control(times_played)));
    const HWND asking = dialog();
    type(VK_RETURN);
    EXPECT_EQ(player.file_dialog.queries.at(0).parent, asking);
    const auto& text = player.local_files.files.at("/out.xml");
    EXPECT_EQ(text.find("Count="), std::string::npos);
    EXPECT_NE(text.find("Rating=\"63\""), std::string::npos);
    EXPECT_EQ(dialog(), nullptr);

    import();
    type(VK_ESCAPE);
    EXPECT_EQ(dialog(), nullptr);
    import();
    SendMessageW(dialog(), WM_SYSCOMMAND, SC_CLOSE, 0);
    for (MSG message; PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE);) DispatchMessageW(&message);
    EXPECT_EQ(dialog(), nullptr);
}

TEST_F(native_dialogs, come_forward_when_opened_again) {
    open_export_dialog(tracks);
    const HWND first = dialog();
    ShowWindow(owner, SW_MINIMIZE);
    import();
    EXPECT_EQ(player.open_dialogs.pokes, 1U);
    EXPECT_FALSE(IsIconic(owner));
    EXPECT_EQ(GetActiveWindow(), first);
    WNDCLASSEXW found{};
    found.cbSize = sizeof found;
    EXPECT_TRUE(GetClassInfoExW(GetModuleHandleW(nullptr), quorvel::separator_class_name, &found));
    click(ostrevan::dialog_cancel);
    EXPECT_FALSE(GetClassInfoExW(GetModuleHandleW(nullptr), quorvel::separator_class_name, &found)) << "left behind";
}

TEST_F(native_dialogs, use_the_separator_of_the_player) {
    WNDCLASSEXW theirs{};
    theirs.cbSize = sizeof theirs;
    theirs.style = CS_GLOBALCLASS;
    theirs.lpfnWndProc = &DefWindowProcW;
    theirs.hInstance = GetModuleHandleW(L"kernel32");
    theirs.lpszClassName = quorvel::separator_class_name;
    ASSERT_NE(RegisterClassExW(&theirs), 0);
    open_export_dialog();
    EXPECT_EQ(GetClassLongPtrW(control(1001), GCLP_HMODULE), reinterpret_cast<ULONG_PTR>(theirs.hInstance));
    click(ostrevan::dialog_cancel);
    EXPECT_TRUE(UnregisterClassW(theirs.lpszClassName, theirs.hInstance));
}

}  // namespace
