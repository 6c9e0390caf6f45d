#include "player/system/standard_streams.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

namespace ostrevan::system {

void open_missing_streams() {
    for (int number = 0; number <= STDERR_FILENO; ++number)
        if (::fcntl(number, F_GETFD) < 0 && errno == EBADF) (void)!::open("/dev/null", O_RDWR);  // gets that number
}

}  // namespace ostrevan::system
