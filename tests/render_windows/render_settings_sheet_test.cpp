// SPDX-License-Identifier: MIT
// The settings sheets: live handlers, what OK and Cancel do, the codec and quality pop-ups.
#include "render_windows_support.h"

#include "platform/qt/user_defaults.h"
#include "render/render_controller.h"
#include "render/windows/frame_window.h"
#include "render/windows/movie_settings_sheet.h"
#include "render/windows/movie_window.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>
#include <QTranslator>

using namespace plyra;

namespace {

void retype(QLineEdit* field, const QString& text)
{
    field->setFocus();
    field->selectAll();
    QTest::keyClick(field, Qt::Key_Backspace);
    QTest::keyClicks(field, text);
}

} // namespace

class RenderSettingsSheetTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { test::initRenderWindowTests(); }

    void sizeFieldsFollowTheRatio_data();
    void sizeFieldsFollowTheRatio();
    void durationAndEnabling();
    void okAppliesAndCancelKeepsEverything();
    void codecAndQualityPopups_data();
    void codecAndQualityPopups();
    void codecChoiceGoesToDocumentAndDefaults();
    void germanTexts();
};

void RenderSettingsSheetTest::sizeFieldsFollowTheRatio_data()
{
    QTest::addColumn<FrameRatioMode>("mode");
    QTest::addColumn<QString>("heightAfterWidth");
    QTest::addColumn<QString>("typedHeight");
    QTest::addColumn<QString>("widthAfterHeight");
    // The first image is 1.5 wide for 1 high, the last 2 for 1; the width typed is 301.
    QTest::newRow("as first image") << FrameRatioMode::AsFirstImage << "200" << "200" << "300";
    QTest::newRow("as last image") << FrameRatioMode::AsLastImage << "150" << "120" << "240";
    QTest::newRow("free") << FrameRatioMode::Free << "100" << "77" << "301";
}

void RenderSettingsSheetTest::sizeFieldsFollowTheRatio()
{
    QFETCH(FrameRatioMode, mode);
    QFETCH(QString, typedHeight);
    RenderSettingsSheet sheet(RenderSettingsSheet::Contents::FrameSize);
    SheetSettings settings;
    settings.frameWidth = 150;
    settings.frameHeight = 100;
    settings.frameRatioMode = mode;
    settings.sizeToView = false;
    sheet.load(settings, {1.5f, 2.0f});
    sheet.show();
    QCOMPARE(sheet.ratioPopup()->count(), 3);
    QCOMPARE(sheet.ratioPopup()->itemText(0), QStringLiteral("As first image"));
    QCOMPARE(sheet.ratioPopup()->currentIndex(), static_cast<int>(mode));
    QVERIFY(sheet.numberOfFramesField() == nullptr); // the frame sheet has no timing

    retype(sheet.frameWidthField(), QStringLiteral("301"));
    QTEST(sheet.frameHeightField()->text(), "heightAfterWidth");
    retype(sheet.frameHeightField(), typedHeight);
    QTEST(sheet.frameWidthField()->text(), "widthAfterHeight");
    const SheetSettings values = sheet.values();
    QCOMPARE(values.frameRatioMode, mode);
    QCOMPARE(values.frameHeight, typedHeight.toInt());
    QVERIFY(!values.sizeToView);

    // Choosing another ratio makes the width follow the height under it.
    if (mode == FrameRatioMode::AsFirstImage) {
        sheet.ratioPopup()->setFocus();
        QTest::keyClick(sheet.ratioPopup(), Qt::Key_Down);
        QCOMPARE(sheet.ratioPopup()->currentIndex(), 1);
        QCOMPARE(sheet.frameWidthField()->text(), QStringLiteral("400"));
    }
}

