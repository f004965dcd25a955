// SPDX-License-Identifier: MIT
// The movie window: a movie that grows while it renders, the player stepping with it and
// playing when it is complete, the titles, temporary files, and the saved movie.
#include "render_windows_support.h"

#include "render/movie_render_controller.h"
#include "render/windows/movie_picture_view.h"
#include "render/windows/movie_settings_sheet.h"
#include "render/windows/movie_player.h"
#include "render/windows/movie_window.h"
#include "render/windows/render_scheduler.h"
#include "render/windows/render_toolbar.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QDir>
#include <QFileInfo>
#include <QFile>
#include <QFileDialog>
#include <QLineEdit>
#include <QProcess>
#include <QScreen>
#include <QSignalSpy>
#include <QTest>
#include <QToolButton>

#include <cmath>

using namespace plyra;

namespace {

bool renderToEnd(MovieWindow& window)
{
    return test::waitFor([&] { return window.renderer().writer() && !window.scheduler().isPolling()
                                   && !window.scheduler().isRecalcPending(); });
}

/// What ffprobe reads from a movie file: "codec_name=…", "nb_read_frames=…", "duration=…".
QMap<QString, QString> probe(const QString& path)
{
    QProcess ffprobe;
    ffprobe.start(QStringLiteral("ffprobe"),
        {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-count_frames"), QStringLiteral("-select_streams"),
            QStringLiteral("v:0"), QStringLiteral("-show_entries"),
            QStringLiteral("stream=codec_name,nb_read_frames:format=duration"), QStringLiteral("-of"),
            QStringLiteral("default=noprint_wrappers=1"), path});
    QMap<QString, QString> values;
    if (!ffprobe.waitForFinished(60000))
        return values;
    for (const QString& line : QString::fromUtf8(ffprobe.readAllStandardOutput()).split(QLatin1Char('\n'))) {
        const qsizetype equals = line.indexOf(QLatin1Char('='));
        if (equals > 0)
            values.insert(line.left(equals), line.mid(equals + 1).trimmed());
    }
    return values;
}

} // namespace

class MovieWindowTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { test::initRenderWindowTests(); }

    void titles_data();
    void titles();
    void growsStepsThenPlays_data();
    void growsStepsThenPlays();
    void temporaryMoviesComeAndGo();
    void savesASelfContainedMovie_data();
    void savesASelfContainedMovie();
    void asksBeforeAnUnsavedMovieIsLost_data();
    void asksBeforeAnUnsavedMovieIsLost();
    void aCodecNothingCanWriteIsShown();
    void settingsLiveInTheDocument();
    void playerKeysAndNames();
    void aWindowSizedToItsMovieStaysOnTheScreen();
};

void MovieWindowTest::titles_data()
{
    QTest::addColumn<float>("progress");
    QTest::addColumn<QString>("title");
    QTest::newRow("45%") << 0.45f << "Faces rendering movie (45%)";
    QTest::newRow("just started") << 0.0f << "Faces rendering movie (0%)";
    QTest::newRow("done") << 1.0f << "Faces rendered movie";
    QTest::newRow("not a number") << std::nanf("") << "Faces rendered movie";
}

void MovieWindowTest::titles()
{
    QFETCH(float, progress);
    QTEST(MovieWindow::titleForProgress(QStringLiteral("Faces"), progress), "title");
}

void MovieWindowTest::growsStepsThenPlays_data()
{
    QTest::addColumn<int>("frames");
    QTest::addColumn<float>("fps");
    QTest::addColumn<int>("frameDuration");
    QTest::addColumn<int>("movieDuration");
    QTest::newRow("20 at 20") << 20 << 20.0f << 30 << 600;
    QTest::newRow("48 at 25") << 48 << 25.0f << 24 << 1152;
    // Frames of no duration are kept as the shortest a file holds, 1/600 s each.
    QTest::newRow("1000 per second") << 6 << 1000.0f << 0 << 6;
}

