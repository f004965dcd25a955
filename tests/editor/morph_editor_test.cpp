// SPDX-License-Identifier: MIT
#include "editor_test_support.h"

#include "editor/knob_images.h"
#include "platform/undo_manager.h"

#include <QAccessible>
#include <QApplication>
#include <QKeyEvent>
#include <QMimeData>
#include <QScrollArea>
#include <QScrollBar>
#include <QSignalSpy>
#include <QStyle>
#include <QUrl>

#include <cmath>

using namespace plyra;
using namespace plyra::test;

Q_DECLARE_METATYPE(plyra::Point)

/// The editor as a widget: fitting and centring in a scroll area, dropping image files,
/// what it draws, following the document, and what it tells assistive technology.
class MorphEditorTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { initEditorTests(); }

    void fittedSize_data();
    void fittedSize();
    void centring();
    void drops_data();
    void drops();
    void damagedImageDropChangesNothing();
    void imageAndFaintOtherImage();
    void knobsOfSelectedLinesOnly();
    void followsChangesMadeElsewhere();
    void finishGestureClosesTheStep();
    void accessibility();
    void tabWalksThroughTheLinesAndEscapeClears();
    void nudgesInQuickSuccessionAreOneStep();
    void selectingIsNoUndoStep();

private:
    static QMimeData* mimeData(const QString& url, const QString& text);
    /// red.png, blue.png and notes.txt; returns their directory.
    static QString writeDropFiles(const EditorFixture& f);
    static bool sendDrop(MorphEditor* editor, QMimeData* data, bool* entered);
};

void MorphEditorTest::fittedSize_data()
{
    QTest::addColumn<QSizeF>("image");
    QTest::addColumn<QSizeF>("content");
    QTest::addColumn<QSizeF>("fitted");
    QTest::newRow("wide image") << QSizeF(1000, 500) << QSizeF(600, 600) << QSizeF(600, 300);
    QTest::newRow("tall image") << QSizeF(500, 1000) << QSizeF(600, 600) << QSizeF(300, 600);
    QTest::newRow("same ratio") << QSizeF(300, 200) << QSizeF(600, 400) << QSizeF(600, 400);
    QTest::newRow("small image grows") << QSizeF(100, 50) << QSizeF(700, 500) << QSizeF(700, 350);
}

void MorphEditorTest::fittedSize()
{
    QFETCH(QSizeF, image);
    QFETCH(QSizeF, content);
    QFETCH(QSizeF, fitted);
    QCOMPARE(MorphEditor::fittedSize(image, content), fitted);
}

void MorphEditorTest::centring()
{
    EditorFixture f;
    QScrollArea area;
    area.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    area.setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    auto* editor = new MorphEditor;
    editor->setDataSource(&f.document);
    editor->resize(2000, 1000);
    area.setWidget(editor);
    area.resize(400, 300);
    area.show();
    QVERIFY(QTest::qWaitForWindowExposed(&area));
    const QSize clip = area.viewport()->size();
    const MorphLine::Ptr line = f.addLine({0, 0}, {0, 0});
    line->setStartPoint({1000.0f / 2000, 300.0f / 1000}, 0, nullptr);
    line->setEndPoint({1200.0f / 2000, 500.0f / 1000}, 0, nullptr);
    f.select({line});
    QCOMPARE(editor->rectOfSelectedLines(), QRectF(1000, 300, 200, 200));
    editor->centerSelectionInVisibleArea();
    // The selection's centre (1100, 400) in the middle of what is visible.
    const double x = std::rint(1100 - clip.width() * 0.5);
    const double y = std::rint(400 - clip.height() * 0.5);
    QCOMPARE(area.horizontalScrollBar()->value(), int(x));
    QCOMPARE(area.verticalScrollBar()->value(), int(1000 - clip.height() - y));
    // A selection narrower than 0.001 scrolls to the origin, the bottom left.
    line->setEndPoint({1000.0f / 2000, 500.0f / 1000}, 0, nullptr);
    editor->center();
    QCOMPARE(area.horizontalScrollBar()->value(), 0);
    QCOMPARE(area.verticalScrollBar()->value(), area.verticalScrollBar()->maximum());
    editor->setDataSource(nullptr);
}

