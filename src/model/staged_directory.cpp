// SPDX-License-Identifier: MIT
#include "model/staged_directory.h"

#include "platform/durable_files.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <system_error>
#include <vector>

namespace plyra {
namespace {

namespace fs = std::filesystem;

std::string localPath(const QString& path)
{
    return QFile::encodeName(path).toStdString();
}

QString hiddenPrefix(const QString& finalPath)
{
    const QFileInfo info(finalPath);
    return info.absolutePath() + QStringLiteral("/.") + info.fileName();
}

QString stagingTemplate(const QString& finalPath)
{
    return hiddenPrefix(finalPath) + QStringLiteral(".saving-XXXXXX");
}

// A name beside finalPath that nothing uses yet, for the previous content while the
// new content is moved in.
QString asideName(const QString& finalPath)
{
    for (;;) {
        const QString candidate = hiddenPrefix(finalPath) + QStringLiteral(".previous-")
            + QString::number(QRandomGenerator::global()->generate(), 16);
        if (!QFileInfo(candidate).exists() && !QFileInfo(candidate).isSymLink())
            return candidate;
    }
}

bool fail(QString* error, const QString& message)
{
    if (error)
        *error = message;
    return false;
}

QString text(const char* source)
{
    return QCoreApplication::translate("StagedDirectory", source);
}

QString reasonOf(int code)
{
    return QString::fromLocal8Bit(std::strerror(code));
}

int renameExchange(const std::string& first, const std::string& second)
{
    return ::renameat2(AT_FDCWD, first.c_str(), AT_FDCWD, second.c_str(), RENAME_EXCHANGE) == 0 ? 0 : errno;
}

// A file system without the atomic exchange says so with one of these.
bool exchangeRefused(int code)
{
    return code == EINVAL || code == ENOSYS || code == EOPNOTSUPP || code == ENOTSUP;
}

int renameNoReplace(const std::string& from, const std::string& to)
{
    if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0)
        return 0;
    if (!exchangeRefused(errno))
        return errno;
    return std::rename(from.c_str(), to.c_str()) == 0 ? 0 : errno;
}

struct Leftover {
    QString path;
    bool previous = false; // a previous package rather than a staging directory
    std::chrono::system_clock::time_point modified;
};

std::vector<Leftover> leftoversOf(const QString& finalPath)
{
    const QFileInfo info(finalPath);
    const QString saving = QStringLiteral(".") + info.fileName() + QStringLiteral(".saving-");
    const QString previous = QStringLiteral(".") + info.fileName() + QStringLiteral(".previous-");
    std::vector<Leftover> found;
    const QDir folder(info.absolutePath());
    for (const QString& name : folder.entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot)) {
        const bool isPrevious = name.startsWith(previous);
        if (!isPrevious && !name.startsWith(saving))
            continue;
        struct stat entry {};
        const std::string path = localPath(folder.filePath(name));
        if (::lstat(path.c_str(), &entry) != 0)
            continue;
        const auto modified = std::chrono::system_clock::time_point(
            std::chrono::seconds(entry.st_mtim.tv_sec) + std::chrono::nanoseconds(entry.st_mtim.tv_nsec));
        found.push_back({folder.filePath(name), isPrevious,
            std::chrono::time_point_cast<std::chrono::system_clock::duration>(modified)});
    }
    return found;
}

} // namespace

StagedDirectory::StagedDirectory(const QString& finalPath, CommitHooks hooks)
    // Cleaned, so that a trailing "/" does not put the stage inside the old directory.
    : m_finalPath(QDir::cleanPath(QFileInfo(finalPath).absoluteFilePath()))
    , m_staging(stagingTemplate(m_finalPath))
    , m_hooks(std::move(hooks))
{
    if (!m_staging.isValid())
        return;
    // The staging directory is made private; the package gets the permissions of the
    // one it replaces, or the usual ones.
    struct stat previous {};
    const bool replacesFolder = ::stat(localPath(m_finalPath).c_str(), &previous) == 0 && S_ISDIR(previous.st_mode);
    ::chmod(localPath(m_staging.path()).c_str(), replacesFolder ? (previous.st_mode & 07777) | S_IRWXU : 0755);
}

QString StagedDirectory::errorString() const
{
    return text(QT_TRANSLATE_NOOP("StagedDirectory", "Could not create a folder beside “%1”: %2")).arg(m_finalPath, m_staging.errorString());
}

QString StagedDirectory::stagingFilePath(const QString& name) const
{
    return m_staging.filePath(name);
}

void StagedDirectory::step(CommitStep step) const
{
    if (m_hooks.beforeStep)
        m_hooks.beforeStep(step);
}