void MovieWindowTest::growsStepsThenPlays()
{
    QFETCH(int, frames);
    QFETCH(float, fps);
    QFETCH(int, frameDuration);
    test::WindowTestDocument doc;
    doc.addLine(0.2f, 0.2f, 0.8f, 0.6f, 0.1f, 0.1f);
    MovieWindow window(*doc.document);
    window.setDocumentDisplayName(QStringLiteral("Faces"));
    window.setNumberOfFrames(static_cast<std::uint32_t>(frames));
    window.setFramesPerSecond(fps);
    QAction* save = window.toolbar()->itemWithIdentifier(QStringLiteral("save"));
    struct Poll {
        int appended;
        std::int64_t position;
        bool complete;
    };
    QList<Poll> polls;
    QStringList titles;
    connect(&window.scheduler(), &RenderScheduler::polled, this, [&] {
        const bool complete = window.renderer().morphJobs().empty();
        polls.append({window.renderer().framesAppended(), window.player()->currentTime(), complete});
        titles.append(window.windowTitle());
        QCOMPARE(save->isEnabled(), complete);
    });
    window.show();
    QVERIFY(renderToEnd(window));

    // The movie's duration is its frames' at the rate, rounded down in 600ths.
    QTEST(static_cast<int>(window.renderer().movie()->duration().valueIn(600)), "movieDuration");
    const std::vector<std::int64_t> times = window.renderer().movie()->frameTimes();
    QCOMPARE(static_cast<int>(times.size()), frames);
    if (frameDuration > 0)
        QCOMPARE(static_cast<int>(times[1] - times[0]), frameDuration);
    // While it grew, the view stood at the newest frame; once complete it was rewound.
    QVERIFY(!polls.isEmpty() && polls.last().complete);
    for (const Poll& poll : polls)
        if (!poll.complete && poll.appended > 0)
            QCOMPARE(poll.position, static_cast<std::int64_t>((poll.appended - 1) * frameDuration));
    QVERIFY(polls.last().position < frameDuration || frameDuration == 0);
    if (!polls.first().complete)
        QVERIFY(titles.first().startsWith(QStringLiteral("Faces rendering movie (")));
    QCOMPARE(window.windowTitle(), QStringLiteral("Faces rendered movie"));
    QVERIFY(save->isEnabled());

    // Complete: rewound and playing; the player shows frames and plays to the end.
    QVERIFY(window.player()->isPlaying() || frameDuration == 0);
    QVERIFY(test::waitFor([&] {
        return !window.player()->isPlaying() && window.player()->shownFrame() == static_cast<std::size_t>(frames - 1);
    }));
    QVERIFY(!window.player()->pictureView()->image().isNull());

    // The controller bar plays it again from the start.
    window.player()->setCurrentTime(0);
    QTest::mouseClick(window.player()->playButton(), Qt::LeftButton);
    QVERIFY(window.player()->isPlaying() || frameDuration == 0);
    window.close();
}

void MovieWindowTest::temporaryMoviesComeAndGo()
{
    test::WindowTestDocument doc;
    MovieWindow window(*doc.document);
    window.setNumberOfFrames(4);
    window.show();
    QVERIFY(renderToEnd(window));
    const QString first = QString::fromStdString(window.renderer().tempPath());
    QVERIFY(first.startsWith(QStringLiteral("/tmp/Plyra_")));
    QVERIFY(QFile::exists(first));

    // A change makes a new temporary movie and removes the old one.
    QSignalSpy started(&window, &RenderWindow::renderStarted);
    doc.addLine(0.1f, 0.1f, 0.4f, 0.9f);
    test::advance(RenderScheduler::kRecalcDelayMs);
    QCOMPARE(started.count(), 1);
    const QString second = QString::fromStdString(window.renderer().tempPath());
    QVERIFY(second != first);
    QVERIFY(!QFile::exists(first));
    QVERIFY(QFile::exists(second));

    // Closing while it renders stops it and removes the movie.
    window.close();
    QVERIFY(!QFile::exists(second));
    QVERIFY(!window.renderer().writer());
    QVERIFY(!window.scheduler().isPolling());
    // "Free" stretches the movie to the view; the other modes keep its proportions.
    QVERIFY(window.player()->pictureView()->preservesAspectRatio());
    window.controller().settings().setFrameRatioMode(FrameRatioMode::Free);
    window.show();
    QVERIFY(renderToEnd(window));
    QVERIFY(!window.player()->pictureView()->preservesAspectRatio());
    const QString third = QString::fromStdString(window.renderer().tempPath());
    window.close();
    QVERIFY(!QFile::exists(third));
}

