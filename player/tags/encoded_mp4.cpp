#include <algorithm>
#include <map>

#include "player/tags/bytes.h"
#include "player/tags/edit_tags.h"
#include "player/tags/encoded_sound.h"
#include "player/tags/mp4_atoms.h"

namespace ostrevan::tags {
namespace {

/// Atoms of the header that have no part in the sound.
constexpr std::string_view no_sound[] = {"udta", "meta", "free", "skip"};

[[noreturn]] void damaged() { throw edit_error("its table of offsets is damaged"); }

/// The body of an atom, of which fields are read in order.
class fields {
public:
    fields(file_stream& stream, const mp4_atom& atom)
        : bytes_(read_bytes(stream, atom.body(), static_cast<std::uint64_t>(atom.end() - atom.body()))) {}

    std::uint64_t number(std::size_t size) {
        if (size > bytes_.size() - at_) damaged();
        at_ += size;
        return big_endian(bytes_, at_ - size, size);
    }
    /// The number of entries that follow, which must be there.
    std::uint64_t count(std::size_t entry_size) {
        const auto count = number(4);
        if (count * entry_size > bytes_.size() - at_) damaged();
        return count;
    }

private:
    std::string bytes_;
    std::size_t at_ = 0;
};

/// The sizes of the samples: one for all, or one for each.
struct sample_sizes {
    std::uint64_t equal = 0;
    std::vector<std::uint32_t> each;

    explicit sample_sizes(fields table, bool compact) {
        table.number(4);
        const auto first = table.number(4);
        if (!compact && first != 0) {
            equal = first;
            return;
        }
        const std::size_t bytes = compact ? first / 8 : 4;
        if (bytes == 0 || bytes > 4) throw edit_error("its table of sizes is of a kind that cannot be checked");
        each.resize(table.count(bytes));
        for (auto& size : each) size = static_cast<std::uint32_t>(table.number(bytes));
    }
};

class mp4_sound {
public:
    mp4_sound(digest& to, file_stream& stream) : to_(to), stream_(stream), unread_(stream.length()) {}

    void add_header(const mp4_atom& header) {
        for (const auto& atom : children_of(stream_, header)) {
            if (atom.name == "trak") add_track(atom);
            else if (std::ranges::find(no_sound, atom.name) == std::end(no_sound))
                add_range(to_, stream_, atom.offset, atom.end());
            if (atom.name == "mvex") read_defaults(atom);
        }
    }

    void add_fragment(const mp4_atom& fragment) {
        long described = fragment.offset;
        long place = fragment.offset;
        for (const auto& track : children_of(stream_, fragment)) {
            if (track.name != "traf") continue;
            const auto parts = children_of(stream_, track);
            const auto* header = find_atom(parts, "tfhd");
            if (header == nullptr) damaged();
            fields source(stream_, *header);
            const auto flags = source.number(4);
            const auto id = source.number(4);
            if ((flags & 0x20000) != 0) place = fragment.offset;
            if ((flags & 0x1) != 0) {
                add_range(to_, stream_, described, header->body() + 8);
                described = header->body() + 16;
                const auto base = source.number(8);
                if (base > static_cast<std::uint64_t>(stream_.length())) damaged();
                place = static_cast<long>(base);
            }
            if ((flags & 0x2) != 0) source.number(4);
            if ((flags & 0x8) != 0) source.number(4);
            add_runs(parts, place, (flags & 0x10) != 0 ? source.number(4) : default_sizes_[id]);
        }
        add_range(to_, stream_, described, fragment.end());
    }

private:
    /// The sound at a place. Chunks do not overlap, so that they have no more bytes than the file.
    void add_chunk(long at, std::uint64_t size) {
        if (size > static_cast<std::uint64_t>(unread_)) damaged();
        unread_ -= static_cast<long>(size);
        if (at < 0 || at > stream_.length()) to_.add_number(size);
        else add_range(to_, stream_, at, at + static_cast<long>(size));
    }

