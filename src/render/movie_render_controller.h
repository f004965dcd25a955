// SPDX-License-Identifier: MIT
#pragma once

#include "platform/movie/movie.h"
#include "render/async_movie_writer.h"
#include "render/frame_conversion_queue.h"
#include "render/frame_spool.h"
#include "render/image_sequence_writer.h"
#include "render/movie_output.h"
#include "render/movie_schedule.h"
#include "render/render_controller.h"

#include <QString>

#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>
#include <string>

namespace plyra {

/// Renders the morph as a movie: a new movie in a temporary file under /tmp before
/// every render, finished frames appended strictly in frame order with the document's
/// codec and quality, and a self-contained copy written on save. A tick hands finished
/// jobs over in order; a conversion queue renders them into frames and an asynchronous
/// writer compresses them, each on a thread of its own, so that the polling thread never
/// renders a whole frame and the morph, the rendering and the encoder work at the same
/// time. Memory does not grow with the number of frames: the morpher gets only a few
/// jobs ahead of the frames appended, at most a few frames wait for the encoder (a tick
/// takes no more jobs while they do), and the first failed append (a full disk) ends the
/// render with its reason.
///
/// The timing (MovieSchedule) decides each frame's duration: held frames last longer,
/// and a ping-pong movie runs back through frames kept aside (FrameSpool) rather than
/// computed again. The output kind decides the codec (movieCodecForOutput): a QuickTime,
/// MPEG-4 or WebM movie is the temporary movie written into that container; a GIF or
/// WebP is made from lossless frames after the render; a numbered image sequence skips
/// the movie: its frames are encoded on several threads at once (ImageSequenceWriter)
/// and take their names on save.
/// Threads: main thread.
class MovieRenderController : public RenderController {
public:
    /// Where the temporary movies are made: "/tmp/Plyra_PID-TICKS_XXXXXX", named after
    /// the process, so that a later start can remove those of a process that was killed.
    static constexpr const char* kTemporaryMovieFolder = "/tmp/";
    static constexpr const char* kTemporaryMoviePrefix = "Plyra_";

    explicit MovieRenderController(MorphDocument& document);
    ~MovieRenderController() override;

    /// Most time one tick spends appending frames, so that the interface stays responsive.
    void setAppendBudget(std::chrono::milliseconds budget) { m_appendBudget = budget; }
    /// The codec and quality asked for: the document's unless set.
    void setCodec(std::optional<std::string> code) { m_codec = std::move(code); }
    void setQuality(std::optional<int> quality) { m_quality = quality; }
    std::string askedCodec() const;
    int askedQuality() const;
    /// The codec and quality frames are compressed with for the output kind.
    std::string codec() const;
    int quality() const;

    /// What the render will be saved as; takes effect at the next recalc. A sequence needs
    /// its file names before the render: use setOutputPath().
    void setOutputKind(MovieOutputKind kind) { m_outputKind = kind; }
    MovieOutputKind outputKind() const { return m_outputKind; }
    /// The kind a path asks for (movieOutputKindForPath) and, for a sequence, its names.
    bool setOutputPath(const QString& path, QString* error = nullptr);
    /// Whether the finished render can be saved as that kind without rendering it again:
    /// its frames are compressed as that kind keeps them.
    bool canSaveAs(MovieOutputKind kind) const;

    /// A new temporary movie (or sequence writer), then the jobs. False, with the reason
    /// in errorString(), when the codec cannot compress frames of the frame size, the
    /// temporary movie cannot be made or there is no image: all found before any frame is
    /// computed.
    bool recalc() override;
    /// Why the last recalc or the render failed; empty while nothing has.
    const QString& errorString() const { return m_error; }
    /// Frames handed on so far (some may still be rendered or compressed).
    int framesAppended() const { return m_framesAppended; }
    /// The playing order and durations of the current render.
    const MovieSchedule& schedule() const { return m_schedule; }
    /// The movie, once every frame handed over has been compressed into it; null for a
    /// sequence.
    const Movie* movie();
    const std::string& tempPath() const { return m_tempPath; }

    /// Writes the render in the form its path asks for: a movie file, an animated GIF or
    /// WebP, or the files of the sequence it was rendered for. False with the reason when
    /// the render is not complete or cannot be written that way; a failed save leaves
    /// nothing at path (or at any frame's name).
    bool saveRenderedMovie(const QString& path, QString* error = nullptr);
    /// Removes the temporary file.
    void cleanUpTempPaths();
    /// Stops rendering, closes the movie and its storage and removes the temporary file.
    void closeMovie();
    /// The writer that holds the movie while it grows, for showing it without waiting
    /// (take its lock with tryLock()); null when there is no movie.
    AsyncMovieWriter* writer() const { return m_writer.get(); }

protected:
    void consumeFinishedJobs() override;
    std::size_t maxJobsAhead() override;
    std::uint32_t repeatedFrames() const override;
    std::uint32_t repeatedFramesLeft() const override;

private:
    bool checkCompression();
    bool makeTemporaryMovie();
    bool makeSequenceWriter();
    void handOver(const MorphCalculationJob::Ptr& job);
    void handOverFramesShownAgain();
    // Runs on the conversion thread.
    void appendFrame(std::optional<Bitmap> bitmap, const AddImageAttributes& attributes);
    void failOnConversionThread(const std::string& reason);
    unsigned framesWaiting() const;
    bool stopOnWriterFailure();
    bool writeMovieAs(MovieOutputKind kind, const QString& target, QString* error);
    bool commitSequence(const QString& path, QString* error);

    std::unique_ptr<AsyncMovieWriter> m_writer;
    // Declared after the writer, so that it stops before the writer goes.
    std::unique_ptr<FrameConversionQueue> m_conversions;
    std::unique_ptr<FrameSpool> m_spool;
    std::unique_ptr<ImageSequenceWriter> m_sequence;
    std::optional<ImageSequencePattern> m_pattern;
    QString m_sequencePath;
    MovieSchedule m_schedule{0, 1.0f, {}};
    std::string m_tempPath;
    std::optional<std::string> m_codec;
    std::optional<int> m_quality;
    MovieOutputKind m_outputKind = MovieOutputKind::QuickTime;
    std::chrono::milliseconds m_appendBudget{300};
    int m_framesAppended = 0;
    std::uint32_t m_framesShownAgain = 0;
    // Frames that reached the conversion thread's sink; that thread's own count.
    std::size_t m_framesConverted = 0;
    // Enough for the frames that finish between two ticks of an interface's 0.1 s poll.
    static constexpr unsigned kMaxFramesWaiting = 4;
    std::atomic<bool> m_appendFailed{false};
    mutable std::mutex m_conversionFailureMutex;
    std::string m_conversionFailure;
    QString m_error;
    std::string m_checkedCompression; // the codec, quality and size last found to work
};

} // namespace plyra
