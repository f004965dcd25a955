// SPDX-License-Identifier: MIT
#include "model/morph_line.h"
#include "platform/notification_center.h"
#include "platform/plist/openstep_plist.h"
#include "platform/run_loop.h"

#include <gtest/gtest.h>

#include <array>
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

void expectTransform(const AffineTransform& m, const std::array<float, 6>& expected)
{
    const std::array<float, 6> actual{m.m11, m.m12, m.m21, m.m22, m.tX, m.tY};
    for (std::size_t i = 0; i < 6; ++i)
        EXPECT_NEAR(actual[i], expected[i], 1e-6f) << "number " << i;
}

MorphLine::Ptr lineAt(Point s0, Point e0, Point s1, Point e1)
{
    auto line = MorphLine::create();
    line->setStartPoint(s0, 0, nullptr);
    line->setEndPoint(e0, 0, nullptr);
    line->setStartPoint(s1, 1, nullptr);
    line->setEndPoint(e1, 1, nullptr);
    return line;
}

TEST(MorphLinePointAtTime, MovingIntervalsAndInstants)
{
    auto fresh = MorphLine::create();
    EXPECT_EQ(fresh->nPoints(), 2u);
    EXPECT_EQ(fresh->endPointAtTime(0.3f), (Point{0, 0}));

    struct Row {
        float begin, stop, t;
        bool last; // P1 rather than P0
    };
    // Intervals 0–1 and 0.2–0.6 at their ends; instants at 0.3 (still P0 on the
    // instant), 0.7 (already P1), 0 and 1; 0.5–0.50005 counts as an instant.
    const Row rows[] = {
        {0, 1, 0, false}, {0, 1, 1, true}, {0.2f, 0.6f, 0.1f, false}, {0.2f, 0.6f, 0.2f, false},
        {0.2f, 0.6f, 0.6f, true}, {0.2f, 0.6f, 0.9f, true}, {0.3f, 0.3f, 0.29f, false},
        {0.3f, 0.3f, 0.3f, false}, {0.3f, 0.3f, 0.31f, true}, {0.7f, 0.7f, 0.69f, false},
        {0.7f, 0.7f, 0.7f, true}, {0, 0, 0, false}, {0, 0, 0.001f, true}, {1, 1, 0.999f, false},
        {1, 1, 1, true}, {0.5f, 0.50005f, 0.49f, false}, {0.5f, 0.50005f, 0.50002f, true},
    };
    for (const Row& r : rows) {
        auto line = lineWithStartMove(r.begin, r.stop);
        EXPECT_EQ(line->startPointAtTime(r.t), r.last ? kP1 : kP0) << r.begin << "-" << r.stop << " at " << r.t;
    }
    expectPoint(lineWithStartMove(0, 1)->startPointAtTime(0.25f), {0.2f, 0.375f}, 1e-6f);
    expectPoint(lineWithStartMove(0.2f, 0.6f)->startPointAtTime(0.4f), {0.3f, 0.55f}, 1e-6f);
}

TEST(MorphLineTransform, IdentityTranslationStretchAndTurn)
{
    auto line = lineAt({0.2f, 0.2f}, {0.6f, 0.5f}, {0.3f, 0.1f}, {0.7f, 0.4f});
    expectTransform(line->transformFromTime(0.4f, 0.4f), {1, 0, 0, 1, 0, 0});
    // Same direction and length at both times: a pure translation by S1 − S2.
    expectTransform(line->transformFromTime(0.0f, 1.0f), {1, 0, 0, 1, -0.1f, 0.1f});

    // Track 1 twice as long as track 0, same start and direction: 0.5 along, 1 across.
    const AffineTransform half
        = lineAt({0.1f, 0.5f}, {0.3f, 0.5f}, {0.1f, 0.5f}, {0.5f, 0.5f})->transformFromTime(0.0f, 1.0f);
    expectTransform(half, {0.5f, 0, 0, 1, 0.05f, 0});
    expectPoint(half.apply({0.3f, 0.7f}), {0.2f, 0.7f}, 1e-6f);

    // A quarter turn: the six numbers keep their order (m12 is the y of the image of x).
    expectTransform(lineAt({0, 0}, {0, 0.2f}, {0, 0}, {0.2f, 0})->transformFromTime(0.0f, 1.0f), {0, 1, -1, 0, 0, 0});

    // A diagonal line twice as long on track 1: halved along the diagonal, kept across it.
    // Scaling along the image axes instead (diag(0.5, 1)) gives other numbers and points.
    const AffineTransform diagonal
        = lineAt({0.2f, 0.2f}, {0.4f, 0.4f}, {0.2f, 0.2f}, {0.6f, 0.6f})->transformFromTime(0.0f, 1.0f);
    expectTransform(diagonal, {0.75f, -0.25f, -0.25f, 0.75f, 0.1f, 0.1f});
    // Turned from the diagonal onto the x axis and shortened to 2/3: ends onto ends, and
    // points 0.05 to either side of the track-1 line land 0.05 to that side of track 0's.
    const float r = 1.0f / std::sqrt(2.0f), off = 0.05f * r;
    const AffineTransform turned
        = lineAt({0.1f, 0.1f}, {0.3f, 0.1f}, {0.5f, 0.5f}, {0.5f + 0.3f * r, 0.5f + 0.3f * r})->transformFromTime(0.0f, 1.0f);
    const struct { const AffineTransform& m; Point from, to; } carried[] = {
        {diagonal, {0.6f, 0.6f}, {0.4f, 0.4f}},
        {diagonal, {0.4f, 0.4f}, {0.3f, 0.3f}},
        {diagonal, {0.2f - 0.1f * r, 0.2f + 0.1f * r}, {0.2f - 0.1f * r, 0.2f + 0.1f * r}},
        {turned, {0.5f + 0.3f * r, 0.5f + 0.3f * r}, {0.3f, 0.1f}},
        {turned, {0.5f - off, 0.5f + off}, {0.1f, 0.15f}},
        {turned, {0.5f + 0.15f * r + off, 0.5f + 0.15f * r - off}, {0.2f, 0.05f}}};
    for (const auto& c : carried)
        expectPoint(c.m.apply(c.from), c.to, 1e-6f);

    // No length at t2: a finite translation of the start point.
    const AffineTransform point
        = lineAt({0, 0}, {0.1f, 0}, {0.4f, 0.4f}, {0.4f, 0.4f})->transformFromTime(0.0f, 1.0f);
    expectTransform(point, {1, 0, 0, 1, -0.4f, -0.4f});
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

    // Infinities and not-a-number, signed or not, are texts that are not numbers: 0.
    for (const char* text : {"-nan", "-inf", "+inf", "inf", "nan", "-INF"}) {
        auto line = MorphLine::fromValues(PropertyList::Dictionary{{"dissolveStartTime", "0.5"}, {"dissolveEndTime", text},
                                                                   {"endPointBeginMoveTime", text}});
        EXPECT_FLOAT_EQ(line->dissolveEndTime(), 0.0f) << text;
        EXPECT_FLOAT_EQ(line->dissolveStartTime(), 0.0f) << text; // lowered to the end time
        EXPECT_FLOAT_EQ(line->endPointBeginMoveTime(), 0.0f) << text;
    }

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
