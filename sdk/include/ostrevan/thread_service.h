#pragma once

#include "ostrevan/service.h"

namespace ostrevan {

/// Work for a thread of its own.
class thread_task : public service_base {
public:
    /// [worker] An exception that leaves it is written to the console and dropped.
    virtual void run() = 0;
};

class thread_service : public service_base {
public:
    static constexpr nuv::guid class_guid = nuv::guid_of("{C07F7A5A-5003-4381-B21D-86884DFA8E52}");

    /// Starts the task on a thread of its own. The player does not end before the task does. Throws when no thread can be
    /// had. [any-thread]
    virtual void start(service_ptr_t<thread_task> task) = 0;
};

}  // namespace ostrevan
