#include "quorvel/platform/native_dialog_win32.h"

#include <windows.h>

#include <array>
#include <functional>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "quorvel/interchange/export_dialog.h"
#include "quorvel/interchange/import_command.h"
#include "quorvel/platform/dialog.h"
#include "quorvel/platform/separator_win32.h"
#include "quorvel/platform/system_error_win32.h"
#include "quorvel/platform/utf16_win32.h"
#include "tests/support/statistics_test.h"

namespace {

using quorvel::pcdb_export::open_export_dialog;

constexpr int library_only = 1003, full_backup = 1004, times_played = 1005;

/// The content of a live window, and the actions of a user.
std::string text_of(HWND window) {
    std::wstring text(256, L'\0');
    text.resize(static_cast<std::size_t>(GetWindowTextW(window, text.data(), static_cast<int>(text.size()))));
    return quorvel::to_utf8(text);
}

HFONT font_of(HWND window) { return reinterpret_cast<HFONT>(SendMessageW(window, WM_GETFONT, 0, 0)); }
bool is_checked(HWND window) { return SendMessageW(window, BM_GETCHECK, 0, 0) == BST_CHECKED; }

std::vector<HWND> controls_of(HWND dialog) {
    std::vector<HWND> controls;
    for (HWND at = GetWindow(dialog, GW_CHILD); at != nullptr; at = GetWindow(at, GW_HWNDNEXT)) controls.push_back(at);
    return controls;
}

/// A control in the form of the double that draws dialogs in memory.
std::string picture_of(HWND control) {
    static const std::map<LONG_PTR, std::array<const char*, 2>> marks{{BS_AUTORADIOBUTTON, {"( )", "(*)"}},
                                                                      {BS_AUTOCHECKBOX, {"[ ]", "[x]"}},
                                                                      {BS_PUSHBUTTON, {"< >"}},
                                                                      {BS_DEFPUSHBUTTON, {"< >"}}};
    wchar_t class_name[64]{};
    GetClassNameW(control, class_name, 64);
    const bool is_separator = class_name == std::wstring_view(L"ostrevan:separator");
    const char* mark =
        is_separator ? "--" : marks.at(GetWindowLongPtrW(control, GWL_STYLE) & BS_TYPEMASK)[is_checked(control)];
    return std::to_string(GetDlgCtrlID(control)) + ' ' + mark + ' ' + text_of(control) +
           (IsWindowEnabled(control) ? "" : " !");
}

/// The points of a control.
std::vector<std::uint32_t> drawing_of(HWND control) {
    RECT area;
    GetClientRect(control, &area);
    BITMAPINFO form{};
    form.bmiHeader = {sizeof form.bmiHeader, area.right, area.bottom, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    void* memory = nullptr;
    const HDC dc = CreateCompatibleDC(nullptr);
    const HBITMAP bitmap = CreateDIBSection(dc, &form, DIB_RGB_COLORS, &memory, nullptr, 0);
    const HGDIOBJ before = SelectObject(dc, bitmap);
    SendMessageW(control, WM_PRINTCLIENT, reinterpret_cast<WPARAM>(dc), PRF_CLIENT);
    GdiFlush();
    const auto* const points = static_cast<const std::uint32_t*>(memory);
    std::vector<std::uint32_t> drawing(points, points + area.right * area.bottom);
    DeleteObject(SelectObject(dc, before));
    DeleteDC(dc);
    return drawing;
}

/// Native dialogs, owned by a window of a player that draws none itself.
class native_dialogs : public support::statistics_test {
protected:
    ostrevan::metadb_handle_list tracks = support::make_tracks(2);
    HWND owner = CreateWindowW(L"Static", L"", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 20, 20, 900, 700, nullptr, nullptr, nullptr,
                               nullptr);

    native_dialogs() {
        player.window = owner;
        player.withdraw(player.dialogs.class_guid);
        player.file_dialog.answer = "/out.xml";
        player.local_files.files["/in.xml"] = "";
        for (const auto& track : tracks) put(track, {.play_count = 3, .rating = 63});
    }
    ~native_dialogs() override { DestroyWindow(owner); }

    HWND dialog() const {
        const HWND front = GetLastActivePopup(owner);
        return front == owner ? nullptr : front;
    }
    HWND control(int id) const { return GetDlgItem(dialog(), id); }
    void click(int id) const { SendMessageW(control(id), BM_CLICK, 0, 0); }
    /// The key goes to the control with the focus, through the filter that the player's loop has.
    void type(WPARAM key) const {
        const HWND window = dialog();
        for (const UINT step : {WM_KEYDOWN, WM_KEYUP}) {
            MSG message{GetFocus(), step, key, step == WM_KEYDOWN ? 1 : static_cast<LPARAM>(0xC0000001), 0, {}};
            if (IsWindow(window) && !IsDialogMessageW(window, &message)) DispatchMessageW(&message);
        }
    }
    std::vector<std::string> picture() const {
        std::vector<std::string> lines;
        for (const HWND control : controls_of(dialog())) lines.push_back(picture_of(control));
        return lines;
    }
    void import() {
        player.file_dialog.answer = "/in.xml";
        quorvel::pcdb_export::importStatistics();
        player.settle();
    }
};

using ostrevan::dialog_control;
using ostrevan::dialog_control_kind;
using ostrevan::dialog_window;

constexpr dialog_control some_controls[]{
    {20, dialog_control_kind::separator, "Rock & Roll"},
    {21, dialog_control_kind::radio_button, "The first of three, and quite a long one with y"},
    {22, dialog_control_kind::radio_button, "R&B"},
    {23, dialog_control_kind::check_box, "Fjord"},
    {ostrevan::dialog_ok, dialog_control_kind::button, "Yes, and go on with all of the others"},
    {ostrevan::dialog_cancel, dialog_control_kind::button, "No"},
};
constexpr ostrevan::dialog_layout small_font{"A title that is longer than anything below it, buttons included, and more",
                                             "MS Shell Dlg", 8, some_controls};
constexpr ostrevan::dialog_layout large_font{"Large", "DejaVu Serif", 23, some_controls};

/// Rules of the test's own.
class rules : public ostrevan::dialog_rules {
public:
    rules(const ostrevan::dialog_layout& layout, std::function<void(dialog_window&, int)> act, int& alive)
        : layout_(layout), act_(std::move(act)), alive_(alive) {
        ++alive_;
    }
    ~rules() override { --alive_; }

    const ostrevan::dialog_layout& layout() const noexcept override { return layout_; }
    void on_open(dialog_window& window) override { act_(window, 0); }
    void on_button(dialog_window& window, int id) override { act_(window, id); }

private:
    const ostrevan::dialog_layout& layout_;
    std::function<void(dialog_window&, int)> act_;
    int& alive_;
};

SIZE size_of_text(HWND window) {
    const HDC dc = GetDC(window);
    const HGDIOBJ before = SelectObject(dc, font_of(window));
    const std::wstring text = quorvel::to_utf16(text_of(window));
    SIZE size{};
    GetTextExtentPoint32W(dc, text.c_str(), static_cast<int>(text.size()), &size);
    SelectObject(dc, before);
    ReleaseDC(window, dc);
    return size;
}

void expect_room_for_text(HWND control) {
    RECT area;
    GetClientRect(control, &area);
    const SIZE text = size_of_text(control);
    EXPECT_TRUE(text.cx < area.right && text.cy <= area.bottom) << text_of(control);
    if (SendMessageW(control, WM_GETDLGCODE, 0, 0) != DLGC_STATIC) return;
    const auto drawing = drawing_of(control);
    EnableWindow(control, FALSE);
    EXPECT_NE(drawing_of(control), drawing) << "greyed";
}

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
        // The system may substitute another font for the name.
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
    player.settle();
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

TEST_F(native_dialogs, have_room_for_every_text) {
    int alive = 0;
    for (const auto awareness : {DPI_AWARENESS_CONTEXT_UNAWARE, DPI_AWARENESS_CONTEXT_SYSTEM_AWARE})
        for (const auto* layout : {&small_font, &large_font}) {
            const auto before = SetThreadDpiAwarenessContext(awareness);
            SCOPED_TRACE(testing::Message() << GetDpiForSystem() << " dots an inch, " << layout->font);
            quorvel::open_dialog(ostrevan::service_new<rules>(
                *layout,
                [](dialog_window& window, int id) {
                    if (id) return window.close();
                    for (const int radio : {21, 22}) window.set_checked(radio, true);
                    window.set_enabled(21, false);
                },
                alive));
            EXPECT_FALSE(is_checked(control(21)));
            EXPECT_EQ(text_of(control(22)), "R&&B") << "or the B would be underlined";
            RECT client;
            GetClientRect(dialog(), &client);
            EXPECT_LT(size_of_text(dialog()).cx, client.right) << "the title";
            LONG bottom = 0;
            for (const HWND control : controls_of(dialog())) {
                RECT place;
                GetWindowRect(control, &place);
                MapWindowPoints(nullptr, dialog(), reinterpret_cast<POINT*>(&place), 2);
                EXPECT_TRUE(place.left > 0 && place.right < client.right && place.bottom < client.bottom)
                    << text_of(control);
                if (GetDlgCtrlID(control) != ostrevan::dialog_cancel) {
                    EXPECT_GE(place.top, bottom) << text_of(control);
                }
                bottom = place.bottom;
                expect_room_for_text(control);
            }
            click(ostrevan::dialog_cancel);
            SetThreadDpiAwarenessContext(before);
        }
    EXPECT_EQ(alive, 0);
}

TEST_F(native_dialogs, survive_their_rules) {
    int alive = 0;
    const auto open = [&](std::function<void(dialog_window&, int)> act) {
        quorvel::open_dialog(ostrevan::service_new<rules>(small_font, std::move(act), alive));
    };
    EXPECT_THROW(open([](dialog_window&, int) { throw std::logic_error("no"); }), std::logic_error);
    EXPECT_TRUE(ostrevan::ModalDialog_CanCreateNew());
    open([](dialog_window& window, int) { window.close(); });
    EXPECT_EQ(dialog(), nullptr);

    open([](dialog_window&, int id) {
        if (id) throw std::runtime_error("disk full");
    });
    click(ostrevan::dialog_ok);
    ASSERT_NE(dialog(), nullptr) << "another try";
    EXPECT_EQ(player.popups.questions().at(0).text, std::string(small_font.title) + ": disk full");
    click(ostrevan::dialog_cancel);
    EXPECT_EQ(dialog(), nullptr) << "for ever otherwise";

    int presses = 0;
    open([&](dialog_window& window, int id) {
        if (id == 0) return;
        ++presses;
        click(ostrevan::dialog_cancel);  // while the first press is being handled
        EXPECT_EQ(window.native(), dialog());
        DestroyWindow(owner);
        EXPECT_EQ(window.native(), nullptr);
        EXPECT_FALSE(window.is_checked(23));
        window.set_checked(22, true);
        window.close();
    });
    click(ostrevan::dialog_ok);
    EXPECT_EQ(presses, 1);
    EXPECT_THROW(open({}), quorvel::exception_system_error) << "without its owner";
    EXPECT_EQ(alive, 0);
    EXPECT_TRUE(ostrevan::ModalDialog_CanCreateNew());
}

}  // namespace
