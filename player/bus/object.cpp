#include "player/bus/object.h"

#include <systemd/sd-bus.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <exception>
#include <string_view>
#include <utility>

namespace ostrevan::bus {
namespace {

void check_result(int result) {
    if (result < 0) throw bus_error(std::strerror(-result));
}

int refuse(sd_bus_error* out, const std::exception& failure) {
    return sd_bus_error_set(out, SD_BUS_ERROR_FAILED, failure.what());
}

}  // namespace

/// The table in sd-bus's form; it refers to the texts of our own.
struct exported_interface::table {
    connection& on;
    const char* path;
    own_interface offered;
    std::vector<sd_bus_vtable> entries{};
    sd_bus_slot* slot = nullptr;

    template <class Member>
    static const Member& find(const std::vector<Member>& members, std::string_view name) {
        return *std::ranges::find(members, name, [](const Member& each) { return std::string_view(each.name); });
    }

    static int get(sd_bus*, const char*, const char*, const char* name, sd_bus_message* reply, void* self,
                   sd_bus_error* out) {
        try {
            return write_value(*reply, find(static_cast<table*>(self)->offered.properties, name).get());
        } catch (const std::exception& failure) {
            return refuse(out, failure);
        }
    }

    static int set(sd_bus*, const char*, const char*, const char* name, sd_bus_message* wanted, void* self,
                   sd_bus_error* out) {
        try {
            const auto values = read_values(*wanted);
            if (values.size() != 1) return -EINVAL;
            find(static_cast<table*>(self)->offered.properties, name).set(values.front());
            return 0;
        } catch (const std::exception& failure) {
            return refuse(out, failure);
        }
    }

    static int run(sd_bus_message* call, void* self, sd_bus_error* out) {
        try {
            const char* const name = sd_bus_message_get_member(call);
            find(static_cast<table*>(self)->offered.methods, name).run(read_values(*call));
            return sd_bus_reply_method_return(call, "");
        } catch (const std::exception& failure) {
            return refuse(out, failure);
        }
    }

    void build() {
        entries.push_back(SD_BUS_VTABLE_START(0));
        for (const auto& each : offered.properties) {
            if (each.set)
                entries.push_back(
                    SD_BUS_WRITABLE_PROPERTY(each.name, each.signature, get, set, 0,
                                             SD_BUS_VTABLE_PROPERTY_EMITS_CHANGE | SD_BUS_VTABLE_UNPRIVILEGED));
            else if (each.is_told)
                entries.push_back(SD_BUS_PROPERTY(each.name, each.signature, get, 0, SD_BUS_VTABLE_PROPERTY_EMITS_CHANGE));
            else entries.push_back(SD_BUS_PROPERTY(each.name, each.signature, get, 0, 0));
        }
        for (const auto& each : offered.methods)
            entries.push_back(SD_BUS_METHOD(each.name, each.signature, "", run, SD_BUS_VTABLE_UNPRIVILEGED));
        for (const auto& each : offered.signals) entries.push_back(SD_BUS_SIGNAL(each.name, each.signature, 0));
        entries.push_back(SD_BUS_VTABLE_END);
    }
};

exported_interface::exported_interface(connection& on, const char* path, own_interface offered)
    : table_(new table{on, path, std::move(offered)}) {
    table_->build();
    check_result(sd_bus_add_object_vtable(&on.native(), &table_->slot, path, table_->offered.name, table_->entries.data(),
                                          table_.get()));
}

exported_interface::~exported_interface() { sd_bus_slot_unref(table_->slot); }

void exported_interface::tell_changed(const std::vector<const char*>& properties) {
    if (properties.empty()) return;
    std::vector<char*> names(properties.size() + 1);  // the last one is null
    std::ranges::transform(properties, names.begin(), [](const char* name) { return const_cast<char*>(name); });
    check_result(
        sd_bus_emit_properties_changed_strv(&table_->on.native(), table_->path, table_->offered.name, names.data()));
}

void exported_interface::emit(const char* signal, const value& argument) {
    sd_bus_message* made = nullptr;
    check_result(sd_bus_message_new_signal(&table_->on.native(), &made, table_->path, table_->offered.name, signal));
    const std::unique_ptr<sd_bus_message, decltype(&sd_bus_message_unref)> message(made, sd_bus_message_unref);
    check_result(write_value(*made, argument));
    check_result(sd_bus_send(&table_->on.native(), made, nullptr));
}

bool take_name(connection& on, const char* name) {
    const int result = sd_bus_request_name(&on.native(), name, 0);
    if (result == -EEXIST) return false;
    check_result(result);
    return true;
}

}  // namespace ostrevan::bus
