#include <dlfcn.h>

#include <stdexcept>

#include "tests/module/loaded_component.h"

namespace module_test {

loaded_library::loaded_library(const std::string& path) : handle_(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)) {
    if (handle_ == nullptr) throw std::runtime_error(dlerror());
}
loaded_library::~loaded_library() { dlclose(handle_); }

ostrevan::get_interface_function loaded_library::entry() const {
    return reinterpret_cast<ostrevan::get_interface_function>(dlsym(handle_, ostrevan::entry_name));
}

}  // namespace module_test
