#pragma once

#include <tstringlist.h>

#include <string>
#include <utility>
#include <vector>

namespace TagLib {
namespace MP4 {
class Tag;
}
}  // namespace TagLib

namespace ostrevan::tags {

using keyed_values = std::vector<std::pair<std::string, TagLib::StringList>>;

/// The name of a freeform atom, the part after its second colon: "----:com.apple.iTunes:NAME"; empty for other atoms.
std::string freeform_name(const TagLib::String& atom);

/// Fields with names of the user's choosing, which the library's own property map leaves out: MP4 freeform atoms whatever
/// their `mean`.
keyed_values freeform_fields(const TagLib::MP4::Tag& tag);

}  // namespace ostrevan::tags
