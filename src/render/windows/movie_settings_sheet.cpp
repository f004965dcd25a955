// SPDX-License-Identifier: MIT
#include "render/windows/movie_settings_sheet.h"

#include "render/movie_codecs.h"
#include "render/movie_schedule.h"

#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QDoubleValidator>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>

#include <algorithm>
#include <iterator>

namespace plyra {
namespace {

constexpr const char* kChoiceContext = "plyra::MovieSettingsSheet";
// The rows of the frame size: size to window, fixed size, ratio.
constexpr int kSizeRows = 3;

// The titles of the codec and quality tables, for the translators: the tables live in
// the render layer, which shows no text of its own.
[[maybe_unused]] constexpr const char* kChoiceTitles[] = {
    QT_TRANSLATE_NOOP("plyra::MovieSettingsSheet", "Pixlet (best for editing)"),
    QT_TRANSLATE_NOOP("plyra::MovieSettingsSheet", "H.264 (best compression)"),
    QT_TRANSLATE_NOOP("plyra::MovieSettingsSheet", "mpeg 4 (best compatability)"),
    QT_TRANSLATE_NOOP("plyra::MovieSettingsSheet", "Animation (handles transparency)"),
    QT_TRANSLATE_NOOP("plyra::MovieSettingsSheet", "Motion JPEG B"),
    QT_TRANSLATE_NOOP("plyra::MovieSettingsSheet", "Min/smallest"),
    QT_TRANSLATE_NOOP("plyra::MovieSettingsSheet", "Low/small"),
    QT_TRANSLATE_NOOP("plyra::MovieSettingsSheet", "Normal/medium"),
    QT_TRANSLATE_NOOP("plyra::MovieSettingsSheet", "High/large"),
    QT_TRANSLATE_NOOP("plyra::MovieSettingsSheet", "Max/largest"),
};

// Selects the item carrying value, adding one titled `title` when none does.
void selectOrAdd(QComboBox* popup, const QVariant& value, const QString& title)
{
    int index = popup->findData(value);
    if (index < 0) {
        popup->addItem(title, value);
        index = popup->count() - 1;
    }
    popup->setCurrentIndex(index);
}

} // namespace

MovieSettingsSheet::MovieSettingsSheet(QWidget* parent)
    : RenderSettingsSheet(Contents::FrameSizeAndTiming, parent)
{
    buildTimingRows();
    m_codecPopup = new QComboBox(this);
    m_codecPopup->setAccessibleName(tr("Codec"));
    m_qualityPopup = new QComboBox(this);
    m_qualityPopup->setAccessibleName(tr("Quality"));
    form()->addRow(tr("Codec:"), m_codecPopup);
    form()->addRow(tr("Quality:"), m_qualityPopup);
}

// Beside the frame count, rate and direction, before the frame size.
void MovieSettingsSheet::buildTimingRows()
{
    int row = form()->rowCount() - kSizeRows;
    m_easingPopup = new QComboBox(this);
    m_easingPopup->setAccessibleName(tr("Easing"));
    m_easingPopup->addItem(tr("Linear"), static_cast<int>(Easing::Linear));
    m_easingPopup->addItem(tr("Ease In"), static_cast<int>(Easing::EaseIn));
    m_easingPopup->addItem(tr("Ease Out"), static_cast<int>(Easing::EaseOut));
    m_easingPopup->addItem(tr("Ease In and Out"), static_cast<int>(Easing::EaseInOut));
    m_easingPopup->setToolTip(tr("How the morph speeds up and slows down over the movie"));
    form()->insertRow(row++, tr("Easing:"), m_easingPopup);
    const auto holdRow = [this, &row](QLineEdit*& field, const QString& label, const QString& name) {
        field = new QLineEdit(this);
        field->setValidator(new QDoubleValidator(0.0, 3600.0, 2, field));
        field->setAccessibleName(name);
        field->setAlignment(Qt::AlignRight);
        field->setMaximumWidth(90);
        auto* fields = new QHBoxLayout;
        fields->addWidget(field);
        fields->addWidget(new QLabel(tr("seconds"), this));
        fields->addStretch();
        form()->insertRow(row++, label, fields);
    };
    holdRow(m_holdStart, tr("Hold first image:"), tr("Hold at start"));
    holdRow(m_holdEnd, tr("Hold last image:"), tr("Hold at end"));
    m_pingPong = new QCheckBox(tr("Ping-pong (forth and back, for loops)"), this);
    m_pingPong->setAccessibleName(tr("Ping-pong"));
    form()->insertRow(row, QString(), m_pingPong);
    // Tab goes through the rows in the order they are shown.
    QWidget* const order[] = {reverseSwitch(), m_easingPopup, m_holdStart, m_holdEnd, m_pingPong, sizeToWindowButton()};
    for (std::size_t k = 1; k < std::size(order); ++k)
        QWidget::setTabOrder(order[k - 1], order[k]);
    connect(m_easingPopup, &QComboBox::activated, this, &MovieSettingsSheet::updateDuration);
    connect(m_holdStart, &QLineEdit::textChanged, this, &MovieSettingsSheet::updateDuration);
    connect(m_holdEnd, &QLineEdit::textChanged, this, &MovieSettingsSheet::updateDuration);
    connect(m_pingPong, &QCheckBox::toggled, this, &MovieSettingsSheet::updateDuration);
}

double MovieSettingsSheet::totalSeconds(float frames, float framesPerSecond) const
{
    if (!m_pingPong || !(frames >= 0 && frames < 1e7f) || !(framesPerSecond > 0))
        return RenderSettingsSheet::totalSeconds(frames, framesPerSecond);
    const MovieSchedule schedule(static_cast<std::uint32_t>(frames), framesPerSecond, timing());
    return static_cast<double>(schedule.movieDuration()) / 600.0;
}

void MovieSettingsSheet::loadTiming(const MovieTiming& timing)
{
    m_easingPopup->setCurrentIndex(std::max(0, m_easingPopup->findData(static_cast<int>(timing.easing))));
    m_holdStart->setText(locale().toString(timing.holdStart, 'g', 6));
    m_holdEnd->setText(locale().toString(timing.holdEnd, 'g', 6));
    m_pingPong->setChecked(timing.pingPong);
}

MovieTiming MovieSettingsSheet::timing() const
{
    MovieTiming timing;
    timing.easing = static_cast<Easing>(m_easingPopup->currentData().toInt());
    // An empty or unreadable field is no hold.
    timing.holdStart = std::max(0.0, locale().toDouble(m_holdStart->text()));
    timing.holdEnd = std::max(0.0, locale().toDouble(m_holdEnd->text()));
    timing.pingPong = m_pingPong->isChecked();
    return timing;
}

QString MovieSettingsSheet::choiceTitle(const char* title)
{
    return QCoreApplication::translate(kChoiceContext, title);
}

void MovieSettingsSheet::loadCodec(const QString& codecFormat, int codecQuality)
{
    m_codecPopup->clear();
    for (const CodecChoice& choice : kCodecChoices)
        m_codecPopup->addItem(choiceTitle(choice.title), QString::fromLatin1(choice.code));
    selectOrAdd(m_codecPopup, codecFormat, codecFormat);
    m_qualityPopup->clear();
    for (const QualityChoice& choice : kQualityChoices)
        m_qualityPopup->addItem(choiceTitle(choice.title), choice.value);
    selectOrAdd(m_qualityPopup, codecQuality, locale().toString(codecQuality));
}

QString MovieSettingsSheet::codecFormat() const
{
    return m_codecPopup->currentData().toString();
}

int MovieSettingsSheet::codecQuality() const
{
    return m_qualityPopup->currentData().toInt();
}

} // namespace plyra
