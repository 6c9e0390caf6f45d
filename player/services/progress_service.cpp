#include "player/services/progress_service.h"

#include "player/core/main_loop.h"

namespace ostrevan::services {
namespace {

class display : public progress_display {
public:
    display(view::front_end& ui, std::string what) : ui_(ui), what_(std::move(what)) {}
    ~display() override { ui_.end_progress(); }
    void set(std::size_t done, std::size_t total) override {
        core::check_main_thread("progress_display::set");
        ui_.show_progress(what_, done, total);
    }
    [[nodiscard]] bool is_aborting() const noexcept override { return core::is_stopping(); }

private:
    view::front_end& ui_;
    const std::string what_;
};

}  // namespace

progress_display_ptr progress_service_impl::start(const char* what) {
    core::check_main_thread("progress_service::start");
    return service_new<display>(ui_, what);
}

}  // namespace ostrevan::services
