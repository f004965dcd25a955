// SPDX-License-Identifier: MIT
#pragma once

// Our own look into written movie files, as a player would take them: the container and
// codec FFmpeg finds, each frame's duration, where an MP4's index lies, and the frames of
// an animated WebP (which this FFmpeg cannot decode), read from its chunks.

extern "C" {
#include <libavformat/avformat.h>
#include <libavutil/pixdesc.h>
}

#include <cstdint>
#include <fstream>
#include <string>
#include <vector>

namespace plyra::test {

struct ProbedMovie {
    std::string container;   // FFmpeg's demuxer name, "mov,mp4,m4a,3gp,3g2,mj2", "matroska,webm", "gif"
    std::string codec;       // "h264", "vp9", "gif" ...
    std::string pixelFormat; // "yuv420p" ...
    std::vector<double> frameSeconds; // how long each frame shows
    double totalSeconds() const
    {
        double total = 0;
        for (double seconds : frameSeconds)
            total += seconds;
        return total;
    }
};

/// The first video stream of a file as FFmpeg reads it; an empty container when it cannot.
inline ProbedMovie probeMovie(const std::string& path)
{
    ProbedMovie probed;
    AVFormatContext* format = nullptr;
    if (avformat_open_input(&format, path.c_str(), nullptr, nullptr) < 0)
        return probed;
    const int stream = avformat_find_stream_info(format, nullptr) >= 0
        ? av_find_best_stream(format, AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0) : -1;
    if (stream >= 0) {
        const AVStream* video = format->streams[stream];
        probed.container = format->iformat->name;
        probed.codec = avcodec_get_name(video->codecpar->codec_id);
        const char* pixels = av_get_pix_fmt_name(static_cast<AVPixelFormat>(video->codecpar->format));
        probed.pixelFormat = pixels ? pixels : "";
        std::vector<std::int64_t> starts;
        std::vector<std::int64_t> durations;
        AVPacket* packet = av_packet_alloc();
        while (av_read_frame(format, packet) >= 0) {
            if (packet->stream_index == stream) {
                starts.push_back(packet->pts);
                durations.push_back(packet->duration);
            }
            av_packet_unref(packet);
        }
        av_packet_free(&packet);
        const double unit = av_q2d(video->time_base);
        for (std::size_t k = 0; k < starts.size(); ++k) {
            // A frame lasts until the next starts; the last as long as its packet says, or
            // (WebM stores no duration of its own for it) until the file's end.
            const std::int64_t ticks = k + 1 < starts.size() ? starts[k + 1] - starts[k] : durations[k];
            probed.frameSeconds.push_back(static_cast<double>(ticks) * unit);
        }
        if (!starts.empty() && durations.back() <= 0)
            probed.frameSeconds.back() = static_cast<double>(format->duration) / AV_TIME_BASE
                - static_cast<double>(starts.back()) * unit;
    }
    avformat_close_input(&format);
    return probed;
}

/// The types of an MP4 or QuickTime file's top-level boxes, in file order.
inline std::vector<std::string> topLevelBoxes(const std::string& path)
{
    std::vector<std::string> boxes;
    std::ifstream file(path, std::ios::binary);
    std::uint64_t offset = 0;
    unsigned char header[16];
    while (file.seekg(static_cast<std::streamoff>(offset)) && file.read(reinterpret_cast<char*>(header), 8)) {
        std::uint64_t size = (std::uint64_t{header[0]} << 24) | (header[1] << 16) | (header[2] << 8) | header[3];
        boxes.emplace_back(reinterpret_cast<char*>(header) + 4, 4);
        if (size == 1 && file.read(reinterpret_cast<char*>(header) + 8, 8)) {
            size = 0;
            for (int k = 8; k < 16; ++k)
                size = (size << 8) | header[k];
        }
        if (size < 8)
            break;
        offset += size;
    }
    return boxes;
}

/// An animated WebP's loop count (0: for ever) and frame durations in milliseconds.
struct ProbedWebp {
    int loopCount = -1;
    std::vector<int> frameMilliseconds;
};

inline ProbedWebp probeWebp(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    const auto byte = [&bytes](std::size_t at) { return static_cast<unsigned>(static_cast<unsigned char>(bytes[at])); };
    ProbedWebp probed;
    if (bytes.size() < 12 || bytes.compare(0, 4, "RIFF") != 0 || bytes.compare(8, 4, "WEBP") != 0)
        return probed;
    for (std::size_t at = 12; at + 8 <= bytes.size();) {
        const std::string tag = bytes.substr(at, 4);
        const std::size_t size = byte(at + 4) | (byte(at + 5) << 8) | (byte(at + 6) << 16) | (byte(at + 7) << 24);
        if (tag == "ANIM" && size >= 6)
            probed.loopCount = static_cast<int>(byte(at + 12) | (byte(at + 13) << 8));
        if (tag == "ANMF" && size >= 16)
            probed.frameMilliseconds.push_back(static_cast<int>(byte(at + 20) | (byte(at + 21) << 8) | (byte(at + 22) << 16)));
        at += 8 + size + (size & 1);
    }
    return probed;
}

} // namespace plyra::test
