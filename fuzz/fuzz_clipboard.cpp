// Links: fuzz_whole_component
// Seeds: fuzz/seeds/clipboard
#include <cstdint>

#include "fuzz/check.h"
#include "ostrevan/exceptions.h"
#include "ostrevan/popup.h"
#include "quorvel/interchange/clipboard_transfer.h"
#include "quorvel/store/pcdb.h"
#include "tests/support/memory_player.h"

namespace {

support::memory_player& started_player() {
    static support::memory_player player;
    static const bool started = (player.start(), true);
    static_cast<void>(started);
    return player;
}

}  // namespace

/// Pastes onto three tracks and confirms every question.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    auto& player = started_player();
    static const auto tracks = support::make_tracks(3);
    player.popups.messages.clear();
    player.clipboard.set(quorvel::clipboard_format, {data, size});
    try {
        const bool asked = quorvel::pasteStatistics(tracks);
        fuzz::check(asked == !player.popups.questions().empty(), "the answer tells whether the user is asked");
        if (!asked) return 0;
        fuzz::check(size >= 4 + 3 * 36, "only whole records are pasted");
        player.popups.answer(ostrevan::popup_message_v3::answer_ok);
        player.clipboard.set("text", {});
        quorvel::copyStatistics(tracks);
        const auto block = player.clipboard.bytes(quorvel::clipboard_format);
        fuzz::check(block.size() <= size && std::equal(block.begin(), block.end(), data) && !block.empty(),
                    "what was pasted is what is copied");
    } catch (const ostrevan_io::exception_io_data_truncation&) {
    }
    return 0;
}
