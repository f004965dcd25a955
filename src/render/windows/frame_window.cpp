// SPDX-License-Identifier: MIT
#include "render/windows/frame_window.h"

#include "render/frame_output.h"
#include "render/frame_render_controller.h"
#include "render/windows/frame_view.h"
#include "render/windows/render_settings_sheet.h"
#include "render/windows/render_toolbar.h"

#include <QSignalBlocker>
#include <QSlider>
#include <QWidgetAction>

#include <cmath>

namespace plyra {
FrameWindow::FrameWindow(MorphDocument& document, QWidget* parent)
    : FrameWindow(document, new FrameRenderController(document), parent)
{
}

FrameWindow::FrameWindow(MorphDocument& document, FrameRenderController* renderer, QWidget* parent)
    : RenderWindow(document, std::unique_ptr<RenderController>(renderer), QStringLiteral("MorphFrameController"), parent)
    , m_renderer(*renderer)
{
    setObjectName(QStringLiteral("frameWindow"));
    setAccessibleName(tr("Rendered image"));
    m_imageView = new FrameView(this);
    setCentralWidget(m_imageView);
    setResultView(m_imageView);
    m_imageView->setContentsMargins(8, 8, 8, 8);

    m_slider = new QSlider(Qt::Horizontal, this);
    m_slider->setRange(0, kSliderSteps);
    m_slider->setSingleStep(kSliderSteps / 100);
    m_slider->setPageStep(kSliderSteps / 10);
    m_slider->setValue(static_cast<int>(std::lround(time() * kSliderSteps)));
    m_slider->setMinimumWidth(50);
    m_slider->setFixedHeight(21);
    m_slider->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    m_slider->setAccessibleName(tr("Morph position"));
    m_slider->setToolTip(tr("The morph time of the frame"));
    connect(m_slider, &QSlider::valueChanged, this, &FrameWindow::takeTimeFromSlider);
    auto* sliderItem = toolbar()->addWidgetItem(QString::fromLatin1(kTimeSliderIdentifier), m_slider, tr("Morph position"), tr("Morph position"));
    static_cast<QWidgetAction*>(sliderItem)->defaultWidget()->setMinimumWidth(200);
    setToolbarItems({QString::fromLatin1(kTimeSliderIdentifier)});
    resize(600, 400 + toolbar()->sizeHint().height());
    refreshTitle();
}

float FrameWindow::time() const
{
    return renderer().time();
}

void FrameWindow::setTime(float time)
{
    if (!renderer().setTime(time))
        return;
    refreshTitle();
    delayedRecalc();
    const QSignalBlocker blocker(m_slider);
    m_slider->setValue(static_cast<int>(std::lround(time * kSliderSteps)));
    emit timeChanged(time);
}

void FrameWindow::takeTimeFromSlider(int value)
{
    setTime(static_cast<float>(value) / kSliderSteps);
}

QSize FrameWindow::viewSize() const
{
    return m_imageView->contentsRect().size();
}

void FrameWindow::showPolledResults()
{
    const std::optional<Bitmap>& bitmap = renderer().bitmap();
    // The frame is consumed once its job is done; until then the old frame stays.
    if (bitmap && renderer().morphJobs().empty())
        m_imageView->setImage(imageFromBitmap(*bitmap));
}

QString FrameWindow::windowTitleForDocumentDisplayName(const QString& name) const
{
    const double percent = static_cast<double>(time()) * 100.0;
    return tr("%1 rendered image %2%").arg(name, QString::number(percent, 'f', 0));
}

RenderSettingsSheet* FrameWindow::createSettingsSheet()
{
    return new RenderSettingsSheet(RenderSettingsSheet::Contents::FrameSize, this);
}

SaveFileTypes FrameWindow::saveFileTypes() const
{
    return {QStringLiteral("jpg"), {QStringLiteral("png"), QStringLiteral("tif"), QStringLiteral("jpeg"), QStringLiteral("tiff")},
        {tr("JPEG image (*.jpg *.jpeg)"), tr("PNG image, lossless (*.png)"), tr("TIFF image, lossless (*.tif *.tiff)")}};
}

bool FrameWindow::saveRenderedFramesToPath(const QString& path, QString* error)
{
    // JPEG, PNG or TIFF by the name's extension, as plyra-render writes them.
    return renderer().saveRenderedFrame(path, error);
}

} // namespace plyra
