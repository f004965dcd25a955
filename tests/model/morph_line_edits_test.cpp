// SPDX-License-Identifier: MIT
#include "model/morph_line.h"
#include "platform/notification_center.h"
#include "platform/run_loop.h"
#include "platform/undo_manager.h"

#include <gtest/gtest.h>

namespace plyra {
namespace {

class MorphLineEditsTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        RunLoop::main().runUntilIdle();
        m_observer = NotificationCenter::defaultCenter().addObserver(kObjectsUpdatedNotification,
            [this](const Notification&) { ++posted; });
    }
    void TearDown() override
    {
        RunLoop::main().runUntilIdle();
        NotificationCenter::defaultCenter().removeObserver(m_observer);
    }
    void endPass() { RunLoop::main().runUntilIdle(); }

    UndoManager undo;
    int posted = 0;

private:
    NotificationCenter::ObserverId m_observer = 0;
};

TEST_F(MorphLineEditsTest, SmallMovesAreStoredButNotPropagatedOrRegistered)
{
    auto a = MorphLine::create();
    auto b = MorphLine::create();
    a->attachLineAtEnd(b, nullptr);
    endPass();
    posted = 0;

    b->setStartPoint({0.0003f, 0.0f}, 0, &undo); // squared distance 9e-8: not above 1e-7
    EXPECT_EQ(b->startPoint(0), (Point{0.0003f, 0.0f}));
    EXPECT_EQ(a->endPoint(0), (Point{0, 0}));
    endPass();
    EXPECT_FALSE(undo.canUndo());
    EXPECT_EQ(posted, 0);
}

TEST_F(MorphLineEditsTest, MovingAJoinedStartMovesThePreviousEndAndUndoesBoth)
{
    auto a = MorphLine::create();
    auto b = MorphLine::create();
    a->attachLineAtEnd(b, nullptr);
    b->setStartPoint({0.4f, 0.6f}, 1, &undo);
    EXPECT_EQ(a->endPoint(1), (Point{0.4f, 0.6f}));
    EXPECT_EQ(a->endPoint(0), (Point{0, 0}));
    EXPECT_EQ(b->startPoint(0), (Point{0, 0}));
    endPass();
    EXPECT_EQ(posted, 1);
    EXPECT_EQ(undo.undoMenuItemTitle(), "Undo Move Line");

    undo.undo();
    EXPECT_EQ(a->endPoint(1), (Point{0, 0}));
    EXPECT_EQ(b->startPoint(1), (Point{0, 0}));
    EXPECT_EQ(undo.redoMenuItemTitle(), "Redo Move Line");
    undo.redo();
    EXPECT_EQ(a->endPoint(1), (Point{0.4f, 0.6f}));
    EXPECT_EQ(b->startPoint(1), (Point{0.4f, 0.6f}));

    // Without an undo manager the joined end follows, but nothing is registered or posted.
    endPass();
    posted = 0;
    const int steps = undo.undoStepCount();
    a->setEndPoint({0.9f, 0.9f}, 7, nullptr); // any track other than 0 is track 1
    EXPECT_EQ(b->startPoint(1), (Point{0.9f, 0.9f}));
    endPass();
    EXPECT_EQ(posted, 0);
    EXPECT_EQ(undo.undoStepCount(), steps);
}

