// SPDX-License-Identifier: MIT
#include "platform/image/geometry.h"

#include <gtest/gtest.h>

namespace plyra {
namespace {

TEST(ImageRect, UnionHoldsBothAndIgnoresNull)
{
    EXPECT_EQ((Rect{0, 0, 2, 2}.united({5, -1, 1, 1})), (Rect{0, -1, 6, 3}));
    EXPECT_EQ(Rect::null().united({1, 2, 3, 4}), (Rect{1, 2, 3, 4}));
    EXPECT_EQ((Rect{1, 2, 3, 4}.united(Rect::null())), (Rect{1, 2, 3, 4}));
    // A zero-size rectangle counts as its point.
    EXPECT_EQ((Rect{-0.1f, 0, 0, 0}.united({0.2f, 0.3f, 0, 0})), (Rect{-0.1f, 0, 0.3f, 0.3f}));
    EXPECT_TRUE((Rect{0, 0, 1, 1}.united(Rect::infinite())).isInfinite());
}

TEST(ImageRect, IntersectionIsNullWithoutOverlap)
{
    EXPECT_EQ((Rect{0, 0, 4, 4}.intersected({2, 1, 4, 1})), (Rect{2, 1, 2, 1}));
    EXPECT_TRUE((Rect{0, 0, 1, 1}.intersected({3, 3, 1, 1})).isNull());
    EXPECT_EQ(Rect::infinite().intersected({1, 2, 3, 4}), (Rect{1, 2, 3, 4}));
    EXPECT_TRUE(Rect::null().intersected(Rect::infinite()).isNull());
}

TEST(ImageRect, InsetOffsetIntegral)
{
    EXPECT_EQ((Rect{90, 95, 80, 70}.insetBy(-1, -1)), (Rect{89, 94, 82, 72}));
    EXPECT_TRUE((Rect{0, 0, 1, 1}.insetBy(1, 0)).isNull());
    EXPECT_EQ((Rect{1, 2, 3, 4}.offsetBy(-1, 1)), (Rect{0, 3, 3, 4}));
    EXPECT_EQ((Rect{0.5f, -0.5f, 1.2f, 1}.integral()), (Rect{0, -1, 2, 2}));
    EXPECT_TRUE(Rect::infinite().integral().isInfinite());
    EXPECT_TRUE(Rect::infinite().offsetBy(5, 5).isInfinite());
}

TEST(ImageRect, SpecialValues)
{
    EXPECT_TRUE(Rect::null().isNull());
    EXPECT_TRUE(Rect::null().isEmpty());
    EXPECT_FALSE(Rect::infinite().isNull());
    EXPECT_FALSE((Rect{0, 0, 0, 0}).isNull());
    EXPECT_TRUE((Rect{0, 0, 0, 5}).isEmpty());
    EXPECT_TRUE(Rect::infinite().containsPoint(1e30f, -1e30f));
    EXPECT_TRUE((Rect{0, 0, 2, 2}).containsPoint(0, 1.9f));
    EXPECT_FALSE((Rect{0, 0, 2, 2}).containsPoint(2, 1));
    EXPECT_TRUE((Rect{0, 0, 4, 4}).contains({1, 1, 2, 3}));
    EXPECT_EQ((Rect{0, 0, 640, 480}).description(), "[0 0 640 480]");
}

TEST(ImageMatrix, MapsInverseAndComposition)
{
    const Matrix m{2, 0, 0, 1, -20, -20};
    EXPECT_EQ(m.mapX(10, 20), 0.0f);
    EXPECT_EQ(m.mapY(110, 120), 100.0f);
    const Matrix inverse = m.inverted();
    EXPECT_EQ(inverse.mapX(0, 0), 10.0f);
    EXPECT_EQ(inverse.mapY(0, 0), 20.0f);
    EXPECT_TRUE(m.then(inverse).isIdentity());
    const Matrix rotate{0, 1, -1, 0, 0, 0};
    EXPECT_EQ(rotate.mapX(1, 0), 0.0f);
    EXPECT_EQ(rotate.mapY(1, 0), 1.0f);
    EXPECT_EQ(rotate.mapRect({0, 0, 2, 1}), (Rect{-1, 0, 1, 2}));
    const Matrix both = m.then(rotate);
    EXPECT_EQ(both.mapX(3, 4), rotate.mapX(m.mapX(3, 4), m.mapY(3, 4)));
    EXPECT_EQ(both.mapY(3, 4), rotate.mapY(m.mapX(3, 4), m.mapY(3, 4)));
    EXPECT_FALSE((Matrix{0, 0, 0, 0, 1, 1}).isInvertible());
    EXPECT_TRUE((Matrix{0, 0, 0, 0, 1, 1}).inverted().isIdentity());
    EXPECT_EQ(Matrix::fromValues({1, 2, 3, 4, 5, 6}).values(), (std::array<float, 6>{1, 2, 3, 4, 5, 6}));
}

} // namespace
} // namespace plyra
