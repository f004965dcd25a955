// SPDX-License-Identifier: MIT
#include "recovery/autosave.h"

#include "model/document_package.h"
#include "model/morph_document.h"
#include "platform/notification_center.h"
#include "platform/qt/timer.h"
#include "recovery/recovery_store.h"

#include <QFileInfo>

#include <array>
#include <limits>

namespace plyra {
namespace {

constexpr std::uint64_t kNothingWritten = std::numeric_limits<std::uint64_t>::max();

// The copy's name for a track's image: the name the document's package gives it, or
// one of its own for an image from elsewhere.
QString imageNameInCopy(const MorphDocument& document, unsigned track)
{
    const QString name = document.imageNameInPackageInTrack(track);
    if (!name.isEmpty())
        return name;
    const QString suffix = QFileInfo(document.imageURLInTrack(track)).suffix();
    return QStringLiteral("Image_%1_original.%2").arg(track).arg(suffix.isEmpty() ? QStringLiteral("image") : suffix);
}

} // namespace

struct Autosave::Watched {
    MorphDocument* document = nullptr;
    std::function<Description()> describe;
    std::unique_ptr<Timer> timer;
    QString folder;
    std::uint64_t written = kNothingWritten; // the document's change count in the copy
    // Per track, the image file the copy holds and its name there: each is linked or
    // copied once, not at every write.
    std::array<QString, 2> linkedSources;
    std::array<QString, 2> linkedNames;
};

Autosave::Autosave(RecoveryStore& store, std::chrono::milliseconds delay)
    : m_store(store)
    , m_delay(delay)
{
}

Autosave::~Autosave()
{
    for (const std::unique_ptr<Watched>& watched : m_watched) {
        NotificationCenter::defaultCenter().removeObserversOwnedBy(watched.get());
        watched->document->undoManager().removeChangeObservers(watched.get());
    }
}

Autosave::Watched* Autosave::find(const MorphDocument& document) const
{
    for (const std::unique_ptr<Watched>& watched : m_watched)
        if (watched->document == &document)
            return watched.get();
    return nullptr;
}

void Autosave::watch(MorphDocument& document, std::function<Description()> describe)
{
    auto owned = std::make_unique<Watched>();
    Watched& watched = *owned;
    watched.document = &document;
    watched.describe = std::move(describe);
    watched.timer = std::make_unique<Timer>([this, &watched] { writeCopy(watched, false); });
    watched.timer->setSingleShot(true);
    watched.timer->setInterval(static_cast<int>(m_delay.count()));
    m_watched.push_back(std::move(owned));
    // Undo steps, undo and redo come from the undo manager; changes without undo (the
    // codec settings) as "objectsUpdated"; a save as "editedStateChanged".
    document.undoManager().addChangeObserver(&watched, [this, &watched] { documentChanged(watched); });
    NotificationCenter& center = NotificationCenter::defaultCenter();
    for (const char* name : {kObjectsUpdatedNotification, kEditedStateChangedNotification})
        center.addObserver(name, [this, &watched](const Notification&) { documentChanged(watched); }, &watched,
            document.notificationObject());
    documentChanged(watched);
}

void Autosave::useCopy(MorphDocument& document, const RecoveryCopy& copy)
{
    Watched* watched = find(document);
    if (!watched)
        return;
    watched->folder = copy.folder;
    for (unsigned track : {0u, 1u}) {
        watched->linkedSources[track] = document.imageURLInTrack(track);
        watched->linkedNames[track] = imageNameInCopy(document, track);
    }
    watched->written = document.changeCount();
    watched->timer->stop();
}

void Autosave::unwatch(MorphDocument& document, bool removeCopy)
{
    Watched* watched = find(document);
    if (!watched)
        return;
    NotificationCenter::defaultCenter().removeObserversOwnedBy(watched);
    document.undoManager().removeChangeObservers(watched);
    if (removeCopy)
        this->removeCopy(*watched);
    std::erase_if(m_watched, [watched](const std::unique_ptr<Watched>& w) { return w.get() == watched; });
}

QString Autosave::copyFolder(const MorphDocument& document) const
{
    const Watched* watched = find(document);
    return watched ? watched->folder : QString();
}

bool Autosave::isWriteScheduled(const MorphDocument& document) const
{
    const Watched* watched = find(document);
    return watched && watched->timer->isActive();
}

// Called for every registration of a drag: a write already due covers what follows,
// so the timer is not started over (a long drag still gets its copy within the delay).
void Autosave::documentChanged(Watched& watched)
{
    if (!watched.document->isEdited())
        removeCopy(watched);
    else if (!watched.timer->isActive() && watched.document->changeCount() != watched.written)
        watched.timer->start();
}

RecoverySnapshot Autosave::snapshot(const MorphDocument& document)
{
    Watched* watched = find(document);
    RecoverySnapshot snapshot;
    if (!watched)
        return snapshot;
    if (watched->folder.isEmpty())
        watched->folder = m_store.newCopyFolder();
    snapshot.copy.folder = watched->folder;
    snapshot.copy.owner = ProcessIdentity::current();
    snapshot.copy.savedAt = QDateTime::currentDateTime();
    const Description description = watched->describe();
    snapshot.copy.documentPath = description.documentPath;
    snapshot.copy.displayName = description.displayName;
    // The lines as plain values: the writer turns them into their stored form, which
    // for thousands of lines would hold the main thread too long.
    snapshot.info = DocumentPackage::contents(document, snapshot.copy.packagePath(), false).info;
    snapshot.lines.reserve(document.morphLines().size());
    for (const MorphLine::Ptr& line : document.morphLines())
        snapshot.lines.push_back(line->values());
    const char* const keys[2] = {DocumentPackage::kFirstImagePathKey, DocumentPackage::kLastImagePathKey};
    for (unsigned track : {0u, 1u}) {
        const QString source = document.imageURLInTrack(track);
        if (source.isEmpty())
            continue;
        const QString name = imageNameInCopy(document, track);
        snapshot.info[keys[track]] = name.toStdString();
        snapshot.imageNames.push_back(name);
        // Absolute: the start that recovers it may run in another folder.
        snapshot.copy.imageOrigins[track] = QFileInfo(source).absoluteFilePath();
        snapshot.copy.imageNamesInPackage[track] = document.imageNameInPackageInTrack(track);
        if (source == watched->linkedSources[track] && name == watched->linkedNames[track])
            continue;
        // The image in memory stands in only for a file that is gone: reading one that
        // is there would stall the main thread, and the writer links or copies it.
        const DisplayImage fallback = QFileInfo::exists(source) ? DisplayImage() : document.imageInTrack(track).value_or(DisplayImage());
        snapshot.changedImages.push_back({name, source, fallback});
        watched->linkedSources[track] = source;
        watched->linkedNames[track] = name;
    }
    return snapshot;
}

void Autosave::writeCopy(Watched& watched, bool atOnce)
{
    watched.timer->stop();
    if (!watched.document->isEdited()) {
        removeCopy(watched);
        return;
    }
    if (watched.document->changeCount() == watched.written)
        return;
    watched.written = watched.document->changeCount();
    RecoverySnapshot copy = snapshot(*watched.document);
    if (atOnce)
        m_writer.writeNow(copy);
    else
        m_writer.submit(std::move(copy));
}

void Autosave::writeAllNow()
{
    for (const std::unique_ptr<Watched>& watched : m_watched)
        writeCopy(*watched, true);
}

void Autosave::removeCopy(Watched& watched)
{
    watched.timer->stop();
    watched.written = kNothingWritten;
    watched.linkedSources = {};
    watched.linkedNames = {};
    if (watched.folder.isEmpty())
        return;
    m_writer.cancel(watched.folder);
    RecoveryStore::remove(watched.folder);
    watched.folder.clear();
}

} // namespace plyra
