// The part of the compiler's runtime that a library needs, and that stays when it is unloaded: memory reserved for
// exceptions, and data of the thread that loaded it.
#include <mutex>
#include <stdexcept>
#include <thread>

extern "C" __declspec(dllexport) int use_the_runtime() {
    static thread_local int calls = 0;
    static std::mutex lock;
    static std::once_flag once;
    std::call_once(once, [] {});
    const std::lock_guard guard(lock);
    std::thread([] {}).join();
    try {
        throw std::runtime_error("thrown");
    } catch (const std::exception&) {
        return ++calls;
    }
}