QString MorphEditorTest::writeDropFiles(const EditorFixture& f)
{
    const QString red = f.writeImage(QStringLiteral("red.png"), {40, 20}, Qt::red);
    const QString dir = QFileInfo(red).absolutePath();
    f.writeImage(QStringLiteral("blue.png"), {30, 30}, Qt::blue);
    QFile notes(dir + QStringLiteral("/notes.txt"));
    if (notes.open(QIODevice::WriteOnly))
        notes.write("not a picture");
    return dir;
}

QMimeData* MorphEditorTest::mimeData(const QString& url, const QString& text)
{
    auto* data = new QMimeData;
    if (!url.isEmpty())
        data->setUrls({QUrl(url)});
    if (!text.isEmpty())
        data->setText(text);
    return data;
}

bool MorphEditorTest::sendDrop(MorphEditor* editor, QMimeData* data, bool* entered)
{
    const QPoint at(100, 100);
    QDragEnterEvent enter(at, Qt::CopyAction | Qt::MoveAction, data, Qt::LeftButton, {});
    QApplication::sendEvent(editor, &enter);
    *entered = enter.isAccepted();
    QDropEvent drop(QPointF(at), Qt::CopyAction | Qt::MoveAction, data, Qt::LeftButton, {});
    QApplication::sendEvent(editor, &drop);
    return drop.isAccepted();
}

void MorphEditorTest::drops_data()
{
    QTest::addColumn<QString>("url");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("taken");
    QTest::newRow("file URL") << QStringLiteral("red.png") << QString() << QStringLiteral("red.png");
    QTest::newRow("file name") << QString() << QStringLiteral("red.png") << QStringLiteral("red.png");
    QTest::newRow("list of names: the last") << QString() << QStringLiteral("blue.png\nred.png\n") << QStringLiteral("red.png");
    QTest::newRow("file URL as text") << QString() << QStringLiteral("file://red.png") << QStringLiteral("red.png");
    QTest::newRow("both: the URL wins") << QStringLiteral("red.png") << QStringLiteral("blue.png") << QStringLiteral("red.png");
    QTest::newRow("not an image") << QStringLiteral("notes.txt") << QString() << QString();
    QTest::newRow("missing file") << QStringLiteral("gone.png") << QString() << QString();
    QTest::newRow("web address") << QStringLiteral("https://example.org/red.png") << QString() << QString();
    QTest::newRow("plain text") << QString() << QStringLiteral("   ") << QString();
}

void MorphEditorTest::drops()
{
    QFETCH(QString, url);
    QFETCH(QString, text);
    QFETCH(QString, taken);
    EditorFixture f;
    const QString dir = writeDropFiles(f);
    // Names in the table are relative to the directory of the files.
    auto local = [&dir](const QString& value) {
        QString result;
        for (const QString& name : value.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
            result += name.startsWith(QLatin1String("file://")) ? QStringLiteral("file://") + dir + QLatin1Char('/') + name.mid(7)
                                                                : dir + QLatin1Char('/') + name;
            result += QLatin1Char('\n');
        }
        return result;
    };
    const QString urlValue = url.isEmpty() || url.startsWith(QLatin1String("https")) ? url : QUrl::fromLocalFile(dir + QLatin1Char('/') + url).toString();
    const QString textValue = text.trimmed().isEmpty() ? text : local(text);
    QSignalSpy messages(f.editor, &MorphEditor::statusMessageRequested);
    f.settle();
    bool entered = false;
    std::unique_ptr<QMimeData> data(mimeData(urlValue, textValue));
    const bool dropped = sendDrop(f.editor, data.get(), &entered);
    f.endPass();
    QCOMPARE(entered, !taken.isEmpty());
    QCOMPARE(dropped, !taken.isEmpty());
    if (taken.isEmpty()) {
        QVERIFY(!f.document.imageInTrack(0));
        QCOMPARE(f.document.undoManager().undoStepCount(), 0);
        QCOMPARE(messages.isEmpty(), text == QStringLiteral("   "));
        return;
    }
    QCOMPARE(f.document.imageURLInTrack(0), dir + QLatin1Char('/') + taken);
    QCOMPARE(QString::fromStdString(f.document.undoManager().undoActionName()), QStringLiteral("Set Image"));
    // The editor now shows the image.
    QCOMPARE(f.editor->grab().toImage().pixelColor(f.widgetPoint({10, 10})), QColor(Qt::red));
    f.document.undoManager().undo();
    QVERIFY(!f.document.imageInTrack(0));
}

