#include "tests/support/memory_player.h"

#include "tests/support/text_doubles.h"

support::memory_player::memory_player(ostrevan::get_interface_function entry, const char* library_path)
    : ostrevan_test::memory_player(entry, library_path) {
    offer(ostrevan::hash_service::class_guid, md5_hash());
    offer(ostrevan::text_helper_service::class_guid, text_helper());
    offer(ostrevan::clipboard_service::class_guid, clipboard);
}
