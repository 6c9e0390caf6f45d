#include "quorvel/platform/dialog_arrangement_win32.h"

#include <algorithm>
#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "quorvel/platform/utf16_win32.h"

namespace quorvel {
namespace {

using ostrevan::dialog_control;
using ostrevan::dialog_control_kind;

/// In dialog units, which grow with the font: a text line is 8 high, a letter about 4 wide.
constexpr SIZE margin{7, 7};
constexpr SIZE between_controls{4, 3};
constexpr SIZE between_sections{0, 5};
constexpr SIZE smallest_button{50, 14};
constexpr SIZE button_padding{12, 6};
constexpr SIZE row_padding{4, 2};
constexpr int indent_below_heading = 6;
constexpr int smallest_line_behind_heading = 12;

/// Measures in the pixels of a dialog and in a font.
class ruler {
public:
    ruler(HWND dialog, HFONT font) noexcept : dialog_(dialog), dc_(GetDC(dialog)), font_before_(SelectObject(dc_, font)) {}
    ~ruler() {
        SelectObject(dc_, font_before_);
        ReleaseDC(dialog_, dc_);
    }
    ruler(const ruler&) = delete;
    ruler& operator=(const ruler&) = delete;

    [[nodiscard]] SIZE units(SIZE dialog_units) const noexcept {
        RECT mapped{0, 0, dialog_units.cx, dialog_units.cy};
        MapDialogRect(dialog_, &mapped);
        return {mapped.right, mapped.bottom};
    }
    [[nodiscard]] int wide(int dialog_units) const noexcept { return units({dialog_units, 0}).cx; }
    [[nodiscard]] SIZE text(const char* utf8) const {
        const std::wstring wide_form = to_utf16(utf8);
        SIZE extent{};
        GetTextExtentPoint32W(dc_, wide_form.c_str(), static_cast<int>(wide_form.size()), &extent);
        return extent;
    }

private:
    HWND dialog_;
    HDC dc_;
    HGDIOBJ font_before_;
};

SIZE size_of(const dialog_control& control, const ruler& ruler, UINT dpi) {
    const SIZE text = ruler.text(control.text);
    const SIZE padding = ruler.units(row_padding);
    switch (control.kind) {
        case dialog_control_kind::button: {
            const SIZE smallest = ruler.units(smallest_button);
            const SIZE around = ruler.units(button_padding);
            return {std::max(smallest.cx, text.cx + around.cx), std::max(smallest.cy, text.cy + around.cy)};
        }
        case dialog_control_kind::separator:
            return {text.cx + ruler.wide(smallest_line_behind_heading), text.cy + padding.cy};
        default: {
            // The mark follows the resolution of the screen and not the font.
            const SIZE mark{GetSystemMetricsForDpi(SM_CXMENUCHECK, dpi), GetSystemMetricsForDpi(SM_CYMENUCHECK, dpi)};
            return {mark.cx + ruler.wide(4) + text.cx + padding.cx, std::max(mark.cy, text.cy) + padding.cy};
        }
    }
}

/// Buttons that follow one another share a row; everything else has a row of its own. Returns the first control after it.
std::size_t end_of_row(std::span<const dialog_control> controls, std::size_t first) {
    std::size_t end = first + 1;
    if (controls[first].kind != dialog_control_kind::button) return end;
    while (end < controls.size() && controls[end].kind == dialog_control_kind::button) ++end;
    return end;
}

struct row {
    std::size_t first;
    std::size_t end;
    LONG indent;
    SIZE size;
};

std::vector<row> rows_of(std::span<const dialog_control> controls, std::span<const SIZE> sizes, const ruler& ruler) {
    const LONG between = ruler.units(between_controls).cx;
    std::vector<row> rows;
    bool is_below_heading = false;
    for (std::size_t first = 0, end = 0; first < controls.size(); first = end) {
        const auto kind = controls[first].kind;
        const bool is_choice = kind == dialog_control_kind::radio_button || kind == dialog_control_kind::check_box;
        end = end_of_row(controls, first);
        row next{first, end, is_choice && is_below_heading ? ruler.wide(indent_below_heading) : 0, {-between, 0}};
        for (std::size_t i = first; i < end; ++i)
            next.size = {next.size.cx + between + sizes[i].cx, std::max(next.size.cy, sizes[i].cy)};
        rows.push_back(next);
        is_below_heading |= kind == dialog_control_kind::separator;
    }
    return rows;
}

/// The width that shows the whole title: its text, the close button, and as much again for the space around.
LONG width_of_title(HWND dialog, const char* title, UINT dpi) {
    NONCLIENTMETRICSW metrics{};
    metrics.cbSize = sizeof metrics;
    if (SystemParametersInfoForDpi(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0, dpi) == FALSE) return 0;
    const HFONT font = CreateFontIndirectW(&metrics.lfCaptionFont);
    const LONG text = ruler(dialog, font).text(title).cx;
    DeleteObject(font);
    return text + 2 * metrics.iCaptionWidth;
}

void resize_client(HWND dialog, SIZE client, UINT dpi) {
    RECT frame{0, 0, client.cx, client.cy};
    AdjustWindowRectExForDpi(&frame, static_cast<DWORD>(GetWindowLongPtrW(dialog, GWL_STYLE)), FALSE,
                             static_cast<DWORD>(GetWindowLongPtrW(dialog, GWL_EXSTYLE)), dpi);
    SetWindowPos(dialog, nullptr, 0, 0, frame.right - frame.left, frame.bottom - frame.top,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

}  // namespace

void arrange_dialog(HWND dialog, const ostrevan::dialog_layout& layout) {
    const UINT dpi = GetDpiForWindow(dialog);
    const ruler ruler(dialog, reinterpret_cast<HFONT>(SendMessageW(dialog, WM_GETFONT, 0, 0)));
    const auto controls = layout.controls;
    std::vector<SIZE> sizes;
    for (const auto& control : controls) sizes.push_back(size_of(control, ruler, dpi));
    const auto rows = rows_of(controls, sizes, ruler);

    const SIZE around = ruler.units(margin);
    const SIZE between = ruler.units(between_controls);
    LONG width = width_of_title(dialog, layout.title, dpi) - 2 * around.cx;
    for (const auto& row : rows) width = std::max(width, row.indent + row.size.cx);

    LONG y = around.cy;
    for (const auto& row : rows) {
        const auto kind = controls[row.first].kind;
        const bool is_heading = kind == dialog_control_kind::separator;
        const bool is_button = kind == dialog_control_kind::button;
        if (row.first > 0 && (is_heading || is_button)) y += ruler.units(between_sections).cy;
        LONG x = around.cx + (is_button ? width - row.size.cx : row.indent);
        for (std::size_t i = row.first; i < row.end; ++i) {
            const LONG control_width = is_heading ? width : sizes[i].cx;
            MoveWindow(GetDlgItem(dialog, controls[i].id), x, y, control_width, sizes[i].cy, FALSE);
            x += control_width + between.cx;
        }
        y += row.size.cy + between.cy;
    }
    resize_client(dialog, {width + 2 * around.cx, y - between.cy + around.cy}, dpi);
}

void centre_on_owner(HWND dialog) noexcept {
    HWND owner = GetWindow(dialog, GW_OWNER);
    if (owner != nullptr && (IsWindowVisible(owner) == FALSE || IsIconic(owner) != FALSE)) owner = nullptr;
    MONITORINFO monitor{};
    monitor.cbSize = sizeof monitor;
    GetMonitorInfoW(MonitorFromWindow(owner != nullptr ? owner : dialog, MONITOR_DEFAULTTONEAREST), &monitor);
    const RECT& work = monitor.rcWork;
    RECT around = work;
    RECT frame;
    if (owner != nullptr) GetWindowRect(owner, &around);
    GetWindowRect(dialog, &frame);

    const auto place = [](LONG from, LONG to, LONG least, LONG most, LONG size) {
        return std::max(least, std::min(from + (to - from - size) / 2, most - size));
    };
    SetWindowPos(dialog, nullptr, place(around.left, around.right, work.left, work.right, frame.right - frame.left),
                 place(around.top, around.bottom, work.top, work.bottom, frame.bottom - frame.top), 0, 0,
                 SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

}  // namespace quorvel
