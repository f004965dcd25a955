// SPDX-License-Identifier: MIT
#include "render/windows/render_window.h"

#include "model/morph_document.h"
#include "render/render_controller.h"
#include "render/windows/progress_pie.h"
#include "render/windows/render_scheduler.h"
#include "render/windows/render_settings_sheet.h"
#include "render/windows/render_toolbar.h"
#include "widgets/screen_change.h"

#include <QAction>
#include <QCloseEvent>
#include <QIcon>
#include <QShowEvent>

#include <cmath>

namespace plyra {

RenderWindow::RenderWindow(MorphDocument& document, std::unique_ptr<RenderController> controller,
    const QString& toolbarIdentifier, QWidget* parent)
    : QMainWindow(parent, Qt::Window)
    , m_document(document)
    , m_controller(std::move(controller))
    , m_scheduler(new RenderScheduler(*m_controller, this))
    , m_displayName(tr("Untitled"))
{
    setAttribute(Qt::WA_DeleteOnClose, false);
    connect(m_scheduler, &RenderScheduler::recalcRequested, this, &RenderWindow::recalc);
    connect(m_scheduler, &RenderScheduler::polled, this, &RenderWindow::polled);
    buildToolbar(toolbarIdentifier);
    auto* close = new QAction(tr("Close"), this);
    close->setShortcut(QKeySequence::Close);
    connect(close, &QAction::triggered, this, &QWidget::close);
    addAction(close);
    followScreenChanges(this, [this] { screenChanged(); });
}

RenderWindow::~RenderWindow()
{
    m_scheduler->stop();
}

void RenderWindow::buildToolbar(const QString& identifier)
{
    m_toolbar = new RenderToolbar(identifier, this);
    addToolBar(m_toolbar);
    connect(m_toolbar->progressIndicator(), &ProgressPie::clicked, this, &RenderWindow::recalc);
    m_saveAction = new QAction(QIcon(QStringLiteral(":/render/save.svg")), tr("Save"), this);
    m_saveAction->setToolTip(tr("Save the rendered result"));
    m_saveAction->setShortcut(QKeySequence::Save);
    connect(m_saveAction, &QAction::triggered, this, &RenderWindow::save);
    m_toolbar->addItem(QString::fromLatin1(RenderToolbar::kSaveIdentifier), m_saveAction, tr("Save"), tr("Save"));
    auto* settingsItem = new QAction(QIcon(QStringLiteral(":/render/settings.svg")), tr("Settings"), this);
    settingsItem->setToolTip(tr("Change the render settings"));
    connect(settingsItem, &QAction::triggered, this, &RenderWindow::showSettings);
    m_toolbar->addItem(QString::fromLatin1(RenderToolbar::kSettingsIdentifier), settingsItem, tr("Settings"), tr("Settings"));
    // The shortcuts work also while the user keeps the items out of the toolbar.
    addActions({m_saveAction, settingsItem});
    setToolbarItems({});
    validateToolbar();
}

void RenderWindow::setToolbarItems(const QStringList& ownItems)
{
    QStringList items{QString::fromLatin1(RenderToolbar::kProgressIdentifier), QString::fromLatin1(RenderToolbar::kSaveIdentifier)};
    items += ownItems;
    items.append(QString::fromLatin1(RenderToolbar::kSettingsIdentifier));
    const QStringList spacers{QLatin1String(RenderToolbar::kSeparator), QLatin1String(RenderToolbar::kSpace),
        QLatin1String(RenderToolbar::kFlexibleSpace)};
    m_toolbar->setItemSets(items, items + spacers);
}

void RenderWindow::setResultView(QWidget* view)
{
    m_resultView = view;
    view->installEventFilter(this);
}

void RenderWindow::setDocumentDisplayName(const QString& name)
{
    m_displayName = name;
    refreshTitle();
}

void RenderWindow::refreshTitle()
{
    setWindowTitle(windowTitleForDocumentDisplayName(m_displayName));
}

void RenderWindow::validateToolbar()
{
    // Save only a complete result; the indicator runs while frames are outstanding.
    const float done = progress();
    m_saveAction->setEnabled(std::fabs(done - 1.0f) < 0.0001f);
    m_toolbar->progressIndicator()->setFraction(done);
    m_toolbar->progressIndicator()->setEnabled(std::fabs(done - 1.0f) > 0.0001f);
}

// ---- settings ---------------------------------------------------------------------------

void RenderWindow::setNumberOfFrames(std::uint32_t frames)
{
    if (m_controller->settings().setNumberOfFrames(frames))
        delayedRecalc();
}

void RenderWindow::setFramesPerSecond(float fps)
{
    if (m_controller->settings().setFramesPerSecond(fps))
        delayedRecalc();
}

void RenderWindow::setFrameSize(FrameSize size)
{
    if (m_controller->settings().setFrameSize(size))
        delayedRecalc();
}

void RenderWindow::setTimeRange(MorphTimeRange range)
{
    if (m_controller->settings().setTimeRange(range))
        delayedRecalc();
}

void RenderWindow::setReverse(bool reverse)
{
    if (m_controller->settings().setReverse(reverse))
        delayedRecalc();
}

void RenderWindow::setSizeToView(bool sizeToView)
{
    m_controller->settings().setSizeToView(sizeToView);
}

bool RenderWindow::sizesToView() const
{
    return m_controller->settings().sizesToView();
}

FrameRatioMode RenderWindow::frameRatioMode() const
{
    return m_controller->settings().frameRatioMode();
}

FrameSize RenderWindow::frameSize()
{
    return m_controller->frameSize();
}

float RenderWindow::progress() const
{
    return m_controller->progress();
}

QSize RenderWindow::viewSize() const
{
    return m_resultView ? m_resultView->size() : centralWidget() ? centralWidget()->size() : size();
}

QSize RenderWindow::viewPixelSize() const
{
    const QWidget* view = m_resultView ? m_resultView : this;
    return (QSizeF(viewSize()) * view->devicePixelRatioF()).toSize();
}

void RenderWindow::resizeToView()
{
    // Frames are made in device pixels, so that the views draw them pixel for pixel.
    const QSize view = viewPixelSize();
    if (view.width() < 1 || view.height() < 1)
        return; // not laid out yet
    const FrameRatioMode mode = frameRatioMode();
    const unsigned track = ratioTrack(mode).value_or(0);
    const std::optional<DisplayImage> image = ratioTrack(mode) ? m_document.imageInTrack(track) : std::nullopt;
    const float imageRatio = image && image->raster.height() > 0
        ? static_cast<float>(image->raster.width()) / static_cast<float>(image->raster.height())
        : 1.0f;
    setFrameSize(frameSizeForView({static_cast<float>(view.width()), static_cast<float>(view.height())}, mode,
        image.has_value(), imageRatio, m_document.aspectRatioInTrack(track)));
}

void RenderWindow::resizeToViewIfSizesToView()
{
    if (sizesToView())
        resizeToView();
}

// ---- render cycle -----------------------------------------------------------------------

void RenderWindow::delayedRecalc()
{
    m_scheduler->delayedRecalc();
}

bool RenderWindow::documentHasImage() const
{
    return m_document.ciimageInTrack(0) || m_document.ciimageInTrack(1);
}

void RenderWindow::recalc()
{
    if (!isVisible() || !documentHasImage())
        return; // hidden windows do no work; without an image there is nothing to render
    takeDocumentSettings();
    resizeToViewIfSizesToView();
    // After the resize, whose new size would otherwise ask for a second render.
    m_scheduler->cancelDelayedRecalc();
    if (!startRender())
        return;
    m_scheduler->startPolling();
    refreshTitle();
    validateToolbar();
    emit renderStarted();
}

bool RenderWindow::startRender()
{
    return m_controller->recalc();
}

void RenderWindow::polled()
{
    showPolledResults();
    validateToolbar();
}

void RenderWindow::showEvent(QShowEvent* event)
{
    QMainWindow::showEvent(event);
    // A window restored from the task bar shows what it had; only showing it anew renders.
    if (event->spontaneous())
        return;
    m_scheduler->setObservingDocument(true);
    delayedRecalc();
    refreshTitle();
}

void RenderWindow::closeEvent(QCloseEvent* event)
{
    if (!mayDiscardResult()) {
        event->ignore();
        return;
    }
    m_scheduler->stop();
    m_scheduler->setObservingDocument(false);
    windowClosed();
    validateToolbar();
    event->accept();
}

bool RenderWindow::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_resultView && event->type() == QEvent::Resize)
        resizeToViewIfSizesToView();
    return QMainWindow::eventFilter(watched, event);
}