void MorphEditorTest::damagedImageDropChangesNothing()
{
    // It starts like a PNG, so the drag is taken; reading it then fails.
    EditorFixture f;
    const QString dir = writeDropFiles(f);
    QFile broken(dir + QStringLiteral("/broken.png"));
    QVERIFY(broken.open(QIODevice::WriteOnly));
    broken.write(QByteArray::fromHex("89504e470d0a1a0a0000000d49484452") + QByteArray(40, 'x'));
    broken.close();
    QSignalSpy messages(f.editor, &MorphEditor::statusMessageRequested);
    bool entered = false;
    std::unique_ptr<QMimeData> data(mimeData(QUrl::fromLocalFile(broken.fileName()).toString(), QString()));
    QVERIFY(!sendDrop(f.editor, data.get(), &entered));
    QVERIFY(entered);
    f.endPass();
    QVERIFY(!f.document.imageInTrack(0));
    QCOMPARE(f.document.undoManager().undoStepCount(), 0);
    QCOMPARE(messages.size(), 1);
    QVERIFY(messages.at(0).at(0).toString().contains(QStringLiteral("broken.png")));
}

void MorphEditorTest::imageAndFaintOtherImage()
{
    EditorFixture f;
    QString error;
    QVERIFY(f.document.setImageFromFile(f.writeImage(QStringLiteral("red.png"), {1024, 512}, Qt::red), 0, &error));
    f.endPass();
    // The first image scaled to the view; the last-image editor shows it at half opacity.
    QCOMPARE(f.editor->grab().toImage().pixelColor(f.widgetPoint({500, 250})), QColor(Qt::red));
    const QColor faint = f.lastEditor->grab().toImage().pixelColor(f.widgetPoint({5, 5}));
    QVERIFY(std::abs(faint.red() - 255) <= 1 && std::abs(faint.green() - 128) <= 1 && std::abs(faint.blue() - 128) <= 1);
    // A track-0 editor without image and a last image shows that one faintly too.
    f.document.setImageFromURL(QString(), 0);
    QVERIFY(f.document.setImageFromFile(f.writeImage(QStringLiteral("blue.png"), {100, 100}, Qt::blue), 1, &error));
    f.endPass();
    const QColor blueFaint = f.editor->grab().toImage().pixelColor(f.widgetPoint({5, 5}));
    QVERIFY(std::abs(blueFaint.blue() - 255) <= 1 && std::abs(blueFaint.red() - 128) <= 1);
}

void MorphEditorTest::knobsOfSelectedLinesOnly()
{
    EditorFixture f;
    const MorphLine::Ptr line = f.addLine({100, 100}, {200, 100});
    f.endPass();
    // Beside the line, where only a knob reaches.
    const Point besideStart{100, 104};
    const Point besideEnd{200, 96};
    const QColor background(Qt::white);
    QImage shown = f.editor->grab().toImage();
    QCOMPARE(shown.pixelColor(f.widgetPoint(besideStart)), background);
    QVERIFY(shown.pixelColor(f.widgetPoint({150, 100})) != background);
    f.select({line});
    f.endPass();
    shown = f.editor->grab().toImage();
    QVERIFY(shown.pixelColor(f.widgetPoint(besideStart)) != background);
    QVERIFY(shown.pixelColor(f.widgetPoint(besideEnd)) != background);
    // Knobs take the colour's alpha when it is 0.9 or less, and are opaque above.
    const QColor opaqueKnob = shown.pixelColor(f.widgetPoint({98, 102}));
    f.document.setLineColor(LineColor::make(0.5f, 1.0f, 0.0f, 0.95f));
    f.endPass();
    QCOMPARE(f.editor->grab().toImage().pixelColor(f.widgetPoint({98, 102})), opaqueKnob);
    f.document.setLineColor(LineColor::make(0.5f, 1.0f, 0.0f, 0.5f));
    f.endPass();
    const QColor halfKnob = f.editor->grab().toImage().pixelColor(f.widgetPoint({98, 102}));
    QVERIFY(halfKnob != opaqueKnob);
    QVERIFY(std::abs(halfKnob.green() - (opaqueKnob.green() + 255) / 2) <= 2);
}

