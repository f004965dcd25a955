// SPDX-License-Identifier: MIT
#pragma once

#include "recovery/recovery_copy.h"

#include <QString>

#include <vector>

namespace plyra {

/// The folder of recovery copies, $XDG_STATE_HOME/Plyra/recovery (by default
/// ~/.local/state/Plyra/recovery): one folder per copy, named after the process that
/// made it ("PID-TICKS-N"), so that a copy whose process has ended is told apart from
/// one that a running Plyra keeps current.
/// Threads: main thread (the writer thread writes inside folders it is given).
class RecoveryStore {
public:
    /// The recovery folder of this user.
    static QString defaultFolder();

    explicit RecoveryStore(QString folder = defaultFolder());
    const QString& folder() const { return m_folder; }

    /// A new, not yet existing folder for a copy made by this process.
    QString newCopyFolder();
    /// The complete copies (a description and a package) whose process has ended, the
    /// oldest first: those a start offers to recover.
    std::vector<RecoveryCopy> orphanedCopies() const;
    /// Removes folders of ended processes whose copy has no "info.plist": a process that
    /// died while writing its first copy leaves nothing anyone could recover.
    int removeIncompleteCopies() const;
    /// Makes the copy this process's, so that no other start offers it and this
    /// process's saves keep it current. False when its description cannot be written.
    bool claim(RecoveryCopy& copy) const;
    /// Removes a copy's folder.
    static void remove(const QString& copyFolder);

private:
    QString m_folder;
    int m_nextCopy = 1;
};

} // namespace plyra
