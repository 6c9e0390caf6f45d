#include "player/app/job_front_ends.h"

#include <functional>
#include <type_traits>
#include <utility>

namespace ostrevan::app {
namespace {

template <typename Answer>
struct open_question {
    core::main_loop::activity busy;
    std::function<void(Answer)> reply;
};

/// The reply is destroyed on the main thread, too.
template <typename Answer>
std::function<void(Answer)> posted(core::main_loop& loop, std::function<void(Answer)> reply) {
    const std::shared_ptr<open_question<Answer>> question(
        new open_question<Answer>{core::main_loop::activity(loop), std::move(reply)});
    return [&loop, question](Answer answer) {
        const core::main_loop::activity::scope scope(question->busy);
        loop.post([reply = std::move(question->reply), answer = std::decay_t<Answer>(answer)] {
            if (reply) reply(answer);
        });
    };
}

}  // namespace

void job_front_ends::add(const core::job_ptr& job, std::shared_ptr<view::front_end> ui) {
    const std::lock_guard lock(mutex_);
    others_[job] = std::move(ui);
}

void job_front_ends::remove(const core::job_ptr& job) {
    const std::lock_guard lock(mutex_);
    others_.erase(job);
}

std::shared_ptr<view::front_end> job_front_ends::current() const {
    const std::lock_guard lock(mutex_);
    const auto found = others_.find(core::job::current());
    return found == others_.end() ? main_ : found->second;
}

void job_front_ends::ask(popup_message_v3::query_t query) {
    query.reply = posted(loop_, std::move(query.reply));
    current()->ask(std::move(query));
}

void job_front_ends::ask_file(file_dialog_service::query_t query) {
    query.reply = posted(loop_, std::move(query.reply));
    current()->ask_file(std::move(query));
}

}  // namespace ostrevan::app
