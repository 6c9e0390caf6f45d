#include <windows.h>

#include <filesystem>
#include <stdexcept>
#include <system_error>

#include "tests/module/loaded_component.h"

namespace module_test {

loaded_library::loaded_library(const std::string& path) {
    const std::u8string name(path.begin(), path.end());
    handle_ = LoadLibraryW(std::filesystem::path(name).c_str());
    if (handle_ == nullptr)
        throw std::runtime_error(path + ": " + std::system_category().message(static_cast<int>(GetLastError())));
}
loaded_library::~loaded_library() { FreeLibrary(static_cast<HMODULE>(handle_)); }

void* loaded_library::address_of(const char* name) const {
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(handle_), name));
}

}  // namespace module_test
