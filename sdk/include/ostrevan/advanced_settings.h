#pragma once

#include <string>

#include "ostrevan/configuration.h"
#include "ostrevan/service.h"

namespace ostrevan {

/// An entry in the tree of advanced settings: a branch, or a value below one. [main-thread]
class advanced_setting : public service_base {
public:
    static constexpr nuv::guid class_guid = nuv::guid_of("{9F6FE1F4-C1FA-4798-B313-683B2991034F}");

    [[nodiscard]] virtual nuv::guid id() const noexcept = 0;
    [[nodiscard]] virtual nuv::guid parent() const noexcept = 0;
    [[nodiscard]] virtual std::string label() const = 0;
    /// Orders the entries below one parent, lowest first; equal ones by label.
    [[nodiscard]] virtual double sort_priority() const noexcept = 0;
};

/// An entry that is switched on and off: registered as an entry, and found by `service_query` on it. [main-thread]
class advanced_checkbox : public advanced_setting {
public:
    static constexpr nuv::guid class_guid = nuv::guid_of("{C5B5C75B-360D-461B-8660-5B9FAB347C99}");

    [[nodiscard]] virtual bool get_state() const = 0;
    virtual void set_state(bool checked) = 0;
    [[nodiscard]] virtual bool default_state() const noexcept = 0;

    service_base* service_query(const nuv::guid& interface_guid) noexcept override {
        return interface_guid == class_guid ? this : nullptr;
    }
};

/// The player's branch under which components put theirs.
inline constexpr nuv::guid advanced_branch_components = nuv::guid_of("{35365484-CC58-4926-97E1-5E63F3ABB9E2}");

}  // namespace ostrevan
