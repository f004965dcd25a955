// SPDX-License-Identifier: MIT
#include "model/morph_document.h"

#include "document_test_support.h"
#include "platform/log.h"

#include <gtest/gtest.h>

#include <QFile>

#include <memory>
#include <vector>

namespace plyra {
namespace {

using test::DocumentTestBase;

class MorphDocumentTest : public DocumentTestBase {
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
    std::vector<MorphLine::Ptr> lines() const { return document->morphLines(); }
    std::vector<MorphLine::Ptr> selection() const { return document->selectedLines(); }

    std::unique_ptr<MorphDocument> document;
};

// ---- defaults ------------------------------------------------------------------------

TEST_F(MorphDocumentTest, NewDocumentHasTheDocumentedDefaults)
{
    EXPECT_TRUE(document->morphLines().empty());
    EXPECT_TRUE(document->selectedLines().empty());
    EXPECT_EQ(document->codecFormat(), QStringLiteral("mp4v"));
    EXPECT_EQ(document->codecQuality(), 768);
    EXPECT_EQ(document->frameSize(), QSizeF(0, 0));
    EXPECT_EQ(document->storedLineColor(), nullptr);
    EXPECT_EQ(*document->lineColor(), (LineColor{0.5f, 1.0f, 0.0f, 1.0f}));
    EXPECT_FALSE(document->imageInTrack(0));
    EXPECT_TRUE(document->ciimageInTrack(1).isNull());
    EXPECT_FALSE(undo().canUndo());
}

TEST_F(MorphDocumentTest, CodecSettingsComeFromTheUserDefaults)
{
    UserDefaults::standard().setObject(QStringLiteral("codecFormat"), QStringLiteral("avc1"));
    UserDefaults::standard().setInteger(QStringLiteral("codecQuality"), 512);
    MorphDocument chosen;
    EXPECT_EQ(chosen.codecFormat(), QStringLiteral("avc1"));
    EXPECT_EQ(chosen.codecQuality(), 512);

    // A stored quality of 0 counts as none.
    UserDefaults::standard().setInteger(QStringLiteral("codecQuality"), 0);
    MorphDocument zero;
    EXPECT_EQ(zero.codecQuality(), 768);
}

TEST_F(MorphDocumentTest, NewDocumentPostsObjectsUpdatedThroughItsCodecSetters)
{
    MorphDocument fresh;
    endPass();
    EXPECT_EQ(objectsUpdated, 1);
    EXPECT_FALSE(fresh.undoManager().canUndo());
}

TEST_F(MorphDocumentTest, CodecSettersPostOnlyForNewValuesAndAreNotUndoable)
{
    document->setCodecFormat(QStringLiteral("mp4v"));
    document->setCodecQuality(768);
    endPass();
    EXPECT_EQ(objectsUpdated, 0);
    document->setCodecFormat(QStringLiteral("jpeg"));
    document->setCodecQuality(1023);
    endPass();
    EXPECT_EQ(objectsUpdated, 1);
    EXPECT_EQ(document->codecFormat(), QStringLiteral("jpeg"));
    EXPECT_EQ(document->codecQuality(), 1023);
    EXPECT_FALSE(undo().canUndo());
}

// ---- joining on insertion ------------------------------------------------------------

TEST_F(MorphDocumentTest, EndOnAFreeStartAtBothTracksJoins)
{
    auto l = makeLine({0.5f, 0.5f}, {0.9f, 0.5f}, {0.6f, 0.4f}, {0.9f, 0.9f});
    document->addMorphLine(l);
    // n ends where l starts, on each track, within 0.0001.
    auto n = makeLine({0.1f, 0.1f}, {0.50005f, 0.5f}, {0.2f, 0.2f}, {0.6f, 0.40005f});
    document->addMorphLine(n);
    EXPECT_EQ(l->attachedLineAtStart(), n);
    EXPECT_EQ(n->attachedLineAtEnd(), l);
    EXPECT_EQ(lines(), (std::vector<MorphLine::Ptr>{l, n}));
}

TEST_F(MorphDocumentTest, CoincidenceAtTrackZeroOnlyDoesNotJoin)
{
    auto l = makeLine({0.5f, 0.5f}, {0.9f, 0.5f}, {0.6f, 0.4f}, {0.9f, 0.9f});
    document->addMorphLine(l);
    auto n = makeLine({0.1f, 0.1f}, {0.5f, 0.5f}, {0.2f, 0.2f}, {0.61f, 0.4f});
    document->addMorphLine(n);
    EXPECT_EQ(l->attachedLineAtStart(), nullptr);
    EXPECT_EQ(n->attachedLineAtEnd(), nullptr);
}

TEST_F(MorphDocumentTest, JoinDistanceIsStrictlyBelowOneTenThousandth)
{
    auto l = makeLine({0.5f, 0.5f}, {0.9f, 0.5f});
    document->addMorphLine(l);
    auto apart = makeLine({0.1f, 0.1f}, {0.5f, 0.5002f});
    document->addMorphLine(apart);
    EXPECT_EQ(l->attachedLineAtStart(), nullptr);
}

TEST_F(MorphDocumentTest, OnlyTheFirstMatchingLineInListOrderIsJoined)
{
    // n's start meets a's end, and n's end meets b's start: one join, with a.
    auto a = makeLine({0.0f, 0.0f}, {0.2f, 0.2f});
    auto b = makeLine({0.8f, 0.8f}, {1.0f, 1.0f});
    document->addMorphLine(a);
    document->addMorphLine(b);
    auto n = makeLine({0.2f, 0.2f}, {0.8f, 0.8f});
    document->addMorphLine(n);
    EXPECT_EQ(a->attachedLineAtEnd(), n);
    EXPECT_EQ(n->attachedLineAtEnd(), nullptr);
    EXPECT_EQ(b->attachedLineAtStart(), nullptr);
}

TEST_F(MorphDocumentTest, ListOrderDecidesWhichLineIsJoined)
{
    auto a = makeLine({0.0f, 0.0f}, {0.2f, 0.2f});
    auto b = makeLine({0.8f, 0.8f}, {1.0f, 1.0f});
    document->addMorphLine(b);
    document->addMorphLine(a);
    auto n = makeLine({0.2f, 0.2f}, {0.8f, 0.8f});
    document->addMorphLine(n);
    EXPECT_EQ(b->attachedLineAtStart(), n);
    EXPECT_EQ(a->attachedLineAtEnd(), nullptr);
}

TEST_F(MorphDocumentTest, StartOfALineIsTriedBeforeItsEnd)
{
    // n would close a two-line loop with l; the start test of l wins.
    auto l = makeLine({0.3f, 0.3f}, {0.7f, 0.7f});
    document->addMorphLine(l);
    auto n = makeLine({0.7f, 0.7f}, {0.3f, 0.3f});
    document->addMorphLine(n);
    EXPECT_EQ(l->attachedLineAtStart(), n);
    EXPECT_EQ(l->attachedLineAtEnd(), nullptr);
}

TEST_F(MorphDocumentTest, NoJoinThatWouldCloseARing)
{
    auto a = makeLine({0.3f, 0.3f}, {0.7f, 0.7f});
    document->addMorphLine(a);
    // n already continues a, and its end lies on a's start: joining would make a ring.
    auto n = makeLine({0.7f, 0.7f}, {0.3f, 0.3f});
    a->attachLineAtEnd(n, nullptr);
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
    EXPECT_EQ(lines(), (std::vector<MorphLine::Ptr>{n, l}));
    endPass();
    EXPECT_EQ(undo().undoMenuItemTitle(), "Undo New Line");

    undo().undo();
    EXPECT_EQ(lines(), (std::vector<MorphLine::Ptr>{l}));
    EXPECT_EQ(l->attachedLineAtStart(), nullptr);
    EXPECT_EQ(undo().redoMenuItemTitle(), "Redo New Line");
    undo().redo();
    EXPECT_EQ(lines(), (std::vector<MorphLine::Ptr>{n, l}));
    EXPECT_EQ(l->attachedLineAtStart(), n);
}

// ---- removal -------------------------------------------------------------------------

/// The observable state of a three-line chain a → b → c and its selection.
struct ChainState {
    std::vector<MorphLine::Ptr> lines;
    std::vector<MorphLine::Ptr> selection;
    MorphLine::Ptr afterA;
    MorphLine::Ptr beforeC;
    std::string undoTitle;
    std::string redoTitle;
};

class MorphDocumentChainTest : public MorphDocumentTest {
protected:
    void SetUp() override
    {
        MorphDocumentTest::SetUp();
        document->addMorphLine(a);
        document->addMorphLine(b);
        document->addMorphLine(c);
        // b selected first, so that b's selection index (0) would name a after b is gone.
        document->insertObjectInSelectedLinesAtIndex(b, 0);
        document->insertObjectInSelectedLinesAtIndex(a, 1);
        resetCounts();
        undo().removeAllActions();
    }
    void expectState(const ChainState& expected)
    {
        EXPECT_EQ(lines(), expected.lines);
        EXPECT_EQ(selection(), expected.selection);
        EXPECT_EQ(a->attachedLineAtEnd(), expected.afterA);
        EXPECT_EQ(c->attachedLineAtStart(), expected.beforeC);
        EXPECT_EQ(undo().undoMenuItemTitle(), expected.undoTitle);
        EXPECT_EQ(undo().redoMenuItemTitle(), expected.redoTitle);
    }

