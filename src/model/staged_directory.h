// SPDX-License-Identifier: MIT
#pragma once

#include "platform/process_identity.h"

#include <QString>
#include <QTemporaryDir>

#include <chrono>
#include <functional>
#include <string>

namespace plyra {

/// The steps of a commit in the order they run; a commit takes either the exchange or,
/// where the file system refuses it, the two renames.
enum class CommitStep {
    SyncStaged,        ///< fsync of every file and folder of the new directory
    SyncParentBefore,  ///< fsync of the folder that holds both
    MoveIn,            ///< nothing at the final place: the new directory takes the name
    Exchange,          ///< the new and the previous directory swap names in one step
    MovePreviousAside, ///< (exchange refused) the previous one is renamed aside...
    MoveInAfterAside,  ///< ...and the new one takes the name
    SyncParentAfter,   ///< fsync of the folder once the names changed
    RemovePrevious,    ///< the previous content, now beside the final place, is removed
};

/// What a test may put into a commit: a call before every step (to stop the process
/// there as a crash would) and a stand-in for the exchange (to refuse it).
struct CommitHooks {
    std::function<void(CommitStep)> beforeStep;
    /// 0 or the errno; renameat2(RENAME_EXCHANGE) when unset.
    std::function<int(const std::string& first, const std::string& second)> exchange;
};

/// Builds a directory beside its final place (".NAME.saving-XXXXXX") and puts it there
/// only when it is complete: its files and folders are synced to disk, then it swaps
/// names with the previous directory in one atomic step (or, where the file system
/// refuses that, the previous one is renamed aside and the new one in), and only then
/// is the previous one removed. A staging directory that is never committed is removed,
/// so a failed write leaves the previous one untouched; what a crash leaves beside the
/// final place is removed, or put back, by removeLeftovers() at the next open or save.
/// Threads: one thread per object.
class StagedDirectory {
public:
    explicit StagedDirectory(const QString& finalPath, CommitHooks hooks = {});

    /// Whether the staging directory could be created (errorString() says why not).
    bool isValid() const { return m_staging.isValid(); }
    QString errorString() const;
    const QString& finalPath() const { return m_finalPath; }
    QString stagingPath() const { return m_staging.path(); }
    /// Where a file of the new directory is written before the commit.
    QString stagingFilePath(const QString& name) const;

    /// Puts the staging directory in the final place. On failure the previous content
    /// of the final place is back where it was and error says why.
    bool commit(QString* error = nullptr);

    /// Cleans up after saves of finalPath that a crash interrupted, as long as they are
    /// older than the given time (by default, when this process started, so that no save
    /// of a running process is touched): staging directories and previous packages
    /// beside it are removed, except that a previous package is moved back when nothing
    /// is at finalPath. Returns how many entries were removed or put back.
    static int removeLeftovers(const QString& finalPath,
        std::chrono::system_clock::time_point olderThan = processStartTime());

private:
    bool exchangeWithPrevious(const std::string& staging, const std::string& final, std::string* previous, QString* error);
    void step(CommitStep step) const;

    QString m_finalPath;
    QTemporaryDir m_staging;
    CommitHooks m_hooks;
    bool m_committed = false;
};

} // namespace plyra