bool StagedDirectory::commit(QString* error)
{
    if (!isValid())
        return fail(error, errorString());
    if (m_committed)
        return true;
    const std::string final = localPath(m_finalPath);
    const std::string staging = localPath(m_staging.path());
    const std::string parent = parentFolder(final);
    struct stat existing {};
    const bool exists = ::lstat(final.c_str(), &existing) == 0;
    // Only a previous package (or a plain file or link) is replaced: never a device,
    // FIFO or socket, which moving aside and removing would take away from the system.
    if (exists && !S_ISDIR(existing.st_mode) && !S_ISREG(existing.st_mode) && !S_ISLNK(existing.st_mode))
        return fail(error, text(QT_TRANSLATE_NOOP("StagedDirectory", "Could not save “%1”: it is not a folder or a regular file, and is left as it is.")).arg(m_finalPath));
    step(CommitStep::SyncStaged);
    if (const int code = syncTree(staging))
        return fail(error, text(QT_TRANSLATE_NOOP("StagedDirectory", "Could not write “%1” to the disk: %2")).arg(m_finalPath, reasonOf(code)));
    step(CommitStep::SyncParentBefore);
    syncFolder(parent);
    std::string previous;
    if (!exists) {
        step(CommitStep::MoveIn);
        if (const int code = renameNoReplace(staging, final))
            return fail(error, text(QT_TRANSLATE_NOOP("StagedDirectory", "Could not move the new “%1” into place: %2")).arg(m_finalPath, reasonOf(code)));
    } else if (!exchangeWithPrevious(staging, final, &previous, error)) {
        return false;
    }
    m_staging.setAutoRemove(false);
    m_committed = true;
    step(CommitStep::SyncParentAfter);
    syncFolder(parent);
    // The new content is in place; a previous one that cannot be removed only costs
    // space, and the next save removes it.
    step(CommitStep::RemovePrevious);
    std::error_code ignored;
    fs::remove_all(previous, ignored);
    return true;
}

bool StagedDirectory::exchangeWithPrevious(const std::string& staging, const std::string& final, std::string* previous,
    QString* error)
{
    step(CommitStep::Exchange);
    const int code = m_hooks.exchange ? m_hooks.exchange(staging, final) : renameExchange(staging, final);
    if (code == 0) {
        *previous = staging; // the staging name now holds the previous package
        return true;
    }
    if (!exchangeRefused(code))
        return fail(error, text(QT_TRANSLATE_NOOP("StagedDirectory", "Could not move the new “%1” into place: %2")).arg(m_finalPath, reasonOf(code)));
    // Without the exchange there is a moment with nothing at the name; a crash then
    // leaves the previous package aside, and removeLeftovers() moves it back.
    const std::string aside = localPath(asideName(m_finalPath));
    step(CommitStep::MovePreviousAside);
    if (std::rename(final.c_str(), aside.c_str()) != 0)
        return fail(error, text(QT_TRANSLATE_NOOP("StagedDirectory", "Could not move “%1” aside to replace it: %2")).arg(m_finalPath, reasonOf(errno)));
    step(CommitStep::MoveInAfterAside);
    if (std::rename(staging.c_str(), final.c_str()) != 0) {
        const QString reason = reasonOf(errno);
        std::rename(aside.c_str(), final.c_str());
        return fail(error, text(QT_TRANSLATE_NOOP("StagedDirectory", "Could not move the new “%1” into place: %2")).arg(m_finalPath, reason));
    }
    *previous = aside;
    return true;
}

int StagedDirectory::removeLeftovers(const QString& finalPath, std::chrono::system_clock::time_point olderThan)
{
    const QString final = QDir::cleanPath(QFileInfo(finalPath).absoluteFilePath());
    std::vector<Leftover> leftovers = leftoversOf(final);
    std::erase_if(leftovers, [olderThan](const Leftover& l) { return l.modified >= olderThan; });
    int handled = 0;
    // Nothing at the name: the save stopped between its two renames. The newest
    // previous package goes back; what was being saved is incomplete or lost.
    const QFileInfo finalInfo(final);
    if (!finalInfo.exists() && !finalInfo.isSymLink()) {
        auto newest = leftovers.end();
        for (auto it = leftovers.begin(); it != leftovers.end(); ++it)
            if (it->previous && (newest == leftovers.end() || newest->modified < it->modified))
                newest = it;
        if (newest != leftovers.end() && renameNoReplace(localPath(newest->path), localPath(final)) == 0) {
            leftovers.erase(newest);
            ++handled;
        }
    }
    for (const Leftover& leftover : leftovers) {
        std::error_code code;
        fs::remove_all(localPath(leftover.path), code);
        if (!code)
            ++handled;
    }
    if (handled > 0)
        syncFolder(localPath(finalInfo.absolutePath()));
    return handled;
}

} // namespace plyra
