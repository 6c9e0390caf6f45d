#include "player/system/wake_event.h"

#include <sys/eventfd.h>

#include <cerrno>
#include <system_error>

namespace ostrevan::system {

wake_event::wake_event() : file_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (!file_) throw std::system_error(errno, std::generic_category(), "eventfd");
}

void wake_event::set() noexcept {
    is_set_ = true;
    eventfd_write(file_.get(), 1);
}

void wake_event::clear() noexcept {
    is_set_ = false;
    eventfd_t count = 0;
    eventfd_read(file_.get(), &count);
}

}  // namespace ostrevan::system