void MorphEditorTest::followsChangesMadeElsewhere()
{
    EditorFixture f;
    const MorphLine::Ptr line = f.addLine({100, 100}, {200, 100});
    f.endPass();
    const QPoint old = f.widgetPoint({150, 100});
    QVERIFY(f.editor->grab().toImage().pixelColor(old) != QColor(Qt::white));
    // The document changes through another route (the inspector, undo): both editors follow.
    line->setStartPoint(ViewMapping{512, 256}.toUnit({100, 50}), 0, &f.document.undoManager());
    line->setEndPoint(ViewMapping{512, 256}.toUnit({200, 50}), 0, &f.document.undoManager());
    f.endPass();
    QCOMPARE(f.editor->grab().toImage().pixelColor(old), QColor(Qt::white));
    QVERIFY(f.editor->grab().toImage().pixelColor(f.widgetPoint({150, 50})) != QColor(Qt::white));
    QVERIFY(f.lastEditor->grab().toImage().pixelColor(old) != QColor(Qt::white));
    f.document.undoManager().undo();
    f.endPass();
    QVERIFY(f.editor->grab().toImage().pixelColor(old) != QColor(Qt::white));

    // Points far outside the image, or not numbers (a damaged file), draw nothing odd.
    const MorphLine::Ptr broken = f.addLine({0, 0}, {0, 0});
    broken->setStartPoint({std::nanf(""), 0.5f}, 0, nullptr);
    const MorphLine::Ptr far = f.addLine({0, 0}, {0, 0});
    far->setEndPoint({1.0e20f, -1.0e20f}, 0, nullptr);
    f.select({broken, far, line});
    f.endPass();
    QVERIFY(f.editor->grab().toImage().pixelColor(old) != QColor(Qt::white));
}

void MorphEditorTest::finishGestureClosesTheStep()
{
    EditorFixture f;
    f.click({50, 50});
    f.click({150, 50});
    f.move({200, 80}, Qt::NoButton);
    QVERIFY(f.editor->isGestureActive());
    QVERIFY(f.editor->hasMouseTracking());
    // The window ends the drawing before Undo; the drawing is then one step.
    f.editor->finishGesture();
    QVERIFY(!f.editor->isGestureActive());
    QVERIFY(!f.editor->hasMouseTracking());
    QCOMPARE(f.document.undoManager().groupingLevel(), 0);
    QCOMPARE(f.document.undoManager().undoStepCount(), 1);
    f.document.undoManager().undo();
    QVERIFY(f.document.morphLines().empty());
    // Focus moving elsewhere ends a drawing too.
    f.click({50, 50});
    QVERIFY(f.editor->isGestureActive());
    QVERIFY(f.editor->hasFocus());
    f.lastEditor->setFocus();
    QVERIFY(!f.editor->isGestureActive());
    QCOMPARE(f.document.morphLines().size(), std::size_t(0));
}

void MorphEditorTest::accessibility()
{
    EditorFixture f;
    QAccessibleInterface* shown = QAccessible::queryAccessibleInterface(f.editor);
    QVERIFY(shown);
    QCOMPARE(shown->role(), QAccessible::Canvas);
    QCOMPARE(shown->text(QAccessible::Description), QStringLiteral("Lines: 0, selected: 0"));
    QVERIFY(shown->text(QAccessible::Help).contains(QStringLiteral("Tab")));
    const auto lines = f.addChain({{10, 10}, {50, 50}, {90, 10}});
    f.select({lines[1]});
    f.endPass();
    QCOMPARE(shown->text(QAccessible::Description), QStringLiteral("Lines: 2, selected: 1"));

    // The focus frame: drawn in the highlight colour at the edge of what is visible.
    f.editor->setFocus();
    const QColor highlight = f.editor->palette().color(QPalette::Highlight);
    QCOMPARE(f.editor->grab().toImage().pixelColor(0, 100), highlight);
    f.lastEditor->setFocus();
    QVERIFY(f.editor->grab().toImage().pixelColor(0, 100) != highlight);
}

