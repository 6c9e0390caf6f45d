#pragma once

#include <string>
#include <utility>

#include "ostrevan/progress.h"
#include "player/view/front_end.h"

namespace ostrevan::services {

/// Shows the progress of components' long work. Ctrl-C asks the work to stop.
class progress_service_impl : public progress_service {
public:
    progress_service_impl(view::front_end& ui) : ui_(ui) {}
    [[nodiscard]] progress_display_ptr start(const char* what) override;

private:
    view::front_end& ui_;
};

}  // namespace ostrevan::services
