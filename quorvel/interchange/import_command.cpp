#include <stdexcept>

#include "quorvel/interchange/pcdb_export.h"

namespace quorvel::pcdb_export {

void importStatistics() { throw std::runtime_error("The import of statistics is not part of this build"); }

}  // namespace quorvel::pcdb_export
