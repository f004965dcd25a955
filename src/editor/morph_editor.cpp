// SPDX-License-Identifier: MIT
#include "editor/morph_editor.h"

#include "editor/editor_commands.h"
#include "editor/editor_gesture.h"
#include "editor/gesture_choice.h"
#include "editor/morph_editor_accessible.h"
#include "model/morph_document.h"
#include "model/morph_editor_data_source.h"
#include "platform/notification_center.h"
#include "platform/undo_manager.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

namespace plyra {

MorphEditor::MorphEditor(QWidget* parent)
    : QWidget(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setAcceptDrops(true);
    // The right button selects; no context menu may take its events.
    setContextMenuPolicy(Qt::PreventContextMenu);
    // Every paint fills what it repaints.
    setAttribute(Qt::WA_OpaquePaintEvent);
    MorphEditorAccessible::install();
    setAccessibleName(tr("Line editor"));
    setWhatsThis(tr("Shows one image of the morph with its lines. Click or drag to draw lines, "
                    "drag a point or a line to move it, drag with the right button to select lines; "
                    "Tab and Shift+Tab select the next and the previous line, arrow keys move the selected "
                    "lines, Delete removes them and Escape clears the selection. Drop an image file "
                    "here to use it."));
    updateAccessibleDescription();
    m_context.mapping = {static_cast<float>(width()), static_cast<float>(height())};
}

MorphEditor::~MorphEditor()
{
    NotificationCenter::defaultCenter().removeObserversOwnedBy(this);
    // The document may be gone already (its window dies after its members); a gesture
    // still running is dropped without touching it.
    m_gesture.reset();
}

void MorphEditor::setTrack(unsigned track)
{
    finishGesture();
    m_context.track = track;
    redrawAll();
}

void MorphEditor::setDataSource(MorphEditorDataSource* dataSource)
{
    if (dataSource == m_context.dataSource)
        return;
    finishGesture();
    m_context.dataSource = dataSource;
    // Changes of this document only; the editor compares what it shows with it.
    NotificationCenter& center = NotificationCenter::defaultCenter();
    center.removeObserversOwnedBy(this);
    if (dataSource)
        for (const char* name : {kObjectsUpdatedNotification, kSelectionUpdatedNotification})
            center.addObserver(name, [this](const Notification&) { documentChanged(); }, this, dataSource->notificationObject());
    redrawAll();
}

EditorCommands MorphEditor::commands() const
{
    return EditorCommands(*m_context.dataSource, m_context.track, m_context.mapping);
}

// ---- following the document --------------------------------------------------------

void MorphEditor::redrawAll()
{
    refreshImages();
    m_damage.clear();
    syncLines();
    m_lineColor = m_context.dataSource ? *m_context.dataSource->lineColor() : LineColor();
    update();
}

void MorphEditor::documentChanged()
{
    const LineColor color = m_context.dataSource ? *m_context.dataSource->lineColor() : LineColor();
    if (refreshImages() || !(color == m_lineColor)) {
        m_lineColor = color;
        m_damage.clear();
        syncLines();
        update();
        return;
    }
    syncLines();
}

bool MorphEditor::refreshImages()
{
    MorphEditorDataSource* dataSource = m_context.dataSource;
    const std::optional<DisplayImage> own = dataSource ? dataSource->imageInTrack(m_context.track) : std::nullopt;
    std::optional<DisplayImage> other;
    if (dataSource && !own)
        other = dataSource->imageInTrack(otherTrack(m_context.track));
    const ShownImages shown{own ? own->raster.cacheKey() : 0, other ? other->raster.cacheKey() : 0};
    const bool changed = !(shown == m_shownImages) || m_hasOwnImage != own.has_value()
        || m_hasOtherImage != other.has_value();
    m_shownImages = shown;
    m_hasOwnImage = own.has_value();
    m_hasOtherImage = other.has_value();
    if (own)
        m_imageCache.setImage(own->raster);
    else if (other)
        m_imageCache.setImage(other->raster);
    else
        m_imageCache.clear();
    return changed;
}

void MorphEditor::syncLines()
{
    if (!m_context.dataSource) {
        m_damage.clear();
        return;
    }
    const QRegion changed = m_damage.update(m_context.dataSource->morphLines(), m_context.dataSource->selectedLines(),
        m_context.track, m_context.mapping);
    if (!changed.isEmpty())
        update(changed);
    updateTransformFrame();
    updateAccessibleDescription();
}

void MorphEditor::updateAccessibleDescription()
{
    const std::size_t lines = m_context.dataSource ? m_context.dataSource->morphLines().size() : 0;
    const std::size_t selected = m_context.dataSource ? m_context.dataSource->selectedLines().size() : 0;
    const QString description = tr("Lines: %1, selected: %2").arg(lines).arg(selected);
    // Each change is announced to assistive technology: only real ones.
    if (description != accessibleDescription())
        setAccessibleDescription(description);
}

// ---- drawing ---------------------------------------------------------------------------

EditorScene MorphEditor::scene(const QRect& visible)
{
    EditorScene scene;
    scene.mapping = m_context.mapping;
    scene.track = m_context.track;
    scene.background = palette().color(QPalette::Base);
    scene.visibleRect = visible;
    const bool darkBackground = scene.background.lightnessF() < 0.5f;
    scene.hintColor = darkBackground ? QColor::fromRgbF(0.8f, 0.8f, 0.8f, 0.5f) : QColor::fromRgbF(0.2f, 0.2f, 0.2f, 0.5f);
    if (m_imageCache.hasImage()) {
        scene.image = &m_imageCache;
        scene.imageOpacity = m_hasOwnImage ? 1.0 : 0.5;
    }
    if (!m_hasOwnImage)
        scene.hint = m_hasOtherImage ? tr("Drop an image here, or leave blank to just distort the first image.")
                                     : tr("Drop an image here.");
    if (MorphEditorDataSource* dataSource = m_context.dataSource) {
        scene.lines = &dataSource->morphLines();
        scene.selectedLines = &dataSource->selectedLines();
        scene.lineColor = dataSource->lineColor()->toQColor();
    }
    if (m_gesture) {
        scene.overlay = m_gesture->overlay();
        scene.selectionRect = m_gesture->selectionRect();
        scene.antialiased = !m_gesture->drawsRoughly();
    }
    if (const std::optional<TransformFrame> frame = shownTransformFrame())
        scene.transformFrame = frame->box();
    if (m_dropHighlight)
        scene.dropHighlight = palette().color(QPalette::Highlight);
    else if (hasFocus())
        scene.focusFrame = palette().color(QPalette::Highlight);
    return scene;
}

void MorphEditor::paintEvent(QPaintEvent* event)
{
    QPainter painter(this);
    m_painter.paint(painter, event->region(), scene(visibleRegion().boundingRect()));
}

void MorphEditor::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    m_context.mapping = {static_cast<float>(width()), static_cast<float>(height())};
    m_damage.clear();
    syncLines();
    update();
}

