// SPDX-License-Identifier: MIT
#include "inspector/inspector_controller.h"

#include "inspector/empty_selection_view.h"
#include "inspector/inspectable_window.h"
#include "inspector/inspector.h"
#include "inspector/inspector_panel.h"
#include "inspector/inspector_selection.h"
#include "inspector/panel_placement.h"
#include "model/morph_document.h"
#include "model/morph_line.h"
#include "platform/log.h"
#include "platform/notification_center.h"

#include <QApplication>
#include <QEvent>
#include <QScreen>

namespace plyra {
namespace {

InspectorController* g_sharedController = nullptr;

// Document windows are the main windows; the panel, dialogs, sheets, popups and other
// tool windows becoming active do not change which document is in front.
bool canBecomeMainWindow(const QWidget* window)
{
    const Qt::WindowType type = window->windowType();
    return type == Qt::Window || type == Qt::Widget;
}

QWidget* documentWindowOf(QWidget* window)
{
    for (QWidget* w = window; w; w = w->parentWidget())
        if (dynamic_cast<InspectableWindow*>(w))
            return w;
    return nullptr;
}

} // namespace

InspectorController::InspectorController(QObject* parent)
    : QObject(parent)
    , m_panel(std::make_unique<InspectorPanel>())
    , m_emptySelectionView(new EmptySelectionView)
    , m_offWin(std::make_unique<QWidget>())
    , m_revertTimer([this] { revert(); })
    , m_placementSettling([] {})
{
    if (!g_sharedController)
        g_sharedController = this;
    m_inspectors.reserve(2);
    m_revertTimer.setSingleShot(true);
    m_revertTimer.setInterval(kRevertDelayMs);
    m_placementSettling.setSingleShot(true);
    m_placementSettling.setInterval(kPlacementSettleMs);
    connect(m_panel.get(), &InspectorPanel::visibilityChanged, this, &InspectorController::panelVisibilityChanged);
    m_panel->replaceContentView(m_emptySelectionView);
    observeNotifications();
    qApp->installEventFilter(this);
    if (QWidget* active = QApplication::activeWindow())
        windowActivated(active);
}

InspectorController::~InspectorController()
{
    NotificationCenter::defaultCenter().removeObserversOwnedBy(this);
    if (qApp)
        qApp->removeEventFilter(this);
    m_revertTimer.stop();
    disconnect(m_mainWindowDestroyed);
    if (g_sharedController == this)
        g_sharedController = nullptr;
}

InspectorController* InspectorController::sharedInspectorController()
{
    if (!g_sharedController) {
        auto* controller = new InspectorController;
        // The panel's widgets must go before the application object does.
        connect(qApp, &QCoreApplication::aboutToQuit, controller, [controller] { delete controller; });
    }
    return g_sharedController;
}

void InspectorController::observeNotifications()
{
    auto& center = NotificationCenter::defaultCenter();
    // Changes of the document in front only.
    const auto schedule = [this](const Notification& notification) {
        const auto* window = dynamic_cast<InspectableWindow*>(m_mainWindow.data());
        if (window && notification.object == window->documentNotificationObject())
            delayedRevert();
    };
    center.addObserver(kSelectionUpdatedNotification, schedule, this);
    center.addObserver(kObjectsUpdatedNotification, schedule, this);
    center.addObserver(kFrameTimeUpdatedNotification, schedule, this);
}

void InspectorController::registerInspector(Inspector* inspector)
{
    if (!inspector)
        return;
    m_inspectors.append(inspector);
    connect(inspector, &Inspector::helpRequested, this, &InspectorController::helpRequested, Qt::UniqueConnection);
}

bool InspectorController::isPanelVisible() const
{
    return m_panel->isVisible();
}

void InspectorController::showPanel()
{
    if (!m_panel->isVisible()) {
        m_panel->adjustSize();
        placePanel();
        m_placementSettling.start();
    }
    m_panel->show();
    m_panel->raise();
    revert();
}

void InspectorController::hidePanel()
{
    m_panel->hide();
}

void InspectorController::togglePanel()
{
    if (isPanelVisible())
        hidePanel();
    else
        showPanel();
}

void InspectorController::placePanel()
{
    QScreen* screen = m_mainWindow ? m_mainWindow->screen() : QGuiApplication::primaryScreen();
    if (!screen)
        return;
    const QRect available = screen->availableGeometry();
    const QSize size = m_panel->frameGeometry().size();
    if (const std::optional<QPoint> kept = PanelPlacement::remembered(size, available)) {
        m_panel->move(*kept);
        return;
    }
    if (m_mainWindow) {
        m_panel->move(PanelPlacement::besideWindow(m_mainWindow->frameGeometry(), size, available));
        return;
    }
    QRect frame(QPoint(), size);
    frame.moveCenter(available.center());
    m_panel->move(frame.topLeft());
}

void InspectorController::panelMoved()
{
    if (m_placementSettling.isActive())
        m_placementSettling.start();
    else
        PanelPlacement::remember(m_panel->pos());
}

QWidget* InspectorController::shownView() const
{
    return m_panel->contentView();
}

void InspectorController::delayedRevert()
{
    m_revertTimer.start();
}

void InspectorController::revert()
{
    m_revertTimer.stop();
    if (!m_panel->isVisible())
        return;
    auto* window = dynamic_cast<InspectableWindow*>(m_mainWindow.data());
    const QVariantList targets = window ? window->currentSelection() : QVariantList();
    for (const QPointer<Inspector>& inspector : std::as_const(m_inspectors)) {
        if (!inspector || !inspector->isValidInspectorForTargets(targets))
            continue;
        QWidget* view = inspector->view();
        inspector->setDocumentWindow(m_mainWindow);
        inspector->setTargets(targets);
        inspector->revert();
        showContentView(view);
        return;
    }
    if (targets.isEmpty())
        showContentView(m_emptySelectionView);
    else
        logLine(QStringLiteral("Unknown selection:%1").arg(selectionDescription(targets)).toStdString());
}

void InspectorController::showContentView(QWidget* view)
{
    if (!view || view == m_panel->contentView())
        return;
    if (QWidget* previous = m_panel->replaceContentView(view))
        previous->setParent(m_offWin.get());
    // Grow to what the new view would like; the panel never shrinks under the user.
    m_panel->resize(m_panel->size().expandedTo(m_panel->sizeHint()));
}

bool InspectorController::eventFilter(QObject* watched, QEvent* event)
{
    if (!watched->isWidgetType())
        return false;
    auto* widget = static_cast<QWidget*>(watched);
    if (widget == m_panel.get() && event->type() == QEvent::Move && m_panel->isVisible())
        panelMoved();
    else if (event->type() == QEvent::WindowActivate && widget->isWindow())
        windowActivated(widget);
    else if (event->type() == QEvent::Hide && widget == m_mainWindow && !widget->isMinimized())
        setMainWindow(nullptr);
    return false;
}

void InspectorController::windowActivated(QWidget* window)
{
    if (window == m_panel.get() || !canBecomeMainWindow(window))
        return;
    setMainWindow(documentWindowOf(window));
}

void InspectorController::setMainWindow(QWidget* window)
{
    if (window == m_mainWindow)
        return;
    disconnect(m_mainWindowDestroyed);
    m_mainWindow = window;
    if (window)
        m_mainWindowDestroyed = connect(window, &QObject::destroyed, this, &InspectorController::delayedRevert);
    offerEditActionsOf(dynamic_cast<InspectableWindow*>(window));
    delayedRevert();
}

void InspectorController::offerEditActionsOf(InspectableWindow* window)
{
    for (const QPointer<QAction>& action : std::as_const(m_editActions))
        if (action)
            m_panel->removeAction(action);
    m_editActions.clear();
    if (!window)
        return;
    for (QAction* action : window->editActions()) {
        m_panel->addAction(action);
        m_editActions.append(action);
    }
}

} // namespace plyra
