#include "player/core/cause.h"

#include <atomic>
#include <utility>

namespace ostrevan::core {
namespace {

cause_ptr& cause_of_thread() noexcept {
    static thread_local cause_ptr current;
    return current;
}

cause_ptr new_cause(std::string text) {
    static std::atomic<std::uint64_t> last{0};
    return std::make_shared<const cause>(cause{std::move(text), ++last});
}

}  // namespace

cause_scope::cause_scope(std::string text) : cause_scope(new_cause(std::move(text))) {}

cause_scope::cause_scope(cause_ptr given) noexcept : former_(std::exchange(cause_of_thread(), std::move(given))) {}

cause_scope::~cause_scope() { cause_of_thread() = std::move(former_); }

const cause_ptr& cause_scope::current() noexcept { return cause_of_thread(); }

}  // namespace ostrevan::core
