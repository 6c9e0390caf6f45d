#include "tests/support/memory_dialogs.h"

#include <stdexcept>

#include "tests/support/main_thread_check.h"

namespace support {

using ostrevan::dialog_control;
using ostrevan::dialog_control_kind;

void memory_dialogs::open(ostrevan::dialog_rules_ptr rules) {
    require_main_thread("dialog_service::open");
    if (fail) throw std::runtime_error("no dialog can be drawn");
    if (is_open()) throw std::logic_error("a dialog is open already");
    window_.states.clear();
    for (const auto& control : rules->layout().controls) window_.states[control.id] = {};
    window_.closing = false;
    window_.rules = std::move(rules);
    window_.registry.add(window_);
    window_.rules->on_open(window_);
}

void memory_dialogs::press(int id) {
    if (!is_open() || !window_.states.at(id).enabled) throw std::logic_error("this button cannot be pressed");
    window_.rules->on_button(window_, id);
    if (!window_.closing) return;
    window_.registry.forget(window_);
    window_.rules.reset();
}

std::vector<std::string> memory_dialogs::picture() const {
    std::vector<std::string> lines;
    for (const auto& control : window_.rules->layout().controls) {
        const auto& [checked, enabled] = window_.states.at(control.id);
        const char* mark = "--";
        if (control.kind == dialog_control_kind::check_box) mark = checked ? "[x]" : "[ ]";
        if (control.kind == dialog_control_kind::radio_button) mark = checked ? "(*)" : "( )";
        if (control.kind == dialog_control_kind::button) mark = "< >";
        lines.push_back(std::to_string(control.id) + ' ' + mark + ' ' + control.text + (enabled ? "" : " !"));
    }
    return lines;
}

void memory_dialogs::window::set_checked(int id, bool checked) {
    const auto controls = rules->layout().controls;
    const auto is_radio = [&](std::size_t i) { return controls[i].kind == dialog_control_kind::radio_button; };
    std::size_t at = 0;
    while (controls[at].id != id)
        if (++at == controls.size()) throw std::logic_error("there is no such control");
    if (is_radio(at) && checked) {
        std::size_t first = at;
        while (first > 0 && is_radio(first - 1)) --first;
        for (std::size_t i = first; i < controls.size() && is_radio(i); ++i) states[controls[i].id].checked = false;
    }
    states[id].checked = checked;
}

void recorded_searches::show(const char* query) {
    require_main_thread("library_search::show");
    if (fail) throw std::runtime_error("the window is gone");
    queries.emplace_back(query);
}

namespace {

class display : public ostrevan::progress_display {
public:
    explicit display(recorded_progress& owner) noexcept : owner_(owner) {}
    void set(std::size_t done, std::size_t total) override { owner_.steps.emplace_back(done, total); }
    bool is_aborting() const noexcept override { return owner_.abort; }

private:
    recorded_progress& owner_;
};

}  // namespace

ostrevan::progress_display_ptr recorded_progress::start(const char* what) {
    require_main_thread("progress_service::start");
    started.emplace_back(what);
    return ostrevan::service_new<display>(*this);
}

}  // namespace support
