#include "player/front/progress_display.h"

#include "player/front/interrupt.h"

namespace ostrevan::front {
namespace {

class display : public progress_display {
public:
    display(front_end& ui, std::string what) : ui_(ui), what_(std::move(what)) {}
    ~display() override { ui_.end_progress(); }
    void set(std::size_t done, std::size_t total) override { ui_.show_progress(what_, done, total); }
    [[nodiscard]] bool is_aborting() const noexcept override { return interrupted(); }

private:
    front_end& ui_;
    const std::string what_;
};

}  // namespace

progress_display_ptr progress_service_impl::start(const char* what) {
    check_main_thread(loop_, "progress_service::start");
    return service_new<display>(ui_, what);
}

}  // namespace ostrevan::front
