#include "quorvel/platform/native_dialog_win32.h"

#include <functional>
#include <stdexcept>

#include "quorvel/platform/dialog.h"
#include "quorvel/platform/system_error_win32.h"
#include "tests/quorvel/platform/native_dialogs_win32.h"

namespace {

using namespace support;
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
        click(ostrevan::dialog_cancel);  // while the first press is being worked at
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