void MovieWindowTest::savesASelfContainedMovie_data()
{
    QTest::addColumn<QString>("code");
    QTest::addColumn<int>("fileType"); // the entry of the dialog's file types, chosen by key
    QTest::addColumn<QString>("saved");
    QTest::addColumn<QString>("codecName");
    QTest::newRow("mpeg 4") << "mp4v" << 0 << "morph.mov" << "mpeg4";
    QTest::newRow("h.264") << "avc1" << 0 << "morph.mov" << "h264";
    // Choosing a type turns the suggested "faces.mov" into a name of that type.
    QTest::newRow("mp4 from the movie shown") << "avc1" << 1 << "faces.mp4" << "h264";
    // Frames of another codec are rendered again for the file rather than recompressed.
    QTest::newRow("mp4 rendered for it") << "mp4v" << 1 << "faces.mp4" << "h264";
    QTest::newRow("animated gif") << "mp4v" << 3 << "faces.gif" << "gif";
    QTest::newRow("folder of frames") << "mp4v" << 5 << "faces/faces_0012.png" << "png";
}

void MovieWindowTest::savesASelfContainedMovie()
{
    QFETCH(QString, code);
    QFETCH(int, fileType);
    QFETCH(QString, saved);
    test::WindowTestDocument doc({64, 48}, {64, 48});
    doc.addLine(0.3f, 0.3f, 0.7f, 0.7f, 0.1f, 0.0f);
    doc.document->setCodecFormat(code);
    MovieWindow window(*doc.document);
    window.setDocumentFilePath(doc.dir.filePath(QStringLiteral("faces.plyra")));
    window.setNumberOfFrames(12);
    window.setFramesPerSecond(24.0f);
    window.show();
    QVERIFY(renderToEnd(window));
    window.save();
    auto* dialog = window.findChild<QFileDialog*>(QStringLiteral("saveDialog"));
    QVERIFY(dialog);
    QCOMPARE(dialog->defaultSuffix(), QStringLiteral("mov"));
    if (fileType > 0) {
        auto* types = dialog->findChild<QComboBox*>(QStringLiteral("fileTypeCombo"));
        auto* name = dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
        QVERIFY(types && name);
        QCOMPARE(name->text(), QStringLiteral("faces.mov"));
        types->setFocus();
        for (int down = 0; down < fileType; ++down)
            QTest::keyClick(types, Qt::Key_Down);
        if (fileType < 5)
            QCOMPARE(name->text(), saved);
    } else {
        dialog->selectFile(doc.dir.filePath(QStringLiteral("morph")));
    }
    static_cast<QDialog*>(dialog)->accept();
    const QString path = doc.dir.filePath(saved);
    // What must be rendered again is saved once that render is complete.
    QVERIFY(test::waitFor([&] { return QFile::exists(path) && !window.runningExport(); }));

    // The temporary movie goes; the saved one stands alone.
    window.close();
    const QMap<QString, QString> probed = probe(path);
    QTEST(probed.value(QStringLiteral("codec_name")), "codecName");
    if (saved.endsWith(QStringLiteral(".png"))) {
        QCOMPARE(QDir(QFileInfo(path).path()).entryList(QDir::Files).size(), 12);
        return;
    }
    QCOMPARE(probed.value(QStringLiteral("nb_read_frames")), QStringLiteral("12"));
    // GIF delays are whole hundredths of a second: 1/24 s becomes 0.04 s.
    QVERIFY(qAbs(probed.value(QStringLiteral("duration")).toDouble() - 0.5) <= (saved.endsWith(QStringLiteral(".gif")) ? 0.021 : 0.0));
}