QSize MorphEditor::sizeHint() const
{
    // The track's image, else the other one (an empty editor sized like its neighbour).
    if (MorphEditorDataSource* dataSource = m_context.dataSource) {
        for (unsigned track : {m_context.track, otherTrack(m_context.track)})
            if (const std::optional<DisplayImage> image = dataSource->imageInTrack(track))
                return image->raster.size();
    }
    return QSize(400, 300);
}

// ---- events and gestures -----------------------------------------------------------

bool MorphEditor::event(QEvent* event)
{
    // Keys the editor acts on reach it before any shortcut of the window.
    if (event->type() == QEvent::ShortcutOverride) {
        auto* key = static_cast<QKeyEvent*>(event);
        if (claimsKey(key->key())) {
            key->accept();
            return true;
        }
    }
    return QWidget::event(event);
}

bool MorphEditor::claimsKey(int key) const
{
    if (!m_context.dataSource)
        return false;
    if (m_gesture && m_gesture->tracksKeys()
        && (key == Qt::Key_Escape || key == Qt::Key_Return || key == Qt::Key_Enter))
        return true;
    const bool selection = !m_context.dataSource->selectedLines().empty();
    return selection && (EditorCommands::isArrowKey(key) || EditorCommands::isDeleteKey(key) || key == Qt::Key_Escape);
}

GestureEvent MorphEditor::gestureEvent(const QMouseEvent& event, bool press) const
{
    using Type = GestureEvent::Type;
    GestureEvent result;
    result.location = m_context.mapping.fromWidget(event.position());
    result.modifiers = event.modifiers();
    if (press)
        result.type = event.button() == Qt::RightButton ? Type::RightDown : Type::LeftDown;
    else if (event.type() == QEvent::MouseButtonRelease)
        result.type = event.button() == Qt::RightButton ? Type::RightUp : Type::LeftUp;
    else if (event.buttons() & Qt::LeftButton)
        result.type = Type::LeftDragged;
    else if (event.buttons() & Qt::RightButton)
        result.type = Type::RightDragged;
    else
        result.type = Type::MouseMoved;
    return result;
}

void MorphEditor::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton || event->button() == Qt::RightButton)
        dispatch(gestureEvent(*event, true));
}

void MorphEditor::mouseDoubleClickEvent(QMouseEvent* event)
{
    // The second press of a quick double click: to a chain of lines, just a press.
    mousePressEvent(event);
}

void MorphEditor::mouseMoveEvent(QMouseEvent* event)
{
    if (m_gesture)
        dispatch(gestureEvent(*event, false));
    else
        updateHoverCursor(m_context.mapping.fromWidget(event->position()));
}

