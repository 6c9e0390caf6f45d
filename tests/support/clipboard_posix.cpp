#include "tests/support/memory_player.h"

std::unique_ptr<support::memory_clipboard> support::make_clipboard() {
    return std::make_unique<ostrevan::service_uncounted_t<memory_clipboard>>();
}