    MorphLine::Ptr a = makeLine({0.1f, 0.1f}, {0.4f, 0.4f});
    MorphLine::Ptr b = makeLine({0.4f, 0.4f}, {0.6f, 0.5f});
    MorphLine::Ptr c = makeLine({0.6f, 0.5f}, {0.9f, 0.9f});
};

TEST_F(MorphDocumentChainTest, ChainIsJoinedOnInsertion)
{
    EXPECT_EQ(a->attachedLineAtEnd(), b);
    EXPECT_EQ(b->attachedLineAtEnd(), c);
}

TEST_F(MorphDocumentChainTest, DeleteAndUndoRestoreIndexSelectionAndJoins)
{
    const ChainState whole{{a, b, c}, {b, a}, b, b, "Undo", "Redo Delete Line"};
    const ChainState deleted{{a, c}, {a}, nullptr, nullptr, "Undo Delete Line", "Redo"};

    document->removeObjectFromMorphLinesAtIndex(1);
    EXPECT_EQ(b->attachedLineAtStart(), nullptr);
    EXPECT_EQ(b->attachedLineAtEnd(), nullptr);
    endPass();
    EXPECT_EQ(objectsUpdated, 1);
    EXPECT_EQ(selectionUpdated, 1);
    expectState(deleted);

    undo().undo();
    expectState(whole);
    EXPECT_EQ(b->attachedLineAtEnd(), c);
    EXPECT_EQ(b->attachedLineAtStart(), a);

    // Redoing deselects b, and only b.
    undo().redo();
    expectState(deleted);
    undo().undo();
    expectState(whole);
}

TEST_F(MorphDocumentChainTest, DeletingALineThatIsNotInTheDocumentDoesNothing)
{
    document->deleteMorphLine(makeLine({0, 0}, {1, 1}));
    endPass();
    EXPECT_EQ(lines().size(), 3u);
    EXPECT_FALSE(undo().canUndo());
    EXPECT_EQ(objectsUpdated, 0);
}

TEST_F(MorphDocumentChainTest, DeleteMorphLineFindsTheIndex)
{
    document->deleteMorphLine(c);
    EXPECT_EQ(lines(), (std::vector<MorphLine::Ptr>{a, b}));
    EXPECT_EQ(b->attachedLineAtEnd(), nullptr);
    endPass();
    EXPECT_EQ(undo().undoActionName(), "Delete Line");
    EXPECT_EQ(selectionUpdated, 0); // c was not selected
}

// ---- selection -----------------------------------------------------------------------

TEST_F(MorphDocumentChainTest, SelectionIgnoresDuplicatesAndBadIndices)
{
    document->insertObjectInSelectedLinesAtIndex(a, 0);
    document->removeObjectFromSelectedLinesAtIndex(2);
    endPass();
    EXPECT_EQ(selection(), (std::vector<MorphLine::Ptr>{b, a}));
    EXPECT_EQ(selectionUpdated, 0);
    EXPECT_FALSE(undo().canUndo());
}

TEST_F(MorphDocumentChainTest, SelectionChangesAreUndoableWithoutAName)
{
    document->removeObjectFromSelectedLinesAtIndex(0);
    document->insertObjectInSelectedLinesAtIndex(c, 0);
    EXPECT_TRUE(document->isLineSelected(c.get()));
    EXPECT_FALSE(document->isLineSelected(b.get()));
    endPass();
    EXPECT_EQ(selectionUpdated, 1);
    EXPECT_EQ(undo().undoMenuItemTitle(), "Undo");
    undo().undo();
    EXPECT_EQ(selection(), (std::vector<MorphLine::Ptr>{b, a}));
    undo().redo();
    EXPECT_EQ(selection(), (std::vector<MorphLine::Ptr>{c, a}));
}

// ---- colour --------------------------------------------------------------------------

TEST_F(MorphDocumentTest, TheSameColourObjectRegistersNothing)
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
}

TEST_F(MorphDocumentTest, AnEqualButDistinctColourIsAChange)
{
    const LineColor::Ptr red = LineColor::make(1, 0, 0, 1);
    document->setLineColor(red);
    endPass();
    resetCounts();
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

// ---- notifications -------------------------------------------------------------------

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

    // All of it is one step; the last name set wins.
    EXPECT_EQ(undo().undoStepCount(), 1);
    undo().undo();
    EXPECT_TRUE(lines().empty());
    EXPECT_TRUE(selection().empty());
    EXPECT_EQ(document->storedLineColor(), nullptr);
}

// ---- frame size and images -----------------------------------------------------------

TEST_F(MorphDocumentTest, FrameSizeIsUndoableWithoutANameAndPostsNothing)
{
    document->setFrameSize(QSizeF(320, 240));
    endPass();
    EXPECT_EQ(objectsUpdated, 0);
    EXPECT_EQ(undo().undoMenuItemTitle(), "Undo");
    undo().undo();
    EXPECT_EQ(document->frameSize(), QSizeF(0, 0));
}

TEST_F(MorphDocumentTest, AspectRatioWithoutImagesIsOne)
{
    EXPECT_EQ(document->aspectRatioInTrack(0), 1.0f);
    EXPECT_EQ(document->aspectRatioInTrack(1), 1.0f);
}

TEST_F(MorphDocumentTest, AspectRatioIsBorrowedFromTheFirstImage)
{
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

TEST_F(MorphDocumentTest, SetImageIsUndoableAndPostsObjectsUpdated)
{
    const QString first = writePng("first.png", 40, 30);
    document->setImageFromURL(first, 0);
    endPass();
    EXPECT_EQ(objectsUpdated, 1);
    EXPECT_EQ(undo().undoMenuItemTitle(), "Undo Set Image");
    EXPECT_EQ(document->imageURLInTrack(0), first);

    undo().undo();
    EXPECT_TRUE(document->imageURLInTrack(0).isEmpty());
    EXPECT_FALSE(document->imageInTrack(0));
    EXPECT_EQ(document->frameSize(), QSizeF(0, 0));
    undo().redo();
    EXPECT_EQ(document->imageURLInTrack(0), first);
    EXPECT_EQ(document->frameSize(), QSizeF(40, 30));
}

TEST_F(MorphDocumentTest, AnUnreadableImageLeavesTheTrackEmptyAndLogsEveryRequest)
{
    const QString missing = path("missing.png");
    LogCapture log;
    document->setImageFromURL(missing, 1);
    EXPECT_EQ(document->imageURLInTrack(1), missing);
    EXPECT_FALSE(document->imageInTrack(1));
    EXPECT_TRUE(document->ciimageInTrack(1).isNull());
    EXPECT_TRUE(document->ciimageInTrack(1).isNull());
    const std::string imageLine = "Could not create Image from '" + missing.toStdString() + "'";
    const std::string ciimageLine = "Could not create CIImage from '" + missing.toStdString() + "'";
    EXPECT_EQ(log.count(imageLine), 2); // once while setting, once on request
    EXPECT_EQ(log.count(ciimageLine), 2);
    EXPECT_EQ(document->frameSize(), QSizeF(0, 0));
    EXPECT_EQ(document->aspectRatioInTrack(1), 1.0f);
}

TEST_F(MorphDocumentTest, CommonImageFormatsLoad)
{
    QImage source(20, 10, QImage::Format_RGB32);
    source.fill(qRgb(200, 40, 10));
    for (const char* format : {"JPEG", "BMP", "WEBP", "PNG"}) {
        const QString file = path("image.") + QString::fromLatin1(format).toLower();
        ASSERT_TRUE(source.save(file, format)) << format;
        document->setImageFromURL(file, 1);
        ASSERT_TRUE(document->imageInTrack(1)) << format;
        EXPECT_EQ(document->imageInTrack(1)->size(), QSizeF(20, 10)) << format;
        EXPECT_FALSE(document->imageInTrack(1)->isPdf());
    }
}

TEST_F(MorphDocumentTest, ADamagedPdfLeavesTheTrackEmpty)
{
    QFile file(path("bad.pdf"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("%PDF-1.4\n1 0 obj << /Type /Catalog >> garbage");
    file.close();
    LogCapture log;
    document->setImageFromURL(path("bad.pdf"), 0);
    EXPECT_FALSE(document->imageInTrack(0));
    EXPECT_EQ(log.count("Could not create Image from '" + path("bad.pdf").toStdString() + "'"), 2);
    QString reason;
    EXPECT_FALSE(DisplayImage::load(path("bad.pdf"), &reason));
    EXPECT_TRUE(reason.contains(QStringLiteral("PDF"))) << reason.toStdString();
}

TEST_F(MorphDocumentTest, AnEmptyLocationYieldsNoImageAndNoMessage)
{
    LogCapture log;
    document->setImageFromURL(QString(), 0);
    EXPECT_FALSE(document->imageInTrack(0));
    EXPECT_TRUE(document->ciimageInTrack(0).isNull());
    EXPECT_TRUE(log.lines().empty());
}

TEST_F(MorphDocumentTest, RenderingImageIsPremultipliedWithTheBottomRowFirst)
{
    // Top row half-transparent red, bottom row opaque blue.
    const QString file = writePng("two.png", 3, 2, [](int, int y) { return y == 0 ? qRgba(255, 0, 0, 128) : qRgba(0, 0, 255, 255); });
    document->setImageFromURL(file, 0);
    const Image image = document->ciimageInTrack(0);
    ASSERT_FALSE(image.isNull());
    const Bitmap* bitmap = image.bitmap();
    ASSERT_NE(bitmap, nullptr);
    ASSERT_EQ(bitmap->width(), 3);
    ASSERT_EQ(bitmap->height(), 2);
    EXPECT_EQ(bitmap->pixel(0, 0), (std::array<std::uint8_t, 4>{0, 0, 255, 255}));
    EXPECT_EQ(bitmap->pixel(2, 1), (std::array<std::uint8_t, 4>{128, 0, 0, 128}));
    // The image is made once and then shared.
    EXPECT_EQ(document->ciimageInTrack(0), image);
}

TEST_F(MorphDocumentTest, DestroyingTheDocumentMidEventIsSafe)
{
    auto line = makeLine({0.1f, 0.2f}, {0.3f, 0.4f});
    document->addMorphLine(line);
    document->insertObjectInSelectedLinesAtIndex(line, 0);
    document->setImageFromURL(writePng("first.png", 8, 8), 0);
    document.reset();
    endPass(); // the open undo step and the queued notifications outlive the document
    EXPECT_EQ(objectsUpdated, 1);
}

} // namespace
} // namespace plyra