void MovieWindowTest::asksBeforeAnUnsavedMovieIsLost_data()
{
    QTest::addColumn<int>("answer");
    QTest::addColumn<bool>("savedFirst");
    QTest::addColumn<bool>("staysOpen");
    using Answer = RenderSaveDialog::UnsavedResultAnswer;
    QTest::newRow("cancel") << int(Answer::Cancel) << false << true;
    QTest::newRow("don't save") << int(Answer::DontSave) << false << false;
    QTest::newRow("saved before") << int(Answer::Cancel) << true << false;
}

void MovieWindowTest::asksBeforeAnUnsavedMovieIsLost()
{
    QFETCH(int, answer);
    QFETCH(bool, savedFirst);
    QFETCH(bool, staysOpen);
    test::WindowTestDocument doc;
    MovieWindow window(*doc.document);
    window.setNumberOfFrames(4);
    window.show();
    QVERIFY(renderToEnd(window));
    QVERIFY(test::waitFor([&] { return window.hasUnsavedResult(); }));
    if (savedFirst)
        QVERIFY(window.saveToPath(doc.dir.filePath(QStringLiteral("kept.mov"))));
    int asked = 0;
    RenderWindow::setUnsavedResultQuestion([&](RenderWindow&) {
        ++asked;
        return RenderSaveDialog::UnsavedResultAnswer(answer);
    });
    window.close();
    QCOMPARE(asked, savedFirst ? 0 : 1);
    QCOMPARE(window.isVisible(), staysOpen);
    QCOMPARE(QFile::exists(QString::fromStdString(window.renderer().tempPath())), staysOpen);
    RenderWindow::setUnsavedResultQuestion([](RenderWindow&) { return RenderSaveDialog::UnsavedResultAnswer::DontSave; });
    window.close();
}

void MovieWindowTest::aCodecNothingCanWriteIsShown()
{
    test::WindowTestDocument doc;
    doc.document->setCodecFormat(QStringLiteral("zz9q"));
    MovieWindow window(*doc.document);
    QSignalSpy started(&window, &RenderWindow::renderStarted);
    window.show();
    const QString& message = window.player()->pictureView()->message();
    QVERIFY(test::waitFor([&] { return !message.isEmpty(); }));
    QVERIFY2(message.startsWith(QStringLiteral("The movie cannot be rendered: ")), qPrintable(message));
    QVERIFY(message.contains(QStringLiteral("zz9q")));
    QCOMPARE(started.count(), 0);
    QVERIFY(window.renderer().tempPath().empty());

    // A codec that works clears the message and renders.
    doc.document->setCodecFormat(QStringLiteral("mp4v"));
    test::advance(RenderScheduler::kRecalcDelayMs);
    QCOMPARE(started.count(), 1);
    QVERIFY(message.isEmpty());
    window.close();
}

