// SPDX-License-Identifier: MIT
#pragma once

#include "platform/movie/movie_playhead.h"
#include "platform/movie/movie_status.h"
#include "platform/movie/movie_time.h"
#include "platform/movie/movie_track.h"
#include "platform/movie/rgba_image.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace plyra {

class MovieSampleStore;

/// The file a movie is written as: QuickTime (.mov), MPEG-4 (.mp4) or WebM (.webm). The
/// codec of its frames must be one the container holds (H.264 for MPEG-4 as browsers
/// play it, VP9 for WebM).
enum class MovieContainer { QuickTime, Mpeg4, WebM };

/// The attributes a movie carries; an attribute never set is absent.
/// Threads: a plain value.
struct MovieAttributes {
    std::optional<bool> editable;
    std::optional<bool> hasAudio;
    std::optional<bool> hasVideo;
    std::optional<bool> isLinear;
    std::optional<bool> hasDuration;
    std::optional<MovieTime> duration;
    std::optional<MovieSize> naturalSize;
};

/// A movie: tracks of compressed frames whose data grows in a storage file (normally a
/// temporary file) while the frame table stays in memory, written out as a
/// self-contained QuickTime file on request. Images come in as premultiplied RGBA,
/// bottom row first, and are compressed as they are appended; nothing holds all frames.
/// A zero duration is stored as the shortest the file can hold, 1/600 second.
/// Threads: one thread at a time (the caller serialises; see AsyncMovieWriter for
/// appending from a worker). Movies never share state, so different movies may be used
/// on different threads at once.
class Movie {
public:
    /// Creates a new, empty movie whose sample data goes to the file at `path`
    /// (created or emptied). Null, with the reason in `status`, when the file cannot be made.
    static std::unique_ptr<Movie> createInStorage(const std::string& path, MovieStatus* status = nullptr);
    /// Creates a new, empty movie that keeps its sample data in memory.
    static std::unique_ptr<Movie> createInMemory();
    /// Reads an existing movie file: its tracks, samples, codecs and durations. Sample data
    /// stays in the file and is read when needed.
    static std::unique_ptr<Movie> open(const std::string& path, MovieStatus* status = nullptr);

    ~Movie();
    Movie(const Movie&) = delete;
    Movie& operator=(const Movie&) = delete;

    /// The storage file, or the opened file; empty for an in-memory movie.
    const std::string& storagePath() const { return m_storagePath; }
    int32_t timeScale() const { return kMovieTimeScale; }

    const MovieAttributes& attributes() const { return m_attributes; }
    void setEditable(bool editable) { m_attributes.editable = editable; }
    void setHasAudio(bool hasAudio) { m_attributes.hasAudio = hasAudio; }
    void setHasVideo(bool hasVideo) { m_attributes.hasVideo = hasVideo; }
    void setLinear(bool linear) { m_attributes.isLinear = linear; }
    void setHasDuration(bool hasDuration) { m_attributes.hasDuration = hasDuration; }
    void setDuration(const MovieTime& duration) { m_attributes.duration = duration; }
    void setNaturalSize(const MovieSize& size) { m_attributes.naturalSize = size; }

    /// The larger of the duration attribute and the end of the last track (time scale 600).
    MovieTime duration() const;

    size_t trackCount() const { return m_tracks.size(); }
    MovieTrack* track(size_t index) { return m_tracks[index].get(); }
    const MovieTrack* track(size_t index) const { return m_tracks[index].get(); }
    /// The last track whose media is video, or null.
    MovieTrack* lastVideoTrack();
    const MovieTrack* lastVideoTrack() const;
    bool hasVideoTrack() const { return lastVideoTrack() != nullptr; }
    /// The index of a track of this movie, or none.
    std::optional<size_t> indexOfTrack(const MovieTrack* track) const;

    /// Adds a track without media; the size is truncated to whole pixels.
    MovieTrack* newTrack(MovieSize size, int16_t volume, MovieStatus* status = nullptr);
    /// Adds an empty track shaped like `source` (media type, size, volume, codec) whose
    /// media keep new data in the given storage.
    MovieTrack* addEmptyTrackLike(const MovieTrack& source, MediaStorage storage, MovieStatus* status = nullptr);
    /// The store that media of this movie use for the given storage kind.
    std::shared_ptr<MovieSampleStore> sampleStore(MediaStorage storage);

