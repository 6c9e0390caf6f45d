#include "player/index/record_change.h"

#include <algorithm>
#include <stdexcept>

#include "player/index/index_store.h"

namespace ostrevan::index {
namespace {

using bytes = std::vector<std::byte>;

/// Seven bits a byte, the lowest first; the high bit says that more follow.
void append_number(bytes& to, std::uint64_t number) {
    for (; number >= 0x80; number >>= 7) to.push_back(static_cast<std::byte>(number | 0x80));
    to.push_back(static_cast<std::byte>(number));
}

using record = std::optional<std::span<const std::byte>>;

/// A record as its differences to another one: bytes equal to it are zero.
class difference {
public:
    difference(std::span<const std::byte> data, const record& base)
        : data_(data), base_(base.value_or(std::span<const std::byte>())) {}
    [[nodiscard]] std::size_t size() const noexcept { return data_.size(); }
    [[nodiscard]] std::byte at(std::size_t i) const noexcept { return i < base_.size() ? data_[i] ^ base_[i] : data_[i]; }
    /// The first place from `i` on that is zero, or is not.
    [[nodiscard]] std::size_t find(bool zero, std::size_t i) const noexcept {
        while (i < size() && (at(i) == std::byte{}) != zero) ++i;
        return i;
    }

private:
    std::span<const std::byte> data_;
    std::span<const std::byte> base_;
};

/// The size and one, or 0 for no record. Then runs of zeros and of other bytes, by turns, the zeros first: each a length,
/// and the bytes of the latter.
void append_record(bytes& to, const record& data, const record& base) {
    append_number(to, data ? data->size() + 1 : 0);
    if (!data) return;
    const difference from(*data, base);
    for (std::size_t at = 0; at < from.size();) {
        const auto zeros_end = from.find(false, at), others_end = from.find(true, zeros_end);
        append_number(to, zeros_end - at);
        append_number(to, others_end - zeros_end);
        for (at = zeros_end; at < others_end; ++at) to.push_back(from.at(at));
    }
}

struct damaged {};

class reader {
public:
    explicit reader(std::span<const std::byte> from) : left_(from) {}
    [[nodiscard]] bool at_end() const noexcept { return left_.empty(); }

    std::uint64_t number() {
        std::uint64_t value = 0;
        for (unsigned shift = 0; shift < 64; shift += 7) {
            const auto next = std::to_integer<std::uint64_t>(take(1).front());
            value |= (next & 0x7F) << shift;
            if (next < 0x80) return value;
        }
        throw damaged();
    }
    std::uint64_t key() {
        std::uint64_t value = 0;
        for (const auto each : take(8)) value = value << 8 | std::to_integer<std::uint64_t>(each);
        return value;
    }
    /// The size is one more than that of the record, or 0 where there is none.
    std::optional<bytes> record() {
        const auto size = number();
        if (size == 0) return std::nullopt;
        if (size - 1 > index_store::max_record_size) throw damaged();
        bytes data;
        while (data.size() < size - 1) {
            const auto zeros = number(), others = number();
            if (zeros + others == 0 || zeros > size || others > size || data.size() + zeros + others > size - 1)
                throw damaged();
            data.resize(data.size() + zeros);
            const auto more = take(others);
            data.insert(data.end(), more.begin(), more.end());
        }
        return data;
    }

private:
    std::span<const std::byte> take(std::uint64_t size) {
        if (size > left_.size()) throw damaged();
        const auto taken = left_.first(size);
        left_ = left_.subspan(size);
        return taken;
    }

    std::span<const std::byte> left_;
};

}  // namespace

void append_change(bytes& to, std::uint64_t key, record before, record after) {
    for (int shift = 56; shift >= 0; shift -= 8) to.push_back(static_cast<std::byte>(key >> shift));
    append_record(to, before, {});
    append_record(to, after, before);
}

std::optional<std::vector<record_change>> read_changes(std::span<const std::byte> from) {
    std::vector<record_change> changes;
    try {
        for (reader in(from); !in.at_end();) {
            auto& next = changes.emplace_back();
            next.key = in.key();
            next.before = in.record();
            next.after = in.record();
            for (std::size_t i = 0; next.after && next.before && i < std::min(next.after->size(), next.before->size()); ++i)
                (*next.after)[i] ^= (*next.before)[i];
        }
    } catch (const damaged&) {
        return std::nullopt;
    }
    return changes;
}

}  // namespace ostrevan::index
