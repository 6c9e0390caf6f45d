#include "quorvel/interchange/pcdb_export.h"

#include <stdexcept>

namespace quorvel::pcdb_export {

void open_export_dialog() { throw std::runtime_error("The export dialog is not part of this build"); }

void open_export_dialog(ostrevan::metadb_handle_list_cref /*tracks*/) { open_export_dialog(); }

}  // namespace quorvel::pcdb_export
