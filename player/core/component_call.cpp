#include "player/core/component_call.h"

#include <dlfcn.h>

#include <exception>
#include <filesystem>
#include <stdexcept>

#include "player/system/failure_text.h"

namespace ostrevan::core {

std::string module_at(const void* address) {
    Dl_info where{};
    if (::dladdr(address, &where) == 0 || where.dli_fname == nullptr) return "a component";
    return std::filesystem::path(where.dli_fname).filename().string();
}

// Modules are loaded with local symbols, so each has its own type information.
std::string module_of(const std::type_info& type) { return module_at(&type); }

std::string text_of_failure() {
    try {
        throw;
    } catch (const std::exception& error) {
        return system::failure_text(error);
    } catch (...) {
        return "unknown error";
    }
}

void rethrow_as_of(const std::type_info& type) { throw std::runtime_error(module_of(type) + ": " + text_of_failure()); }

void component_guard::report(const std::type_info& type, const std::string& doing) const {
    if (on_failure_) on_failure_("Component " + module_of(type) + " failed at " + doing + ": " + text_of_failure());
}

}  // namespace ostrevan::core
