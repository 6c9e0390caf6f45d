// What the compiler's runtime needs in a library of its own, and keeps when that is unloaded: room for exceptions when
// memory is short, and what belongs to the thread that loaded it.
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