TEST_F(MorphLineEditsTest, TimeSettersKeepPairsOrderedAndIgnoreTinyChanges)
{
    auto line = MorphLine::create();
    line->setStartPointStopMoveTime(0.5f, nullptr);
    line->setStartPointBeginMoveTime(0.7f, &undo);
    EXPECT_FLOAT_EQ(line->startPointBeginMoveTime(), 0.7f);
    EXPECT_FLOAT_EQ(line->startPointStopMoveTime(), 0.7f);
    endPass();
    EXPECT_EQ(undo.undoMenuItemTitle(), "Undo Change settings");
    undo.undo();
    EXPECT_FLOAT_EQ(line->startPointBeginMoveTime(), 0.0f);
    EXPECT_FLOAT_EQ(line->startPointStopMoveTime(), 0.5f);

    line->setStartPointBeginMoveTime(0.4f, nullptr);
    line->setStartPointStopMoveTime(0.2f, nullptr);
    EXPECT_FLOAT_EQ(line->startPointBeginMoveTime(), 0.2f);
    EXPECT_FLOAT_EQ(line->startPointStopMoveTime(), 0.2f);

    line->setDissolveEndTime(0.3f, nullptr);
    line->setDissolveStartTime(0.6f, nullptr);
    EXPECT_FLOAT_EQ(line->dissolveEndTime(), 0.6f);

    endPass();
    posted = 0;
    const int steps = undo.undoStepCount();
    line->setDissolveStartTime(0.60005f, &undo); // within 0.0001
    endPass();
    EXPECT_EQ(undo.undoStepCount(), steps);
    EXPECT_EQ(posted, 0);
    EXPECT_FLOAT_EQ(line->dissolveStartTime(), 0.6f);

    // Time setters notify also without an undo manager.
    line->setEndPointBeginMoveTime(0.3f, nullptr);
    endPass();
    EXPECT_EQ(posted, 1);
}

TEST_F(MorphLineEditsTest, TimesPropagateAlongAChain)
{
    auto a = MorphLine::create();
    auto b = MorphLine::create();
    a->attachLineAtEnd(b, nullptr);
    endPass();
    a->setEndPointStopMoveTime(0.6f, &undo);
    EXPECT_FLOAT_EQ(b->startPointStopMoveTime(), 0.6f);
    EXPECT_FLOAT_EQ(b->endPointStopMoveTime(), 1.0f);
    endPass();
    EXPECT_EQ(undo.undoMenuItemTitle(), "Undo Change settings");

    b->setStartPointBeginMoveTime(0.8f, &undo); // pushes both stop times of the joint
    EXPECT_FLOAT_EQ(a->endPointBeginMoveTime(), 0.8f);
    EXPECT_FLOAT_EQ(a->endPointStopMoveTime(), 0.8f);
    EXPECT_FLOAT_EQ(b->startPointStopMoveTime(), 0.8f);
    endPass();
    undo.undo();
    EXPECT_FLOAT_EQ(a->endPointBeginMoveTime(), 0.0f);
    EXPECT_FLOAT_EQ(a->endPointStopMoveTime(), 0.6f);
    EXPECT_FLOAT_EQ(b->startPointBeginMoveTime(), 0.0f);
    EXPECT_FLOAT_EQ(b->startPointStopMoveTime(), 0.6f);
    undo.undo();
    EXPECT_FLOAT_EQ(a->endPointStopMoveTime(), 1.0f);
    EXPECT_FLOAT_EQ(b->startPointStopMoveTime(), 1.0f);
}

TEST_F(MorphLineEditsTest, JoiningCopiesTheArgumentsTimesAndCuttingKeepsThem)
{
    auto s = MorphLine::create();
    auto l = MorphLine::create();
    l->setEndPointBeginMoveTime(0.2f, nullptr);
    l->setEndPointStopMoveTime(0.4f, nullptr);
    s->attachLineAtStart(l, &undo);
    EXPECT_EQ(s->attachedLineAtStart(), l);
    EXPECT_EQ(l->attachedLineAtEnd(), s);
    EXPECT_FLOAT_EQ(s->startPointBeginMoveTime(), 0.2f);
    EXPECT_FLOAT_EQ(s->startPointStopMoveTime(), 0.4f);
    endPass();
    EXPECT_EQ(undo.undoMenuItemTitle(), "Undo Connect line");

    s->disconnectLineAtStart(&undo);
    EXPECT_FALSE(s->attachedLineAtStart());
    EXPECT_FALSE(l->attachedLineAtEnd());
    EXPECT_FLOAT_EQ(s->startPointStopMoveTime(), 0.4f);
    EXPECT_FLOAT_EQ(l->endPointStopMoveTime(), 0.4f);
    endPass();
    EXPECT_EQ(undo.undoMenuItemTitle(), "Undo Disconnect line");

    undo.undo(); // joined again
    EXPECT_EQ(s->attachedLineAtStart(), l);
    EXPECT_EQ(l->attachedLineAtEnd(), s);
    undo.undo(); // the join undone: times back as well
    EXPECT_FALSE(s->attachedLineAtStart());
    EXPECT_FALSE(l->attachedLineAtEnd());
    EXPECT_FLOAT_EQ(s->startPointBeginMoveTime(), 0.0f);
    EXPECT_FLOAT_EQ(s->startPointStopMoveTime(), 1.0f);
    undo.redo();
    EXPECT_EQ(s->attachedLineAtStart(), l);
    EXPECT_FLOAT_EQ(s->startPointStopMoveTime(), 0.4f);

    // Cutting where there is no link registers nothing.
    endPass();
    const int steps = undo.undoStepCount();
    s->disconnectLineAtEnd(&undo);
    l->disconnectLineAtStart(&undo);
    endPass();
    EXPECT_EQ(undo.undoStepCount(), steps);
}

