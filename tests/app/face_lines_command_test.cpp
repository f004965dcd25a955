// SPDX-License-Identifier: MIT
#include "app/face_finding.h"
#include "app/face_lines_command.h"
#include "app_test_support.h"
#include "face/face_chains.h"
#include "model/morph_document.h"
#include "platform/qt/user_defaults.h"
#include "platform/run_loop.h"

#include <QSignalSpy>
#include <QTest>

#include <atomic>
#include <stdexcept>
#include <thread>

using namespace plyra;
using namespace plyra::test;

namespace {

constexpr int kFacelessWidth = 41;
constexpr int kFailingWidth = 43;

// A face whose landmarks spread over a grid, moved a little in the last image.
FaceLandmarks gridFace(float shift)
{
    FaceLandmarks face;
    for (std::size_t i = 0; i < kFaceLandmarkCount; ++i)
        face.points.push_back({0.1f + 0.8f * static_cast<float>(i % 22) / 22.0f + shift, 0.1f + 0.8f * static_cast<float>(i / 22) / 22.0f});
    return face;
}

// Images of the faceless width show no face; at the failing width the search fails as
// OpenCV's errors make it.
std::optional<FaceLandmarks> fakeFinder(const Image& image, const FaceLinesCommand::Stop&)
{
    if (image.extent().width == kFacelessWidth)
        return std::nullopt;
    if (image.extent().width == kFailingWidth)
        throw std::runtime_error("out of memory in forward()");
    return gridFace(image.extent().width > 45 ? 0.02f : 0.0f);
}

std::size_t faceLineCount()
{
    std::size_t count = 0;
    for (const FaceChain& chain : faceChains())
        count += chain.landmarks.size() - 1;
    return count;
}

} // namespace

class FaceLinesCommandTest : public QObject {
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    std::unique_ptr<MorphDocument> m_document;
    std::vector<std::function<void()>> m_pendingJobs;

    static void endPass()
    {
        QCoreApplication::processEvents();
        RunLoop::main().runUntilIdle();
    }

    FaceLinesCommand::Runner deferredRunner()
    {
        return [this](std::function<void()> job) { m_pendingJobs.push_back(std::move(job)); };
    }

    void setImage(unsigned track, int width)
    {
        QString error;
        QVERIFY2(m_document->setImageFromFile(writeTestImage(m_dir, QStringLiteral("i%1.png").arg(width), width, 30), track, &error),
            qPrintable(error));
    }

private slots:
    void initTestCase() { UserDefaults::standard().useFile(m_dir.filePath(QStringLiteral("defaults.ini"))); }

    void init()
    {
        m_document = std::make_unique<MorphDocument>();
        m_pendingJobs.clear();
    }

    void missingFacesAddNothingAndSaySo_data()
    {
        QTest::addColumn<int>("firstWidth");
        QTest::addColumn<int>("lastWidth"); // 0: no image
        QTest::addColumn<QString>("status");
        QTest::newRow("no last image") << 40 << 0 << QStringLiteral("No face found in the last image.");
        QTest::newRow("no face in the first") << kFacelessWidth << 50 << QStringLiteral("No face found in the first image.");
        QTest::newRow("no face in the last") << 40 << kFacelessWidth << QStringLiteral("No face found in the last image.");
        QTest::newRow("the search fails") << 40 << kFailingWidth
                                          << QStringLiteral("The faces could not be searched: out of memory in forward()");
        QTest::newRow("networks that do not load") << 40 << 0 << QStringLiteral("The faces could not be searched: the face networks do not load");
    }

    void missingFacesAddNothingAndSaySo()
    {
        QFETCH(int, firstWidth);
        QFETCH(int, lastWidth);
        QFETCH(QString, status);
        setImage(0, firstWidth);
        if (lastWidth)
            setImage(1, lastWidth);
        endPass();
        const int steps = m_document->undoManager().undoStepCount();
        // Files that are no networks: the installed finder's loading fails.
        const QString garbage = m_dir.filePath(QStringLiteral("garbage.onnx"));
        QFile(garbage).open(QIODevice::WriteOnly);
        const FaceModelFiles files{garbage.toStdString(), garbage.toStdString()};
        FaceLinesCommand command(*m_document, status.contains(QStringLiteral("do not load")) ? FaceFinding::fromFiles(files).makeFinder() : fakeFinder,
            deferredRunner());
        QSignalSpy statuses(&command, &FaceLinesCommand::statusChanged);
        command.run();
        QVERIFY(command.isRunning());
        m_pendingJobs.front()();
        endPass();
        QVERIFY(!command.isRunning());
        QCOMPARE(statuses.size(), 2);
        QVERIFY2(statuses.at(1).at(0).toString().startsWith(status), qPrintable(statuses.at(1).at(0).toString()));
        QVERIFY(m_document->morphLines().empty());
        QCOMPARE(m_document->undoManager().undoStepCount(), steps);
    }

