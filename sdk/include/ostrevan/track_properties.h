#pragma once

#include "ostrevan/track.h"

namespace ostrevan {

/// Receives property rows. [main-thread]
class track_property_sink {
public:
    /// `priority` orders the rows of one group, lowest first.
    virtual void set_property(const char* group, double priority, const char* name, const char* value) = 0;

protected:
    ~track_property_sink() = default;
};

/// Receives the groups that a provider has, and returns whether the rows of that group are wanted.
class track_property_groups {
public:
    virtual bool on_group(const char* group) = 0;

protected:
    ~track_property_groups() = default;
};

/// Rows for the track properties of a selection. [main-thread]
class track_property_provider : public service_base {
public:
    static constexpr nuv::guid class_guid = nuv::guid_of("{F6646CE5-3E11-4AD2-9B0E-6244032C6FA6}");

    /// Reports each group to `groups` and writes the rows of the accepted ones.
    virtual void enumerate_groups(metadb_handle_list_cref tracks, track_property_groups& groups,
                                  track_property_sink& out) = 0;
    virtual void enumerate_properties(metadb_handle_list_cref tracks, track_property_sink& out) = 0;
};

}  // namespace ostrevan
