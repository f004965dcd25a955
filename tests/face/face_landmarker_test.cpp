// SPDX-License-Identifier: MIT
// The landmarks the converted networks find on the fixture faces (skipped in a build
// without the networks).
#include "face/face_chains.h"
#include "face/face_detector_internal.h"
#include "face_test_support.h"

#include <gtest/gtest.h>

namespace plyra {
namespace {

using test::imageFromPicture;
using test::inPixels;
using test::photoPath;

// The test is skipped when null comes back; networks that are there but do not load fail it.
std::unique_ptr<FaceLandmarker> landmarkerOrSkip()
{
    std::string error;
    std::unique_ptr<FaceLandmarker> landmarker = test::convertedLandmarker(&error);
    EXPECT_TRUE(error.empty()) << error;
    return landmarker;
}

// The error of each hand-marked point, as a fraction of the distance between the eyes: at
// most 5 % on average over a face. Single points may be off by up to 12 %: where a person
// puts an eye's outer corner or the chin on a soft outline differs from the network's
// convention by a few pixels.
TEST(FaceLandmarker, LandmarksLieOnTheHandMarkedPoints)
{
    const auto landmarker = landmarkerOrSkip();
    if (!landmarker)
        GTEST_SKIP() << "this build has no face networks";
    for (const test::PhotoErrors& photo : test::handMarkErrors(*landmarker)) {
        ASSERT_TRUE(photo.found) << photo.photo;
        double sum = 0.0;
        for (const test::PointError& point : photo.points) {
            EXPECT_LE(point.error, 0.12) << photo.photo << " " << point.what;
            sum += point.error;
        }
        EXPECT_LE(sum / static_cast<double>(photo.points.size()), 0.05) << photo.photo;
    }
}

// A face turned by 10°, scaled by 0.8 and moved gives the moved landmarks of the original.
TEST(FaceLandmarker, LandmarksFollowTheFaceWhenThePictureTurnsScalesAndMoves)
{
    const auto landmarker = landmarkerOrSkip();
    if (!landmarker)
        GTEST_SKIP() << "this build has no face networks";
    const std::vector<test::PointError> errors = test::movedFaceErrors(*landmarker);
    ASSERT_FALSE(errors.empty());
    for (const test::PointError& point : errors)
        EXPECT_LE(point.error, 0.03) << point.what;
}

// A face of a sixteenth of the picture's width is found in a part of it; a picture without
// a face gives nothing after at most a whole look and the bounded search in parts, and a
// stop ends the search at once.
TEST(FaceLandmarker, FindsSmallFacesAndNothingWhereThereIsNone)
{
    const auto landmarker = landmarkerOrSkip();
    if (!landmarker)
        GTEST_SKIP() << "this build has no face networks";
    cv::Mat wide(1800, 2400, CV_8UC3, cv::Scalar(160, 180, 200));
    cv::imread(photoPath("hopper_face.png")).copyTo(wide(cv::Rect(1500, 300, 300, 300)));
    const auto small = landmarker->find(imageFromPicture(wide));
    ASSERT_TRUE(small);
    EXPECT_TRUE(cv::Rect(1500, 300, 300, 300).contains(inPixels(*small, wide.size())[face_landmark::kNoseTip]));
    int looks = 0;
    const auto counted = [&looks] { return ++looks, false; };
    cv::Mat gradient(240, 320, CV_8UC3);
    for (int y = 0; y < gradient.rows; ++y)
        gradient.row(y).setTo(cv::Scalar(y, 128, 255 - y));
    EXPECT_FALSE(landmarker->find(imageFromPicture(gradient), counted));
    EXPECT_FALSE(landmarker->find(Image()));
    looks = 0;
    EXPECT_FALSE(landmarker->find(imageFromPicture(cv::Mat(1800, 2400, CV_8UC3, cv::Scalar(90, 90, 90))), counted));
    EXPECT_LE(looks, 1 + face_internal::kMaxSearchTiles);
    looks = 0;
    EXPECT_FALSE(landmarker->find(imageFromPicture(cv::imread(photoPath("hopper_face.png"))), [&looks] { return ++looks > 0; }));
    EXPECT_EQ(looks, 1);
}

// Chains run from the picture's left to its right (the bridge from top to bottom), every
// line has a length, and what is called left lies left of the nose.
TEST(FaceLandmarker, ChainsRunLeftToRightOnTheirSideOfTheFace)
{
    const auto landmarker = landmarkerOrSkip();
    if (!landmarker)
        GTEST_SKIP() << "this build has no face networks";
    const cv::Mat picture = cv::imread(photoPath("hopper_face.png"));
    const auto face = landmarker->find(imageFromPicture(picture));
    ASSERT_TRUE(face);
    const std::vector<cv::Point2d> p = inPixels(*face, picture.size());
    const double noseX = p[face_landmark::kNoseTip].x;
    for (const FaceChain& chain : faceChains()) {
        const std::string name = chain.name;
        const cv::Point2d first = p[static_cast<std::size_t>(chain.landmarks.front())];
        const cv::Point2d last = p[static_cast<std::size_t>(chain.landmarks.back())];
        const cv::Point2d run = last - first;
        EXPECT_GT(name == "nose bridge" ? run.y : run.x, 10.0) << name;
        if (name.starts_with("left")) {
            EXPECT_LT(last.x, noseX) << name;
        } else if (name.starts_with("right")) {
            EXPECT_GT(first.x, noseX) << name;
        }
        for (std::size_t i = 1; i < chain.landmarks.size(); ++i)
            EXPECT_GT(cv::norm(p[static_cast<std::size_t>(chain.landmarks[i])] - p[static_cast<std::size_t>(chain.landmarks[i - 1])]), 1.0) << name;
    }
}

} // namespace
} // namespace plyra
