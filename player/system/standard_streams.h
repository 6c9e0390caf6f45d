#pragma once

namespace ostrevan::system {

/// Opens /dev/null for standard streams that the caller of this program has closed. Otherwise the next file opened would
/// become one, and messages would be written into it. Call it first in `main`.
void open_missing_streams();

}  // namespace ostrevan::system
