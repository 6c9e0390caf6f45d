#include "ostrevan/progress.h"

#include "ostrevan/core_api.h"

namespace ostrevan {

progress_scope::progress_scope(const char* what) {
    if (const auto service = find_service<progress_service>()) display_ = service->start(what);
}

void progress_scope::look(std::size_t done, std::size_t total) {
    if (!display_) return;
    display_->set(done, total);
    if (display_->is_aborting()) throw exception_aborted();
}

}  // namespace ostrevan