struct ChainState {
    MorphLine::Ptr aEnd, bStart, bEnd, cStart;
};

ChainState stateOf(const MorphLine::Ptr& a, const MorphLine::Ptr& b, const MorphLine::Ptr& c)
{
    return {a->attachedLineAtEnd(), b->attachedLineAtStart(), b->attachedLineAtEnd(), c->attachedLineAtStart()};
}

void expectChain(const ChainState& s, const MorphLine::Ptr& aEnd, const MorphLine::Ptr& bStart,
    const MorphLine::Ptr& bEnd, const MorphLine::Ptr& cStart)
{
    EXPECT_EQ(s.aEnd, aEnd);
    EXPECT_EQ(s.bStart, bStart);
    EXPECT_EQ(s.bEnd, bEnd);
    EXPECT_EQ(s.cStart, cStart);
}

TEST_F(MorphLineEditsTest, InsertingIntoAChainAndUndoingCutsOnAChainOfThree)
{
    auto a = MorphLine::create();
    auto b = MorphLine::create();
    auto c = MorphLine::create();
    a->attachLineAtEnd(c, &undo);
    a->attachLineAtEnd(b, &undo); // b goes between a and c
    expectChain(stateOf(a, b, c), b, a, c, b);
    EXPECT_TRUE(a->isLineAttachedAscending(c.get()));
    EXPECT_FALSE(a->isLineAttachedDescending(c.get()));
    EXPECT_TRUE(c->isLineAttachedDescending(a.get()));
    EXPECT_FALSE(a->isLineAttachedAscending(a.get()));
    auto other = MorphLine::create();
    EXPECT_FALSE(a->isLineAttachedAscending(other.get()));
    endPass();

    // Cut b out at both ends, as the document does before removing it.
    b->disconnectLineAtStart(&undo);
    b->disconnectLineAtEnd(&undo);
    expectChain(stateOf(a, b, c), nullptr, nullptr, nullptr, nullptr);
    endPass();
    undo.undo();
    expectChain(stateOf(a, b, c), b, a, c, b);
    undo.redo();
    expectChain(stateOf(a, b, c), nullptr, nullptr, nullptr, nullptr);
    undo.undo();
    undo.undo(); // undo the joins of the first pass
    expectChain(stateOf(a, b, c), nullptr, nullptr, nullptr, nullptr);
    undo.redo();
    expectChain(stateOf(a, b, c), b, a, c, b);
}

TEST_F(MorphLineEditsTest, ALineOwnsOnlyTheLineAtItsEnd)
{
    auto a = MorphLine::create();
    std::weak_ptr<MorphLine> weakB;
    {
        auto b = MorphLine::create();
        a->attachLineAtEnd(b, nullptr);
        weakB = b;
    }
    EXPECT_FALSE(weakB.expired()); // a holds b
    std::weak_ptr<MorphLine> weakA = a;
    weakB.lock()->disconnectLineAtStart(nullptr);
    EXPECT_TRUE(weakB.expired());
    a.reset();
    EXPECT_TRUE(weakA.expired());
}

} // namespace
} // namespace plyra
