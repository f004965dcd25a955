// SPDX-License-Identifier: MIT
#pragma once

#include "platform/movie/movie_status.h"
#include "platform/movie/movie_time.h"
#include "platform/movie/rgba_image.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace plyra {

class MovieSampleStore;
class MovieSampleTable;
class MovieEncoder;
struct MovieCodecParameters;

/// Media-type codes of tracks and media.
inline constexpr FourCharCode kVideoMediaType = 0x76696465; // "vide"
inline constexpr FourCharCode kSoundMediaType = 0x736f756e; // "soun"

/// Where a medium keeps the data of the samples added to it.
enum class MediaStorage {
    File,   ///< appended to the movie's storage file (the temporary movie)
    Memory, ///< held in memory (the "hndl" data reference of in-memory media)
};

/// The size of a movie or track in pixels.
/// Threads: a plain value.
struct MovieSize {
    float width = 0;
    float height = 0;
};

/// How an image is compressed when it is appended: the codec's four-character code and a
/// quality from 0 (least) to 1023 (most). "mp4v" is MPEG-4 Part 2 and "mjpb" Motion JPEG
/// (both quantiser 31 down to 1), "avc1" H.264 through x264 (CRF 51 down to 12), "rle "
/// QuickTime Animation with alpha (lossless: quality changes nothing) and "pxlt" Apple
/// ProRes, Proxy to 4444 as quality rises (FFmpeg has no Pixlet or Motion JPEG B encoder:
/// each substitution is logged once). Opaque codecs see premultiplied colour, which is
/// the picture over black.
/// Threads: a plain value.
struct AddImageAttributes {
    FourCharCode codecType = 0x6d703476; // "mp4v"
    int codecQuality = 512;
};

/// One stored sample: its place on the media's time line and its size.
/// Threads: a plain value.
struct MovieSample {
    int64_t time = 0;     ///< in the media's time scale
    int64_t duration = 0; ///< in the media's time scale, at least 1
    int64_t size = 0;     ///< bytes of compressed data
    bool sync = true;     ///< decodable on its own (a key frame)
};

/// One edit of a track: a span of media placed on the track's time line.
/// Threads: a plain value.
struct TrackEdit {
    int64_t trackStart = 0;    ///< in the movie's time scale
    int64_t mediaTime = 0;     ///< in the media's time scale
    int64_t mediaDuration = 0; ///< in the media's time scale
    double rate = 1.0;
};

/// The samples of one track and where their data lives; video media also carry the
/// codec that compressed them.
/// Threads: owned by its track; used by whoever uses the movie.
class MovieMedia {
public:
    MovieMedia(FourCharCode mediaType, int32_t timeScale, MediaStorage storage,
               std::shared_ptr<MovieSampleStore> store);
    ~MovieMedia();
    MovieMedia(const MovieMedia&) = delete;
    MovieMedia& operator=(const MovieMedia&) = delete;

    FourCharCode mediaType() const { return m_mediaType; }
    int32_t timeScale() const { return m_timeScale; }
    MediaStorage storage() const { return m_storage; }
    /// The four-character code of the codec of the samples; 0 while there are none.
    FourCharCode codecType() const { return m_codecType; }
    /// FFmpeg's name of the codec ("mpeg4", "h264", "mjpeg", "qtrle", "prores").
    std::string codecName() const;

    size_t sampleCount() const;
    MovieSample sample(size_t index) const;
    /// The end of the last sample, in the media's time scale.
    int64_t duration() const;
    /// Index of the sample shown at the time (media time scale), or none.
    std::optional<size_t> sampleIndexAtTime(int64_t mediaTime) const;
    /// The compressed bytes of a sample; empty when the store cannot give them.
    std::vector<uint8_t> sampleData(size_t index) const;

