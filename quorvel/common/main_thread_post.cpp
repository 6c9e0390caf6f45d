#include "quorvel/common/main_thread_post.h"

#include <utility>

#include "ostrevan/core_api.h"
#include "ostrevan/main_thread.h"

namespace quorvel {
namespace {

class posted_work : public ostrevan::main_thread_callback {
public:
    explicit posted_work(std::function<void()> work) noexcept : work_(std::move(work)) {}
    void callback_run() override { work_(); }

private:
    std::function<void()> work_;
};

}  // namespace

void post_to_main_thread(std::function<void()> work) {
    ostrevan::get_service<ostrevan::main_thread_callback_service>()->add_callback(
        ostrevan::service_new<posted_work>(std::move(work)));
}

}  // namespace quorvel
