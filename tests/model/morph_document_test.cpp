// SPDX-License-Identifier: MIT
#include "model/morph_document.h"

#include "document_test_support.h"
#include "platform/log.h"

#include <gtest/gtest.h>

#include <QFile>

#include <array>
#include <memory>
#include <vector>

namespace plyra {
namespace {

using Lines = std::vector<MorphLine::Ptr>;

class MorphDocumentTest : public test::DocumentTestBase {
protected:
    void SetUp() override
    {
        DocumentTestBase::SetUp();
        document = std::make_unique<MorphDocument>();
        resetCounts();
    }
    void TearDown() override
    {
        document.reset();
        DocumentTestBase::TearDown();
    }
    UndoManager& undo() { return document->undoManager(); }
    Lines lines() const { return document->morphLines(); }
    Lines selection() const { return document->selectedLines(); }

    std::unique_ptr<MorphDocument> document;
};

TEST_F(MorphDocumentTest, CodecSettingsComeFromTheUserDefaults)
{
    EXPECT_EQ(document->codecFormat(), QStringLiteral("mp4v"));
    EXPECT_EQ(document->codecQuality(), 768);
    EXPECT_EQ(*document->lineColor(), (LineColor{0.5f, 1.0f, 0.0f, 1.0f}));
    UserDefaults::standard().setObject(QStringLiteral("codecFormat"), QStringLiteral("avc1"));
    UserDefaults::standard().setInteger(QStringLiteral("codecQuality"), 512);
    MorphDocument chosen;
    EXPECT_EQ(chosen.codecFormat(), QStringLiteral("avc1"));
    EXPECT_EQ(chosen.codecQuality(), 512);
    UserDefaults::standard().setInteger(QStringLiteral("codecQuality"), 0); // counts as none
    MorphDocument zero;
    EXPECT_EQ(zero.codecQuality(), 768);
}

using Ends = std::array<Point, 4>; // start and end at track 0, then at track 1
Ends both(Point start, Point end) { return {start, end, start, end}; }

TEST_F(MorphDocumentTest, AnInsertedLineIsJoinedToTheFirstLineItMeetsAtBothTracks)
{
    struct Join { int line; bool atStart; int partner; }; // partner -1: none
    // Lines are added in order; the last one is the new line.
    struct Case { const char* what; std::vector<Ends> lines; std::vector<Join> joins; };
    const Ends l{{{0.5f, 0.5f}, {0.9f, 0.5f}, {0.6f, 0.4f}, {0.9f, 0.9f}}};
    const Ends a = both({0.0f, 0.0f}, {0.2f, 0.2f});
    const Ends b = both({0.8f, 0.8f}, {1.0f, 1.0f});
    const Ends n = both({0.2f, 0.2f}, {0.8f, 0.8f}); // starts at a's end, ends at b's start
    const std::vector<Case> cases = {
        {"within 0.0001 at both tracks", {l, {{{0.1f, 0.1f}, {0.50005f, 0.5f}, {0.2f, 0.2f}, {0.6f, 0.40005f}}}}, {{0, true, 1}, {1, false, 0}}},
        {"at track 0 only", {l, {{{0.1f, 0.1f}, {0.5f, 0.5f}, {0.2f, 0.2f}, {0.61f, 0.4f}}}}, {{0, true, -1}, {1, false, -1}}},
        {"0.0002 apart", {both({0.5f, 0.5f}, {0.9f, 0.5f}), both({0.1f, 0.1f}, {0.5f, 0.5002f})}, {{0, true, -1}, {1, false, -1}}},
        {"first in list order", {a, b, n}, {{0, false, 2}, {2, false, -1}, {1, true, -1}}},
        {"list order reversed", {b, a, n}, {{0, true, 2}, {1, false, -1}}},
        {"start tried before end", {both({0.3f, 0.3f}, {0.7f, 0.7f}), both({0.7f, 0.7f}, {0.3f, 0.3f})}, {{0, true, 1}, {0, false, -1}}},
    };
    for (const Case& c : cases) {
        MorphDocument doc;
        Lines made;
        for (const Ends& e : c.lines) {
            made.push_back(makeLine(e[0], e[1], e[2], e[3]));
            doc.addMorphLine(made.back());
        }
        for (const Join& j : c.joins) {
            const MorphLine& line = *made[static_cast<std::size_t>(j.line)];
            const MorphLine::Ptr expected = j.partner < 0 ? nullptr : made[static_cast<std::size_t>(j.partner)];
            EXPECT_EQ(j.atStart ? line.attachedLineAtStart() : line.attachedLineAtEnd(), expected) << c.what << ", line " << j.line;
        }
    }
}

TEST_F(MorphDocumentTest, NoJoinThatWouldCloseARing)
{
    auto a = makeLine({0.3f, 0.3f}, {0.7f, 0.7f});
    document->addMorphLine(a);
    auto n = makeLine({0.7f, 0.7f}, {0.3f, 0.3f});
    a->attachLineAtEnd(n, nullptr); // n already continues a, and its end lies on a's start
    document->addMorphLine(n);
    EXPECT_EQ(a->attachedLineAtStart(), nullptr);
    EXPECT_EQ(n->attachedLineAtEnd(), nullptr);
    EXPECT_EQ(a->attachedLineAtEnd(), n);
}

TEST_F(MorphDocumentTest, InsertionIsOneStepNamedNewLine)
{
    auto l = makeLine({0.5f, 0.5f}, {0.9f, 0.5f});
    document->addMorphLine(l);
    endPass();
    auto n = makeLine({0.1f, 0.1f}, {0.5f, 0.5f});
    document->insertObjectInMorphLinesAtIndex(n, 0);
    EXPECT_EQ(lines(), (Lines{n, l}));
    endPass();
    EXPECT_EQ(undo().undoMenuItemTitle(), "Undo New Line");

    undo().undo();
    EXPECT_EQ(lines(), (Lines{l}));
    EXPECT_EQ(l->attachedLineAtStart(), nullptr);
    EXPECT_EQ(undo().redoMenuItemTitle(), "Redo New Line");
    undo().redo();
    EXPECT_EQ(lines(), (Lines{n, l}));
    EXPECT_EQ(l->attachedLineAtStart(), n);
}

class MorphDocumentChainTest : public MorphDocumentTest {
protected:
    void SetUp() override
    {
        MorphDocumentTest::SetUp();
        for (const auto& line : {a, b, c})
            document->addMorphLine(line);
        // b selected first, so that b's selection index (0) would name a after b is gone.
        document->insertObjectInSelectedLinesAtIndex(b, 0);
        document->insertObjectInSelectedLinesAtIndex(a, 1);
        resetCounts();
        undo().removeAllActions();
    }
    void expectState(const Lines& all, const Lines& selected, const MorphLine::Ptr& afterA, const std::string& undoTitle, const std::string& redoTitle)
    {
        EXPECT_EQ(lines(), all);
        EXPECT_EQ(selection(), selected);
        EXPECT_EQ(a->attachedLineAtEnd(), afterA);
        EXPECT_EQ(c->attachedLineAtStart(), afterA);
        EXPECT_EQ(undo().undoMenuItemTitle(), undoTitle);
        EXPECT_EQ(undo().redoMenuItemTitle(), redoTitle);
    }

