// SPDX-License-Identifier: MIT
#pragma once

#include "recovery/recovery_copy.h"
#include "recovery/recovery_writer.h"

#include <QString>

#include <chrono>
#include <functional>
#include <memory>
#include <vector>

namespace plyra {

class MorphDocument;
class RecoveryStore;

/// Keeps a recovery copy of every watched document with unsaved changes: delay() after
/// the first change since the last write the copy is brought up to date (a snapshot
/// gathered on the main thread, written on the RecoveryWriter's thread); when the
/// document is saved, or undone to what was saved, or closed on purpose, its copy goes.
/// writeAllNow() brings every copy up to date at once, for a process told to end.
/// The delay runs on plyra::Timer, so that tests move a ManualClock instead of waiting.
/// Threads: main thread only.
class Autosave {
public:
    static constexpr std::chrono::milliseconds kDefaultDelay{5000};
    /// What a copy records about its document besides the contents.
    struct Description {
        QString documentPath;
        QString displayName;
    };

    explicit Autosave(RecoveryStore& store, std::chrono::milliseconds delay = kDefaultDelay);
    ~Autosave();
    Autosave(const Autosave&) = delete;
    Autosave& operator=(const Autosave&) = delete;

    std::chrono::milliseconds delay() const { return m_delay; }
    RecoveryWriter& writer() { return m_writer; }

    /// Follows the document until unwatch(); describe names it at each write.
    void watch(MorphDocument& document, std::function<Description()> describe);
    /// Keeps the document's copy in the folder of the copy it was recovered from, which
    /// holds what the document shows now.
    void useCopy(MorphDocument& document, const RecoveryCopy& copy);
    /// Stops following the document; its copy is removed when removeCopy (the user chose
    /// to lose the changes), else kept for the next start.
    void unwatch(MorphDocument& document, bool removeCopy);
    /// Writes every copy that is behind its document, on this thread.
    void writeAllNow();

    /// The folder of the document's copy; empty while it has none.
    QString copyFolder(const MorphDocument& document) const;
    bool isWriteScheduled(const MorphDocument& document) const;
    /// The snapshot a write of the document's copy would take now (what the main thread
    /// does for each write).
    RecoverySnapshot snapshot(const MorphDocument& document);

private:
    struct Watched;
    Watched* find(const MorphDocument& document) const;
    void documentChanged(Watched& watched);
    void writeCopy(Watched& watched, bool atOnce);
    void removeCopy(Watched& watched);

    RecoveryStore& m_store;
    std::chrono::milliseconds m_delay;
    std::vector<std::unique_ptr<Watched>> m_watched;
    RecoveryWriter m_writer;
};

} // namespace plyra
