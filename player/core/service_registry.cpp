#include "player/core/service_registry.h"

namespace ostrevan::core {

std::size_t service_registry::count(const nuv::guid& service_class) const noexcept {
    const auto found = services_.find(service_class);
    return found == services_.end() ? 0 : found->second.size();
}

service_base* service_registry::at(const nuv::guid& service_class, std::size_t index) const noexcept {
    const auto found = services_.find(service_class);
    return found == services_.end() || index >= found->second.size() ? nullptr : found->second[index];
}

}  // namespace ostrevan::core
