// SPDX-License-Identifier: MIT
#include "render/windows/movie_settings_sheet.h"

#include "render/movie_codecs.h"

#include <QComboBox>
#include <QCoreApplication>
#include <QFormLayout>

namespace plyra {
namespace {

constexpr const char* kChoiceContext = "plyra::MovieSettingsSheet";

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
    m_codecPopup = new QComboBox(this);
    m_codecPopup->setAccessibleName(tr("Codec"));
    m_qualityPopup = new QComboBox(this);
    m_qualityPopup->setAccessibleName(tr("Quality"));
    form()->addRow(tr("Codec:"), m_codecPopup);
    form()->addRow(tr("Quality:"), m_qualityPopup);
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
