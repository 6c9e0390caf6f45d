#pragma once

#include <cstddef>

#include "ostrevan/service.h"

namespace ostrevan {

/// One link of the module's list of services. The links are static objects, chained while the module is loaded and never
/// changed afterwards.
class service_registration {
public:
    service_registration(const nuv::guid& service_class, service_base& service) noexcept;

    [[nodiscard]] const nuv::guid& service_class() const noexcept { return service_class_; }
    [[nodiscard]] service_base& service() const noexcept { return *service_; }
    [[nodiscard]] const service_registration* next() const noexcept { return next_; }

    /// Start of this module's list, in the order in which its static objects were made.
    static const service_registration* first() noexcept;

    service_registration(const service_registration&) = delete;
    service_registration& operator=(const service_registration&) = delete;

private:
    nuv::guid service_class_;
    service_base* service_;
    const service_registration* next_ = nullptr;
};

/// Makes the one object of a service and registers it: a static object at namespace scope. `Implementation` derives from
/// `Interface`, under whose `class_guid` it is found; the second argument may be left out when the first inherits the right
/// one.
template <typename Implementation, typename Interface = Implementation>
class service_factory_single_t {
public:
    template <typename... Args>
    explicit service_factory_single_t(Args&&... args) : object_(std::forward<Args>(args)...) {}

    Implementation& get() noexcept { return object_; }

private:
    service_uncounted_t<Implementation> object_;
    service_registration registration_{Interface::class_guid, object_};
};

}  // namespace ostrevan