    // One undo step adds the lines selected beside the existing one, and takes them away again.
    void addsSelectedLinesAsOneUndoStep()
    {
        setImage(0, 40);
        setImage(1, 50);
        const MorphLine::Ptr existing = MorphLine::create();
        existing->setEndPoint({0.9f, 0.9f}, 0, nullptr);
        m_document->addMorphLine(existing);
        m_document->setSelectedLines({existing});
        endPass();
        FaceLinesCommand command(*m_document, fakeFinder, deferredRunner());
        QSignalSpy statuses(&command, &FaceLinesCommand::statusChanged);
        command.run();
        command.run(); // a second request while one runs is ignored
        QCOMPARE(m_pendingJobs.size(), 1u);
        m_pendingJobs.front()();
        endPass();
        const std::size_t added = faceLineCount();
        QCOMPARE(statuses.last().at(0).toString(), QStringLiteral("Added %1 face lines.").arg(added));
        const auto& lines = m_document->morphLines();
        QCOMPARE(lines.size(), 1 + added);
        QCOMPARE(lines.front(), existing);
        QCOMPARE(m_document->selectedLines(), std::vector<MorphLine::Ptr>(lines.begin() + 1, lines.end()));
        const Point start = lines[1]->startPoint(1);
        QCOMPARE(start.x, gridFace(0.02f).points[static_cast<std::size_t>(faceChains().front().landmarks[0])].x);
        QCOMPARE(QString::fromStdString(m_document->undoManager().undoActionName()), QStringLiteral("Add Face Lines"));

        m_document->undoManager().undo();
        endPass();
        QCOMPARE(m_document->morphLines(), std::vector<MorphLine::Ptr>{existing});
        QCOMPARE(m_document->selectedLines(), std::vector<MorphLine::Ptr>{existing});
        m_document->undoManager().redo();
        endPass();
        QCOMPARE(m_document->morphLines().size(), 1 + added);
        QCOMPARE(m_document->selectedLines().size(), added);
    }

    void aResultForImagesThatChangedIsDropped()
    {
        setImage(0, 40);
        setImage(1, 50);
        FaceLinesCommand command(*m_document, fakeFinder, deferredRunner());
        QSignalSpy statuses(&command, &FaceLinesCommand::statusChanged);
        command.run();
        setImage(1, 60);
        m_pendingJobs.front()();
        endPass();
        QVERIFY(statuses.last().at(0).toString().startsWith(QStringLiteral("The images changed")));
        QVERIFY(m_document->morphLines().empty());
    }

    // A result that comes while an undo group is open (a drag in the inspector) waits: the
    // lines never join that step, and come as their own once it ends.
    void linesWaitForAnOpenUndoGroup()
    {
        setImage(0, 40);
        setImage(1, 50);
        endPass();
        FaceLinesCommand command(*m_document, fakeFinder, deferredRunner());
        int hooks = 0;
        command.setBeforeAdding([&hooks] { ++hooks; });
        QSignalSpy statuses(&command, &FaceLinesCommand::statusChanged);
        command.run();
        UndoManager& undo = m_document->undoManager();
        undo.beginUndoGrouping();
        m_document->addMorphLine(MorphLine::create());
        undo.setActionName("New Line");
        m_pendingJobs.front()();
        endPass();
        QCOMPARE(hooks, 1);
        QVERIFY(command.isRunning());
        QCOMPARE(m_document->morphLines().size(), 1u);
        QCOMPARE(statuses.last().at(0).toString(), QStringLiteral("The face lines are added when the current change ends."));
        undo.endUndoGrouping();
        command.addWaitingLines();
        endPass();
        QVERIFY(!command.isRunning());
        QCOMPARE(m_document->morphLines().size(), 1 + faceLineCount());
        QCOMPARE(undo.undoActionName(), std::string("Add Face Lines"));
        undo.undo();
        endPass();
        QCOMPARE(m_document->morphLines().size(), 1u);
        QCOMPARE(undo.undoActionName(), std::string("New Line"));
    }

    // Closing the window while the faces are searched stops the search and waits for it.
    void destroyingTheCommandStopsTheSearch()
    {
        setImage(0, 40);
        std::atomic<bool> stopped{false};
        {
            FaceLinesCommand command(*m_document, [&stopped](const Image&, const FaceLinesCommand::Stop& stop) {
                while (!stop())
                    std::this_thread::yield();
                stopped = true;
                return std::optional<FaceLandmarks>();
            });
            command.run();
        }
        QVERIFY(stopped);
        endPass(); // the dropped result reaches no one
    }
};

QTEST_MAIN(FaceLinesCommandTest)
#include "face_lines_command_test.moc"
