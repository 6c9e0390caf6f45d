#include "player/tags/tag_fields.h"

#include <apefile.h>
#include <apetag.h>
#include <flacfile.h>
#include <id3v1tag.h>
#include <id3v2tag.h>
#include <infotag.h>
#include <mpegfile.h>
#include <trueaudiofile.h>
#include <wavfile.h>
#include <wavpackfile.h>
#include <xiphcomment.h>

#include "player/tags/asf_fields.h"
#include "player/tags/changes.h"
#include "player/tags/errors.h"
#include "player/tags/field_names.h"
#include "player/tags/tag_entries.h"
#include "player/tags/xiph_comment.h"

namespace ostrevan::tags {
namespace {

/// Tags of a file in the order asked for, without those that are missing or hold no field.
std::vector<TagLib::Tag*> filled(std::initializer_list<TagLib::Tag*> tags) {
    std::vector<TagLib::Tag*> result;
    for (auto* tag : tags)
        if (tag != nullptr && !tag->isEmpty()) result.push_back(tag);
    return result;
}

void add_xiph_fields(const std::string& comment, file_info_builder& info) try {
    for (auto& [key, values] : entries_of_comment(comment)) add_entry(key, std::move(values), info);
} catch (const edit_error&) {
    // A file without readable fields still has its sound.
}

}  // namespace

bool is_limited(const TagLib::Tag* tag) {
    return dynamic_cast<const TagLib::ID3v1::Tag*>(tag) != nullptr ||
           dynamic_cast<const TagLib::RIFF::Info::Tag*>(tag) != nullptr;
}

std::vector<TagLib::Tag*> tags_by_precedence(const opened_file& opened) {
    auto* file = opened.file.get();
    if (file == nullptr) return {};
    switch (opened.kind) {
        case container::mpeg: {
            auto& mpeg = dynamic_cast<TagLib::MPEG::File&>(*file);
            return filled({mpeg.ID3v2Tag(), mpeg.APETag(), mpeg.ID3v1Tag()});
        }
        case container::flac: {
            auto& flac = dynamic_cast<TagLib::FLAC::File&>(*file);
            return filled({flac.xiphComment(), flac.ID3v2Tag(), flac.ID3v1Tag()});
        }
        case container::true_audio: {
            auto& tta = dynamic_cast<TagLib::TrueAudio::File&>(*file);
            return filled({tta.ID3v2Tag(), opened.ape_tag.get(), tta.ID3v1Tag()});
        }
        case container::wavpack: {
            auto& wavpack = dynamic_cast<TagLib::WavPack::File&>(*file);
            return filled({wavpack.APETag(), wavpack.ID3v1Tag()});
        }
        case container::monkeys_audio: {
            auto& ape = dynamic_cast<TagLib::APE::File&>(*file);
            return filled({ape.APETag(), ape.ID3v1Tag()});
        }
        case container::wav: {
            auto& wav = dynamic_cast<TagLib::RIFF::WAV::File&>(*file);
            return filled({wav.ID3v2Tag(), wav.InfoTag()});
        }
        default:
            return filled({file->tag()});
    }
}

void add_tag_fields(const TagLib::Tag& tag, file_info_builder& info) {
    for (auto& [key, values] : entries_of(tag)) add_entry(key, std::move(values), info);
}

void add_fields(const opened_file& opened, file_info_builder& info) {
    if (opened.kind == container::asf) return add_asf_fields(*opened.stream, info);
    if (opened.xiph_comment) add_xiph_fields(*opened.xiph_comment, info);
    for (const auto* tag : tags_by_precedence(opened)) {
        if (info.meta_count() > 0 && is_limited(tag)) continue;
        if (info.meta_count() == 0) {
            add_tag_fields(*tag, info);
            continue;
        }
        file_info_builder later;
        add_tag_fields(*tag, later);
        for (const auto field : statistics_fields)
            if (const auto index = later.meta_find(field); index != file_info_builder::npos && !info.meta_exists(field))
                info.meta_set_values(field, later.meta_values(index));
    }
}

file_info_builder info_of(const opened_file& opened) {
    file_info_builder info;
    add_fields(opened, info);
    info.length = opened.sound.length;
    info.codec = opened.sound.codec;
    info.bitrate = opened.sound.bitrate;
    info.sample_rate = opened.sound.sample_rate;
    info.channels = opened.sound.channels;
    return info;
}

}  // namespace ostrevan::tags
