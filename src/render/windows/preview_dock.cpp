// SPDX-License-Identifier: MIT
#include "render/windows/preview_dock.h"

#include "model/morph_document.h"
#include "platform/notification_center.h"
#include "render/windows/preview_strip_render.h"
#include "render/windows/preview_strip_view.h"
#include "render/windows/render_scheduler.h"
#include "widgets/screen_change.h"

#include <QMainWindow>

#include <algorithm>

namespace plyra {

PreviewDock::PreviewDock(MorphDocument& document, QWidget* parent)
    : QDockWidget(tr("Preview"), parent)
    , m_document(document)
    , m_render(std::make_unique<PreviewStripRender>(document))
    , m_scheduler(new RenderScheduler(*m_render, this))
{
    setObjectName(QStringLiteral("previewDock"));
    setAccessibleName(tr("Preview strip"));
    setAllowedAreas(Qt::AllDockWidgetAreas);
    m_strip = new PreviewStripView(document, *m_render, this);
    setWidget(m_strip);
    connect(m_scheduler, &RenderScheduler::recalcRequested, this, &PreviewDock::recalc);
    connect(m_scheduler, &RenderScheduler::polled, this, [this] {
        m_strip->update();
        emit cellsFilled();
    });
    connect(m_strip, &PreviewStripView::cellSizeChanged, this, &PreviewDock::cellSizeChanged);
    // Cells are computed in device pixels: a screen of another scale needs new ones.
    followScreenChanges(m_strip, [this] { cellSizeChanged(); });
    connect(this, &QDockWidget::visibilityChanged, this, &PreviewDock::openChanged);
    connect(this, &QDockWidget::dockLocationChanged, this, &PreviewDock::orientationChanged);
    m_scheduler->setObservingDocument(true);
    // The lines over the cells follow every edit at once, and the colour with them.
    NotificationCenter& center = NotificationCenter::defaultCenter();
    for (const char* name : {kObjectsUpdatedNotification, kSelectionUpdatedNotification})
        center.addObserver(name, [this](const Notification&) { m_strip->update(); }, this, document.notificationObject());
}

PreviewDock::~PreviewDock()
{
    NotificationCenter::defaultCenter().removeObserversOwnedBy(this);
    m_scheduler->stop();
}

void PreviewDock::toggle()
{
    setVisible(!isVisible());
    keepToAThirdOfTheWindow();
    m_scheduler->delayedRecalc();
}

void PreviewDock::showStrip()
{
    show();
    keepToAThirdOfTheWindow();
    m_scheduler->delayedRecalc();
}

void PreviewDock::keepToAThirdOfTheWindow()
{
    auto* window = qobject_cast<QMainWindow*>(parentWidget());
    if (!window || !isVisible() || isFloating())
        return;
    // The editors keep most of the window.
    const bool beside = m_strip->isVertical();
    const int room = (beside ? window->width() : window->height()) / 3;
    const int wanted = beside ? sizeHint().width() : sizeHint().height();
    window->resizeDocks({this}, {std::min(wanted, room)}, beside ? Qt::Horizontal : Qt::Vertical);
}

void PreviewDock::setCellCount(int count)
{
    m_render->setCellCount(std::max(count, 2));
    m_strip->updateGeometry();
    m_strip->update();
    m_scheduler->delayedRecalc();
}

void PreviewDock::recalc()
{
    if (!isOpen())
        return; // a closed strip computes nothing
    if (!m_document.ciimageInTrack(0) && !m_document.ciimageInTrack(1))
        return;
    const QSize cell = cellPixelSize();
    if (cell.width() < 1 || cell.height() < 1)
        return;
    m_render->setCellSize({static_cast<float>(cell.width()), static_cast<float>(cell.height())});
    m_scheduler->cancelDelayedRecalc();
    if (!m_render->recalc())
        return;
    m_scheduler->startPolling();
    m_strip->update();
    emit renderStarted();
}

QSize PreviewDock::cellPixelSize() const
{
    // Cells are computed in device pixels, so that they are as sharp as the screen.
    return (QSizeF(m_strip->cellSize()) * m_strip->devicePixelRatioF()).toSize();
}

void PreviewDock::cellSizeChanged()
{
    const QSize cell = cellPixelSize();
    const FrameSize current = m_render->cellSize();
    if (cell.width() != static_cast<int>(current.width) || cell.height() != static_cast<int>(current.height))
        m_scheduler->delayedRecalc();
}

void PreviewDock::openChanged(bool open)
{
    if (open)
        m_scheduler->delayedRecalc();
}

void PreviewDock::orientationChanged(Qt::DockWidgetArea area)
{
    m_strip->setVertical(area == Qt::LeftDockWidgetArea || area == Qt::RightDockWidgetArea);
}

} // namespace plyra
