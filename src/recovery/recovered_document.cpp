// SPDX-License-Identifier: MIT
#include "recovery/recovered_document.h"

#include "model/morph_document.h"

#include <QFile>
#include <QFileInfo>

#include <sys/stat.h>

namespace plyra {
namespace {

// The same file: a hard link of it, or a copy that kept its size and time.
bool sameFile(const QString& a, const QString& b)
{
    struct stat first {};
    struct stat second {};
    if (::stat(QFile::encodeName(a).constData(), &first) != 0 || ::stat(QFile::encodeName(b).constData(), &second) != 0)
        return false;
    if (first.st_dev == second.st_dev && first.st_ino == second.st_ino)
        return true;
    return first.st_size == second.st_size && first.st_mtim.tv_sec == second.st_mtim.tv_sec
        && first.st_mtim.tv_nsec == second.st_mtim.tv_nsec;
}

void pointAtOriginals(MorphDocument& document, const RecoveryCopy& copy)
{
    document.undoManager().disableUndoRegistration();
    for (unsigned track : {0u, 1u}) {
        const QString& origin = copy.imageOrigins[track];
        const QString inCopy = document.imageURLInTrack(track);
        // A track without an image: the name "info.plist" records for it names nothing.
        if (origin.isEmpty()) {
            if (!inCopy.isEmpty())
                document.setImageFromURL(QString(), track);
            continue;
        }
        // A file the copy could not hold (missing, on a disk not mounted) keeps its path.
        if (!QFileInfo::exists(inCopy) || sameFile(origin, inCopy)) {
            document.setImageFromURL(origin, track, copy.imageNamesInPackage[track]);
            continue;
        }
        // The original changed since: the copy's file is what the user saw, under the
        // name the package gives it. It is read now, as the copy goes once the document
        // is saved.
        if (!copy.imageNamesInPackage[track].isEmpty())
            document.setImageFromURL(inCopy, track, copy.imageNamesInPackage[track]);
        document.imageInTrack(track);
    }
    document.undoManager().enableUndoRegistration();
}

} // namespace

std::unique_ptr<MorphDocument> RecoveredDocument::open(const RecoveryCopy& copy, QString* error)
{
    auto document = std::make_unique<MorphDocument>();
    if (!document->readFromFile(copy.packagePath(), error))
        return nullptr;
    pointAtOriginals(*document, copy);
    document->setFileLocation(copy.documentPath);
    document->markEdited();
    return document;
}

} // namespace plyra
