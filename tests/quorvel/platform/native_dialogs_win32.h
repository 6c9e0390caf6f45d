#pragma once

#include <windows.h>

#include <array>
#include <map>
#include <string>
#include <vector>

#include "quorvel/interchange/pcdb_export.h"
#include "quorvel/platform/utf16_win32.h"
#include "tests/support/statistics_test.h"

/// What a live window shows, and acting on it as a user would.
namespace support {

inline std::string text_of(HWND window) {
    std::wstring text(256, L'\0');
    text.resize(static_cast<std::size_t>(GetWindowTextW(window, text.data(), static_cast<int>(text.size()))));
    return quorvel::to_utf8(text);
}

inline HFONT font_of(HWND window) { return reinterpret_cast<HFONT>(SendMessageW(window, WM_GETFONT, 0, 0)); }
inline bool is_checked(HWND window) { return SendMessageW(window, BM_GETCHECK, 0, 0) == BST_CHECKED; }

inline std::vector<HWND> controls_of(HWND dialog) {
    std::vector<HWND> controls;
    for (HWND at = GetWindow(dialog, GW_CHILD); at != nullptr; at = GetWindow(at, GW_HWNDNEXT)) controls.push_back(at);
    return controls;
}

/// A control as the double that draws dialogs in memory describes it.
inline std::string picture_of(HWND control) {
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
inline std::vector<std::uint32_t> drawing_of(HWND control) {
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

/// Dialogs of the system, owned by a window of a player that draws none itself.
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
    }
};

}  // namespace support