void MorphEditorTest::tabWalksThroughTheLinesAndEscapeClears()
{
    EditorFixture f;
    const auto lines = f.addChain({{10, 10}, {50, 50}, {90, 10}, {130, 50}});
    f.settle();
    f.editor->setFocus();
    QVERIFY(f.editor->hasFocus());
    const std::vector<std::pair<Qt::KeyboardModifiers, std::vector<int>>> steps = {
        {{}, {0}}, {{}, {1}}, {{}, {2}}, {Qt::ShiftModifier, {1}}, {Qt::ShiftModifier, {0}},
    };
    for (const auto& [modifiers, selected] : steps) {
        f.key(modifiers ? Qt::Key_Backtab : Qt::Key_Tab, modifiers);
        QCOMPARE(f.selection(), selected);
        QVERIFY(f.editor->hasFocus());
    }
    f.key(Qt::Key_Escape);
    QVERIFY(f.selection().empty());
    f.key(Qt::Key_Backtab, Qt::ShiftModifier); // none selected: the last line
    QCOMPARE(f.selection(), std::vector<int>{2});
    // Past the last line Tab leaves the editor, with the selection as it was.
    f.key(Qt::Key_Tab);
    QVERIFY(!f.editor->hasFocus());
    QCOMPARE(f.selection(), std::vector<int>{2});
    f.endPass();
    QVERIFY(!f.document.undoManager().canUndo());
}

void MorphEditorTest::nudgesInQuickSuccessionAreOneStep()
{
    EditorFixture f;
    // A busy machine: each press is handled seconds after the previous one. What counts
    // is when the keys were pressed.
    std::chrono::steady_clock::time_point handled{};
    f.editor->setNudgeClock([&handled] { return handled += std::chrono::seconds(5); });
    const MorphLine::Ptr a = f.addLine({100, 100}, {200, 100});
    const MorphLine::Ptr b = f.addLine({100, 150}, {200, 150});
    f.select({a});
    f.settle();
    f.editor->setFocus();
    // Each nudge: the time since the previous press in milliseconds, and the lines selected.
    struct Nudge { int after; MorphLine::Ptr line; };
    const std::vector<Nudge> nudges = {{0, a}, {400, a}, {1000, a}, {1001, a}, {10, b}, {10, a}};
    quint64 pressed = 70000;
    for (const Nudge& nudge : nudges) {
        pressed += static_cast<quint64>(nudge.after);
        f.document.setSelectedLines({nudge.line});
        QKeyEvent press(QEvent::KeyPress, Qt::Key_Up, Qt::NoModifier);
        press.setTimestamp(pressed);
        QApplication::sendEvent(f.editor, &press);
        f.endPass();
    }
    // {a ×3} {a} {b} {a}: four steps, each "Move Line".
    UndoManager& undo = f.document.undoManager();
    QCOMPARE(undo.undoStepCount(), 4);
    QCOMPARE(f.ends(a).start, (Point{100, 105}));
    const std::vector<float> aAfterEachUndo = {104, 104, 103, 100};
    for (float y : aAfterEachUndo) {
        QCOMPARE(QString::fromStdString(undo.undoActionName()), QStringLiteral("Move Line"));
        undo.undo();
        QCOMPARE(f.ends(a).start.y, y);
    }
    QCOMPARE(f.ends(b).start, (Point{100, 150}));
    QVERIFY(!undo.canUndo());
}

void MorphEditorTest::selectingIsNoUndoStep()
{
    EditorFixture f;
    f.settle();
    // Three lines drawn, with selections by click, right-click and rectangle in between.
    f.drag({50, 50}, {{100, 60}, {150, 70}});
    f.endPass();
    f.click({60, 200}, Qt::RightButton);
    f.drag({50, 150}, {{150, 160}});
    f.endPass();
    f.drag({40, 40}, {{300, 250}}, Qt::RightButton);
    f.drag({300, 50}, {{400, 100}});
    f.endPass();
    f.click({350, 75}); // selects, moves nothing
    f.endPass();
    UndoManager& undo = f.document.undoManager();
    QCOMPARE(undo.undoStepCount(), 3);
    undo.undo();
    // The edit comes back with its selection: the rectangle added line 0 to line 1.
    QCOMPARE(f.selection(), (std::vector<int>{1, 0}));
    f.click({60, 200}, Qt::RightButton);
    f.endPass();
    QVERIFY(undo.canRedo());
    undo.undo();
    undo.undo();
    QVERIFY(f.document.morphLines().empty());
    QVERIFY(!undo.canUndo());
}

QTEST_MAIN(MorphEditorTest)
#include "morph_editor_test.moc"