void RenderSettingsSheetTest::durationAndEnabling()
{
    MovieSettingsSheet sheet;
    SheetSettings settings;
    settings.numberOfFrames = 20;
    settings.framesPerSecond = 20.0f;
    settings.reverse = false;
    settings.frameWidth = 320;
    settings.frameHeight = 240;
    sheet.load(settings, {1.0f, 1.0f});
    sheet.show();
    QCOMPARE(sheet.durationField()->text(), QStringLiteral("total: 1.0 seconds"));
    retype(sheet.numberOfFramesField(), QStringLiteral("48"));
    retype(sheet.framesPerSecondField(), QStringLiteral("25"));
    QCOMPARE(sheet.durationField()->text(), QStringLiteral("total: 1.9 seconds"));

    // The size fields are for a fixed size only.
    QVERIFY(!sheet.frameWidthField()->isEnabled());
    QTest::mouseClick(sheet.fixedSizeButton(), Qt::LeftButton);
    QVERIFY(sheet.frameWidthField()->isEnabled() && sheet.frameHeightField()->isEnabled());
    QTest::mouseClick(sheet.sizeToWindowButton(), Qt::LeftButton);
    QVERIFY(!sheet.frameHeightField()->isEnabled());

    // A frame count the movie cannot have keeps OK disabled.
    QPushButton* ok = sheet.buttons()->button(QDialogButtonBox::Ok);
    retype(sheet.numberOfFramesField(), QStringLiteral("1"));
    QVERIFY(!ok->isEnabled());
    retype(sheet.numberOfFramesField(), QStringLiteral("2"));
    QVERIFY(ok->isEnabled());
}

void RenderSettingsSheetTest::okAppliesAndCancelKeepsEverything()
{
    test::WindowTestDocument doc;
    MovieWindow window(*doc.document);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    const RenderSettings before = window.controller().settings();

    window.showSettings();
    RenderSettingsSheet* sheet = window.settingsSheet();
    QVERIFY(sheet->isVisible());
    QCOMPARE(sheet->windowModality(), Qt::WindowModal);
    QCOMPARE(sheet->numberOfFramesField()->text(), QStringLiteral("20"));
    retype(sheet->numberOfFramesField(), QStringLiteral("48"));
    QTest::mouseClick(sheet->reverseSwitch(), Qt::LeftButton);
    QTest::mouseClick(sheet->fixedSizeButton(), Qt::LeftButton);
    QTest::mouseClick(sheet->buttons()->button(QDialogButtonBox::Cancel), Qt::LeftButton);
    QVERIFY(!sheet->isVisible());
    const RenderSettings& after = window.controller().settings();
    QCOMPARE(after.numberOfFrames(), before.numberOfFrames());
    QCOMPARE(after.reverse(), before.reverse());
    QCOMPARE(after.sizesToView(), before.sizesToView());

    window.showSettings();
    retype(sheet->numberOfFramesField(), QStringLiteral("48"));
    retype(sheet->framesPerSecondField(), QStringLiteral("25"));
    QTest::mouseClick(sheet->reverseSwitch(), Qt::LeftButton);
    QTest::mouseClick(sheet->fixedSizeButton(), Qt::LeftButton);
    retype(sheet->frameWidthField(), QStringLiteral("96"));
    QTest::mouseClick(sheet->buttons()->button(QDialogButtonBox::Ok), Qt::LeftButton);
    QCOMPARE(after.numberOfFrames(), 48u);
    QCOMPARE(after.framesPerSecond(), 25.0f);
    QVERIFY(after.reverse());
    QVERIFY(!after.sizesToView());
    // Width 96 under "As first image" (64 × 48) made the height 72.
    QCOMPARE(after.storedFrameSize().width, 96.0f);
    QCOMPARE(after.storedFrameSize().height, 72.0f);
    window.close();
}

void RenderSettingsSheetTest::codecAndQualityPopups_data()
{
    QTest::addColumn<QString>("storedCodec");
    QTest::addColumn<int>("storedQuality");
    QTest::addColumn<int>("codecItems");
    QTest::addColumn<QString>("codecTitle");
    QTest::addColumn<int>("qualityItems");
    QTest::addColumn<QString>("qualityTitle");
    QTest::newRow("known") << "mp4v" << 768 << 5 << "mpeg 4 (best compatability)" << 5 << "High/large";
    QTest::newRow("unknown code") << "jpeg" << 0 << 6 << "jpeg" << 5 << "Min/smallest";
    QTest::newRow("unknown quality") << "rle " << 300 << 5 << "Animation (handles transparency)" << 6 << "300";
}

