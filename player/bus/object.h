#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "player/bus/connection.h"
#include "player/bus/value.h"

struct sd_bus_slot;

namespace ostrevan::bus {

/// A property of an object of ours. It returns a value of the type that the signature says.
struct own_property {
    const char* name;
    const char* signature;
    std::function<value()> get;
    /// Empty when others cannot set it.
    std::function<void(const value& wanted)> set{};
    /// False for one that changes all the time.
    bool is_told = true;
};

/// A method without a result.
struct own_method {
    const char* name;
    const char* signature;
    std::function<void(const std::vector<value>& arguments)> run;
};

struct own_signal {
    const char* name;
    const char* signature;
};

struct own_interface {
    const char* name;
    std::vector<own_property> properties{};
    std::vector<own_method> methods{};
    std::vector<own_signal> signals{};
};

/// An interface of an object that others on the bus can use while this lives. Belongs to the thread of its connection, which
/// outlives it. Whatever a property or a method throws is returned to the caller as an error.
class exported_interface {
public:
    /// Throws bus_error.
    exported_interface(connection& on, const char* path, own_interface offered);
    ~exported_interface();
    exported_interface(const exported_interface&) = delete;
    exported_interface& operator=(const exported_interface&) = delete;

    /// Tells everybody the new values of these properties.
    void tell_changed(const std::vector<const char*>& properties);
    void emit(const char* signal, const value& argument);

private:
    struct table;
    std::unique_ptr<table> table_;
};

/// Takes a name on the bus. Returns false when another program has it. Throws bus_error.
bool take_name(connection& on, const char* name);

}  // namespace ostrevan::bus
