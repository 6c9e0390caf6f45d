#include "player/terminal/dialog_text.h"

#include <charconv>
#include <sstream>

#include "nuv/text.h"
#include "player/system/user_error.h"
#include "player/view/labels.h"

namespace ostrevan::terminal {
namespace {

using control_kind = dialog_control_kind;

bool has_mark(const dialog_control& control) {
    return control.kind == control_kind::radio_button || control.kind == control_kind::check_box;
}

/// OK and Cancel have letters instead.
bool has_number(const dialog_control& control) {
    return has_mark(control) ||
           (control.kind == control_kind::button && control.id != dialog_ok && control.id != dialog_cancel);
}

/// In the order of their numbers, from 1.
std::vector<const dialog_control*> numbered_controls(const view::open_dialog& dialog) {
    std::vector<const dialog_control*> controls;
    for (const auto& control : dialog.layout().controls)
        if (has_number(control)) controls.push_back(&control);
    return controls;
}

std::vector<const dialog_control*> marks_of(const view::open_dialog& dialog) {
    auto controls = numbered_controls(dialog);
    std::erase_if(controls, [](const dialog_control* control) { return !has_mark(*control); });
    return controls;
}

std::string mark_of(const view::open_dialog& dialog, const dialog_control& control) {
    if (!has_mark(control)) return "< >";
    const bool is_checked = dialog.is_checked(control.id);
    if (control.kind == control_kind::radio_button) return is_checked ? "(*)" : "( )";
    return is_checked ? "[x]" : "[ ]";
}

void change(view::open_dialog& dialog, const dialog_control& control) {
    switch (control.kind) {
        case control_kind::check_box:
            return dialog.set_checked(control.id, !dialog.is_checked(control.id));
        case control_kind::radio_button:
            return dialog.set_checked(control.id, true);
        case control_kind::button:
            return dialog.press(control.id);
        case control_kind::separator:
            return;
    }
}

bool is_one_of(std::string_view word, std::initializer_list<std::string_view> words) {
    for (const auto each : words)
        if (nuv::equal_ascii_nocase(word, each)) return true;
    return false;
}

/// The controls with these numbers; empty when any word is not such a number.
std::vector<const dialog_control*> controls_named(const view::open_dialog& dialog, std::istringstream words) {
    const auto controls = numbered_controls(dialog);
    std::vector<const dialog_control*> named;
    for (std::string word; words >> word;) {
        std::size_t number = 0;
        const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
        if (error != std::errc() || end != word.data() + word.size() || number == 0 || number > controls.size()) return {};
        if (!dialog.is_enabled(controls[number - 1]->id)) return {};
        named.push_back(controls[number - 1]);
    }
    return named;
}

}  // namespace

std::string dialog_text(const view::open_dialog& dialog) {
    std::string text = dialog.layout().title;
    std::size_t number = 0;
    for (const auto& control : dialog.layout().controls) {
        if (control.kind == control_kind::separator) text += std::string("\n  ") + control.text;
        if (!has_number(control)) continue;
        const auto digits = std::to_string(++number);
        text += "\n" + std::string(digits.size() < 2 ? 5 : 4, ' ') + digits + " " + mark_of(dialog, control) + " " +
                control.text;
        if (!dialog.is_enabled(control.id)) text += " (greyed)";
    }
    return text;
}

input_effect apply_input(view::open_dialog& dialog, std::string_view line) {
    std::istringstream words{std::string(line)};
    std::string first;
    words >> first;
    if (first.empty() || is_one_of(first, {"o", "ok", "y", "yes"})) {
        dialog.press(dialog_ok);
        return input_effect::ok_pressed;
    }
    if (is_one_of(first, {"c", "cancel", "n", "no", "q"})) {
        dialog.press(dialog_cancel);
        return input_effect::cancel_pressed;
    }
    const auto named = controls_named(dialog, std::istringstream{std::string(line)});
    for (const auto* control : named) change(dialog, *control);
    return named.empty() ? input_effect::none : input_effect::changed;
}

void apply_label(view::open_dialog& dialog, std::string_view label, bool checked) {
    const auto controls = marks_of(dialog);
    std::vector<std::string_view> labels;
    labels.reserve(controls.size());
    for (const auto* control : controls) labels.emplace_back(control->text);
    const auto match = view::find_label(labels, label);
    const auto refuse = [&](const std::string& problem) {
        throw system::user_error("In \"" + std::string(dialog.layout().title) + "\" " + problem +
                                 ". There is: " + labels_of(dialog) + ".");
    };
    const auto name = "\"" + std::string(label) + "\"";
    if (!match.index) refuse(match.is_ambiguous ? "more than one label fits " + name : "no label fits " + name);
    const auto& control = *controls[*match.index];
    const auto whole_name = std::string("\"") + control.text + "\"";
    if (!dialog.is_enabled(control.id)) refuse(whole_name + " is greyed");
    if (!checked && control.kind == control_kind::radio_button)
        refuse(whole_name + " is one of several; check another instead of unchecking it");
    dialog.set_checked(control.id, checked);
}

std::string labels_of(const view::open_dialog& dialog) {
    std::string text;
    for (const auto* control : marks_of(dialog)) {
        text += (text.empty() ? "" : ", ") + std::string(control->text);
        if (!dialog.is_enabled(control->id)) text += " (greyed)";
    }
    return text;
}

}  // namespace ostrevan::terminal
