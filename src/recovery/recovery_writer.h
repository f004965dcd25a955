// SPDX-License-Identifier: MIT
#pragma once

#include "model/display_image.h"
#include "model/morph_line.h"
#include "platform/plist/property_list.h"
#include "recovery/recovery_copy.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>
#include <vector>

namespace plyra {

/// Everything one write of a recovery copy needs, gathered on the main thread: the
/// description, "info.plist" with its image keys naming the files of the copy, and
/// the image files that changed since the last write.
/// Threads: a value, handed from the main thread to the writer.
struct RecoverySnapshot {
    /// An image file of the copy, made from its source by a hard link or a copy; from
    /// the image itself (TIFF, or the PDF bytes) when the source cannot be had.
    struct Image {
        QString name;
        QString source;
        DisplayImage fallback;
    };
    RecoveryCopy copy;
    /// "info.plist" without the lines, which the writer adds from their values.
    PropertyList::Dictionary info;
    std::vector<MorphLine::Values> lines;
    std::vector<Image> changedImages;
    /// The image files the copy keeps; any other in it goes after the write.
    std::vector<QString> imageNames;
};

/// Writes recovery copies on a thread of its own, so that the main thread only gathers
/// a snapshot: images are linked or copied once, "info.plist" and the description are
/// written beside and renamed into place, so that a copy on disk is whole at every
/// moment. A snapshot that waits is replaced by a newer one of the same copy.
/// Threads: every member on the main thread; the writing itself on the writer thread.
class RecoveryWriter {
public:
    RecoveryWriter();
    /// Writes what is queued, then ends the thread.
    ~RecoveryWriter();
    RecoveryWriter(const RecoveryWriter&) = delete;
    RecoveryWriter& operator=(const RecoveryWriter&) = delete;

    void submit(RecoverySnapshot snapshot);
    /// Writes at once on the calling thread (the process is about to end).
    bool writeNow(const RecoverySnapshot& snapshot);
    /// Drops what waits for this copy and waits until it is not being written, so that
    /// its folder can be removed.
    void cancel(const QString& copyFolder);
    void waitUntilIdle();
    /// Copies written so far (for tests and benchmarks).
    int writtenCount() const;

    /// The write itself; false (and a log line) when the copy could not be written.
    static bool write(const RecoverySnapshot& snapshot);

private:
    void run();

    mutable std::mutex m_mutex;
    std::condition_variable m_wake;
    std::condition_variable m_idle;
    std::deque<RecoverySnapshot> m_queue;
    QString m_writing;
    bool m_stop = false;
    int m_written = 0;
    std::thread m_thread;
};

} // namespace plyra
