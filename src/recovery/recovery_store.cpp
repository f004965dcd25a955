// SPDX-License-Identifier: MIT
#include "recovery/recovery_store.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace plyra {
namespace {

// "PID-TICKS-N": the owner of a folder whose description is missing.
std::optional<ProcessIdentity> ownerOfFolderName(const QString& name)
{
    const int last = name.lastIndexOf(QLatin1Char('-'));
    return last > 0 ? ProcessIdentity::fromToken(name.left(last).toStdString()) : std::nullopt;
}

// A copy is written description first, "info.plist" last: with the latter it is whole.
bool isComplete(const QString& copyFolder)
{
    return QFileInfo::exists(QDir(copyFolder).filePath(QLatin1String(RecoveryCopy::kPackageName) + QStringLiteral("/info.plist")));
}

} // namespace

QString RecoveryStore::defaultFolder()
{
    // The XDG base directory rules: a relative XDG_STATE_HOME is ignored.
    QString state = qEnvironmentVariable("XDG_STATE_HOME");
    if (state.isEmpty() || QDir::isRelativePath(state))
        state = QDir::homePath() + QStringLiteral("/.local/state");
    return state + QStringLiteral("/Plyra/recovery");
}

RecoveryStore::RecoveryStore(QString folder)
    : m_folder(std::move(folder))
{
}

QString RecoveryStore::newCopyFolder()
{
    const QString owner = QString::fromStdString(ProcessIdentity::current().token());
    for (;; ++m_nextCopy) {
        const QString candidate = QDir(m_folder).filePath(owner + QLatin1Char('-') + QString::number(m_nextCopy));
        if (!QFileInfo::exists(candidate)) {
            ++m_nextCopy;
            return candidate;
        }
    }
}

std::vector<RecoveryCopy> RecoveryStore::orphanedCopies() const
{
    std::vector<RecoveryCopy> copies;
    const QDir store(m_folder);
    for (const QString& name : store.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        std::optional<RecoveryCopy> copy = RecoveryCopy::read(store.filePath(name));
        if (copy && isComplete(copy->folder) && copy->isOrphaned())
            copies.push_back(std::move(*copy));
    }
    std::sort(copies.begin(), copies.end(), [](const RecoveryCopy& a, const RecoveryCopy& b) { return a.savedAt < b.savedAt; });
    return copies;
}

int RecoveryStore::removeIncompleteCopies() const
{
    int removed = 0;
    const QDir store(m_folder);
    for (const QString& name : store.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        const QString folder = store.filePath(name);
        // Without "info.plist" there is nothing to recover; with it and a damaged
        // description the folder stays as it is.
        if (isComplete(folder))
            continue;
        const std::optional<RecoveryCopy> copy = RecoveryCopy::read(folder);
        const std::optional<ProcessIdentity> owner = copy ? std::optional(copy->owner) : ownerOfFolderName(name);
        if (owner && !owner->isRunning() && QDir(folder).removeRecursively())
            ++removed;
    }
    return removed;
}

bool RecoveryStore::claim(RecoveryCopy& copy) const
{
    const ProcessIdentity previous = copy.owner;
    copy.owner = ProcessIdentity::current();
    if (copy.writeDescription())
        return true;
    copy.owner = previous;
    return false;
}

void RecoveryStore::remove(const QString& copyFolder)
{
    QDir(copyFolder).removeRecursively();
}

} // namespace plyra
