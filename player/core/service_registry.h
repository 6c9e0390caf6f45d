#pragma once

#include <cstddef>
#include <unordered_map>
#include <vector>

#include "nuv/guid.h"
#include "ostrevan/service.h"
#include "player/core/component_call.h"

namespace ostrevan::core {

/// All services of the player and its components, by class. Filled on the main thread before the first lookup from another
/// one and never changed afterwards, so lookups take no lock.
class service_registry {
public:
    explicit service_registry(component_guard::failure_sink on_failure = {}) : guard_(std::move(on_failure)) {}

    /// Adds no reference: services live until the process or the session ends.
    void add(const nuv::guid& service_class, service_base& service) { services_[service_class].push_back(&service); }

    template <typename T>
    void add(T& service) {
        add(T::class_guid, service);
    }

    [[nodiscard]] std::size_t count(const nuv::guid& service_class) const noexcept;
    /// Null past the end.
    [[nodiscard]] service_base* at(const nuv::guid& service_class, std::size_t index) const noexcept;

    /// Calls `visit` with every service of one class, in the order of registration. One that throws is reported and makes
    /// the result false; the others are still visited. `doing` completes "failed at".
    template <typename T, typename Visitor>
    bool for_each(Visitor&& visit, const char* doing = "its work") const {
        bool all_well = true;
        for (std::size_t i = 0, n = count(T::class_guid); i < n; ++i) {
            auto& service = static_cast<T&>(*at(T::class_guid, i));
            all_well &= guard_.call(service, doing, [&] { visit(service); });
        }
        return all_well;
    }

    /// For calls of objects, other than services, that components have handed over.
    [[nodiscard]] const component_guard& guard() const noexcept { return guard_; }

private:
    const component_guard guard_;
    std::unordered_map<nuv::guid, std::vector<service_base*>> services_;
};

}  // namespace ostrevan::core
