#include "quorvel/store/backup.h"

#include "quorvel/store/index_writer.h"

namespace quorvel {

void back_up_index(const char* reason, const char* beside) {
    auto* const index = opened_index();
    if (index == nullptr) return;
    if (const auto backup = ostrevan::query_service<ostrevan::index_manager_backup>(*index)) backup->back_up(reason, beside);
}

}  // namespace quorvel
