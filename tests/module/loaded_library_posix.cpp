#include <dlfcn.h>

#include <stdexcept>

#include "tests/module/loaded_component.h"

namespace module_test {

loaded_library::loaded_library(const std::string& path) : handle_(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)) {
    if (handle_ == nullptr) throw std::runtime_error(dlerror());
}
loaded_library::~loaded_library() { dlclose(handle_); }

void* loaded_library::address_of(const char* name) const { return dlsym(handle_, name); }

}  // namespace module_test
