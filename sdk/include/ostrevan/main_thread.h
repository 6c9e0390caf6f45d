#pragma once

#include "ostrevan/service.h"

namespace ostrevan {

/// Work for the main thread. An exception that leaves it is written to the console and dropped.
class main_thread_callback : public service_base {
public:
    /// [main-thread]
    virtual void callback_run() = 0;
};

/// Runs callbacks one after another in the order of their addition, never inside `add_callback`. The player holds a
/// reference until the callback has run. Callbacks that wait when the player ends run before the shutdown notifications.
class main_thread_callback_service : public service_base {
public:
    static constexpr nuv::guid class_guid = nuv::guid_of("{EA055F49-7C6D-4695-8C0F-EBBD92DBA7A7}");

    /// [any-thread]
    virtual void add_callback(service_ptr_t<main_thread_callback> callback) = 0;
};

}  // namespace ostrevan
