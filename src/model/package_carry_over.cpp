// SPDX-License-Identifier: MIT
#include "model/package_carry_over.h"

#include "platform/folder_carry_over.h"
#include "platform/log.h"
#include "platform/plist/xml_plist.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>

#include <cstring>

namespace plyra {
namespace {

std::string localPath(const QString& path)
{
    return QFile::encodeName(path).toStdString();
}

QString text(const char* source)
{
    return QCoreApplication::translate("DocumentPackage", source);
}

bool fail(QString* error, const QString& message)
{
    if (error)
        *error = message;
    return false;
}

// The image files that the package's own "info.plist" names inside it: the document
// owns them, and this save replaces them. Nothing when it cannot be read.
QSet<QString> imagesNamedBy(const QString& packagePath)
{
    QSet<QString> named;
    const std::optional<PropertyList> info
        = readPropertyListFile(localPath(QDir(packagePath).filePath(QLatin1String(DocumentPackage::kInfoFileName))));
    if (!info || !info->isDictionary())
        return named;
    for (const char* key : {DocumentPackage::kFirstImagePathKey, DocumentPackage::kLastImagePathKey}) {
        const PropertyList* value = info->find(key);
        const std::string* recorded = value ? value->string() : nullptr;
        if (!recorded || recorded->empty() || recorded->front() == '/')
            continue;
        const QString name = DocumentPackage::nameInside(packagePath, QDir(packagePath).filePath(QString::fromStdString(*recorded)));
        if (!name.isEmpty())
            named.insert(name);
    }
    return named;
}

} // namespace

bool PackageCarryOver::keepImages(const PackageContents& contents, const StagedDirectory& staged, QString* error)
{
    for (const KeptImage& kept : contents.kept) {
        const QString target = staged.stagingFilePath(kept.relativeName);
        QDir().mkpath(QFileInfo(target).absolutePath());
        if (const int code = FolderCarryOver::carryEntry(localPath(kept.source), localPath(target))) {
            logLine(formatString("Failed to keep image %s", localPath(kept.source).c_str()));
            return fail(error, text(QT_TRANSLATE_NOOP("DocumentPackage", "Could not keep the image “%1” in the saved package: %2"))
                                   .arg(kept.source, QString::fromLocal8Bit(std::strerror(code))));
        }
    }
    return true;
}

bool PackageCarryOver::carryForeignEntries(const PackageContents& contents, const StagedDirectory& staged, QString* error)
{
    const QString previous = staged.finalPath();
    if (!QFileInfo(previous).isDir())
        return true;
    QSet<QString> owned = imagesNamedBy(previous);
    owned.insert(QLatin1String(DocumentPackage::kInfoFileName));
    for (const PackageImage& image : contents.images)
        owned.insert(image.fileName);
    for (const KeptImage& kept : contents.kept)
        owned.insert(kept.relativeName);
    const auto failure = FolderCarryOver::carryTree(localPath(previous), localPath(staged.stagingPath()),
        [&owned](const std::string& relative) { return owned.contains(QFile::decodeName(QByteArray::fromStdString(relative))); });
    if (!failure)
        return true;
    const QString entry = QDir(previous).filePath(QFile::decodeName(QByteArray::fromStdString(failure->path)));
    logLine(formatString("Plyra could not carry %s over into the saved package", localPath(entry).c_str()));
    return fail(error, text(QT_TRANSLATE_NOOP("DocumentPackage", "Could not carry “%1” over into the saved package: %2"))
                           .arg(entry, QString::fromLocal8Bit(failure->reason.c_str())));
}

} // namespace plyra