void RenderSettingsSheetTest::codecAndQualityPopups()
{
    QFETCH(QString, storedCodec);
    QFETCH(int, storedQuality);
    MovieSettingsSheet sheet;
    sheet.loadCodec(storedCodec, storedQuality);
    // Loading twice adds no second extra item.
    sheet.loadCodec(storedCodec, storedQuality);
    QTEST(sheet.codecPopup()->count(), "codecItems");
    QTEST(sheet.codecPopup()->currentText(), "codecTitle");
    QTEST(sheet.qualityPopup()->count(), "qualityItems");
    QTEST(sheet.qualityPopup()->currentText(), "qualityTitle");
    QCOMPARE(sheet.codecPopup()->itemData(1).toString(), QStringLiteral("avc1"));
    QCOMPARE(sheet.qualityPopup()->itemData(4).toInt(), 1023);
    // What the sheet gives back unchanged is what was stored.
    QCOMPARE(sheet.codecFormat(), storedCodec);
    QCOMPARE(sheet.codecQuality(), storedQuality);
}

void RenderSettingsSheetTest::codecChoiceGoesToDocumentAndDefaults()
{
    test::WindowTestDocument doc;
    doc.document->setCodecFormat(QStringLiteral("jpeg"));
    MovieWindow window(*doc.document);
    window.show();
    window.showSettings();
    auto* sheet = static_cast<MovieSettingsSheet*>(window.settingsSheet());
    QCOMPARE(sheet->codecPopup()->currentText(), QStringLiteral("jpeg"));
    sheet->qualityPopup()->setCurrentIndex(1);
    QTest::mouseClick(sheet->buttons()->button(QDialogButtonBox::Ok), Qt::LeftButton);
    // The unknown code stays; the new quality is the document's and the next document's.
    QCOMPARE(doc.document->codecFormat(), QStringLiteral("jpeg"));
    QCOMPARE(doc.document->codecQuality(), 256);
    QCOMPARE(UserDefaults::standard().string(QStringLiteral("codecFormat")), QStringLiteral("jpeg"));
    QCOMPARE(UserDefaults::standard().integer(QStringLiteral("codecQuality")), 256);

    window.showSettings();
    sheet->codecPopup()->setCurrentIndex(1);
    QTest::mouseClick(sheet->buttons()->button(QDialogButtonBox::Ok), Qt::LeftButton);
    QCOMPARE(doc.document->codecFormat(), QStringLiteral("avc1"));
    QCOMPARE(MorphDocument().codecFormat(), QStringLiteral("avc1"));
    window.close();
}

void RenderSettingsSheetTest::germanTexts()
{
    QTranslator german;
    QVERIFY(german.load(QStringLiteral(":/i18n/plyra_render_de.qm")));
    QCoreApplication::installTranslator(&german);
    MovieSettingsSheet sheet;
    SheetSettings settings;
    settings.numberOfFrames = 48;
    settings.framesPerSecond = 25.0f;
    sheet.load(settings, {1.0f, 1.0f});
    sheet.loadCodec(QStringLiteral("mp4v"), 768);
    QCOMPARE(sheet.codecPopup()->currentText(), QStringLiteral("MPEG-4 (beste Kompatibilität)"));
    QCOMPARE(sheet.qualityPopup()->currentText(), QStringLiteral("Hoch/groß"));
    QCOMPARE(sheet.ratioPopup()->itemText(0), QStringLiteral("Wie erstes Bild"));
    QVERIFY(sheet.durationField()->text().startsWith(QStringLiteral("insgesamt: 1")));
    QCOMPARE(MovieWindow::titleForProgress(QStringLiteral("Gesichter"), 0.45f),
        QStringLiteral("Gesichter Film wird berechnet (45 %)"));
    QCoreApplication::removeTranslator(&german);
}

QTEST_MAIN(RenderSettingsSheetTest)
#include "render_settings_sheet_test.moc"
