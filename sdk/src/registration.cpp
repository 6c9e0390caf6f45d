#include "ostrevan/registration.h"

namespace ostrevan {
namespace {

constinit const service_registration* first_registration = nullptr;
constinit const service_registration** end_of_list = &first_registration;

}  // namespace

service_registration::service_registration(const nuv::guid& service_class, service_base& service) noexcept
    : service_class_(service_class), service_(&service) {
    *end_of_list = this;
    end_of_list = &next_;
}

const service_registration* service_registration::first() noexcept { return first_registration; }

}  // namespace ostrevan