// ---- saving -----------------------------------------------------------------------------

namespace {

RenderWindow::UnsavedResultQuestion& unsavedResultQuestionHook()
{
    static RenderWindow::UnsavedResultQuestion question;
    return question;
}

} // namespace

void RenderWindow::setUnsavedResultQuestion(UnsavedResultQuestion question)
{
    unsavedResultQuestionHook() = std::move(question);
}

bool RenderWindow::mayDiscardResult()
{
    if (!hasUnsavedResult())
        return true;
    raise();
    activateWindow();
    const UnsavedResultQuestion& hook = unsavedResultQuestionHook();
    using Answer = RenderSaveDialog::UnsavedResultAnswer;
    const Answer answer = hook ? hook(*this)
                               : RenderSaveDialog::askToSaveResult(this, unsavedResultQuestion(m_displayName));
    if (answer != Answer::Save)
        return answer == Answer::DontSave;
    const QString path = RenderSaveDialog::askPath(this, m_documentPath, saveFileTypes());
    return !path.isEmpty() && saveToPath(path);
}

void RenderWindow::save()
{
    RenderSaveDialog::run(this, m_documentPath, saveFileTypes(), [this](const QString& path) { saveToPath(path); });
}

bool RenderWindow::saveToPath(const QString& path)
{
    // The controllers refuse a device, the document's package and its images.
    QString reason;
    if (saveRenderedFramesToPath(path, &reason))
        return true;
    RenderSaveDialog::showSaveFailedAlert(this, path, reason);
    return false;
}

