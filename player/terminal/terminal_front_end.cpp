#include "player/terminal/terminal_front_end.h"

#include <exception>
#include <utility>

namespace ostrevan::terminal {

void terminal_front_end::print_line(const std::string& line) {
    run([this, line] { screen_.print_line(line); });
}

void terminal_front_end::show_message(const std::string& text, const std::string& title, popup_message::icon_t icon) {
    run([this, text, title, icon] { screen_.show_message(text, title, icon); });
}

void terminal_front_end::ask(popup_message_v3::query_t query) {
    run([this, query = std::move(query)] {
        const auto answer = screen_.ask(query);
        if (query.reply) query.reply(answer);
    });
}

void terminal_front_end::ask_file(file_dialog_service::query_t query) {
    run([this, query = std::move(query)] {
        const auto path = screen_.ask_file(query);
        if (query.reply) query.reply(path);
    });
}

void terminal_front_end::show_dialog(std::shared_ptr<view::open_dialog> dialog) {
    run([this, dialog = std::move(dialog)]() mutable {
        auto& loop = dialog->loop();
        try {
            screen_.show_dialog(*dialog);
        } catch (...) {  // reported like every failure of posted work
            loop.post([failure = std::current_exception()] { std::rethrow_exception(failure); });
        }
        loop.call([&] { dialog.reset(); });
    });
}

void terminal_front_end::show_listing(const view::track_listing& listing) {
    run([this, listing] { screen_.show_listing(listing); });
}

void terminal_front_end::show_progress(const std::string& what, std::size_t done, std::size_t total) {
    if (!progress_.put({what, done, total})) return;
    run([this] {
        const auto shown = progress_.take();
        screen_.show_progress(shown.what, shown.done, shown.total);
    });
}

void terminal_front_end::end_progress() {
    run([this] { screen_.end_progress(); });
}

void terminal_front_end::beep() {
    run([this] { screen_.beep(); });
}

void terminal_front_end::note_failure() {
    run([this] { screen_.note_failure(); });
}

}  // namespace ostrevan::terminal
