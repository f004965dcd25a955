// SPDX-License-Identifier: MIT
#include "render/windows/render_settings_sheet.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDoubleValidator>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QIntValidator>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include <cmath>

namespace plyra {
namespace {

constexpr int kSizeToWindowTag = 0;
constexpr int kFixedSizeTag = 1;
constexpr int kDocumentSizeTag = 2;
constexpr int kMaxFrameSide = 16384;

QLineEdit* numberField(const QString& accessibleName, QValidator* validator, QWidget* parent)
{
    auto* field = new QLineEdit(parent);
    field->setValidator(validator);
    field->setAccessibleName(accessibleName);
    field->setAlignment(Qt::AlignRight);
    field->setMaximumWidth(90);
    return field;
}

} // namespace

RenderSettingsSheet::RenderSettingsSheet(Contents contents, QWidget* parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("settingsSheet"));
    setWindowTitle(tr("Render Settings"));
    setAccessibleName(tr("Render Settings"));
    setWindowModality(Qt::WindowModal);
    // Plain numbers in the fields: a group separator would only get in the way of typing.
    QLocale numbers = locale();
    numbers.setNumberOptions(QLocale::OmitGroupSeparator);
    setLocale(numbers);
    auto* outer = new QVBoxLayout(this);
    m_form = new QFormLayout;
    m_form->setFieldGrowthPolicy(QFormLayout::FieldsStayAtSizeHint);
    outer->addLayout(m_form);
    if (contents == Contents::FrameSizeAndTiming)
        buildTimingRows();
    // A single frame is saved at the document's size unless asked otherwise.
    buildSizeRows(contents == Contents::FrameSize);
    m_buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    m_buttons->button(QDialogButtonBox::Ok)->setAccessibleName(tr("OK"));
    m_buttons->button(QDialogButtonBox::Cancel)->setAccessibleName(tr("Cancel"));
    connect(m_buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(m_buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    outer->addWidget(m_buttons);
}

void RenderSettingsSheet::buildTimingRows()
{
    m_numberOfFrames = numberField(tr("Number of frames"), new QIntValidator(2, 100000, this), this);
    m_framesPerSecond = numberField(tr("Frames per second"), new QDoubleValidator(0.01, 1000.0, 3, this), this);
    m_duration = new QLabel(this);
    m_duration->setAccessibleName(tr("Total duration"));
    m_reverse = new QCheckBox(tr("Reverse (last image first)"), this);
    m_reverse->setAccessibleName(tr("Reverse"));
    m_form->addRow(tr("Frames:"), m_numberOfFrames);
    m_form->addRow(tr("Frames per second:"), m_framesPerSecond);
    m_form->addRow(QString(), m_duration);
    m_form->addRow(QString(), m_reverse);
    connect(m_numberOfFrames, &QLineEdit::textChanged, this, &RenderSettingsSheet::numberOfFramesFieldChanged);
    connect(m_framesPerSecond, &QLineEdit::textChanged, this, &RenderSettingsSheet::framesPerSecondFieldChanged);
}

void RenderSettingsSheet::buildSizeRows(bool documentSize)
{
    m_sizeToWindow = new QRadioButton(tr("Size to window"), this);
    m_sizeToWindow->setAccessibleName(tr("Size to window"));
    m_fixedSize = new QRadioButton(tr("Fixed size:"), this);
    m_fixedSize->setAccessibleName(tr("Fixed size"));
    m_sizeChoice = new QButtonGroup(this);
    m_sizeChoice->addButton(m_sizeToWindow, kSizeToWindowTag);
    m_sizeChoice->addButton(m_fixedSize, kFixedSizeTag);
    m_frameWidth = numberField(tr("Frame width"), new QIntValidator(1, kMaxFrameSide, this), this);
    m_frameHeight = numberField(tr("Frame height"), new QIntValidator(1, kMaxFrameSide, this), this);
    auto* fixedRow = new QHBoxLayout;
    fixedRow->addWidget(m_fixedSize);
    fixedRow->addWidget(m_frameWidth);
    fixedRow->addWidget(new QLabel(tr("×"), this));
    fixedRow->addWidget(m_frameHeight);
    fixedRow->addWidget(new QLabel(tr("pixels"), this));
    m_ratioPopup = new QComboBox(this);
    m_ratioPopup->setAccessibleName(tr("Frame ratio"));
    if (documentSize) {
        m_documentSize = new QRadioButton(tr("Document frame size"), this);
        m_documentSize->setAccessibleName(tr("Document frame size"));
        m_sizeChoice->addButton(m_documentSize, kDocumentSizeTag);
        m_form->addRow(tr("Frame size:"), m_documentSize);
    }
    m_form->addRow(documentSize ? QString() : tr("Frame size:"), m_sizeToWindow);
    m_form->addRow(QString(), fixedRow);
    m_form->addRow(tr("Ratio:"), m_ratioPopup);
    connect(m_sizeChoice, &QButtonGroup::idToggled, this, &RenderSettingsSheet::sizeToWindowButtonChanged);
    connect(m_frameWidth, &QLineEdit::textEdited, this, &RenderSettingsSheet::frameWidthFieldChanged);
    connect(m_frameHeight, &QLineEdit::textEdited, this, &RenderSettingsSheet::frameHeightFieldChanged);
    connect(m_ratioPopup, &QComboBox::activated, this, &RenderSettingsSheet::ratioPopupChanged);
    for (QLineEdit* field : {m_frameWidth, m_frameHeight})
        connect(field, &QLineEdit::textChanged, this, &RenderSettingsSheet::updateOkButton);
}

void RenderSettingsSheet::load(const SheetSettings& settings, std::array<float, 2> aspectRatios, QSize documentSize)
{
    m_aspectRatios = aspectRatios;
    m_ratioPopup->clear();
    m_ratioPopup->addItem(tr("As first image"), static_cast<int>(FrameRatioMode::AsFirstImage));
    m_ratioPopup->addItem(tr("As last image"), static_cast<int>(FrameRatioMode::AsLastImage));
    m_ratioPopup->addItem(tr("Free"), static_cast<int>(FrameRatioMode::Free));
    m_ratioPopup->setCurrentIndex(m_ratioPopup->findData(static_cast<int>(settings.frameRatioMode)));
    m_frameWidth->setText(locale().toString(settings.frameWidth));
    m_frameHeight->setText(locale().toString(settings.frameHeight));
    (settings.sizeToView ? m_sizeToWindow : m_fixedSize)->setChecked(true);
    if (m_documentSize) {
        m_documentSize->setText(documentSize.isValid()
            ? tr("Document frame size (%1 × %2 pixels)").arg(locale().toString(documentSize.width()), locale().toString(documentSize.height()))
            : tr("Document frame size"));
        if (settings.documentFrameSize.value_or(false))
            m_documentSize->setChecked(true);
    }
    if (m_numberOfFrames && settings.numberOfFrames)
        m_numberOfFrames->setText(locale().toString(*settings.numberOfFrames));
    if (m_framesPerSecond && settings.framesPerSecond)
        m_framesPerSecond->setText(locale().toString(*settings.framesPerSecond));
    if (m_reverse && settings.reverse)
        m_reverse->setChecked(*settings.reverse);
    sizeToWindowButtonChanged();
    framesPerSecondFieldChanged();
}

SheetSettings RenderSettingsSheet::values() const
{
    SheetSettings settings;
    if (m_numberOfFrames)
        settings.numberOfFrames = static_cast<std::uint32_t>(std::max(0, intValue(m_numberOfFrames)));
    if (m_framesPerSecond)
        settings.framesPerSecond = floatValue(m_framesPerSecond);
    if (m_reverse)
        settings.reverse = m_reverse->isChecked();
    settings.frameWidth = intValue(m_frameWidth);
    settings.frameHeight = intValue(m_frameHeight);
    settings.frameRatioMode = chosenRatioMode();
    settings.sizeToView = m_sizeChoice->checkedId() == kSizeToWindowTag;
    if (m_documentSize)
        settings.documentFrameSize = m_documentSize->isChecked();
    return settings;
}

void RenderSettingsSheet::numberOfFramesFieldChanged()
{
    framesPerSecondFieldChanged();
}

void RenderSettingsSheet::framesPerSecondFieldChanged()
{
    if (m_duration && m_numberOfFrames && m_framesPerSecond) {
        const double seconds = totalSeconds(floatValue(m_numberOfFrames), floatValue(m_framesPerSecond));
        m_duration->setText(std::isfinite(seconds) ? tr("total: %1 seconds").arg(locale().toString(seconds, 'f', 1))
                                                   : QString());
    }
    updateOkButton();
}

double RenderSettingsSheet::totalSeconds(float frames, float framesPerSecond) const
{
    return static_cast<double>(frames / framesPerSecond);
}

void RenderSettingsSheet::sizeToWindowButtonChanged()
{
    const bool fixed = m_sizeChoice->checkedId() == kFixedSizeTag;
    m_frameWidth->setEnabled(fixed);
    m_frameHeight->setEnabled(fixed);
    updateOkButton();
}

void RenderSettingsSheet::frameWidthFieldChanged()
{
    if (const std::optional<float> a = boundAspectRatio())
        m_frameHeight->setText(locale().toString(static_cast<int>(static_cast<float>(intValue(m_frameWidth)) / *a)));
}

void RenderSettingsSheet::frameHeightFieldChanged()
{
    if (const std::optional<float> a = boundAspectRatio())
        m_frameWidth->setText(locale().toString(static_cast<int>(static_cast<float>(intValue(m_frameHeight)) * *a)));
}

void RenderSettingsSheet::ratioPopupChanged()
{
    frameHeightFieldChanged();
}

void RenderSettingsSheet::updateOkButton()
{
    bool acceptable = true;
    for (const QLineEdit* field : {m_numberOfFrames, m_framesPerSecond})
        acceptable = acceptable && (!field || field->hasAcceptableInput());
    if (m_sizeChoice->checkedId() == kFixedSizeTag)
        acceptable = acceptable && m_frameWidth->hasAcceptableInput() && m_frameHeight->hasAcceptableInput();
    m_buttons->button(QDialogButtonBox::Ok)->setEnabled(acceptable);
}

FrameRatioMode RenderSettingsSheet::chosenRatioMode() const
{
    return static_cast<FrameRatioMode>(m_ratioPopup->currentData().toInt());
}

std::optional<float> RenderSettingsSheet::boundAspectRatio() const
{
    const std::optional<unsigned> track = ratioTrack(chosenRatioMode());
    if (!track)
        return std::nullopt;
    const float a = m_aspectRatios[*track];
    return a == 0.0f ? 1.0f : a;
}

int RenderSettingsSheet::intValue(const QLineEdit* field) const
{
    return locale().toInt(field->text());
}

float RenderSettingsSheet::floatValue(const QLineEdit* field) const
{
    return locale().toFloat(field->text());
}

} // namespace plyra