void MorphEditor::mouseReleaseEvent(QMouseEvent* event)
{
    if (m_gesture && (event->button() == Qt::LeftButton || event->button() == Qt::RightButton))
        dispatch(gestureEvent(*event, false));
}

void MorphEditor::keyPressEvent(QKeyEvent* event)
{
    // Keys end here, whether they act or not.
    event->accept();
    GestureEvent key;
    key.type = GestureEvent::Type::KeyDown;
    key.key = event->key();
    key.modifiers = event->modifiers();
    key.timestamp = event->timestamp();
    dispatch(key);
}

void MorphEditor::dispatch(const GestureEvent& event)
{
    if (!m_context.dataSource)
        return;
    if (!m_gesture) {
        if (event.type == GestureEvent::Type::LeftDown || event.type == GestureEvent::Type::RightDown)
            startGesture(event);
        else if (event.isKey())
            keyCommand(event);
        return;
    }
    if (event.isKey() && !m_gesture->tracksKeys()) {
        commands().keyDown(event.key, event.modifiers);
        syncLines();
        return;
    }
    m_gesture->handle(event);
    afterGestureEvent();
}

void MorphEditor::keyCommand(const GestureEvent& event)
{
    MorphEditorDataSource& dataSource = *m_context.dataSource;
    const auto keyDown = [&] { commands().keyDown(event.key, event.modifiers); };
    if (event.key == Qt::Key_Escape)
        commands().selectNone();
    else if (EditorCommands::isArrowKey(event.key) && !dataSource.selectedLines().empty())
        m_nudges.nudge(dataSource.undoManager(), dataSource.selectedLines(), event.timestamp, keyDown);
    else
        keyDown();
    syncLines();
}

bool MorphEditor::focusNextPrevChild(bool next)
{
    // Tab and Shift+Tab walk through the lines, so that the keyboard reaches each one;
    // past the last (or before the first) they leave the editor as usual.
    if (m_context.dataSource && hasFocus()) {
        finishGesture();
        if (commands().selectAdjacentLine(next)) {
            syncLines();
            ensureSelectionVisible();
            return true;
        }
    }
    return QWidget::focusNextPrevChild(next);
}

void MorphEditor::startGesture(const GestureEvent& press)
{
    m_gesture = chooseGesture(m_context, press);
    if (!m_gesture)
        return;
    // One gesture is one undo step, however many passes of the event loop it spans.
    m_context.dataSource->undoManager().beginUndoGrouping();
    // Pointer moves without a button reach the editor only while it tracks the mouse; a
    // chain of lines needs them for its rubber band. The setting is put back whenever
    // the gesture ends, since nothing else of the editor uses those moves.
    m_savedMouseTracking = hasMouseTracking();
    if (m_gesture->tracksPointerWithoutButton())
        setMouseTracking(true);
    afterGestureEvent();
}

void MorphEditor::afterGestureEvent()
{
    syncLines();
    updateOverlay();
    if (m_gesture->isFinished())
        endGesture();
}

void MorphEditor::updateOverlay()
{
    QRect area;
    if (m_gesture && !m_gesture->isFinished()) {
        if (const std::optional<LineEnds> overlay = m_gesture->overlay())
            area = EditorPainter::segmentRect(m_context.mapping, *overlay);
        area |= EditorPainter::selectionRectArea(m_context.mapping, m_gesture->selectionRect());
    }
    if (area != m_overlayArea) {
        update(QRegion(m_overlayArea) | area);
        m_overlayArea = area;
    }
}

void MorphEditor::endGesture()
{
    m_gesture.reset();
    m_context.dataSource->undoManager().endUndoGrouping();
    setMouseTracking(m_savedMouseTracking);
    update();
    updateTransformFrame();
}

void MorphEditor::finishGesture()
{
    if (!m_gesture)
        return;
    m_gesture->finish();
    afterGestureEvent();
}

void MorphEditor::hideEvent(QHideEvent* event)
{
    finishGesture();
    QWidget::hideEvent(event);
}

void MorphEditor::focusInEvent(QFocusEvent* event)
{
    update(visibleRegion()); // the focus frame
    QWidget::focusInEvent(event);
}

void MorphEditor::focusOutEvent(QFocusEvent* event)
{
    // Events would go elsewhere from now on: a chain of lines ends here.
    finishGesture();
    update(visibleRegion());
    QWidget::focusOutEvent(event);
}

void MorphEditor::moveEvent(QMoveEvent* event)
{
    // Scrolling moves the editor in its scroll area: the focus frame is drawn around the
    // visible part, which has changed.
    if (hasFocus())
        update(visibleRegion());
    QWidget::moveEvent(event);
}

} // namespace plyra
