#include "quorvel/common/questions.h"

#include <utility>

#include "ostrevan/core_api.h"

namespace quorvel {

void ask(std::string text, std::string title, unsigned style, std::function<void(unsigned answer)> reply) {
    const auto popups = ostrevan::get_service<ostrevan::popup_message>();
    const auto questions = ostrevan::query_service<ostrevan::popup_message_v3>(*popups);
    if (!questions) throw ostrevan::exception_service_extension_not_found();
    questions->messageBoxAsync({.parent = ostrevan::core_api::main_window(),
                                .text = std::move(text),
                                .title = std::move(title),
                                .style = style,
                                .reply = std::move(reply)});
}

}  // namespace quorvel
