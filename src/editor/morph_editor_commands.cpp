// SPDX-License-Identifier: MIT
// The editor's selection commands, centring and fitting into its scroll area, and the
// dropping of image files.
#include "editor/morph_editor.h"

#include "editor/editor_commands.h"
#include "editor/image_drop.h"
#include "model/morph_editor_data_source.h"

#include <QAbstractScrollArea>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileInfo>
#include <QScrollBar>
#include <QStyle>

#include <cmath>

namespace plyra {

void MorphEditor::runCommand(void (EditorCommands::*command)())
{
    if (!m_context.dataSource)
        return;
    EditorCommands editorCommands = commands();
    (editorCommands.*command)();
    syncLines();
}

void MorphEditor::selectAll()
{
    runCommand(&EditorCommands::selectAll);
}

void MorphEditor::selectNone()
{
    runCommand(&EditorCommands::selectNone);
}

void MorphEditor::selectAttachedLines()
{
    runCommand(&EditorCommands::selectAttachedLines);
}

void MorphEditor::clear()
{
    runCommand(&EditorCommands::clear);
}

void MorphEditor::ensureSelectionVisible()
{
    const QRectF selection = rectOfSelectedLines();
    const QRectF widgetBox(selection.x(), height() - selection.y() - selection.height(), selection.width(),
        selection.height());
    if (!visibleRegion().boundingRect().contains(widgetBox.toAlignedRect()))
        centerSelectionInVisibleArea();
}

QRectF MorphEditor::rectOfSelectedLines() const
{
    if (!m_context.dataSource)
        return {};
    const ViewRect r = commands().rectOfSelectedLines();
    return QRectF(r.x, r.y, r.width, r.height);
}

// ---- scrolling and fitting -----------------------------------------------------------

QAbstractScrollArea* MorphEditor::scrollArea() const
{
    QWidget* viewport = parentWidget();
    if (!viewport)
        return nullptr;
    auto* area = qobject_cast<QAbstractScrollArea*>(viewport->parentWidget());
    return area && area->viewport() == viewport ? area : nullptr;
}

void MorphEditor::scrollTo(double x, double y)
{
    // (x, y) is the bottom-left corner of the visible part in view units; the scroll
    // bars count from the top left.
    QAbstractScrollArea* area = scrollArea();
    const int clipHeight = area->viewport()->height();
    area->horizontalScrollBar()->setValue(static_cast<int>(x));
    area->verticalScrollBar()->setValue(static_cast<int>(height() - clipHeight - y));
}

void MorphEditor::centerSelectionInVisibleArea()
{
    QAbstractScrollArea* area = scrollArea();
    if (!area)
        return;
    const QRectF r = rectOfSelectedLines();
    const QSize clip = area->viewport()->size();
    // Only the width counts: a selection of vertical lines is as good as none here.
    if (r.width() < 0.001 || clip.width() > width() || clip.height() > height()) {
        scrollTo(0.0, 0.0);
        return;
    }
    scrollTo(std::rint(r.x() + r.width() * 0.5 - clip.width() * 0.5),
        std::rint(r.y() + r.height() * 0.5 - clip.height() * 0.5));
}

QSizeF MorphEditor::fittedSize(QSizeF imageSize, QSizeF contentSize)
{
    const double w = imageSize.width();
    const double h = imageSize.height();
    const double cw = contentSize.width();
    const double ch = contentSize.height();
    if (w <= 0.0 || h <= 0.0 || ch <= 0.0)
        return contentSize;
    if (w / h > cw / ch)
        return QSizeF(cw, h * cw / w);
    return QSizeF(w * ch / h, ch);
}

QSizeF MorphEditor::contentSizeOf(const QAbstractScrollArea& scrollArea)
{
    // Scroll bars shown as needed take no room from an editor that fits.
    QSizeF size = QSizeF(scrollArea.size()) - QSizeF(2.0 * scrollArea.frameWidth(), 2.0 * scrollArea.frameWidth());
    const int vertical = scrollArea.style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, scrollArea.verticalScrollBar());
    const int horizontal
        = scrollArea.style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, scrollArea.horizontalScrollBar());
    if (scrollArea.verticalScrollBarPolicy() == Qt::ScrollBarAlwaysOn)
        size.rwidth() -= vertical;
    if (scrollArea.horizontalScrollBarPolicy() == Qt::ScrollBarAlwaysOn)
        size.rheight() -= horizontal;
    return size.expandedTo(QSizeF(0.0, 0.0));
}

std::optional<QSizeF> MorphEditor::imageSize() const
{
    if (!m_context.dataSource)
        return std::nullopt;
    const std::optional<DisplayImage> image = m_context.dataSource->imageInTrack(m_context.track);
    return image ? std::optional<QSizeF>(image->size()) : std::nullopt;
}

// ---- dropping image files ----------------------------------------------------------

void MorphEditor::dragEnterEvent(QDragEnterEvent* event)
{
    QString reason;
    const std::optional<QString> file = ImageDrop::droppedFile(*event->mimeData(), &reason);
    if (file && ImageDrop::looksLikeImage(*file, &reason) && m_context.dataSource) {
        event->setDropAction(Qt::CopyAction);
        event->accept();
        m_dropHighlight = true;
        update(visibleRegion());
        return;
    }
    event->ignore();
    if (!reason.isEmpty())
        emit statusMessageRequested(reason);
}

void MorphEditor::dragMoveEvent(QDragMoveEvent* event)
{
    event->setDropAction(Qt::CopyAction);
    event->accept();
}

void MorphEditor::dragLeaveEvent(QDragLeaveEvent* event)
{
    m_dropHighlight = false;
    update(visibleRegion());
    QWidget::dragLeaveEvent(event);
}

void MorphEditor::dropEvent(QDropEvent* event)
{
    m_dropHighlight = false;
    update(visibleRegion());
    const std::optional<QString> file = ImageDrop::droppedFile(*event->mimeData());
    if (!file || !m_context.dataSource) {
        event->ignore();
        return;
    }
    if (useImageFile(*file)) {
        event->setDropAction(Qt::CopyAction);
        event->accept();
        return;
    }
    event->ignore();
}

bool MorphEditor::useImageFile(const QString& path)
{
    if (!m_context.dataSource)
        return false;
    finishGesture();
    QString error;
    if (m_context.dataSource->setImageFromFile(path, m_context.track, &error)) {
        emit statusMessageRequested(QString()); // an earlier refusal no longer applies
        return true;
    }
    emit statusMessageRequested(tr("“%1” could not be used as the image: %2").arg(QFileInfo(path).fileName(), error));
    return false;
}

} // namespace plyra