    /// Compresses the image with the codec and quality of `attributes` (mp4v at 512 when
    /// absent) and appends it for `duration` to the last video track, making the first
    /// video track when there is none.
    MovieStatus addImage(const RgbaImage& image, const MovieTime& duration,
                         const std::optional<AddImageAttributes>& attributes);

    /// Ends compression on every track (MovieTrack::finishCompression): for a movie that
    /// is complete, before it is written out.
    void finishCompression();

    /// Writes the movie as a file of the container (QuickTime unless said) holding all its
    /// sample data. With `flatten` the index goes in front of the data (fast start). The
    /// file is written beside `path` and renamed into place only when complete; a failure
    /// leaves `path` as it was.
    MovieStatus writeToFile(const std::string& path, bool flatten = true,
                            MovieContainer container = MovieContainer::QuickTime);

    /// Decodes the frame of the last video track shown at `time`; none when there is none.
    std::optional<RgbaImage> frameImageAtTime(const MovieTime& time) const;

    // Playback. The current time runs with the clock while playing and stops at the end.
    MovieTime currentTime() const;
    void setCurrentTime(const MovieTime& time);
    bool isPlaying() const;
    void play();
    void stop();
    void gotoBeginning();
    void gotoEnd();
    void gotoPosterTime();
    void gotoNextSelectionPoint();
    void gotoPreviousSelectionPoint();
    /// To the start of the next (previous) frame of the last video track.
    void stepForward();
    void stepBackward();
    MovieTimeRange selection() const;
    void setSelection(const MovieTimeRange& selection);
    MovieTime posterTime() const;
    void setPosterTime(const MovieTime& time);
    /// Start times of the frames of the last video track (time scale 600), ascending;
    /// those of the frames from index `from` on.
    std::vector<int64_t> frameTimes(size_t from = 0) const;

    // Idle processing: FFmpeg movies need none, so it cannot be switched.
    bool supportsIdling() const { return false; }

    /// Binds the movie to the calling thread; 0 on success. Movies here bind to no thread,
    /// so this always succeeds; callers keep the calls where a movie changes threads.
    int attachToCurrentThread() { return kMovieNoError; }
    int detachFromCurrentThread() { return kMovieNoError; }

private:
    explicit Movie(std::string storagePath);

    std::string m_storagePath;
    MovieAttributes m_attributes;
    std::vector<std::unique_ptr<MovieTrack>> m_tracks;
    std::shared_ptr<MovieSampleStore> m_fileStore;
    std::shared_ptr<MovieSampleStore> m_memoryStore;
    MoviePlayhead m_playhead;
    int m_nextTrackId = 1;

    friend class MovieFileReader;
};

/// Prepares the calling thread for movie work; 0 on success. FFmpeg needs no
/// preparation, so these always succeed.
int enterMoviesOnThread(uint32_t flags);
int exitMoviesOnThread();

/// Makes a new, empty, uniquely named file in `directory` whose name starts with `prefix`
/// and returns its path; empty, with the reason in `status`, when none can be made.
std::string makeTemporaryMoviePath(const std::string& directory = "/tmp/",
                                   const std::string& prefix = "Plyra_", MovieStatus* status = nullptr);

/// The codec qualities of the quality table.
inline constexpr int kCodecMinQuality = 0;
inline constexpr int kCodecLowQuality = 256;
inline constexpr int kCodecNormalQuality = 512;
inline constexpr int kCodecHighQuality = 768;
inline constexpr int kCodecMaxQuality = 1023;

/// Whether images can be compressed with the codec of that four-character code here.
bool isMovieCodecAvailable(FourCharCode codecType);

/// Whether frames of width × height can be compressed with the codec and quality of the
/// attributes: an encoder is set up for that size and let go, which takes milliseconds,
/// so that a movie that cannot be made is refused before its first frame is computed.
/// The failure names the code, the size and the encoder's reason.
MovieStatus checkImageCompression(const AddImageAttributes& attributes, int width, int height);

} // namespace plyra
