#include "ostrevan/registration.h"

#include <utility>

namespace ostrevan {
namespace {

constinit const service_registration* first_registration = nullptr;

}  // namespace

service_registration::service_registration(const nuv::guid& service_class, service_base& service) noexcept
    : service_class_(service_class), service_(&service), next_(std::exchange(first_registration, this)) {}

const service_registration* service_registration::first() noexcept { return first_registration; }

}  // namespace ostrevan