void MovieWindowTest::settingsLiveInTheDocument()
{
    test::WindowTestDocument doc;
    MovieWindow window(*doc.document);
    window.show();
    QVERIFY(renderToEnd(window));
    window.showSettings();
    auto* sheet = static_cast<MovieSettingsSheet*>(window.settingsSheet());
    const auto retype = [](QLineEdit* field, const QString& text) {
        field->selectAll();
        QTest::keyClicks(field, text);
    };
    retype(sheet->numberOfFramesField(), QStringLiteral("6"));
    retype(sheet->framesPerSecondField(), QStringLiteral("10"));
    sheet->easingPopup()->setCurrentIndex(3);
    retype(sheet->holdStartField(), QStringLiteral("0.5"));
    retype(sheet->holdEndField(), QStringLiteral("1"));
    QTest::mouseClick(sheet->pingPongSwitch(), Qt::LeftButton, {}, QPoint(4, sheet->pingPongSwitch()->height() / 2));
    QCOMPARE(sheet->durationField()->text(), QStringLiteral("total: 2.6 seconds")); // 11 frames of 0.1 s, 1.5 s held
    QSignalSpy started(&window, &RenderWindow::renderStarted);
    sheet->buttons()->button(QDialogButtonBox::Ok)->click();

    const MovieSettings expected{6, 10.0f, true, 0, 64.0f, 48.0f, 0.0f, 1.0f, false, {Easing::EaseInOut, 0.5, 1.0, true}};
    QVERIFY(doc.document->movieSettings());
    QCOMPARE(doc.document->movieSettings()->timing, expected.timing);
    QCOMPARE(doc.document->movieSettings()->numberOfFrames, 6u);
    test::advance(RenderScheduler::kRecalcDelayMs);
    QCOMPARE(started.count(), 1);
    QVERIFY(renderToEnd(window));
    const std::vector<std::int64_t> times = window.renderer().movie()->frameTimes();
    QCOMPARE(times, (std::vector<std::int64_t>{0, 360, 420, 480, 540, 600, 1260, 1320, 1380, 1440, 1500}));

    // Opened again, the document renders the same movie.
    MorphDocument reopened;
    QVERIFY(reopened.readFromFile(doc.savePackage()));
    MovieWindow again(reopened);
    again.show();
    QVERIFY(renderToEnd(again));
    QCOMPARE(again.renderer().movie()->frameTimes(), times);
    QCOMPARE(again.controller().timing(), expected.timing);
    again.close();

    // Undone, the window renders the movie of a document without settings again.
    started.clear();
    doc.document->undoManager().undo();
    QVERIFY(!doc.document->movieSettings());
    test::advance(RenderScheduler::kRecalcDelayMs);
    QCOMPARE(started.count(), 1);
    QVERIFY(renderToEnd(window));
    QCOMPARE(window.renderer().movie()->frameTimes().size(), std::size_t{20});
    window.close();
}

void MovieWindowTest::playerKeysAndNames()
{
    test::WindowTestDocument doc;
    MovieWindow window(*doc.document);
    window.setNumberOfFrames(10);
    window.setFramesPerSecond(5.0f);
    window.show();
    QVERIFY(renderToEnd(window));
    MoviePlayer* player = window.player();
    player->pause();
    player->setFocus();
    QTest::keyClick(player, Qt::Key_Home);
    QCOMPARE(player->currentTime(), 0);
    QTest::keyClick(player, Qt::Key_Right);
    QCOMPARE(player->currentTime(), 120); // one frame of 1/5 s
    QVERIFY(test::waitFor([&] { return player->shownFrame() == std::size_t{1}; }));
    QTest::keyClick(player, Qt::Key_Left);
    QCOMPARE(player->currentTime(), 0);
    QTest::keyClick(player, Qt::Key_Space);
    QVERIFY(player->isPlaying());
    QCOMPARE(player->playButton()->accessibleName(), QStringLiteral("Pause"));
    QTest::keyClick(player, Qt::Key_Space);
    QVERIFY(!player->isPlaying());
    QCOMPARE(player->playButton()->accessibleName(), QStringLiteral("Play"));

    for (QWidget* widget : window.findChildren<QWidget*>())
        if (widget->isVisible() && widget->focusPolicy() != Qt::NoFocus)
            QVERIFY2(!widget->accessibleName().isEmpty(), widget->metaObject()->className());
    window.close();
}

void MovieWindowTest::aWindowSizedToItsMovieStaysOnTheScreen()
{
    test::WindowTestDocument doc;
    MovieWindow window(*doc.document);
    window.setNumberOfFrames(2);
    window.setSizeToView(false);
    window.setFrameSize({200, 150});
    window.show();
    QVERIFY(renderToEnd(window));
    // Left by the user over the screen's right edge, then made larger for a larger movie.
    const QRect available = window.screen()->availableGeometry();
    const QPoint overTheEdge(available.right() - window.frameGeometry().width() / 2, available.top());
    window.move(overTheEdge);
    QTRY_COMPARE(window.pos(), overTheEdge);
    window.recalc();
    QVERIFY(renderToEnd(window));
    QCOMPARE(window.pos(), overTheEdge);
    window.setFrameSize({320, 240});
    window.recalc();
    QVERIFY(renderToEnd(window));
    QCOMPARE(window.player()->pictureView()->size(), QSize(320, 240));
    QTRY_VERIFY(available.contains(window.frameGeometry()));
    window.close();
}

QTEST_MAIN(MovieWindowTest)
#include "movie_window_test.moc"
