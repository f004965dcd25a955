// SPDX-License-Identifier: MIT
#pragma once

#include "platform/movie/movie_status.h"
#include "platform/movie/movie_time.h"

extern "C" {
#include <libavcodec/avcodec.h>
}

#include <memory>
#include <optional>
#include <vector>

namespace plyra {

/// Owns one FFmpeg codec description (codec, size, pixel format, extradata), shared by
/// a medium and every copy of its samples.
/// Threads: immutable once made; any thread.
struct MovieCodecParameters {
    AVCodecParameters* parameters = nullptr;

    MovieCodecParameters();
    ~MovieCodecParameters();
    MovieCodecParameters(const MovieCodecParameters&) = delete;
    MovieCodecParameters& operator=(const MovieCodecParameters&) = delete;

    static std::shared_ptr<const MovieCodecParameters> fromContext(const AVCodecContext* context);
    static std::shared_ptr<const MovieCodecParameters> copyOf(const AVCodecParameters* source);
};

/// How one four-character codec code is written with FFmpeg.
/// Threads: constant table entries; any thread.
struct MovieCodecSetup {
    FourCharCode code;
    const char* encoderName;
    AVPixelFormat pixelFormat;
    /// The codec keeps alpha: frames go in with straight (not premultiplied) alpha.
    bool keepsAlpha;
    /// 4:2:0 and 4:2:2 formats need an even frame width (and height for 4:2:0).
    bool needsEvenWidth;
    bool needsEvenHeight;
    /// Set when FFmpeg has no encoder for the code and a close relative is written instead.
    const char* substituteNote;
    /// The tag the file stores for the track; 0 leaves it to the encoder and the muxer.
    uint32_t codecTag = 0;
};

/// The set-up for a codec code: one of the five codecs every movie can use, VP9 ("vp09")
/// for WebM files, else the encoder FFmpeg has for what the code means in a QuickTime
/// file ("jpeg" is Photo-JPEG, "png " PNG); none when nothing here can write the code.
std::optional<MovieCodecSetup> movieCodecSetup(FourCharCode code);
/// The five codes of the table, in its order, each always available.
std::vector<FourCharCode> standardMovieCodecs();

/// Quality (0..1023) onto each encoder's own scale; higher quality never means a
/// coarser setting.
int qscaleForQuality(int quality);         // mpeg4, mjpeg: 31 (coarsest) .. 1
int crfForQuality(int quality);            // x264: 51 .. 12
int vp9CrfForQuality(int quality);         // libvpx-vp9: 63 .. 15
int proresProfileForQuality(int quality);  // 0 proxy, 1 LT, 2 standard, 3 HQ, 4 4444

/// The four-character code for an FFmpeg codec tag as stored in a QuickTime file.
FourCharCode fourCharCodeFromTag(uint32_t codecTag);
/// Sends FFmpeg's errors (and nothing chattier) to the log; safe to call often.
void initializeFfmpegLogging();
/// FFmpeg's error text for an error number.
std::string ffmpegErrorText(int error);
/// A failure with FFmpeg's error number as its code and "STEP: error text" as message.
MovieStatus ffmpegFailure(const std::string& step, int error);

} // namespace plyra
