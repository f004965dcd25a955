// SPDX-License-Identifier: MIT
#include "render/windows/frame_window.h"

#include "model/morph_document.h"
#include "render/frame_output.h"
#include "render/frame_render_controller.h"
#include "render/windows/frame_view.h"
#include "render/windows/render_settings_sheet.h"
#include "render/windows/render_toolbar.h"

#include <QDoubleSpinBox>
#include <QLineEdit>
#include <QSignalBlocker>
#include <QSlider>
#include <QWidgetAction>

#include <cmath>

namespace plyra {
namespace {

/// A number with the decimals it needs, in the locale's form: "40", "40,5", not "40,500".
QString trimmedNumber(const QLocale& locale, double value, int decimals)
{
    QString text = locale.toString(value, 'f', decimals);
    const QString point = locale.decimalPoint();
    if (!text.contains(point))
        return text;
    while (text.endsWith(QLatin1Char('0')))
        text.chop(1);
    if (text.endsWith(point))
        text.chop(point.size());
    return text;
}

/// The time field: a percentage shown with the decimals it needs.
class PercentField : public QDoubleSpinBox {
public:
    explicit PercentField(const QString& accessibleName, QWidget* parent)
        : QDoubleSpinBox(parent)
    {
        setAccessibleName(accessibleName);
        lineEdit()->setAccessibleName(accessibleName);
    }

    QString textFromValue(double value) const override { return trimmedNumber(locale(), value, decimals()); }
};

} // namespace

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

    buildTimeControls();
    resize(600, 400 + toolbar()->sizeHint().height());
    refreshTitle();
}

void FrameWindow::buildTimeControls()
{
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
    m_timeField = new PercentField(tr("Morph time in percent"), this);
    m_timeField->setRange(0.0, 100.0);
    m_timeField->setDecimals(3);
    m_timeField->setSuffix(tr(" %"));
    m_timeField->setValue(static_cast<double>(time()) * 100.0);
    // The frame follows a typed time once it is complete, not every keystroke.
    m_timeField->setKeyboardTracking(false);
    m_timeField->setToolTip(tr("The exact morph time of the frame, from 0 % (the first image) to 100 % (the last)"));
    connect(m_timeField, &QDoubleSpinBox::valueChanged, this, &FrameWindow::takeTimeFromField);
    auto* sliderItem = toolbar()->addWidgetItem(QString::fromLatin1(kTimeSliderIdentifier), m_slider, tr("Morph position"), tr("Morph position"));
    static_cast<QWidgetAction*>(sliderItem)->defaultWidget()->setMinimumWidth(200);
    toolbar()->addWidgetItem(QString::fromLatin1(kTimeFieldIdentifier), m_timeField, tr("Time"), tr("Morph time"));
    // Between Save and Settings: the slider, and the field beside it.
    setToolbarItems({QString::fromLatin1(kTimeSliderIdentifier), QString::fromLatin1(kTimeFieldIdentifier)});
}

float FrameWindow::time() const
{
    return renderer().time();
}

void FrameWindow::setTime(float time)
{
    if (renderer().setTime(time))
        followTime(time);
}

void FrameWindow::setExactTime(float time)
{
    if (renderer().setExactTime(time))
        followTime(time);
}

void FrameWindow::followTime(float time)
{
    refreshTitle();
    delayedRecalc();
    const QSignalBlocker sliderBlocker(m_slider);
    m_slider->setValue(static_cast<int>(std::lround(time * kSliderSteps)));
    const QSignalBlocker fieldBlocker(m_timeField);
    m_timeField->setValue(static_cast<double>(time) * 100.0);
    emit timeChanged(time);
}

void FrameWindow::takeTimeFromSlider(int value)
{
    setTime(static_cast<float>(value) / kSliderSteps);
}

void FrameWindow::takeTimeFromField(double percent)
{
    // As plyra-render reads --time: the fraction in double precision, then a float.
    setExactTime(static_cast<float>(percent / 100.0));
}

QString FrameWindow::percentText(float time) const
{
    return trimmedNumber(locale(), static_cast<double>(time) * 100.0, m_timeField->decimals());
}

void FrameWindow::setUsesDocumentFrameSize(bool on)
{
    if (on == m_documentFrameSize)
        return;
    m_documentFrameSize = on;
    delayedRecalc();
}

void FrameWindow::takeDocumentSettings()
{
    if (!m_documentFrameSize)
        return;
    const QSizeF size = document().frameSize();
    controller().settings().setSizeToView(false);
    if (size.width() >= 1.0 && size.height() >= 1.0)
        controller().settings().setFrameSize({static_cast<float>(size.width()), static_cast<float>(size.height())});
}

SheetSettings FrameWindow::sheetSettings()
{
    SheetSettings settings = RenderWindow::sheetSettings();
    settings.documentFrameSize = m_documentFrameSize;
    return settings;
}

void FrameWindow::applySheetSettings()
{
    m_documentFrameSize = settingsSheet()->values().documentFrameSize.value_or(false);
    RenderWindow::applySheetSettings();
    if (m_documentFrameSize)
        delayedRecalc();
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
    return tr("%1 rendered image %2%").arg(name, percentText(time()));
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
