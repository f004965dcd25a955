// SPDX-License-Identifier: MIT
#include "model/morph_line.h"
#include "platform/notification_center.h"
#include "platform/plist/openstep_plist.h"
#include "platform/run_loop.h"

#include <gtest/gtest.h>

#include <cmath>

namespace plyra {
namespace {

constexpr Point kP0{0.1f, 0.2f};
constexpr Point kP1{0.5f, 0.9f};

MorphLine::Ptr lineWithStartMove(float begin, float stop)
{
    auto line = MorphLine::create();
    line->setStartPoint(kP0, 0, nullptr);
    line->setStartPoint(kP1, 1, nullptr);
    line->setStartPointStopMoveTime(stop > begin ? stop : 1.0f, nullptr);
    line->setStartPointBeginMoveTime(begin, nullptr);
    line->setStartPointStopMoveTime(stop, nullptr);
    return line;
}

void expectPoint(Point actual, Point expected, float tolerance = 0.0f)
{
    EXPECT_NEAR(actual.x, expected.x, tolerance);
    EXPECT_NEAR(actual.y, expected.y, tolerance);
}

TEST(MorphLinePointAtTime, NewLineAndMovingIntervals)
{
    auto fresh = MorphLine::create();
    EXPECT_EQ(fresh->nPoints(), 2u);
    for (float t : {0.0f, 0.3f, 1.0f}) {
        EXPECT_EQ(fresh->startPointAtTime(t), (Point{0, 0}));
        EXPECT_EQ(fresh->endPointAtTime(t), (Point{0, 0}));
    }

    auto full = lineWithStartMove(0.0f, 1.0f);
    EXPECT_EQ(full->startPointAtTime(0.0f), kP0);
    EXPECT_EQ(full->startPointAtTime(1.0f), kP1);
    expectPoint(full->startPointAtTime(0.25f), {0.2f, 0.375f}, 1e-6f);

    auto part = lineWithStartMove(0.2f, 0.6f);
    EXPECT_FLOAT_EQ(part->startPointBeginMoveTime(), 0.2f);
    EXPECT_FLOAT_EQ(part->startPointStopMoveTime(), 0.6f);
    EXPECT_EQ(part->startPointAtTime(0.1f), kP0);
    EXPECT_EQ(part->startPointAtTime(0.2f), kP0);
    expectPoint(part->startPointAtTime(0.4f), {0.3f, 0.55f}, 1e-6f);
    EXPECT_EQ(part->startPointAtTime(0.6f), kP1);
    EXPECT_EQ(part->startPointAtTime(0.9f), kP1);
}

TEST(MorphLinePointAtTime, InstantJumps)
{
    auto early = lineWithStartMove(0.3f, 0.3f);
    EXPECT_EQ(early->startPointAtTime(0.29f), kP0);
    EXPECT_EQ(early->startPointAtTime(0.3f), kP0);
    EXPECT_EQ(early->startPointAtTime(0.31f), kP1);

    auto late = lineWithStartMove(0.7f, 0.7f);
    EXPECT_EQ(late->startPointAtTime(0.69f), kP0);
    EXPECT_EQ(late->startPointAtTime(0.7f), kP1);
    EXPECT_EQ(late->startPointAtTime(0.8f), kP1);

    auto atZero = lineWithStartMove(0.0f, 0.0f);
    EXPECT_EQ(atZero->startPointAtTime(0.0f), kP0);
    EXPECT_EQ(atZero->startPointAtTime(0.001f), kP1);
    EXPECT_EQ(atZero->startPointAtTime(1.0f), kP1);

    auto atOne = lineWithStartMove(1.0f, 1.0f);
    EXPECT_EQ(atOne->startPointAtTime(0.0f), kP0);
    EXPECT_EQ(atOne->startPointAtTime(0.999f), kP0);
    EXPECT_EQ(atOne->startPointAtTime(1.0f), kP1);

    // 0.00005 apart is an instant, so the midpoint is never produced.
    auto nearlyInstant = lineWithStartMove(0.5f, 0.50005f);
    EXPECT_EQ(nearlyInstant->startPointAtTime(0.50002f), kP1);
    EXPECT_EQ(nearlyInstant->startPointAtTime(0.49f), kP0);
}

TEST(MorphLineTransform, IdentityTranslationAndStretchAlongTheLine)
{
    auto line = MorphLine::create();
    line->setStartPoint({0.2f, 0.2f}, 0, nullptr);
    line->setEndPoint({0.6f, 0.5f}, 0, nullptr);
    line->setStartPoint({0.3f, 0.1f}, 1, nullptr);
    line->setEndPoint({0.7f, 0.4f}, 1, nullptr);

    const AffineTransform same = line->transformFromTime(0.4f, 0.4f);
    EXPECT_NEAR(same.m11, 1.0f, 1e-6f);
    EXPECT_NEAR(same.m12, 0.0f, 1e-6f);
    EXPECT_NEAR(same.m21, 0.0f, 1e-6f);
    EXPECT_NEAR(same.m22, 1.0f, 1e-6f);
    EXPECT_NEAR(same.tX, 0.0f, 1e-6f);
    EXPECT_NEAR(same.tY, 0.0f, 1e-6f);

    // Same direction and length at both times: a pure translation by S1 − S2.
    const AffineTransform shift = line->transformFromTime(0.0f, 1.0f);
    EXPECT_NEAR(shift.m11, 1.0f, 1e-6f);
    EXPECT_NEAR(shift.m22, 1.0f, 1e-6f);
    EXPECT_NEAR(shift.m12, 0.0f, 1e-6f);
    EXPECT_NEAR(shift.m21, 0.0f, 1e-6f);
    EXPECT_NEAR(shift.tX, -0.1f, 1e-6f);
    EXPECT_NEAR(shift.tY, 0.1f, 1e-6f);

    // Track 1 twice as long as track 0, same start and direction (along x): scale 0.5
    // along the line, 1 across it.
    auto stretched = MorphLine::create();
    stretched->setStartPoint({0.1f, 0.5f}, 0, nullptr);
    stretched->setEndPoint({0.3f, 0.5f}, 0, nullptr);
    stretched->setStartPoint({0.1f, 0.5f}, 1, nullptr);
    stretched->setEndPoint({0.5f, 0.5f}, 1, nullptr);
    const AffineTransform half = stretched->transformFromTime(0.0f, 1.0f);
    EXPECT_NEAR(half.m11, 0.5f, 1e-6f);
    EXPECT_NEAR(half.m22, 1.0f, 1e-6f);
    EXPECT_NEAR(half.m12, 0.0f, 1e-6f);
    EXPECT_NEAR(half.m21, 0.0f, 1e-6f);
    expectPoint(half.apply({0.5f, 0.5f}), {0.3f, 0.5f}, 1e-6f); // E2 → E1
    expectPoint(half.apply({0.3f, 0.7f}), {0.2f, 0.7f}, 1e-6f); // across stays 0.2 away

    // A diagonal line: the six numbers keep their order (m12 is the y of the image of x).
    auto diagonal = MorphLine::create();
    diagonal->setStartPoint({0.0f, 0.0f}, 0, nullptr);
    diagonal->setEndPoint({0.0f, 0.2f}, 0, nullptr);
    diagonal->setStartPoint({0.0f, 0.0f}, 1, nullptr);
    diagonal->setEndPoint({0.2f, 0.0f}, 1, nullptr);
    const AffineTransform turn = diagonal->transformFromTime(0.0f, 1.0f); // rotate +90°
    EXPECT_NEAR(turn.m11, 0.0f, 1e-6f);
    EXPECT_NEAR(turn.m12, 1.0f, 1e-6f);
    EXPECT_NEAR(turn.m21, -1.0f, 1e-6f);
    EXPECT_NEAR(turn.m22, 0.0f, 1e-6f);

    // No length at t2: a finite translation of the start point.
    auto point = MorphLine::create();
    point->setStartPoint({0.4f, 0.4f}, 1, nullptr);
    point->setEndPoint({0.4f, 0.4f}, 1, nullptr);
    point->setEndPoint({0.1f, 0.0f}, 0, nullptr);
    const AffineTransform degenerate = point->transformFromTime(0.0f, 1.0f);
    EXPECT_TRUE(std::isfinite(degenerate.m11) && std::isfinite(degenerate.tX));
    expectPoint(degenerate.apply({0.4f, 0.4f}), {0.0f, 0.0f}, 1e-6f);
}

PropertyList::Dictionary lineDictionary()
{
    return {
        {"startPoints", PropertyList::Array{"{0.25, 0.75}", "{0.5, 0.5}"}},
        {"endPoints", PropertyList::Array{"{1, 0}", "{0.125, -0.5}"}},
        {"startPointBeginMoveTime", "0.1"},
        {"startPointStopMoveTime", "0.9"},
        {"endPointBeginMoveTime", "0.2"},
        {"endPointStopMoveTime", "0.8"},
        {"dissolveStartTime", "0.3"},
        {"dissolveEndTime", "0.7"},
    };
}

TEST(MorphLineStoredForm, ReadsPointsTimesAndRoundTrips)
{
    auto line = MorphLine::fromValues(lineDictionary());
    ASSERT_TRUE(line);
    EXPECT_EQ(line->startPoint(0), (Point{0.25f, 0.75f}));
    EXPECT_EQ(line->endPoint(1), (Point{0.125f, -0.5f}));
    EXPECT_FLOAT_EQ(line->startPointBeginMoveTime(), 0.1f);
    EXPECT_FLOAT_EQ(line->endPointStopMoveTime(), 0.8f);
    EXPECT_FLOAT_EQ(line->dissolveStartTime(), 0.3f);
    EXPECT_TRUE(line->shouldNotify());

    const PropertyList stored = line->pList();
    EXPECT_EQ(*stored.find("dissolveEndTime")->string(), "0.7");
    EXPECT_EQ(*stored.find("startPointStopMoveTime")->string(), "0.9");
    EXPECT_EQ(*(*stored.find("startPoints")->array())[0].string(), "{0.25, 0.75}");

    auto again = MorphLine::fromValues(stored);
    EXPECT_EQ(again->startPoints(), line->startPoints());
    EXPECT_EQ(again->endPoints(), line->endPoints());
    EXPECT_EQ(again->pList(), stored);

    // The string form builds the same line.
    auto fromText = MorphLine::fromValues(PropertyList(line->description()));
    ASSERT_TRUE(fromText);
    EXPECT_EQ(fromText->pList(), stored);

    auto copy = line->copy();
    EXPECT_NE(copy, line);
    EXPECT_EQ(copy->pList(), stored);
    EXPECT_FALSE(copy->attachedLineAtStart());
    EXPECT_FALSE(copy->attachedLineAtEnd());

    // Odd values keep full float precision through the point text.
    auto precise = MorphLine::create();
    precise->setStartPoint({1.0f / 3.0f, 2.0f / 7.0f}, 0, nullptr);
    EXPECT_EQ(precise->copy()->startPoint(0), precise->startPoint(0));
}

TEST(MorphLineStoredForm, OlderKeysOrderingRulesAndBadValues)
{
    auto legacy = MorphLine::fromValues(PropertyList::Dictionary{{"moveStartTime", "0.2"}, {"moveEndTime", 0.8}});
    EXPECT_FLOAT_EQ(legacy->startPointBeginMoveTime(), 0.2f);
    EXPECT_FLOAT_EQ(legacy->endPointBeginMoveTime(), 0.2f);
    EXPECT_FLOAT_EQ(legacy->startPointStopMoveTime(), 0.8f);
    EXPECT_FLOAT_EQ(legacy->endPointStopMoveTime(), 0.8f);
    EXPECT_FLOAT_EQ(legacy->dissolveStartTime(), 0.0f);
    EXPECT_FLOAT_EQ(legacy->dissolveEndTime(), 1.0f);

    // Older keys win over newer ones.
    auto both = MorphLine::fromValues(PropertyList::Dictionary{{"startPointBeginMoveTime", "0.1"}, {"moveStartTime", "0.4"}});
    EXPECT_FLOAT_EQ(both->startPointBeginMoveTime(), 0.4f);

    auto reversed = MorphLine::fromValues(PropertyList::Dictionary{{"startPointBeginMoveTime", "0.5"}, {"startPointStopMoveTime", "0.3"}});
    EXPECT_FLOAT_EQ(reversed->startPointBeginMoveTime(), 0.3f);
    EXPECT_FLOAT_EQ(reversed->startPointStopMoveTime(), 0.3f);

    // Three start points and two end points: two of each.
    auto uneven = MorphLine::fromValues(PropertyList::Dictionary{
        {"startPoints", PropertyList::Array{"{0.1, 0.1}", "{0.2, 0.2}", "{0.3, 0.3}"}},
        {"endPoints", PropertyList::Array{"{0.4, 0.4}", "{0.5, 0.5}"}}});
    EXPECT_EQ(uneven->nPoints(), 2u);
    EXPECT_EQ(uneven->startPoint(1), (Point{0.2f, 0.2f}));

    // Three of each are kept and written back.
    auto extra = MorphLine::fromValues(PropertyList::Dictionary{
        {"startPoints", PropertyList::Array{"{0.1, 0.1}", "{0.2, 0.2}", "{0.3, 0.3}"}},
        {"endPoints", PropertyList::Array{"{0.4, 0.4}", "{0.5, 0.5}", "{0.6, 0.6}"}}});
    EXPECT_EQ(extra->nPoints(), 3u);
    EXPECT_EQ(*(*extra->pList().find("endPoints")->array())[2].string(), "{0.6, 0.6}");

    // One entry only: default points everywhere.
    auto tooFew = MorphLine::fromValues(PropertyList::Dictionary{
        {"startPoints", PropertyList::Array{"{0.1, 0.1}"}}, {"endPoints", PropertyList::Array{"{0.4, 0.4}", "{1, 1}"}}});
    EXPECT_EQ(tooFew->endPoint(1), (Point{0, 0}));

    // Unreadable numbers read as 0; a missing y reads as 0; wrong types keep defaults.
    auto bad = MorphLine::fromValues(PropertyList::Dictionary{
        {"startPoints", PropertyList::Array{"{abc, 0.5}", "{0.7}"}},
        {"endPoints", PropertyList::Array{PropertyList(3), "garbage"}},
        {"dissolveEndTime", "soon"},
        {"endPointStopMoveTime", PropertyList::Dictionary{}}});
    EXPECT_EQ(bad->startPoint(0), (Point{0.5f, 0.0f}));
    EXPECT_EQ(bad->startPoint(1), (Point{0.7f, 0.0f}));
    EXPECT_EQ(bad->endPoint(0), (Point{0, 0}));
    EXPECT_FLOAT_EQ(bad->dissolveEndTime(), 0.0f);
    EXPECT_FLOAT_EQ(bad->dissolveStartTime(), 0.0f);
    EXPECT_FLOAT_EQ(bad->endPointStopMoveTime(), 0.0f);

    EXPECT_FALSE(MorphLine::fromValues(PropertyList(42)));
    EXPECT_FALSE(MorphLine::fromValues(PropertyList("{ unclosed = ")));
    EXPECT_FALSE(MorphLine::fromValues(PropertyList("(a, b)")));
}

TEST(MorphLineStoredForm, LegacyCompactTextFromAnOlderDocument)
{
    auto line = MorphLine::fromValues(PropertyList(
        "{startPoints = (\"{0.1, 0.2}\", \"{0.3, 0.4}\"); endPoints = (\"{0.5, 0.6}\", \"{0.7, 0.8}\"); "
        "moveStartTime = 0.25; moveEndTime = 0.75; dissolveStartTime = 0.5; dissolveEndTime = 0.5;}"));
    ASSERT_TRUE(line);
    EXPECT_EQ(line->endPoint(1), (Point{0.7f, 0.8f}));
    EXPECT_FLOAT_EQ(line->endPointBeginMoveTime(), 0.25f);
    EXPECT_FLOAT_EQ(line->startPointStopMoveTime(), 0.75f);
    EXPECT_FLOAT_EQ(line->dissolveStartTime(), 0.5f);
}

TEST(MorphLineNotification, TenChangesInOnePassPostOnce)
{
    RunLoop::main().runUntilIdle();
    int posted = 0;
    auto id = NotificationCenter::defaultCenter().addObserver(kObjectsUpdatedNotification,
        [&](const Notification&) { ++posted; });

    auto building = MorphLine::fromValues(lineDictionary()); // building posts nothing
    RunLoop::main().runUntilIdle();
    EXPECT_EQ(posted, 0);

    auto line = MorphLine::create();
    for (int i = 1; i <= 10; ++i)
        line->setDissolveStartTime(static_cast<float>(i) * 0.05f, nullptr);
    RunLoop::main().runUntilIdle();
    EXPECT_EQ(posted, 1);

    line->notify();
    RunLoop::main().runUntilIdle();
    EXPECT_EQ(posted, 2);
    NotificationCenter::defaultCenter().removeObserver(id);
}

} // namespace
} // namespace plyra