    // Used by the framework's own writer, reader and decoder.
    const MovieCodecParameters* codecParameters() const { return m_codec.get(); }
    const std::shared_ptr<const MovieCodecParameters>& sharedCodecParameters() const { return m_codec; }
    void setCodec(FourCharCode codecType, std::shared_ptr<const MovieCodecParameters> codec);
    /// Appends a sample whose data is already in `store` at `offset`.
    void appendSample(const MovieSample& sample, std::shared_ptr<MovieSampleStore> store, int64_t offset);
    /// Appends a copy of another medium's sample at the given media time.
    void appendSampleOf(const MovieMedia& source, size_t index, int64_t time, int64_t duration);
    const std::shared_ptr<MovieSampleStore>& store() const { return m_store; }

private:

    FourCharCode m_mediaType;
    int32_t m_timeScale;
    MediaStorage m_storage;
    std::shared_ptr<MovieSampleStore> m_store;
    FourCharCode m_codecType = 0;
    std::shared_ptr<const MovieCodecParameters> m_codec;
    std::unique_ptr<MovieSampleTable> m_samples;
};

/// A track of a movie: media type, size, volume, its range on the movie's time line and
/// its media. Video tracks take images, compressed as they come.
/// Threads: owned by its movie; used by whoever uses the movie.
class MovieTrack {
public:
    MovieTrack(int trackId, int32_t movieTimeScale, MovieSize size, int16_t volume);
    ~MovieTrack();
    MovieTrack(const MovieTrack&) = delete;
    MovieTrack& operator=(const MovieTrack&) = delete;

    int trackId() const { return m_trackId; }
    /// The media type of the track's media; 0 while it has none.
    FourCharCode mediaType() const;
    MovieSize size() const { return m_size; }
    int16_t volume() const { return m_volume; }
    bool isEnabled() const { return m_enabled; }
    void setEnabled(bool enabled) { m_enabled = enabled; }

    /// The span of the movie's time line the track covers (movie time scale).
    MovieTimeRange range() const { return m_range; }
    void setRange(const MovieTimeRange& range);

    MovieMedia* media() { return m_media.get(); }
    const MovieMedia* media() const { return m_media.get(); }
    const std::vector<TrackEdit>& edits() const { return m_edits; }

    /// Gives the track a new, empty medium; fails when it already has one.
    MovieStatus newMedia(FourCharCode mediaType, int32_t timeScale, MediaStorage storage,
                         std::shared_ptr<MovieSampleStore> store);
    /// Places a span of the track's media on the track's time line.
    MovieStatus insertMedia(int64_t trackStart, int64_t mediaTime, int64_t mediaDuration, double rate);
    /// Copies the samples of `source` that fall in `range` (movie time of the source's
    /// movie) to this track at `atTime`. Samples are copied whole; a range that starts on
    /// a sample that is not a key frame starts at the key frame before it, so the copy
    /// stays decodable.
    MovieStatus insertSegmentOfTrack(const MovieTrack& source, const MovieTimeRange& range,
                                     const MovieTime& atTime);

    /// Compresses the image and appends it at the end of the track's media.
    MovieStatus addImage(const RgbaImage& image, const MovieTime& duration,
                         const std::optional<AddImageAttributes>& attributes);
    /// Lets go of the encoder and the memory it holds once the last image is in; the
    /// track takes no more images after that. Encoders here hold back no frames.
    void finishCompression();

private:
    void extendRangeTo(int64_t trackEnd);
    MovieStatus startEncoding(const RgbaImage& image, const AddImageAttributes& attributes);
    void noteAttributeChange(const AddImageAttributes& attributes);

    int m_trackId;
    int32_t m_movieTimeScale;
    MovieSize m_size;
    int16_t m_volume;
    bool m_enabled = true;
    MovieTimeRange m_range;
    std::unique_ptr<MovieMedia> m_media;
    std::vector<TrackEdit> m_edits;
    std::unique_ptr<MovieEncoder> m_encoder;
    bool m_attributeChangeLogged = false;
};

} // namespace plyra
