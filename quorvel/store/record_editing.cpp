#include "quorvel/store/record_editing.h"

#include <algorithm>

#include "quorvel/store/merge.h"
#include "quorvel/store/tag_sync.h"

namespace quorvel {
namespace {

t_playback_stats record_in(std::span<const std::byte> bytes) {
    record_blob blob;
    if (bytes.size() != blob.size()) return {};
    std::ranges::copy(bytes, blob.begin());
    return decode_record(blob);
}

}  // namespace

std::vector<std::byte> record_editing::merged(std::span<const std::byte> into, std::span<const std::byte> from) {
    const auto stored = record_in(into);
    const auto result = quorvel::merged(stored, record_in(from), MergeType::MergeMax);
    if (result == stored) return {into.begin(), into.end()};
    const auto blob = encode_record(result);
    return {blob.begin(), blob.end()};
}

void record_editing::on_records_changed(ostrevan::metadb_handle_list_cref tracks) { PCDB_auto_sync_tags(tracks, true); }

}  // namespace quorvel
