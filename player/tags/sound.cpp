#include <aifffile.h>
#include <apefile.h>
#include <flacfile.h>
#include <mp4file.h>
#include <mpegfile.h>
#include <trueaudiofile.h>
#include <wavfile.h>
#include <wavpackfile.h>
#include <xingheader.h>

#include "player/tags/sound.h"

namespace ostrevan::tags {
namespace {

/// Samples of one channel, 0 where the format's reader knows only milliseconds.
template <class... Properties>
double sample_frames(const TagLib::AudioProperties& sound) {
    double frames = 0;
    const auto ask = [&]<class P>(const P* exact) {
        if (exact != nullptr) frames = static_cast<double>(exact->sampleFrames());
    };
    (ask(dynamic_cast<const Properties*>(&sound)), ...);
    return frames;
}

/// Of MPEG audio whose encoder wrote the number of frames.
double sample_frames_of_mpeg(const TagLib::MPEG::Properties& sound) {
    const auto* counted = sound.xingHeader();
    if (counted == nullptr || !counted->isValid()) return 0;
    const int halves = sound.version() == TagLib::MPEG::Header::Version1 ? 2 : 1;
    const int samples_a_frame = sound.layer() == 1 ? 384 : sound.layer() == 2 ? 1152 : 576 * halves;
    return static_cast<double>(counted->totalFrames()) * samples_a_frame;
}

std::string codec_of(container kind, const TagLib::AudioProperties& sound) {
    if (const auto* mpeg = dynamic_cast<const TagLib::MPEG::Properties*>(&sound))
        return "MP" + std::to_string(mpeg->layer());
    if (const auto* mp4 = dynamic_cast<const TagLib::MP4::Properties*>(&sound))
        return mp4->codec() == TagLib::MP4::Properties::ALAC ? "ALAC" : "AAC";
    switch (kind) {
        case container::wav:
        case container::aiff:
            return "PCM";
        case container::vorbis:
            return "Vorbis";
        case container::ogg_flac:
            return "FLAC";
        case container::true_audio:
            return "TTA";
        default:
            return std::string(name_of(kind));
    }
}

std::uint32_t positive(int number) { return number > 0 ? static_cast<std::uint32_t>(number) : 0; }

}  // namespace

sound sound_of(container kind, const TagLib::AudioProperties& properties) {
    double frames =
        sample_frames<TagLib::FLAC::Properties, TagLib::RIFF::WAV::Properties, TagLib::RIFF::AIFF::Properties,
                      TagLib::APE::Properties, TagLib::WavPack::Properties, TagLib::TrueAudio::Properties>(properties);
    if (const auto* mpeg = dynamic_cast<const TagLib::MPEG::Properties*>(&properties)) frames = sample_frames_of_mpeg(*mpeg);
    return {.length = frames > 0 ? frames / properties.sampleRate() : properties.lengthInMilliseconds() / 1000.0,
            .sample_rate = positive(properties.sampleRate()),
            .channels = positive(properties.channels()),
            .bitrate = positive(properties.bitrate()),
            .codec = codec_of(kind, properties)};
}

}  // namespace ostrevan::tags
