#pragma once

#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "ostrevan/tag_update.h"
#include "player/core/main_loop.h"
#include "player/view/front_end.h"

namespace ostrevan::services {

/// A file with rewritten tags.
struct tag_rewrite {
    metadb_handle_ptr track;
    file_info before_in_file;
    file_info after;
};

/// The tag-update service: batches of files, rewritten one after another on one worker. Requests of the user go before
/// background work, but those for one file keep their order.
class tag_update_service_impl : public tag_update_service {
public:
    /// Receives the files of a finished batch. [worker]
    using rewritten_sink = std::function<void(const std::vector<tag_rewrite>& files)>;

    tag_update_service_impl(core::main_loop& loop, view::front_end& ui, rewritten_sink on_rewritten)
        : loop_(loop), ui_(ui), on_rewritten_(std::move(on_rewritten)) {}

    void update_async(metadb_handle_list_cref tracks, service_ptr_t<file_info_filter> filter, void* parent_window,
                      unsigned options, completion_notify_ptr notify) override;

private:
    struct batch {
        core::main_loop::activity busy;
        metadb_handle_list tracks;
        service_ptr_t<file_info_filter> filter;
        unsigned options = 0;
        completion_notify_ptr notify;
        // Filled by the worker.
        std::vector<tag_rewrite> rewritten{};
        std::vector<std::string> problems{};
        std::vector<std::string> notes{};
        bool is_aborted = false;

        [[nodiscard]] bool is_silent() const noexcept { return (options & option_silent) != 0; }
        [[nodiscard]] bool is_background() const noexcept { return (options & option_background) != 0; }
    };

    std::deque<batch>::iterator place_of(const batch& fresh);
    void work();
    void rewrite_all(batch& work) const;
    void rewrite(batch& work, const metadb_handle_ptr& track) const;
    void publish(const batch& done) const;
    void finish(const batch& done) const;

    core::main_loop& loop_;
    view::front_end& ui_;
    const rewritten_sink on_rewritten_;
    std::mutex mutex_;
    std::deque<batch> waiting_;
    bool is_working_ = false;
};

}  // namespace ostrevan::services
