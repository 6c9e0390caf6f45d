#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Vek {

/// The attributes of one element, from name to value, both decoded, in no order that may be relied on. The storage of one
/// element is used again for the next.
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
    /// False, and nothing added, when there is one of that name already. The texts are copied. Takes constant time.
    bool add(std::string_view name, std::string_view value);
    /// The name that the element before had in the place of the next attribute, as far as both have been alike; else empty.
    [[nodiscard]] std::string_view expected() const noexcept {
        return alike_ && used_ < distinct_ ? std::string_view(items_[used_].first) : std::string_view();
    }
    /// Adds the attribute of that name, which is not empty.
    void add_expected(std::string_view value);
    void remove_if(bool (*unwanted)(const value_type&));

private:
    void enter_last();
    /// Enters the names into `slots_`, if there are so many that it is worth it.
    void index();
    /// Where the name stands in `slots_`, or the free slot where it belongs.
    [[nodiscard]] std::size_t slot_of(std::string_view name) const noexcept;

    std::vector<value_type> items_;  ///< those behind the first `used_` lend their memory
    std::size_t used_ = 0;
    // Elements of one kind follow each other. As long as the names are those of the element before, in its order, they need
    // neither be copied nor compared with each other.
    bool alike_ = true;                 ///< the names so far are those that stood there before
    std::size_t distinct_ = 0;          ///< so many of the names that stood there before differ from each other
    std::vector<std::uint32_t> slots_;  ///< a hash table of positions in `items_`, counted from 1
};

}  // namespace Vek
