// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QTemporaryDir>

namespace plyra {

/// Builds a directory beside its final place and moves it there only when it is
/// complete: the previous directory (or file) at that place is renamed aside, the new
/// one renamed in, and only then is the previous one removed. A staging directory that
/// is never committed is removed, so a failed write leaves the previous one untouched.
/// Threads: one thread per object.
class StagedDirectory {
public:
    explicit StagedDirectory(const QString& finalPath);

    /// Whether the staging directory could be created (errorString() says why not).
    bool isValid() const { return m_staging.isValid(); }
    QString errorString() const;
    const QString& finalPath() const { return m_finalPath; }
    /// Where a file of the new directory is written before the commit.
    QString stagingFilePath(const QString& name) const;

    /// Puts the staging directory in the final place. On failure the previous content
    /// of the final place is back where it was and error says why.
    bool commit(QString* error = nullptr);

private:
    QString m_finalPath;
    QTemporaryDir m_staging;
    bool m_committed = false;
};

} // namespace plyra
