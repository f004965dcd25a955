// SPDX-License-Identifier: MIT
#include "face/face_chains.h"
#include "face_test_support.h"

#include <opencv2/core/persistence.hpp>

#include <cmath>

namespace plyra {
namespace {

using test::imageFromPicture;
using test::photoPath;

constexpr int kLeftEyeCorners[2] = {33, 133};
constexpr int kRightEyeCorners[2] = {362, 263};

// Landmarks in pixels of a picture of that size (y down).
std::vector<cv::Point2d> inPixels(const FaceLandmarks& face, cv::Size size)
{
    std::vector<cv::Point2d> points;
    for (const Point& p : face.points)
        points.emplace_back(p.x * size.width, (1.0 - p.y) * size.height);
    return points;
}

double eyeDistance(const std::vector<cv::Point2d>& p)
{
    const auto centre = [&](const int (&corners)[2]) { return (p[corners[0]] + p[corners[1]]) / 2.0; };
    return cv::norm(centre(kLeftEyeCorners) - centre(kRightEyeCorners));
}

// The error of each hand-marked point, as a fraction of the distance between the eyes: at
// most 5 % on average over a face. Single points may be off by up to 12 %: where a person
// puts an eye's outer corner or the chin on a soft outline differs from the network's
// convention by a few pixels.
TEST(FaceLandmarker, LandmarksLieOnTheHandMarkedPoints)
{
    const auto landmarker = test::landmarkerOrSkip();
    if (!landmarker)
        GTEST_SKIP() << "this build has no face networks";
    cv::FileStorage marks(std::string(PLYRA_TEST_DATA) + "/face/hand_marks.json", cv::FileStorage::READ | cv::FileStorage::FORMAT_JSON);
    ASSERT_TRUE(marks.isOpened());
    const cv::FileNode indices = marks["landmarks"];
    for (const cv::FileNode& photo : marks["faces"]) {
        const cv::Mat picture = cv::imread(photoPath(photo.name()));
        const std::optional<FaceLandmarks> face = landmarker->find(imageFromPicture(picture));
        ASSERT_TRUE(face) << photo.name();
        const std::vector<cv::Point2d> found = inPixels(*face, picture.size());
        double sum = 0.0;
        for (const cv::FileNode& mark : photo) {
            const cv::Point2d handMarked(mark[0].real(), mark[1].real());
            const double error = cv::norm(found[static_cast<std::size_t>(indices[mark.name()].real())] - handMarked) / eyeDistance(found);
            EXPECT_LE(error, 0.12) << photo.name() << " " << mark.name();
            sum += error;
        }
        EXPECT_LE(sum / static_cast<double>(photo.size()), 0.05) << photo.name();
    }
}

// A face turned by 10°, scaled by 0.8 and moved gives the moved landmarks of the original.
TEST(FaceLandmarker, LandmarksFollowTheFaceWhenThePictureTurnsScalesAndMoves)
{
    const auto landmarker = test::landmarkerOrSkip();
    if (!landmarker)
        GTEST_SKIP() << "this build has no face networks";
    const cv::Mat picture = cv::imread(photoPath("ast_face.png"));
    const cv::Size canvas(420, 360);
    cv::Matx23d move = cv::getRotationMatrix2D({150, 150}, 10.0, 0.8);
    move(0, 2) += 70;
    move(1, 2) += 20;
    cv::Mat moved;
    cv::warpAffine(picture, moved, move, canvas, cv::INTER_AREA, cv::BORDER_REPLICATE);
    const auto original = landmarker->find(imageFromPicture(picture));
    const auto changed = landmarker->find(imageFromPicture(moved));
    ASSERT_TRUE(original && changed);
    const std::vector<cv::Point2d> before = inPixels(*original, picture.size());
    const std::vector<cv::Point2d> after = inPixels(*changed, canvas);
    const double eyes = eyeDistance(after);
    for (const FaceChain& chain : faceChains()) {
        for (const int i : chain.landmarks) {
            const cv::Point2d p = before[static_cast<std::size_t>(i)];
            const cv::Point2d expected(move(0, 0) * p.x + move(0, 1) * p.y + move(0, 2), move(1, 0) * p.x + move(1, 1) * p.y + move(1, 2));
            EXPECT_LE(cv::norm(after[static_cast<std::size_t>(i)] - expected) / eyes, 0.03) << chain.name << " " << i;
        }
    }
}

// A face of a sixteenth of the picture's width is found in a part of it; a picture
// without a face gives nothing.
TEST(FaceLandmarker, FindsSmallFacesAndNothingWhereThereIsNone)
{
    const auto landmarker = test::landmarkerOrSkip();
    if (!landmarker)
        GTEST_SKIP() << "this build has no face networks";
    cv::Mat wide(1800, 2400, CV_8UC3, cv::Scalar(160, 180, 200));
    cv::imread(photoPath("hopper_face.png")).copyTo(wide(cv::Rect(1500, 300, 300, 300)));
    const auto small = landmarker->find(imageFromPicture(wide));
    ASSERT_TRUE(small);
    EXPECT_TRUE(cv::Rect(1500, 300, 300, 300).contains(inPixels(*small, wide.size())[1]));
    cv::Mat gradient(240, 320, CV_8UC3);
    for (int y = 0; y < gradient.rows; ++y)
        gradient.row(y).setTo(cv::Scalar(y, 128, 255 - y));
    EXPECT_FALSE(landmarker->find(imageFromPicture(gradient)));
    EXPECT_FALSE(landmarker->find(Image()));
}

// Chains run from the picture's left to its right (the bridge from top to bottom), every
// line has a length, and what is called left lies left of the nose.
TEST(FaceLandmarker, ChainsRunLeftToRightOnTheirSideOfTheFace)
{
    const auto landmarker = test::landmarkerOrSkip();
    if (!landmarker)
        GTEST_SKIP() << "this build has no face networks";
    const cv::Mat picture = cv::imread(photoPath("hopper_face.png"));
    const auto face = landmarker->find(imageFromPicture(picture));
    ASSERT_TRUE(face);
    const std::vector<cv::Point2d> p = inPixels(*face, picture.size());
    const double noseX = p[1].x;
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
