#include "quorvel/platform/module_win32.h"

#include "quorvel/platform/native_dialog_win32.h"

namespace quorvel {

HINSTANCE this_module() noexcept {
    constexpr DWORD by_address = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    HMODULE module = nullptr;
    GetModuleHandleExW(by_address, reinterpret_cast<LPCWSTR>(&this_module), &module);
    return module;
}

}  // namespace quorvel

/// A player may unload the module without having ended: windows that are left would call code that is gone. When the whole
/// process ends, the player is gone already and nothing may be touched.
extern "C" BOOL WINAPI DllMain(HINSTANCE /*module*/, DWORD reason, LPVOID process_ends) {
    if (reason == DLL_PROCESS_DETACH && process_ends == nullptr) quorvel::native_dialog::destroy_all();
    return TRUE;
}
