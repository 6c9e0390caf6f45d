#pragma once

#include <functional>

#include "ostrevan/service.h"

namespace ostrevan {

/// What some work was begun for, such as one command of the user, which does not end while this is held.
class work_origin : public service_base {
public:
    /// Runs `work` here and now. What it starts or posts belongs to the origin. Throws what `work` throws. [any-thread]
    virtual void run(const std::function<void()>& work) = 0;
};

/// For components that do the work of several commands one after another. A player need not offer it.
class work_origin_service : public service_base {
public:
    static constexpr nuv::guid class_guid = nuv::guid_of("{979A03C9-D6FA-49A9-A073-E15FBB3E50C7}");

    /// That of the work under way on this thread. [any-thread]
    virtual service_ptr_t<work_origin> current() = 0;
};

}  // namespace ostrevan
