#include "quorvel/platform/separator_win32.h"

#include "quorvel/platform/system_error_win32.h"

namespace quorvel {
namespace {

/// The font is kept in the extra bytes of the window.
HFONT font_of(HWND window) noexcept { return reinterpret_cast<HFONT>(GetWindowLongPtrW(window, 0)); }

/// The dialog is asked for the colours as for a static text, so that the heading follows themes and high contrast.
void draw(HWND window, HDC dc) noexcept {
    const int before = SaveDC(dc);
    RECT area;
    GetClientRect(window, &area);
    const LRESULT background =
        SendMessageW(GetParent(window), WM_CTLCOLORSTATIC, reinterpret_cast<WPARAM>(dc), reinterpret_cast<LPARAM>(window));
    FillRect(dc, &area, background != 0 ? reinterpret_cast<HBRUSH>(background) : GetSysColorBrush(COLOR_3DFACE));
    if (IsWindowEnabled(window) == FALSE) SetTextColor(dc, GetSysColor(COLOR_GRAYTEXT));
    SetBkMode(dc, TRANSPARENT);
    if (const HFONT font = font_of(window)) SelectObject(dc, font);

    wchar_t text[256];
    const int length = GetWindowTextW(window, text, static_cast<int>(std::size(text)));
    DrawTextW(dc, text, length, &area, DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS);

    SIZE extent;
    TEXTMETRICW metrics;
    GetTextExtentPoint32W(dc, text, length, &extent);
    GetTextMetricsW(dc, &metrics);
    RECT line = area;
    if (length > 0) line.left += extent.cx + metrics.tmAveCharWidth;
    line.top += (area.bottom - area.top - GetSystemMetrics(SM_CYEDGE)) / 2;
    if (line.left < line.right) DrawEdge(dc, &line, EDGE_ETCHED, BF_TOP);
    RestoreDC(dc, before);
}

LRESULT CALLBACK separator_procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) noexcept {
    switch (message) {
        case WM_PAINT: {
            PAINTSTRUCT paint;
            draw(window, BeginPaint(window, &paint));
            EndPaint(window, &paint);
            return 0;
        }
        case WM_PRINTCLIENT:
            draw(window, reinterpret_cast<HDC>(wparam));
            return 0;
        case WM_ERASEBKGND:
            return 1;
        case WM_SETFONT:
            SetWindowLongPtrW(window, 0, static_cast<LONG_PTR>(wparam));
            if (LOWORD(lparam) != 0) InvalidateRect(window, nullptr, FALSE);
            return 0;
        case WM_GETFONT:
            return reinterpret_cast<LRESULT>(font_of(window));
        case WM_SETTEXT:
        case WM_ENABLE:
            InvalidateRect(window, nullptr, FALSE);
            break;
        // Neither the keyboard nor the mouse stops here.
        case WM_GETDLGCODE:
            return DLGC_STATIC;
        case WM_NCHITTEST:
            return HTTRANSPARENT;
        default:
            break;
    }
    return DefWindowProcW(window, message, wparam, lparam);
}

class registered_separator {
public:
    explicit registered_separator(HINSTANCE module) : module_(module) {
        WNDCLASSEXW found{};
        found.cbSize = sizeof found;
        if (GetClassInfoExW(module, separator_class_name, &found) != FALSE) return;
        WNDCLASSEXW own{};
        own.cbSize = sizeof own;
        own.style = CS_HREDRAW | CS_VREDRAW;
        own.lpfnWndProc = &separator_procedure;
        own.cbWndExtra = sizeof(HFONT);
        own.hInstance = module;
        own.hCursor = LoadCursorW(nullptr, IDC_ARROW);
        own.lpszClassName = separator_class_name;
        if (RegisterClassExW(&own) == 0) throw_last_error();
        is_own_ = true;
    }
    ~registered_separator() {
        if (is_own_) UnregisterClassW(separator_class_name, module_);
    }
    registered_separator(const registered_separator&) = delete;
    registered_separator& operator=(const registered_separator&) = delete;

private:
    HINSTANCE module_;
    bool is_own_ = false;
};

}  // namespace

std::shared_ptr<const void> hold_separator_class(HINSTANCE module) {
    static std::weak_ptr<const registered_separator> held;
    auto holder = held.lock();
    if (!holder) held = holder = std::make_shared<const registered_separator>(module);
    return holder;
}

}  // namespace quorvel
