#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Vek {

/// The attributes of one element, from name to value, both decoded, in no order that may be relied on. Their storage is used
/// again for the next element.
class xmlAttributes {
public:
    using value_type = std::pair<std::string, std::string>;
    using const_iterator = const value_type*;

    /// The value, or null when there is no such attribute.
    [[nodiscard]] const std::string* find(std::string_view name) const noexcept;
    [[nodiscard]] std::size_t size() const noexcept { return used_; }
    [[nodiscard]] bool empty() const noexcept { return used_ == 0; }
    [[nodiscard]] const_iterator begin() const noexcept { return items_.data(); }
    [[nodiscard]] const_iterator end() const noexcept { return items_.data() + used_; }

    void clear() noexcept;
    /// False, and nothing added, if there is one of that name already. The texts are copied. Takes constant time.
    bool add(std::string_view name, std::string_view value);
    /// The name of the next attribute if this element is like the one before; empty when there is nothing to go by. It can
    /// be compared with the written name.
    [[nodiscard]] std::string_view expected() const noexcept {
        return as_written_ && alike_ && used_ < distinct_ ? std::string_view(items_[used_].first) : std::string_view();
    }
    /// Adds the attribute of the expected name, which is not empty.
    void add_expected(std::string_view value);
    /// For a name that is written otherwise than it was added: there will be no expected names any more.
    void expect_none() noexcept { as_written_ = false; }
    void remove_if(bool (*unwanted)(const value_type&));

private:
    void enter_last();
    /// Enters all names into `slots_`, if there are enough of them to be worth it.
    void make_slots();
    /// The slot of the name, or the free slot where it belongs.
    [[nodiscard]] std::size_t slot_of(std::string_view name) const noexcept;

    // Elements of one kind follow each other, so their names are kept. The first `distinct_` names in `items_` are left from
    // an earlier element and differ from each other. While `alike_`, the names of this element are the first `used_` of
    // these, in their order: they need not be copied, and none can occur twice. A name that had to be decoded may hold any
    // byte, even `="`, so that comparing it with what is written would tell nothing: `as_written_` is false from then on.
    std::vector<value_type> items_;
    std::size_t used_ = 0;
    std::size_t distinct_ = 0;
    bool alike_ = true;
    bool as_written_ = true;
    std::vector<std::uint32_t> slots_;  ///< a hash table of positions in `items_`, counted from 1
};

}  // namespace Vek
