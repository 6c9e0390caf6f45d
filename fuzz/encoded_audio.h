#pragma once

extern "C" {
#include <libavformat/avformat.h>
}

#include <string>
#include <string_view>

namespace fuzz {

/// The bytes between the tags at the start and the end, for formats with nothing else around the sound.
inline std::string_view without_outer_tags(std::string_view file) {
    const auto size_at = [&](std::size_t at, unsigned bits, bool big) {
        std::size_t number = 0;
        for (std::size_t i = 0; i < 4; ++i)
            number |= (static_cast<unsigned char>(file[at + i]) & (bits == 7 ? 0x7Fu : 0xFFu))
                      << bits * static_cast<unsigned>(big ? 3 - i : i);
        return number;
    };
    if (file.size() >= 10 && file.starts_with("ID3"))
        file.remove_prefix(std::min(file.size(), 10 + size_at(6, 7, true) + ((file[5] & 0x10) != 0 ? 10u : 0u)));
    const bool ape_there = file.size() >= 131 && file.substr(file.size() - 131, 8) == "APETAGEX";
    if (file.size() >= 128 && file.substr(file.size() - 128, 3) == "TAG" && !ape_there) file.remove_suffix(128);
    if (file.size() >= 32 && file.substr(file.size() - 32, 8) == "APETAGEX") {
        const auto footer = file.size() - 32;
        const bool has_header = (static_cast<unsigned char>(file[footer + 23]) & 0x80) != 0;
        file.remove_suffix(std::min(file.size(), size_at(footer + 12, 8, false) + (has_header ? 32u : 0u)));
    }
    return file;
}

/// The packets of all sound streams, as found by an independent demuxer; empty when it finds none.
inline std::string packets_of(const std::string& path) {
    av_log_set_level(AV_LOG_QUIET);
    std::string found;
    AVFormatContext* file = nullptr;
    if (avformat_open_input(&file, path.c_str(), nullptr, nullptr) != 0) return found;
    AVPacket* packet = av_packet_alloc();
    while (av_read_frame(file, packet) >= 0) {
        if (file->streams[packet->stream_index]->codecpar->codec_type == AVMEDIA_TYPE_AUDIO)
            found.append(reinterpret_cast<const char*>(packet->data), static_cast<std::size_t>(packet->size));
        av_packet_unref(packet);
    }
    av_packet_free(&packet);
    avformat_close_input(&file);
    return found;
}

inline std::string encoded_audio(const std::string& path, const std::string& bytes) {
    std::string_view sound = without_outer_tags(bytes);
    for (const std::string_view known : {"fLaC", "OggS", "RIFF", "FORM", "\x30\x26\xB2\x75"})
        if (sound.starts_with(known)) return packets_of(path);
    return sound.substr(0, 8).ends_with("ftyp") ? packets_of(path) : std::string(sound);
}

}  // namespace fuzz
