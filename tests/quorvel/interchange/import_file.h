#pragma once

#include <cstdio>

#include "quorvel/interchange/pcdb_export.h"
#include "tests/support/statistics_test.h"

namespace support {

/// Imports texts through the command and its dialog.
class import_file : public statistics_test {
protected:
    using messages = std::vector<std::string>;

    static std::string entry(std::uint64_t key, const std::string& attributes) {
        char id[17];
        std::snprintf(id, sizeof id, "%016llx", static_cast<unsigned long long>(key));
        return std::string("  <Entry ID=\"") + id + "\" " + attributes + "/>\n";
    }
    static std::string under(const nuv::guid& mapping, const std::string& entries) {
        return "<PlaybackStatistics Version=\"3.0\" Mapping=\"" + nuv::guid_text(mapping) + "\">\n" + entries +
               "</PlaybackStatistics>";
    }
    static std::string under_active(const std::string& entries) { return under(quorvel::active_mapping_guid, entries); }

    /// What the user is told, without the part that is always the same.
    messages import(const std::string& text, std::initializer_list<int> unchecked = {}) {
        player.local_files.files["/s.xml"] = text;
        player.file_dialog.answer = "/s.xml";
        quorvel::pcdb_export::importStatistics();
        for (const int box : unchecked) player.dialogs.set_checked(box, false);
        player.dialogs.press(ostrevan::dialog_ok);
        EXPECT_FALSE(player.dialogs.is_open());
        return take_messages();
    }
    messages take_messages() {
        const std::string_view always = "Playback statistics import failure: ";
        messages texts;
        for (const auto& message : std::exchange(player.popups.questions(), {})) {
            EXPECT_TRUE(message.text.starts_with(always) && message.title == "Information") << message.text;
            texts.push_back(message.text.substr(always.size()));
        }
        return texts;
    }
};

}  // namespace support
