#include "quorvel/interchange/pcdb_export.h"

#include <stdexcept>

namespace quorvel::pcdb_export {

void open_export_dialog(ostrevan::metadb_handle_list_cref /*tracks*/) {
    throw std::runtime_error("The export dialog is not part of this build");
}

}  // namespace quorvel::pcdb_export
