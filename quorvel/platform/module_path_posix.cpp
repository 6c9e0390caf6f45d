#include "ostrevan/core_api.h"
#include "quorvel/platform/module_path.h"

namespace quorvel {

std::string module_path() { return ostrevan::core_api::library_path(); }

}  // namespace quorvel
