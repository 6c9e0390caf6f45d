#include "quorvel/common/messages.h"

#include <utility>

#include "ostrevan/console.h"
#include "ostrevan/core_api.h"

namespace quorvel {

using ostrevan::popup_message;
using ostrevan::popup_message_v3;

void print_to_console(const std::string& line) noexcept {
    try {
        if (const auto console = ostrevan::find_service<ostrevan::console_service>()) console->print(line.c_str());
    } catch (...) {  // there is no other place to say it
    }
}

void ask(std::string text, std::string title, unsigned style, std::function<void(unsigned answer)> reply) {
    const auto popups = ostrevan::get_service<popup_message>();
    const auto questions = ostrevan::query_service<popup_message_v3>(*popups);
    if (!questions) throw ostrevan::exception_service_extension_not_found();
    questions->messageBoxAsync({.parent = ostrevan::core_api::main_window(),
                                .text = std::move(text),
                                .title = std::move(title),
                                .style = style,
                                .reply = std::move(reply)});
}

void report_failure(const std::string& text) {
    constexpr const char* title = "Information";
    const auto popups = ostrevan::find_service<popup_message>();
    if (!popups) print_to_console(text);
    else if (ostrevan::query_service<popup_message_v3>(*popups))
        ask(text, title, popup_message_v3::style_ok | popup_message_v3::style_icon_error, {});
    else popups->show(text.c_str(), title, popup_message::icon_error);
}

}  // namespace quorvel
