#pragma once

#include <functional>
#include <string>
#include <typeinfo>
#include <utility>

namespace ostrevan::core {

/// The module file that a class comes from, such as "quorvel.dll". [any-thread]
std::string module_of(const std::type_info& type);

/// The file of the code or data at an address, such as a return address. [any-thread]
std::string module_at(const void* address);

/// The text of the exception being handled, of any type. Only inside a handler.
std::string text_of_failure();

/// Throws the exception being handled as a std::runtime_error with the name of the module in front. Only inside a handler.
[[noreturn]] void rethrow_as_of(const std::type_info& type);

/// Calls into the component that `type` comes from. Whatever it throws arrives as a std::exception that names the
/// component.
template <typename Work>
auto call_component(const std::type_info& type, Work&& work) {
    try {
        return work();
    } catch (...) {
        rethrow_as_of(type);
    }
}

/// The same for a call of a method of `object`.
template <typename T, typename Work>
requires std::is_polymorphic_v<T>
auto call_component(const T& object, Work&& work) { return call_component(typeid(object), std::forward<Work>(work)); }

/// Calls whose failures are reported and not passed on, so that the caller goes on with other components.
class component_guard {
public:
    /// Called on the thread of the call.
    using failure_sink = std::function<void(const std::string& message)>;

    explicit component_guard(failure_sink on_failure) : on_failure_(std::move(on_failure)) {}

    /// `doing` completes "failed at". Returns false on failure.
    template <typename T, typename Work>
    bool call(const T& object, const char* doing, Work&& work) const {
        try {
            work();
            return true;
        } catch (...) {
            report(typeid(object), doing);
            return false;
        }
    }

    /// Reports the exception being handled.
    void report(const std::type_info& type, const std::string& doing) const;

private:
    const failure_sink on_failure_;
};

}  // namespace ostrevan::core
