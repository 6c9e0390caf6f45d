#pragma once

#include <charconv>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string_view>
#include <system_error>
#include <unordered_map>
#include <vector>

#include "nuv/exceptions.h"
#include "ostrevan/progress.h"
#include "ostrevan/track.h"
#include "quorvel/store/record_fields.h"
#include "quorvel/store/stats_op.h"
#include "quorvel/xml/xml_parser.h"

/// The first stage of an import: reading the statistics file, level by level.
namespace quorvel {

/// What one element of a statistics file says of a track.
struct ImportedStats {
    t_playback_stats values;
    std::uint32_t present = 0;  ///< the set of `ExportFields` that it speaks of
};

/// Edits by the key that a track had under an older mapping.
using OldKeyEdits = std::unordered_map<std::uint64_t, ImportedStats>;

/// An element of a file that names tracks by their paths.
struct PathItem {
    ostrevan::playable_location location;
    ImportedStats stats;
};

/// What every stage of an import works with. [main-thread]
struct ParseGlobals {
    StatsOp& op;
    const std::uint32_t fields;  ///< to be imported: a set of `ExportFields`
    ostrevan::progress_scope progress{"records imported"};

    /// Replaces what the element speaks of, whatever it was, and leaves the other fields as they are.
    void apply(std::uint64_t key, const ImportedStats& stats) {
        op.Update(key, [&](t_playback_stats& stored) { copy_fields(stored, stats.values, stats.present); });
    }
};

/// What the file leaves to the later stages. Records under the active mapping are edited as they are read.
struct ImportedFile {
    std::size_t records = 0;                     ///< of every kind
    std::map<nuv::guid, OldKeyEdits> old_edits;  ///< by mapping
    std::vector<PathItem> path_items;
};

/// The top level: finds the root and, by its version and mapping, the handler of its content. Throws
/// `ostrevan_io::exception_io_data` for unknown ones; other documents are skipped. Everything read before a failure stays in
/// the operation and the file. The handlers keep references to both.
class XMLParser_Root : public Vek::xmlParser {
public:
    XMLParser_Root(ParseGlobals& globals, ImportedFile& file) noexcept : globals_(globals), file_(file) {}
    void onElem(const Vek::xmlContext& context, const char* ns, const char* name, const Vek::xmlAttributes& attributes,
                const char* content, std::size_t length) override;
    /// The first records of a file that breaks off are worth having.
    bool takesUnfinished(const char* /*name*/) override { return true; }

private:
    ParseGlobals& globals_;
    ImportedFile& file_;
};

/// Records by key. Under the active mapping they are edited at once; under an older one the edits wait until the tracks are
/// known that have these keys.
class XMLParser_Entries : public Vek::xmlParser {
public:
    /// `old_edits` is null for the active mapping.
    XMLParser_Entries(ParseGlobals& globals, ImportedFile& file, OldKeyEdits* old_edits) noexcept
        : globals_(globals), file_(file), old_edits_(old_edits) {}
    void onElem(const Vek::xmlContext& context, const char* ns, const char* name, const Vek::xmlAttributes& attributes,
                const char* content, std::size_t length) override;

private:
    ParseGlobals& globals_;
    ImportedFile& file_;
    OldKeyEdits* old_edits_;
};

/// Records by path, in elements of any name. They wait until their tracks are known.
class XMLParser_Tracks : public Vek::xmlParser {
public:
    XMLParser_Tracks(ParseGlobals& globals, ImportedFile& file) noexcept : globals_(globals), file_(file) {}
    void onElem(const Vek::xmlContext& context, const char* ns, const char* name, const Vek::xmlAttributes& attributes,
                const char* content, std::size_t length) override;

private:
    ParseGlobals& globals_;
    ImportedFile& file_;
};

/// A number of the statistics file: digits and nothing else; an empty text is 0. Throws `nuv::exception_invalid_params` for
/// any other character, and `nuv::exception_overflow` if the digits before it already do not fit.
template <std::unsigned_integral T>
[[nodiscard]] T parse_number(std::string_view text, int base = 10) {
    T value = 0;
    if (text.empty()) return value;
    const char* const last = text.data() + text.size();
    const auto [end, error] = std::from_chars(text.data(), last, value, base);
    if (error == std::errc::result_out_of_range) throw nuv::exception_overflow();
    if (error != std::errc() || end != last) throw nuv::exception_invalid_params();
    return value;
}

}  // namespace quorvel
