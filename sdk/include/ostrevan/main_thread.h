#pragma once

#include "ostrevan/service.h"

namespace ostrevan {

/// Work for the main thread. What it throws is written to the console and dropped.
class main_thread_callback : public service_base {
public:
    /// [main-thread]
    virtual void callback_run() = 0;
};

/// Callbacks run one after another, in the order in which they were added, never inside `add_callback`. The player holds a
/// reference until the callback has run; callbacks still waiting when the player ends are run before shutdown is announced.
class main_thread_callback_service : public service_base {
public:
    static constexpr nuv::guid class_guid = nuv::guid_of("{EA055F49-7C6D-4695-8C0F-EBBD92DBA7A7}");

    /// [any-thread]
    virtual void add_callback(service_ptr_t<main_thread_callback> callback) = 0;
};

}  // namespace ostrevan
