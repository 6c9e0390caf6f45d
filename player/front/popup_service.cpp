#include "player/front/popup_service.h"

#include <utility>

#include "player/core/component_call.h"

namespace ostrevan::front {

void question_service::messageBoxAsync(query_t query) {
    check_main_thread(loop_, "messageBoxAsync");
    loop_.post([&ui = ui_, query = std::move(query)] {
        const unsigned answer = ui.ask(query);
        if (query.reply) call_component(query.reply.target_type(), [&] { query.reply(answer); });
    });
}

void message_service::show(const char* text, const char* title, icon_t icon) {
    check_main_thread(loop_, "popup_message::show");
    ui_.show_message(text, title, icon);
}

}  // namespace ostrevan::front
