#include "quorvel/platform/dialog_template_win32.h"

#include <string>

#include "quorvel/platform/separator_win32.h"
#include "quorvel/platform/utf16_win32.h"

namespace quorvel {
namespace {

using ostrevan::dialog_control;
using ostrevan::dialog_control_kind;

/// The system's name for each kind of control, in the order of `dialog_control_kind`.
struct control_class {
    const wchar_t* name;
    DWORD style;
};
constexpr control_class control_classes[]{
    {separator_class_name, 0},
    {L"Button", BS_AUTORADIOBUTTON},
    {L"Button", BS_AUTOCHECKBOX | WS_TABSTOP},
    {L"Button", BS_PUSHBUTTON | WS_TABSTOP},
};

class template_writer {
public:
    void word(WORD value) { words_.push_back(value); }
    void dword(DWORD value) {
        word(LOWORD(value));
        word(HIWORD(value));
    }
    void zeros(int count) { words_.insert(words_.end(), static_cast<std::size_t>(count), WORD{0}); }
    void text(const std::wstring& text) {
        words_.insert(words_.end(), text.begin(), text.end());
        word(0);
    }
    /// Controls begin at multiples of four bytes.
    void align() {
        if (words_.size() % 2 != 0) word(0);
    }
    std::vector<WORD> take() { return std::move(words_); }

private:
    std::vector<WORD> words_;
};

void write_window(template_writer& out, const ostrevan::dialog_layout& layout) {
    out.word(1);  // version
    out.word(0xFFFF);
    out.dword(0);  // help
    out.dword(0);  // extended style
    out.dword(WS_POPUP | WS_CAPTION | WS_SYSMENU | DS_MODALFRAME | DS_SHELLFONT);
    out.word(static_cast<WORD>(layout.controls.size()));
    out.zeros(4);  // position and size
    out.zeros(2);  // no menu, the usual class
    out.text(to_utf16(layout.title));
    out.word(static_cast<WORD>(layout.font_points));
    out.word(FW_NORMAL);
    out.word(MAKEWORD(FALSE, DEFAULT_CHARSET));  // not italic
    out.text(to_utf16(layout.font));
}

/// In texts of buttons "&" marks a letter of the keyboard; the tables mark none.
std::wstring shown_text(const dialog_control& control) {
    std::wstring shown;
    for (const wchar_t unit : to_utf16(control.text)) {
        if (unit == L'&' && control.kind != dialog_control_kind::separator) shown += unit;
        shown += unit;
    }
    return shown;
}

/// Arrow keys move inside a group, which begins where the kind changes. The tab key stops at a group of radio buttons once:
/// at the first, until the system moves the stop to the one that is checked.
DWORD style_of(const dialog_control& control, bool begins_group) {
    DWORD style = control_classes[static_cast<std::size_t>(control.kind)].style | WS_CHILD | WS_VISIBLE;
    if (begins_group) style |= WS_GROUP;
    if (begins_group && control.kind == dialog_control_kind::radio_button) style |= WS_TABSTOP;
    if (control.id == ostrevan::dialog_ok) style |= BS_DEFPUSHBUTTON;
    return style;
}

}  // namespace

std::vector<WORD> dialog_template(const ostrevan::dialog_layout& layout) {
    template_writer out;
    write_window(out, layout);
    const dialog_control* previous = nullptr;
    for (const auto& control : layout.controls) {
        out.align();
        out.dword(0);  // help
        out.dword(0);  // extended style
        out.dword(style_of(control, previous == nullptr || previous->kind != control.kind));
        out.zeros(4);  // position and size
        out.dword(static_cast<DWORD>(control.id));
        out.text(control_classes[static_cast<std::size_t>(control.kind)].name);
        out.text(shown_text(control));
        out.word(0);  // no data of its own
        previous = &control;
    }
    return out.take();
}

}  // namespace quorvel