    /// Its description but for the offsets, and the chunks that they lead to.
    void add_track(const mp4_atom& track) {
        auto level = children_of(stream_, track);
        for (const auto name : {"mdia", "minf", "stbl"}) {
            const auto* found = find_atom(level, name);
            if (found == nullptr) return add_range(to_, stream_, track.offset, track.end());
            level = children_of(stream_, *found);
        }
        const auto* short_offsets = find_atom(level, "stco");
        const auto* offsets = short_offsets != nullptr ? short_offsets : find_atom(level, "co64");
        const auto* plain_sizes = find_atom(level, "stsz");
        const auto* sizes = plain_sizes != nullptr ? plain_sizes : find_atom(level, "stz2");
        const auto* runs = find_atom(level, "stsc");
        if (offsets == nullptr || sizes == nullptr || runs == nullptr) damaged();
        add_range(to_, stream_, track.offset, offsets->body());
        add_range(to_, stream_, offsets->end(), track.end());
        add_chunks(*offsets, *sizes, *runs);
    }

    void add_chunks(const mp4_atom& offset_atom, const mp4_atom& size_atom, const mp4_atom& run_atom) {
        const std::size_t offset_size = offset_atom.name == "co64" ? 8 : 4;
        fields offsets(stream_, offset_atom), runs(stream_, run_atom);
        const sample_sizes sizes(fields(stream_, size_atom), size_atom.name == "stz2");
        offsets.number(4);
        runs.number(4);
        auto runs_left = runs.count(12);
        std::uint64_t next_run = runs_left > 0 ? runs.number(4) : 0;
        std::uint64_t samples = 0, sample = 0;
        const auto count = offsets.count(offset_size);
        for (std::uint64_t chunk = 1; chunk <= count; ++chunk) {
            while (runs_left > 0 && chunk >= next_run) {
                samples = runs.number(4);
                runs.number(4);
                if (--runs_left > 0) next_run = runs.number(4);
            }
            std::uint64_t size = samples * sizes.equal;
            for (std::uint64_t i = 0; i < samples && sample < sizes.each.size(); ++i) size += sizes.each[sample++];
            add_chunk(static_cast<long>(offsets.number(offset_size)), size);
        }
    }

    void read_defaults(const mp4_atom& extension) {
        for (const auto& atom : children_of(stream_, extension)) {
            if (atom.name != "trex") continue;
            fields source(stream_, atom);
            source.number(4);
            const auto id = source.number(4);
            source.number(8);
            default_sizes_[id] = source.number(4);
        }
    }

    /// The runs of samples in a track of a fragment, one after another unless they have offsets. `place` is the base of
    /// these from, and afterwards where the next track goes on.
    void add_runs(const std::vector<mp4_atom>& parts, long& place, std::uint64_t default_size) {
        const long base = place;
        for (const auto& atom : parts) {
            if (atom.name != "trun") continue;
            fields source(stream_, atom);
            const auto flags = source.number(4);
            const auto count = source.number(4);
            if ((flags & 0x1) != 0) place = base + static_cast<std::int32_t>(source.number(4));
            if ((flags & 0x4) != 0) source.number(4);
            std::uint64_t size = 0;
            if ((flags & 0x200) == 0) size = count * default_size;
            else
                for (std::uint64_t i = 0; i < count; ++i) {
                    if ((flags & 0x100) != 0) source.number(4);
                    size += source.number(4);
                    if ((flags & 0x400) != 0) source.number(4);
                    if ((flags & 0x800) != 0) source.number(4);
                }
            add_chunk(place, size);
            place += static_cast<long>(size);
        }
    }

    digest& to_;
    file_stream& stream_;
    long unread_;
    std::map<std::uint64_t, std::uint64_t> default_sizes_;
};

}  // namespace

void add_mp4_sound(digest& to, file_stream& stream) {
    mp4_sound sound(to, stream);
    const auto atoms = atoms_between(stream, 0, stream.length());
    const auto* header = find_atom(atoms, "moov");
    if (header == nullptr) throw edit_error("it has no header (\"moov\" atom)");
    sound.add_header(*header);
    for (const auto& atom : atoms)
        if (atom.name == "moof") sound.add_fragment(atom);
}

}  // namespace ostrevan::tags
