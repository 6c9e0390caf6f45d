#include "quorvel/interchange/clipboard_transfer.h"

#include <algorithm>
#include <concepts>
#include <limits>
#include <new>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "ostrevan/core_api.h"
#include "ostrevan/exceptions.h"
#include "ostrevan/titleformat.h"
#include "quorvel/common/messages.h"
#include "quorvel/common/settings.h"
#include "quorvel/common/shared_tracks.h"
#include "quorvel/platform/beep.h"
#include "quorvel/platform/clipboard.h"
#include "quorvel/store/pcdb.h"
#include "quorvel/store/record_fields.h"
#include "quorvel/store/tag_sync.h"
#include "quorvel/store/timestamp.h"

namespace quorvel {
namespace {

using ostrevan::metadb_handle_list_cref;
using ostrevan::popup_message_v3;

using pasted_records = std::vector<t_playback_stats>;

constexpr std::size_t packed_record_size = 36;
constexpr std::size_t most_previewed = 5;

template <std::unsigned_integral T>
void append(std::vector<std::uint8_t>& block, T value) {
    for (std::size_t i = 0; i < sizeof(T); ++i) block.push_back(static_cast<std::uint8_t>(value >> 8 * i));
}

class block_reader {
public:
    explicit block_reader(std::span<const std::uint8_t> bytes) noexcept : rest_(bytes) {}

    template <std::unsigned_integral T>
    T read() {
        if (rest_.size() < sizeof(T)) throw ostrevan_io::exception_io_data_truncation();
        T value = 0;
        for (std::size_t i = 0; i < sizeof(T); ++i) value |= static_cast<T>(static_cast<T>(rest_[i]) << 8 * i);
        rest_ = rest_.subspan(sizeof(T));
        return value;
    }
    t_playback_stats read_record() {
        t_playback_stats record;
        for (const auto& field : value_fields) record.*field.value = read<std::uint64_t>();
        record.rating = read<std::uint32_t>();
        return record;
    }

private:
    std::span<const std::uint8_t> rest_;
};

std::string time_text(std::uint64_t time) { return time == 0 ? "N/A" : std::string(FormatTimestamp(time).view()); }

std::string rating_text(std::uint32_t rating) {
    if (rating == rating_not_set) return "N/A";
    const std::uint64_t sixths = std::uint64_t{rating * 3U} * 2;  // the first product wraps at 32 bits
    return std::string(std::min<std::uint64_t>(sixths / 256, 5), '*');
}

std::string preview(metadb_handle_list_cref tracks, const pasted_records& pasted) {
    const auto titleformat = ostrevan::get_service<ostrevan::titleformat_service>();
    std::string text = "The following data is about to be imported, overwriting your current playback statistics:\n\n";
    for (std::size_t i = 0; i < std::min(pasted.size(), most_previewed); ++i) {
        const auto& record = pasted[i];
        text += "Item: " + titleformat->format(*tracks[i], "%title%");
        text += "\nPlayed " + std::to_string(record.play_count);
        text += " times, first: " + time_text(record.first_played);
        text += ", last: " + time_text(record.last_played);
        text += ", added: " + time_text(record.added);
        text += ", rating: " + rating_text(record.rating) + "\n\n";
    }
    if (pasted.size() > most_previewed) text += "(" + std::to_string(pasted.size() - most_previewed) + " more...)\n";
    return text;
}

/// The tag update reports its own failures, and nothing remains to be done after it.
class paste_written : public ostrevan::completion_notify {
public:
    void on_completion(unsigned /*status*/) override {}
};

void overwrite(metadb_handle_list_cref tracks, const pasted_records& pasted) {
    std::vector<PCDB::TrackRecord> pairs;
    pairs.reserve(pasted.size());
    for (std::size_t i = 0; i < pasted.size(); ++i) pairs.emplace_back(tracks[i], pasted[i]);
    PCDB::MergeBatch(pairs, MergeType::Overwrite);

    if (!tag_sync_enabled.get()) return;
    if (const auto writable = writable_tracks(tracks); !writable.empty())
        PCDB_stamp_tags(writable, 0, ostrevan::service_new<paste_written>());
}

void report_count(std::uint32_t count) {
    const std::string text = "Clipboard contains information for " + std::to_string(count) +
                             " tracks. Please select a correct number of tracks to paste information to.";
    ostrevan::get_service<ostrevan::popup_message>()->show(text.c_str(), message_title, ostrevan::popup_message::icon_error);
}

/// Empty if there is not enough memory.
std::optional<pasted_records> room_for(std::size_t count) {
    try {
        pasted_records room;
        room.reserve(count);
        return room;
    } catch (const std::bad_alloc&) {
        return std::nullopt;
    }
}

}  // namespace

void copyStatistics(metadb_handle_list_cref tracks) {
    ostrevan::core_api::ensure_main_thread();
    const std::size_t count = tracks.get_count();
    if (count > std::numeric_limits<std::uint32_t>::max()) throw nuv::exception_overflow();

    std::vector<std::uint8_t> block;
    block.reserve(sizeof(std::uint32_t) + count * packed_record_size);
    append(block, static_cast<std::uint32_t>(count));
    for (const auto& track : tracks) {
        const auto record = PCDB::Get(*track);
        for (const auto& field : value_fields) append(block, record.*field.value);
        append(block, record.rating);
    }
    clipboard::set(clipboard_format, block);
}

bool pasteStatistics(metadb_handle_list_cref tracks) {
    ostrevan::core_api::ensure_main_thread();
    const auto block = clipboard::get(clipboard_format);
    if (!block) return false;

    block_reader reader(*block);
    const auto count = reader.read<std::uint32_t>();
    if (count != tracks.get_count()) {
        report_count(count);
        return false;
    }
    auto pasted = room_for(count);
    if (!pasted) {
        beep();
        return false;
    }
    for (std::uint32_t i = 0; i < count; ++i) pasted->push_back(reader.read_record());

    auto question = preview(tracks, *pasted);
    ask(std::move(question), message_title, popup_message_v3::style_ok_cancel,
        [held = share_tracks(tracks), pasted = std::move(*pasted)](unsigned answer) {
            if (answer == popup_message_v3::answer_ok) overwrite(*held, pasted);
        });
    return true;
}

}  // namespace quorvel
