#include "player/services/popup_message.h"

#include <utility>

#include "player/core/component_call.h"

namespace ostrevan::services {

void popup_message_v3_impl::messageBoxAsync(query_t query) {
    core::check_main_thread("messageBoxAsync");
    if (query.reply)
        query.reply = [reply = std::move(query.reply)](unsigned answer) {
            core::call_component(reply.target_type(), [&] { reply(answer); });
        };
    loop_.post([&ui = ui_, query = std::move(query)] { ui.ask(query); });
}

void popup_message_impl::show(const char* text, const char* title, icon_t icon) {
    core::check_main_thread("popup_message::show");
    ui_.show_message(text, title, icon);
}

}  // namespace ostrevan::services
