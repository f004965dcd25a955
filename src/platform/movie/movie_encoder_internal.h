// SPDX-License-Identifier: MIT
#pragma once

#include "platform/movie/movie_codec_internal.h"
#include "platform/movie/movie_status.h"
#include "platform/movie/movie_time.h"
#include "platform/movie/rgba_image.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>

struct SwsContext;

namespace plyra {

/// One compressed frame as the encoder hands it on; the bytes live until the sink returns.
/// Threads: a plain value.
struct EncodedPacket {
    const uint8_t* data = nullptr;
    size_t size = 0;
    int64_t time = 0;
    int64_t duration = 0;
    bool sync = false;
};

/// Compresses RGBA frames with one codec at one quality and frame size. Every codec is
/// set up without frame reordering or look-ahead, so each frame's packet comes out
/// before `encode` returns and a movie can be written between any two appends.
/// Threads: one thread at a time.
class MovieEncoder {
public:
    using PacketSink = std::function<MovieStatus(const EncodedPacket&)>;

    /// An encoder for the codec code and quality whose frames are `width` × `height`
    /// (rounded up to what the codec's pixel format needs).
    static std::unique_ptr<MovieEncoder> create(FourCharCode codecType, int quality, int width, int height,
                                                int32_t timeScale, MovieStatus* status);
    ~MovieEncoder();
    MovieEncoder(const MovieEncoder&) = delete;
    MovieEncoder& operator=(const MovieEncoder&) = delete;

    FourCharCode codecType() const { return m_codecType; }
    int quality() const { return m_quality; }
    std::shared_ptr<const MovieCodecParameters> parameters() const { return m_parameters; }

    /// Compresses the image (scaled to the encoder's size when it differs) as the frame at
    /// `time` lasting `duration` (encoder time scale) and passes the packets to `sink`.
    MovieStatus encode(const RgbaImage& image, int64_t time, int64_t duration, const PacketSink& sink);

private:
    MovieEncoder(const MovieCodecSetup& setup, int quality);
    MovieStatus open(int width, int height, int32_t timeScale);
    /// Quality and codec-specific settings; the options go to avcodec_open2.
    AVDictionary* configureCodec();
    MovieStatus fillFrame(const RgbaImage& image);
    MovieStatus drain(const PacketSink& sink);

    MovieCodecSetup m_setup;
    FourCharCode m_codecType;
    int m_quality;
    AVCodecContext* m_context = nullptr;
    AVFrame* m_frame = nullptr;
    AVPacket* m_packet = nullptr;
    SwsContext* m_scaler = nullptr;
    std::shared_ptr<const MovieCodecParameters> m_parameters;
    std::map<int64_t, int64_t> m_pendingDurations;
};

} // namespace plyra
