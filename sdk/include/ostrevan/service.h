#pragma once

#include <atomic>
#include <concepts>
#include <cstddef>
#include <utility>

#include "nuv/guid.h"

namespace ostrevan {

/// Root of everything that crosses the boundary between player and component. An object is kept alive by counted
/// references and is destroyed by the module that made it. Counting is thread-safe.
class service_base {
public:
    virtual void service_add_ref() noexcept = 0;
    virtual void service_release() noexcept = 0;

    /// The same object under another interface, named by that interface's `class_guid`, or null when the object does not
    /// offer it. No reference is added. [any-thread]
    virtual service_base* service_query(const nuv::guid& /*interface_guid*/) noexcept { return nullptr; }

    service_base(const service_base&) = delete;
    service_base& operator=(const service_base&) = delete;

protected:
    service_base() = default;
    virtual ~service_base() = default;
};

/// A counted pointer to a service. It may be empty.
template <typename T>
class service_ptr_t {
public:
    service_ptr_t() noexcept = default;
    service_ptr_t(std::nullptr_t) noexcept {}  // NOLINT(google-explicit-constructor): an empty pointer, as elsewhere
    /// Takes a reference of its own.
    service_ptr_t(T* object) noexcept : object_(object) {  // NOLINT(google-explicit-constructor): shared ownership
        if (object_ != nullptr) object_->service_add_ref();
    }
    service_ptr_t(const service_ptr_t& other) noexcept : service_ptr_t(other.object_) {}
    service_ptr_t(service_ptr_t&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    template <std::derived_from<T> U>
    service_ptr_t(const service_ptr_t<U>& other) noexcept  // NOLINT(google-explicit-constructor): to a base class
        : service_ptr_t(static_cast<T*>(other.get())) {}
    ~service_ptr_t() { reset(); }

    service_ptr_t& operator=(service_ptr_t other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }

    void reset() noexcept {
        if (T* object = std::exchange(object_, nullptr)) object->service_release();
    }

    [[nodiscard]] T* get() const noexcept { return object_; }
    T* operator->() const noexcept { return object_; }
    T& operator*() const noexcept { return *object_; }
    explicit operator bool() const noexcept { return object_ != nullptr; }

    friend bool operator==(const service_ptr_t& a, const service_ptr_t& b) noexcept { return a.object_ == b.object_; }
    friend std::strong_ordering operator<=>(const service_ptr_t& a, const service_ptr_t& b) noexcept {
        return std::compare_three_way{}(a.object_, b.object_);
    }

private:
    T* object_ = nullptr;
};

/// Asks an object for another of its interfaces; empty when it does not offer it. [any-thread]
template <typename T>
service_ptr_t<T> query_service(service_base& object) noexcept {
    return service_ptr_t<T>(static_cast<T*>(object.service_query(T::class_guid)));
}

/// Counted implementation: derive `Interface`'s implementation and make it with `service_new`.
template <typename Implementation>
class service_counted_t final : public Implementation {
public:
    template <typename... Args>
    explicit service_counted_t(Args&&... args) : Implementation(std::forward<Args>(args)...) {}

    void service_add_ref() noexcept override { count_.fetch_add(1, std::memory_order_relaxed); }
    void service_release() noexcept override {
        if (count_.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
    }

private:
    ~service_counted_t() override = default;
    std::atomic<std::size_t> count_{0};
};

/// Makes a counted service object. The pointer returned holds its only reference.
template <typename Implementation, typename... Args>
service_ptr_t<Implementation> service_new(Args&&... args) {
    return service_ptr_t<Implementation>(new service_counted_t<Implementation>(std::forward<Args>(args)...));
}

/// An object whose owner keeps it alive longer than every reference: a static, or a member of such an object.
template <typename Implementation>
class service_uncounted_t final : public Implementation {
public:
    template <typename... Args>
    explicit service_uncounted_t(Args&&... args) : Implementation(std::forward<Args>(args)...) {}
    ~service_uncounted_t() override = default;

    void service_add_ref() noexcept override {}
    void service_release() noexcept override {}
};

}  // namespace ostrevan
