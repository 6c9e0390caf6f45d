#include "player/system/descriptor.h"

#include <unistd.h>

#include <cerrno>

namespace ostrevan::system {

descriptor::~descriptor() { close(); }

int descriptor::close() noexcept {
    if (number_ < 0) return 0;
    return ::close(std::exchange(number_, -1)) == 0 || errno == EINTR ? 0 : errno;
}

}  // namespace ostrevan::system