// ---- settings sheet ---------------------------------------------------------------------

RenderSettingsSheet* RenderWindow::settingsSheet()
{
    if (!m_sheet) {
        m_sheet = createSettingsSheet();
        connect(m_sheet, &QDialog::finished, this, &RenderWindow::settingsSheetDidEnd);
    }
    return m_sheet;
}

SheetSettings RenderWindow::sheetSettings()
{
    const RenderSettings& settings = m_controller->settings();
    const FrameSize size = frameSize();
    SheetSettings sheet;
    sheet.numberOfFrames = settings.numberOfFrames();
    sheet.framesPerSecond = settings.framesPerSecond();
    sheet.reverse = settings.reverse();
    sheet.frameWidth = static_cast<int>(size.width);
    sheet.frameHeight = static_cast<int>(size.height);
    sheet.frameRatioMode = settings.frameRatioMode();
    sheet.sizeToView = settings.sizesToView();
    return sheet;
}

void RenderWindow::showSettings()
{
    RenderSettingsSheet* sheet = settingsSheet();
    sheet->load(sheetSettings(), {m_document.aspectRatioInTrack(0), m_document.aspectRatioInTrack(1)},
                m_document.frameSize().toSize());
    prepareSettingsSheet();
    sheet->open();
}

void RenderWindow::settingsSheetDidEnd(int result)
{
    if (result == QDialog::Accepted)
        applySheetSettings();
}

void RenderWindow::applySheetSettings()
{
    const SheetSettings values = m_sheet->values();
    if (values.numberOfFrames)
        setNumberOfFrames(*values.numberOfFrames);
    if (values.framesPerSecond)
        setFramesPerSecond(*values.framesPerSecond);
    if (!values.sizeToView)
        setFrameSize({static_cast<float>(values.frameWidth), static_cast<float>(values.frameHeight)});
    m_controller->settings().setFrameRatioMode(values.frameRatioMode);
    setSizeToView(values.sizeToView);
    if (values.reverse)
        setReverse(*values.reverse);
    resizeToViewIfSizesToView();
}

} // namespace plyra