    MorphLine::Ptr a = makeLine({0.1f, 0.1f}, {0.4f, 0.4f});
    MorphLine::Ptr b = makeLine({0.4f, 0.4f}, {0.6f, 0.5f});
    MorphLine::Ptr c = makeLine({0.6f, 0.5f}, {0.9f, 0.9f});
};

TEST_F(MorphDocumentChainTest, DeleteAndUndoRestoreIndexSelectionAndJoins)
{
    document->removeObjectFromMorphLinesAtIndex(1);
    EXPECT_EQ(b->attachedLineAtStart(), nullptr);
    EXPECT_EQ(b->attachedLineAtEnd(), nullptr);
    endPass();
    EXPECT_EQ(objectsUpdated, 1);
    EXPECT_EQ(selectionUpdated, 1);
    for (int round = 0; round < 2; ++round) { // the second round redoes and undoes again
        expectState({a, c}, {a}, nullptr, "Undo Delete Line", "Redo");
        undo().undo();
        expectState({a, b, c}, {b, a}, b, "Undo", "Redo Delete Line");
        EXPECT_EQ(b->attachedLineAtEnd(), c);
        EXPECT_EQ(b->attachedLineAtStart(), a);
        if (round == 0)
            undo().redo(); // deselects b, and only b
    }
}

TEST_F(MorphDocumentChainTest, SelectingIsNoUndoStepAndKeepsRedo)
{
    document->insertObjectInSelectedLinesAtIndex(a, 0); // a duplicate and a bad index: ignored
    document->removeObjectFromSelectedLinesAtIndex(2);
    endPass();
    EXPECT_EQ(selection(), (Lines{b, a}));
    EXPECT_EQ(selectionUpdated, 0);

    c->setEndPoint({0.95f, 0.95f}, 0, &undo());
    endPass();
    undo().undo();
    document->setSelectedLines({c});
    document->removeObjectFromSelectedLinesAtIndex(0);
    document->insertObjectInSelectedLinesAtIndex(a, 0);
    endPass();
    EXPECT_EQ(selectionUpdated, 1);
    EXPECT_EQ(selection(), (Lines{a}));
    EXPECT_FALSE(undo().canUndo());
    EXPECT_EQ(undo().redoMenuItemTitle(), "Redo Move Line");
}

TEST_F(MorphDocumentChainTest, UndoAndRedoPutBackTheSelectionOfTheirStep)
{
    // Selected {b, a}; the move happens with {c} selected, and ends with {a, c}.
    document->setSelectedLines({c});
    c->setEndPoint({0.95f, 0.95f}, 0, &undo());
    document->insertObjectInSelectedLinesAtIndex(a, 0);
    endPass();
    document->setSelectedLines({b});
    endPass();
    undo().undo();
    EXPECT_EQ(selection(), (Lines{c}));
    EXPECT_EQ(c->endPointAtTime(0.0f).x, 0.9f);
    document->setSelectedLines({});
    undo().redo();
    EXPECT_EQ(selection(), (Lines{a, c}));
    EXPECT_EQ(c->endPointAtTime(0.0f).x, 0.95f);
}

TEST_F(MorphDocumentTest, OnlyADistinctColourObjectIsAnUndoableChange)
{
    const LineColor::Ptr red = LineColor::make(1, 0, 0, 1);
    document->setLineColor(red);
    endPass();
    const int steps = undo().undoStepCount();
    resetCounts();
    document->setLineColor(red);
    endPass();
    EXPECT_EQ(undo().undoStepCount(), steps);
    EXPECT_EQ(selectionUpdated, 0);

    const LineColor::Ptr sameRed = LineColor::make(1, 0, 0, 1);
    document->setLineColor(sameRed);
    endPass();
    EXPECT_EQ(document->storedLineColor(), sameRed);
    EXPECT_EQ(undo().undoMenuItemTitle(), "Undo Change colour");
    EXPECT_EQ(selectionUpdated, 1);
    EXPECT_EQ(objectsUpdated, 0); // only drawing depends on the colour
    undo().undo();
    EXPECT_EQ(document->storedLineColor(), red);
    undo().undo();
    EXPECT_EQ(document->storedLineColor(), nullptr);
    EXPECT_EQ(document->lineColor(), LineColor::defaultColor());
}

TEST_F(MorphDocumentTest, ThreeChangesInOneEventPostEachNotificationOnce)
{
    const NotificationCenter::ObserverId id = NotificationCenter::defaultCenter().addObserver(
        "selectionUpdated", [this](const Notification& n) { EXPECT_EQ(n.object, document.get()); });
    auto line = makeLine({0.1f, 0.2f}, {0.3f, 0.4f});
    document->addMorphLine(line);
    document->insertObjectInSelectedLinesAtIndex(line, 0);
    document->setLineColor(LineColor::make(0, 0, 1, 1));
    line->setEndPoint({0.5f, 0.5f}, 1, &undo());
    EXPECT_EQ(objectsUpdated, 0);
    endPass();
    EXPECT_EQ(objectsUpdated, 1);
    EXPECT_EQ(selectionUpdated, 1);
    NotificationCenter::defaultCenter().removeObserver(id);

    EXPECT_EQ(undo().undoStepCount(), 1); // all of it is one step
    undo().undo();
    EXPECT_TRUE(lines().empty());
    EXPECT_TRUE(selection().empty());
    EXPECT_EQ(document->storedLineColor(), nullptr);
}

TEST_F(MorphDocumentTest, AspectRatioIsBorrowedFromTheFirstImage)
{
    EXPECT_EQ(document->aspectRatioInTrack(0), 1.0f);
    EXPECT_EQ(document->aspectRatioInTrack(1), 1.0f);
    document->setImageFromURL(writePng("first.png", 640, 480), 0);
    EXPECT_EQ(document->aspectRatioInTrack(0), 1.3333334f);
    EXPECT_EQ(document->aspectRatioInTrack(1), 1.3333334f);
    EXPECT_EQ(document->aspectRatioInTrack(7), 1.3333334f);
    document->setImageFromURL(writePng("last.png", 100, 50), 1);
    EXPECT_EQ(document->aspectRatioInTrack(1), 2.0f);
    EXPECT_EQ(document->aspectRatioInTrack(0), 1.3333334f);
}

TEST_F(MorphDocumentTest, FirstImageThatLoadsFixesTheFrameSize)
{
    document->setImageFromURL(writePng("last.png", 320, 200), 1);
    EXPECT_EQ(document->frameSize(), QSizeF(320, 200));
    document->setImageFromURL(writePng("first.png", 640, 480), 0);
    EXPECT_EQ(document->frameSize(), QSizeF(320, 200));
    ASSERT_TRUE(document->imageInTrack(0));
    EXPECT_EQ(document->imageInTrack(0)->size(), QSizeF(640, 480));
    EXPECT_EQ(document->imageInTrack(5)->size(), QSizeF(320, 200));
}

TEST_F(MorphDocumentTest, AnUnreadableImageLeavesTheTrackEmptyAndLogsItsReasonOnceUntilTheFileChanges)
{
    QFile pdf(path("bad.pdf"));
    ASSERT_TRUE(pdf.open(QIODevice::WriteOnly) && pdf.write("%PDF-1.4\n1 0 obj << /Type /Catalog >> garbage") > 0);
    pdf.close();
    struct Case {
        QString file;
        FileProblem problem;
        std::string reason;
    };
    for (const Case& c : {Case{path("missing.png"), FileProblem::Missing, "no such file"},
                          Case{path("bad.pdf"), FileProblem::Damaged, "PDF"}}) {
        LogCapture log;
        document->setImageFromURL(c.file, 1);
        EXPECT_EQ(document->imageURLInTrack(1), c.file);
        EXPECT_FALSE(document->imageInTrack(1));
        EXPECT_TRUE(document->ciimageInTrack(1).isNull());
        EXPECT_TRUE(document->ciimageInTrack(1).isNull());
        const std::string prefix = "Could not create Image from '" + c.file.toStdString() + "': ";
        ASSERT_EQ(log.count(prefix), 1); // once, with the reason, however often it is asked for
        EXPECT_NE(log.lines()[0].find(c.reason), std::string::npos) << log.lines()[0];
        EXPECT_EQ(log.count("Could not create CIImage from"), 0);
        ASSERT_TRUE(document->imageFailureInTrack(1));
        EXPECT_EQ(document->imageFailureInTrack(1)->problem, c.problem);
        EXPECT_EQ(document->frameSize(), QSizeF(0, 0));
        EXPECT_EQ(document->aspectRatioInTrack(1), 1.0f);
    }
    // The file appears: the next request reads it, without a word.
    LogCapture log;
    writePng("missing.png", 8, 6);
    document->setImageFromURL(path("missing.png"), 1);
    document->setImageFromURL(path("bad.pdf"), 1);
    EXPECT_FALSE(document->imageInTrack(1));
    writePng("bad.pdf", 8, 6);
    EXPECT_FALSE(document->ciimageInTrack(1).isNull());
    EXPECT_FALSE(document->imageFailureInTrack(1));
    EXPECT_EQ(log.count("Could not create"), 1);
}

TEST_F(MorphDocumentTest, AnImageFileIsTakenOnlyWhenItReads)
{
    const QString good = writePng("good.png", 40, 20);
    resetCounts();
    QString reason;
    for (const QString& bad : {path("missing.png"), path("")}) {
        LogCapture log;
        EXPECT_FALSE(document->setImageFromFile(bad, 0, &reason));
        EXPECT_FALSE(reason.isEmpty());
        EXPECT_TRUE(document->imageURLInTrack(0).isEmpty());
        EXPECT_FALSE(undo().canUndo());
        endPass();
        EXPECT_EQ(objectsUpdated, 0);
    }
    ASSERT_TRUE(document->setImageFromFile(good, 0, &reason));
    EXPECT_EQ(document->imageInTrack(0)->size(), QSizeF(40, 20));
    EXPECT_EQ(document->frameSize(), QSizeF(40, 20));
    endPass();
    EXPECT_EQ(objectsUpdated, 1);
    EXPECT_EQ(undo().undoMenuItemTitle(), "Undo Set Image");
    undo().undo();
    EXPECT_TRUE(document->imageURLInTrack(0).isEmpty());
    EXPECT_EQ(document->frameSize(), QSizeF(0, 0));
}

TEST_F(MorphDocumentTest, RenderingImageIsPremultipliedWithTheBottomRowFirst)
{
    // Top row half-transparent red, bottom row opaque blue.
    document->setImageFromURL(writePng("two.png", 3, 2, [](int, int y) { return y == 0 ? qRgba(255, 0, 0, 128) : qRgba(0, 0, 255, 255); }), 0);
    const Image image = document->ciimageInTrack(0);
    ASSERT_FALSE(image.isNull());
    const Bitmap* bitmap = image.bitmap();
    ASSERT_TRUE(bitmap && bitmap->width() == 3 && bitmap->height() == 2);
    EXPECT_EQ(bitmap->pixel(0, 0), (std::array<std::uint8_t, 4>{0, 0, 255, 255}));
    EXPECT_EQ(bitmap->pixel(2, 1), (std::array<std::uint8_t, 4>{128, 0, 0, 128}));
    EXPECT_EQ(document->ciimageInTrack(0), image); // made once, then shared
}

} // namespace
} // namespace plyra
