#pragma once

#include "ostrevan_test/memory_tracks.h"

namespace support {

using namespace ostrevan_test;

}  // namespace support
