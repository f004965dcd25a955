// SPDX-License-Identifier: MIT
#pragma once

#include "platform/movie/movie_status.h"
#include "platform/movie/rgba_image.h"

#include <cstddef>
#include <optional>

struct AVCodecContext;
struct AVFrame;
struct AVPacket;
struct SwsContext;

namespace plyra {

class MovieMedia;

/// Decodes the frames of one video medium into premultiplied RGBA pictures, bottom row
/// first (the form images are appended in). Decoding a frame starts at the key frame
/// before it, except when the frame follows the one decoded last, so playing frame after
/// frame decodes each once.
/// Threads: one thread at a time; the medium must outlive the decoder and must not be
/// appended to while a frame is being decoded.
class MovieFrameDecoder {
public:
    explicit MovieFrameDecoder(const MovieMedia& media);
    ~MovieFrameDecoder();
    MovieFrameDecoder(const MovieFrameDecoder&) = delete;
    MovieFrameDecoder& operator=(const MovieFrameDecoder&) = delete;

    /// The frame at `sampleIndex`; none, with the reason in `status`, when it cannot be decoded.
    std::optional<RgbaImage> decode(size_t sampleIndex, MovieStatus* status = nullptr);

private:
    MovieStatus openCodec();
    MovieStatus send(size_t sampleIndex);
    MovieStatus receive(bool expectFrame);
    RgbaImage convertFrame();

    const MovieMedia& m_media;
    AVCodecContext* m_context = nullptr;
    AVFrame* m_frame = nullptr;
    AVPacket* m_packet = nullptr;
    SwsContext* m_scaler = nullptr;
    std::optional<size_t> m_lastDecoded;
    bool m_flushed = false;
};

} // namespace plyra
