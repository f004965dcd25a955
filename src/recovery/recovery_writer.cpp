// SPDX-License-Identifier: MIT
#include "recovery/recovery_writer.h"

#include "model/document_package.h"
#include "model/tiff_io.h"
#include "platform/folder_carry_over.h"
#include "platform/log.h"
#include "platform/plist/xml_plist.h"
#include "recovery/recovery_files.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace plyra {
namespace {

std::string localPath(const QString& path)
{
    return QFile::encodeName(path).toStdString();
}

// The file goes in beside its name and is renamed over it, so that the copy keeps a
// whole image at that name at every moment.
bool writeImage(const RecoverySnapshot::Image& image, const QDir& package, QString* reason)
{
    const QString target = package.filePath(image.name);
    const QString fresh = package.filePath(QStringLiteral(".new-") + QString(image.name).replace(QLatin1Char('/'), QLatin1Char('_')));
    QDir().mkpath(QFileInfo(target).absolutePath());
    QFile::remove(fresh);
    bool made = FolderCarryOver::linkOrCopy(localPath(image.source), localPath(fresh)) == 0;
    if (!made && image.fallback.isPdf()) {
        made = writeDurably(image.fallback.pdfData.toStdString(), fresh, reason);
    } else if (!made && !image.fallback.raster.isNull()) {
        made = TiffIo::write(image.fallback.raster, fresh, reason);
    } else if (!made && !QFileInfo::exists(image.source)) {
        return true; // a missing image: its name is kept, there is nothing to copy
    } else if (!made) {
        *reason = QStringLiteral("%1 cannot be copied").arg(image.source);
    }
    if (made && std::rename(localPath(fresh).c_str(), localPath(target).c_str()) == 0)
        return true;
    QFile::remove(fresh);
    return false;
}

void removeOtherImages(const RecoverySnapshot& snapshot, const QDir& package)
{
    for (const QString& name : package.entryList(QDir::Files | QDir::Hidden | QDir::System)) {
        const bool kept = name == QLatin1String("info.plist")
            || std::find(snapshot.imageNames.begin(), snapshot.imageNames.end(), name) != snapshot.imageNames.end();
        if (!kept)
            QFile::remove(package.filePath(name));
    }
}

} // namespace

RecoveryWriter::RecoveryWriter()
    : m_thread([this] { run(); })
{
}

RecoveryWriter::~RecoveryWriter()
{
    {
        std::lock_guard lock(m_mutex);
        m_stop = true;
    }
    m_wake.notify_all();
    m_thread.join();
}

void RecoveryWriter::submit(RecoverySnapshot snapshot)
{
    {
        std::lock_guard lock(m_mutex);
        std::erase_if(m_queue, [&snapshot](const RecoverySnapshot& waiting) { return waiting.copy.folder == snapshot.copy.folder; });
        m_queue.push_back(std::move(snapshot));
    }
    m_wake.notify_all();
}

bool RecoveryWriter::writeNow(const RecoverySnapshot& snapshot)
{
    cancel(snapshot.copy.folder);
    const bool written = write(snapshot);
    std::lock_guard lock(m_mutex);
    m_written += written ? 1 : 0;
    return written;
}

void RecoveryWriter::cancel(const QString& copyFolder)
{
    std::unique_lock lock(m_mutex);
    std::erase_if(m_queue, [&copyFolder](const RecoverySnapshot& waiting) { return waiting.copy.folder == copyFolder; });
    m_idle.wait(lock, [this, &copyFolder] { return m_writing != copyFolder; });
}

void RecoveryWriter::waitUntilIdle()
{
    std::unique_lock lock(m_mutex);
    m_idle.wait(lock, [this] { return m_queue.empty() && m_writing.isEmpty(); });
}

int RecoveryWriter::writtenCount() const
{
    std::lock_guard lock(m_mutex);
    return m_written;
}

void RecoveryWriter::run()
{
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_wake.wait(lock, [this] { return m_stop || !m_queue.empty(); });
        if (m_queue.empty())
            return;
        RecoverySnapshot snapshot = std::move(m_queue.front());
        m_queue.pop_front();
        m_writing = snapshot.copy.folder;
        lock.unlock();
        const bool written = write(snapshot);
        lock.lock();
        m_written += written ? 1 : 0;
        m_writing.clear();
        m_idle.notify_all();
    }
}

bool RecoveryWriter::write(const RecoverySnapshot& snapshot)
{
    const QDir package(snapshot.copy.packagePath());
    QString reason;
    bool written = QDir().mkpath(package.path());
    if (!written)
        reason = QStringLiteral("cannot make %1").arg(package.path());
    for (const RecoverySnapshot::Image& image : snapshot.changedImages)
        written = written && writeImage(image, package, &reason);
    // "info.plist" last: a copy is offered only once it has one, and then it is whole.
    written = written && snapshot.copy.writeDescription(&reason);
    if (written) {
        PropertyList::Dictionary info = snapshot.info;
        PropertyList::Array lines;
        lines.reserve(snapshot.lines.size());
        for (const MorphLine::Values& line : snapshot.lines)
            lines.push_back(line.pList());
        info[DocumentPackage::kMorphLinesKey] = std::move(lines);
        written = writeDurably(writeXmlPropertyList(PropertyList(std::move(info))), package.filePath(QStringLiteral("info.plist")), &reason);
    }
    if (!written) {
        logLine(formatString("Plyra could not write the recovery copy %s: %s", localPath(snapshot.copy.folder).c_str(),
            reason.toUtf8().constData()));
        return false;
    }
    removeOtherImages(snapshot, package);
    return true;
}

} // namespace plyra
