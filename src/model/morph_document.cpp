// SPDX-License-Identifier: MIT
#include "model/morph_document.h"

#include "model/document_package.h"
#include "platform/notification_center.h"
#include "platform/qt/user_defaults.h"
#include "platform/qt/user_defaults_keys.h"

#include <QFile>

#include <algorithm>
#include <cassert>
#include <cmath>
#include <limits>

namespace plyra {
namespace {

constexpr double kJoinDistance = 0.0001;
constexpr int kDefaultCodecQuality = 768;

// Ends meet when they lie closer than kJoinDistance on both tracks.
bool endsMeet(Point a0, Point b0, Point a1, Point b1)
{
    auto distance = [](Point a, Point b) {
        const float dx = a.x - b.x;
        const float dy = a.y - b.y;
        return static_cast<double>(std::sqrt(dx * dx + dy * dy));
    };
    return distance(a0, b0) < kJoinDistance && distance(a1, b1) < kJoinDistance;
}

int clampToInt(qint64 value)
{
    return static_cast<int>(std::clamp<qint64>(value, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
}

} // namespace

MorphDocument::MorphDocument()
{
    m_morphLines.reserve(20);
    m_selectedLines.reserve(20);
    // Selecting is no edit of its own; each edit puts back the selection it had.
    m_undoManager.setStateCapture([this] {
        return [this, selection = m_selectedLines] { restoreSelection(selection); };
    });
    // New documents start with the codec settings the user chose last.
    const UserDefaults& defaults = UserDefaults::standard();
    const QString format = defaults.string(QLatin1String(DefaultsKey::kCodecFormat));
    setCodecFormat(format.isEmpty() ? QStringLiteral("mp4v") : format);
    const qint64 quality = defaults.integer(QLatin1String(DefaultsKey::kCodecQuality));
    setCodecQuality(quality != 0 ? clampToInt(quality) : kDefaultCodecQuality);
    markSaved();
    m_undoManager.addChangeObserver(this, [this] { noteChange(); });
}

MorphDocument::~MorphDocument()
{
    m_undoManager.removeChangeObservers(this);
    m_undoManager.removeAllActionsWithTarget(this);
}

// ---- lines ---------------------------------------------------------------------------

void MorphDocument::insertObjectInMorphLinesAtIndex(const MorphLine::Ptr& line, std::size_t index)
{
    assert(line && index <= m_morphLines.size());
    assert(std::find(m_morphLines.begin(), m_morphLines.end(), line) == m_morphLines.end());
    index = std::min(index, m_morphLines.size());
    line->setDocument(notificationObject());
    joinToCoincidingLine(line);
    m_morphLines.insert(m_morphLines.begin() + static_cast<std::ptrdiff_t>(index), line);
    // The name replaces "Connect line" from the join: both are one step.
    registerUndo([this, line] { deleteMorphLine(line); }, "New Line");
    postObjectsUpdated();
}

void MorphDocument::joinToCoincidingLine(const MorphLine::Ptr& line)
{
    const Point start0 = line->startPointAtTime(0.0f);
    const Point start1 = line->startPointAtTime(1.0f);
    const Point end0 = line->endPointAtTime(0.0f);
    const Point end1 = line->endPointAtTime(1.0f);
    // One join at most: the first line in list order wins, its start before its end.
    // The chain checks keep chains open.
    for (const MorphLine::Ptr& other : m_morphLines) {
        if (!other->attachedLineAtStart()
            && endsMeet(end0, other->startPointAtTime(0.0f), end1, other->startPointAtTime(1.0f))
            && !other->isLineAttachedAscending(line.get())) {
            other->attachLineAtStart(line, &m_undoManager);
            return;
        }
        if (!other->attachedLineAtEnd()
            && endsMeet(start0, other->endPointAtTime(0.0f), start1, other->endPointAtTime(1.0f))
            && !other->isLineAttachedDescending(line.get())) {
            other->attachLineAtEnd(line, &m_undoManager);
            return;
        }
    }
}

void MorphDocument::addMorphLine(const MorphLine::Ptr& line)
{
    insertObjectInMorphLinesAtIndex(line, m_morphLines.size());
}

void MorphDocument::removeObjectFromMorphLinesAtIndex(std::size_t index)
{
    assert(index < m_morphLines.size());
    if (index >= m_morphLines.size())
        return;
    const MorphLine::Ptr line = m_morphLines[index];
    // No remaining line may refer to it.
    line->disconnectLineAtStart(&m_undoManager);
    line->disconnectLineAtEnd(&m_undoManager);
    m_morphLines.erase(m_morphLines.begin() + static_cast<std::ptrdiff_t>(index));
    registerUndo([this, line, index] { insertObjectInMorphLinesAtIndex(line, index); },
        "Delete Line");
    postObjectsUpdated();
    deselectLine(line);
}

void MorphDocument::deleteMorphLine(const MorphLine::Ptr& line)
{
    const auto it = std::find(m_morphLines.begin(), m_morphLines.end(), line);
    if (it != m_morphLines.end())
        removeObjectFromMorphLinesAtIndex(static_cast<std::size_t>(it - m_morphLines.begin()));
}

// ---- selection -----------------------------------------------------------------------

bool MorphDocument::isLineSelected(const MorphLine* line) const
{
    return std::any_of(m_selectedLines.begin(), m_selectedLines.end(),
        [line](const MorphLine::Ptr& selected) { return selected.get() == line; });
}

void MorphDocument::insertObjectInSelectedLinesAtIndex(const MorphLine::Ptr& line, std::size_t index)
{
    if (!line || isLineSelected(line.get()))
        return;
    index = std::min(index, m_selectedLines.size());
    m_selectedLines.insert(m_selectedLines.begin() + static_cast<std::ptrdiff_t>(index), line);
    postSelectionUpdated();
}

void MorphDocument::removeObjectFromSelectedLinesAtIndex(std::size_t index)
{
    if (index >= m_selectedLines.size())
        return;
    m_selectedLines.erase(m_selectedLines.begin() + static_cast<std::ptrdiff_t>(index));
    postSelectionUpdated();
}

void MorphDocument::setSelectedLines(const std::vector<MorphLine::Ptr>& lines)
{
    while (!m_selectedLines.empty())
        removeObjectFromSelectedLinesAtIndex(m_selectedLines.size() - 1);
    for (const MorphLine::Ptr& line : lines)
        insertObjectInSelectedLinesAtIndex(line, m_selectedLines.size());
}

void MorphDocument::restoreSelection(const std::vector<MorphLine::Ptr>& lines)
{
    std::vector<MorphLine::Ptr> present;
    for (const MorphLine::Ptr& line : lines)
        if (std::find(m_morphLines.begin(), m_morphLines.end(), line) != m_morphLines.end())
            present.push_back(line);
    if (present == m_selectedLines)
        return;
    m_selectedLines = std::move(present);
    postSelectionUpdated();
}

void MorphDocument::deselectLine(const MorphLine::Ptr& line)
{
    const auto it = std::find(m_selectedLines.begin(), m_selectedLines.end(), line);
    if (it != m_selectedLines.end())
        removeObjectFromSelectedLinesAtIndex(static_cast<std::size_t>(it - m_selectedLines.begin()));
}

// ---- images --------------------------------------------------------------------------

bool MorphDocument::setImageFromFile(const QString& path, unsigned track, QString* error)
{
    ImageLoadFailure failure;
    std::optional<DisplayImage> loaded = DisplayImage::load(path, &failure);
    if (!loaded) {
        if (error)
            *error = failure.reason;
        return false;
    }
    setImageFromURL(path, track, QString(), std::move(loaded));
    return true;
}

void MorphDocument::setImageFromURL(const QString& path, unsigned track, const QString& nameInPackage)
{
    setImageFromURL(path, track, nameInPackage, std::nullopt);
}

void MorphDocument::setImageFromURL(const QString& path, unsigned track, const QString& nameInPackage,
    std::optional<DisplayImage> preloaded)
{
    TrackImage& image = trackFor(track);
    const QString oldPath = image.location();
    const QString oldName = image.nameInPackage();
    if (preloaded)
        image.setLocation(path, std::move(*preloaded));
    else
        image.setLocation(path);
    image.setNameInPackage(nameInPackage);
    const std::optional<DisplayImage> loaded = image.displayImage();
    if (loaded && loaded->size().height() > 0.0)
        image.setAspectRatio(static_cast<float>(loaded->size().width()) / static_cast<float>(loaded->size().height()));
    const bool frameSizeUnset = m_frameSize.width() < 1.0 || m_frameSize.height() < 1.0;
    if (frameSizeUnset && !path.isEmpty() && loaded)
        setFrameSize(loaded->size());
    registerUndo([this, oldPath, oldName, track] { setImageFromURL(oldPath, track, oldName); },
        "Set Image");
    postObjectsUpdated();
}

QString MorphDocument::imageURLInTrack(unsigned track) const
{
    return trackFor(track).location();
}

QString MorphDocument::imageNameInPackageInTrack(unsigned track) const
{
    return trackFor(track).nameInPackage();
}

std::optional<DisplayImage> MorphDocument::imageInTrack(unsigned track) const
{
    return trackFor(track).displayImage();
}

Image MorphDocument::ciimageInTrack(unsigned track) const
{
    return trackFor(track).renderImage();
}

std::optional<ImageLoadFailure> MorphDocument::imageFailureInTrack(unsigned track) const
{
    return trackFor(track).loadFailure();
}

float MorphDocument::aspectRatioInTrack(unsigned track) const
{
    const float own = m_tracks[track == 1 ? 1 : 0].aspectRatio();
    if (own != 0.0f)
        return own;
    const float other = m_tracks[track == 1 ? 0 : 1].aspectRatio();
    return other != 0.0f ? other : 1.0f;
}

// ---- settings ------------------------------------------------------------------------

LineColor::Ptr MorphDocument::lineColor() const
{
    return m_lineColor ? m_lineColor : LineColor::defaultColor();
}

void MorphDocument::setLineColor(const LineColor::Ptr& color)
{
    if (color == m_lineColor)
        return;
    const LineColor::Ptr old = m_lineColor;
    registerUndo([this, old] { setLineColor(old); }, "Change colour");
    m_lineColor = color;
    // Only drawing depends on the colour, not rendered frames.
    postSelectionUpdated();
}

void MorphDocument::setFrameSize(const QSizeF& size)
{
    const QSizeF old = m_frameSize;
    registerUndo([this, old] { setFrameSize(old); });
    m_frameSize = size;
}

void MorphDocument::setCodecFormat(const QString& format)
{
    if (format == m_codecFormat)
        return;
    m_codecFormat = format;
    noteChangeWithoutUndo();
    postObjectsUpdated();
}

void MorphDocument::setCodecQuality(int quality)
{
    if (quality == m_codecQuality)
        return;
    m_codecQuality = quality;
    noteChangeWithoutUndo();
    postObjectsUpdated();
}

// ---- edited state --------------------------------------------------------------------

bool MorphDocument::isEdited() const
{
    return m_forcedEdited || m_changedWithoutUndo || m_undoManager.namedUndoStepIds() != m_savedSteps;
}

void MorphDocument::markSaved()
{
    m_savedSteps = m_undoManager.namedUndoStepIds();
    m_changedWithoutUndo = false;
    m_forcedEdited = false;
    noteChange();
}

void MorphDocument::markEdited()
{
    m_forcedEdited = true;
    noteChange();
}

void MorphDocument::noteChangeWithoutUndo()
{
    // Reading a file sets values with undo registration off: that is where the document
    // starts, not a change.
    if (!m_undoManager.isUndoRegistrationEnabled())
        return;
    m_changedWithoutUndo = true;
    noteChange();
}

void MorphDocument::noteChange()
{
    ++m_changeCount;
    const bool edited = isEdited();
    if (edited == m_lastEdited)
        return;
    m_lastEdited = edited;
    NotificationQueue::defaultQueue().enqueueAsSoonAsPossible({kEditedStateChangedNotification, notificationObject()});
}

void MorphDocument::setMovieSettings(const std::optional<MovieSettings>& settings)
{
    if (settings == m_movieSettings)
        return;
    const std::optional<MovieSettings> old = m_movieSettings;
    registerUndo([this, old] { setMovieSettings(old); }, QT_TRANSLATE_NOOP("UndoAction", "Change Movie Settings"));
    m_movieSettings = settings;
    postObjectsUpdated();
}

// ---- package -------------------------------------------------------------------------

bool MorphDocument::readFromFile(const QString& path, QString* error)
{
    if (!DocumentPackage::read(*this, path, error))
        return false;
    m_fileLocation = path;
    markSaved();
    return true;
}

bool MorphDocument::writeToFile(const QString& path, QString* error)
{
    if (!DocumentPackage::write(*this, path, error))
        return false;
    m_fileLocation = path;
    markSaved();
    return true;
}

OutputPathGuard MorphDocument::outputGuard() const
{
    OutputPathGuard guard;
    if (!m_fileLocation.isEmpty())
        guard.protect(QFile::encodeName(m_fileLocation).toStdString());
    for (const TrackImage& track : m_tracks)
        if (!track.location().isEmpty())
            guard.protect(QFile::encodeName(track.location()).toStdString());
    return guard;
}

// ---- undo and notifications ----------------------------------------------------------

void MorphDocument::registerUndo(std::function<void()> action, const char* actionName)
{
    m_undoManager.registerUndo(this, std::move(action));
    if (actionName)
        m_undoManager.setActionName(actionName);
}

void MorphDocument::postObjectsUpdated()
{
    NotificationQueue::defaultQueue().enqueueAsSoonAsPossible({kObjectsUpdatedNotification, notificationObject()});
}

void MorphDocument::postSelectionUpdated()
{
    NotificationQueue::defaultQueue().enqueueAsSoonAsPossible({kSelectionUpdatedNotification, notificationObject()});
}

} // namespace plyra
