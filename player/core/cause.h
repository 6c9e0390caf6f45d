#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace ostrevan::core {

/// Why work is done, as the journal of changes keeps it. What work posts or starts has the same cause.
struct cause {
    std::string text;      ///< for the user, such as "rate 5"
    std::uint64_t number;  ///< another one for each, from 1
};
using cause_ptr = std::shared_ptr<const cause>;

/// Gives the work of this thread a cause while it lives. [any-thread]
class cause_scope {
public:
    explicit cause_scope(std::string text);
    explicit cause_scope(cause_ptr given) noexcept;
    ~cause_scope();
    cause_scope(const cause_scope&) = delete;
    cause_scope& operator=(const cause_scope&) = delete;

    /// Null when there is none.
    static const cause_ptr& current() noexcept;

private:
    cause_ptr former_;
};

}  // namespace ostrevan::core
