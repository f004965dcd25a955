// SPDX-License-Identifier: MIT
#include "model/staged_directory.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>

#include <filesystem>
#include <system_error>

namespace plyra {
namespace {

namespace fs = std::filesystem;

fs::path fsPath(const QString& path)
{
    return fs::path(QFile::encodeName(path).toStdString());
}

QString stagingTemplate(const QString& finalPath)
{
    const QFileInfo info(finalPath);
    return info.absolutePath() + QStringLiteral("/.") + info.fileName() + QStringLiteral(".saving-XXXXXX");
}

// A name beside finalPath that nothing uses yet, for the previous content while the
// new content is moved in.
QString asideName(const QString& finalPath)
{
    const QFileInfo info(finalPath);
    for (;;) {
        const QString candidate = info.absolutePath() + QStringLiteral("/.") + info.fileName()
            + QStringLiteral(".previous-") + QString::number(QRandomGenerator::global()->generate(), 16);
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

} // namespace

StagedDirectory::StagedDirectory(const QString& finalPath)
    // Cleaned, so that a trailing "/" does not put the stage inside the old directory.
    : m_finalPath(QDir::cleanPath(QFileInfo(finalPath).absoluteFilePath()))
    , m_staging(stagingTemplate(m_finalPath))
{
    // The staging directory is made private; the package gets the usual permissions.
    if (m_staging.isValid()) {
        std::error_code ignored;
        fs::permissions(fsPath(m_staging.path()),
            fs::perms::owner_all | fs::perms::group_read | fs::perms::group_exec | fs::perms::others_read
                | fs::perms::others_exec,
            ignored);
    }
}

QString StagedDirectory::errorString() const
{
    return text(QT_TRANSLATE_NOOP("StagedDirectory", "Could not create a folder beside “%1”: %2")).arg(m_finalPath, m_staging.errorString());
}

QString StagedDirectory::stagingFilePath(const QString& name) const
{
    return m_staging.filePath(name);
}

bool StagedDirectory::commit(QString* error)
{
    if (!isValid())
        return fail(error, errorString());
    if (m_committed)
        return true;
    std::error_code code;
    const QFileInfo existing(m_finalPath);
    // Only a previous package (or a plain file or link) is replaced: never a device,
    // FIFO or socket, which moving aside and removing would take away from the system.
    const fs::file_status status = fs::symlink_status(fsPath(m_finalPath), code);
    if (!code && fs::exists(status) && !fs::is_directory(status) && !fs::is_regular_file(status) && !fs::is_symlink(status))
        return fail(error, text(QT_TRANSLATE_NOOP("StagedDirectory", "Could not save “%1”: it is not a folder or a regular file, and is left as it is.")).arg(m_finalPath));
    code.clear();
    QString aside;
    if (existing.exists() || existing.isSymLink()) {
        aside = asideName(m_finalPath);
        fs::rename(fsPath(m_finalPath), fsPath(aside), code);
        if (code)
            return fail(error, text(QT_TRANSLATE_NOOP("StagedDirectory", "Could not move “%1” aside to replace it: %2"))
                                   .arg(m_finalPath, QString::fromStdString(code.message())));
    }
    fs::rename(fsPath(m_staging.path()), fsPath(m_finalPath), code);
    if (code) {
        const QString reason = QString::fromStdString(code.message());
        std::error_code ignored;
        if (!aside.isEmpty())
            fs::rename(fsPath(aside), fsPath(m_finalPath), ignored);
        return fail(error, text(QT_TRANSLATE_NOOP("StagedDirectory", "Could not move the new “%1” into place: %2")).arg(m_finalPath, reason));
    }
    m_staging.setAutoRemove(false);
    m_committed = true;
    // The new content is in place; a previous one that cannot be removed only costs space.
    if (!aside.isEmpty())
        fs::remove_all(fsPath(aside), code);
    return true;
}

} // namespace plyra
