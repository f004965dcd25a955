// SPDX-License-Identifier: MIT
// What the face layer computes without the networks: the chain table, the lines it makes,
// the crop geometry and sampling, the search tiles, the merging of boxes and the anchors.
#include "face/face_chains.h"
#include "face/face_detector_internal.h"
#include "face/face_lines.h"
#include "face_test_support.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <numbers>

namespace plyra {
namespace {

using namespace face_internal;

// The mesh's left-right pairs of the chains' landmarks; the points on the middle line are
// their own mirror.
const std::map<int, int>& mirror()
{
    static const std::map<int, int> pairs = [] {
        std::map<int, int> m;
        for (const auto& [a, b] : {std::pair{46, 276}, {53, 283}, {65, 295}, {55, 285}, {33, 263}, {133, 362}, {160, 387},
                 {158, 385}, {144, 373}, {153, 380}, {64, 294}, {40, 270}, {91, 321}, {61, 291}, {234, 454}, {132, 361},
                 {172, 397}, {150, 379}}) {
            m[a] = b;
            m[b] = a;
        }
        for (const int middle : {168, 197, 5, 1, 2, 0, 17, 152})
            m[middle] = middle;
        return m;
    }();
    return pairs;
}

const FaceChain* chainNamed(const std::string& name)
{
    const auto& chains = faceChains();
    const auto found = std::find_if(chains.begin(), chains.end(), [&](const FaceChain& c) { return name == c.name; });
    return found == chains.end() ? nullptr : &*found;
}

TEST(FaceChains, ChainsAreConnectedMirroredAndShareTheirCorners)
{
    for (const FaceChain& chain : faceChains()) {
        const std::string name = chain.name;
        ASSERT_GE(chain.landmarks.size(), 2u) << name;
        for (std::size_t i = 0; i < chain.landmarks.size(); ++i) {
            EXPECT_TRUE(chain.landmarks[i] >= 0 && chain.landmarks[i] < static_cast<int>(kFaceLandmarkCount)) << name;
            EXPECT_TRUE(i == 0 || chain.landmarks[i] != chain.landmarks[i - 1]) << name;
        }
        // Mirrored, a chain from left to right becomes its partner's reversed; the bridge,
        // which runs down the middle, stays itself.
        std::vector<int> mirrored;
        for (const int i : chain.landmarks)
            mirrored.push_back(mirror().at(i));
        if (name == "nose bridge")
            continue;
        std::reverse(mirrored.begin(), mirrored.end());
        std::string partner = name;
        if (name.starts_with("left"))
            partner.replace(0, 4, "right");
        else if (name.starts_with("right"))
            partner.replace(0, 5, "left");
        ASSERT_TRUE(chainNamed(partner)) << name;
        EXPECT_EQ(mirrored, chainNamed(partner)->landmarks) << name;
    }
    for (const auto& [upper, lower] : {std::pair{"left upper lid", "left lower lid"}, {"right upper lid", "right lower lid"}, {"upper lip", "lower lip"}}) {
        EXPECT_EQ(chainNamed(upper)->landmarks.front(), chainNamed(lower)->landmarks.front()) << upper;
        EXPECT_EQ(chainNamed(upper)->landmarks.back(), chainNamed(lower)->landmarks.back()) << upper;
    }
}

FaceLandmarks numberedFace(float offset)
{
    FaceLandmarks face;
    for (std::size_t i = 0; i < kFaceLandmarkCount; ++i)
        face.points.push_back({offset + static_cast<float>(i), offset});
    return face;
}

// Landmark i of the first face is (i, 0), of the last (1000 + i, 1000): each line's
// ends tell from which face and landmark they came.
TEST(FaceLines, EachFaceGoesToItsTrackChainAfterChain)
{
    const std::vector<MorphLine::Ptr> lines = faceLines(numberedFace(0), numberedFace(1000));
    std::size_t next = 0;
    for (const FaceChain& chain : faceChains()) {
        for (std::size_t i = 1; i < chain.landmarks.size(); ++i, ++next) {
            ASSERT_LT(next, lines.size());
            for (const auto& [track, offset] : {std::pair{0u, 0.0f}, std::pair{1u, 1000.0f}}) {
                EXPECT_EQ(lines[next]->startPoint(track), (Point{offset + chain.landmarks[i - 1], offset})) << chain.name;
                EXPECT_EQ(lines[next]->endPoint(track), (Point{offset + chain.landmarks[i], offset})) << chain.name;
            }
        }
    }
    EXPECT_EQ(lines.size(), next);
#ifndef NDEBUG
    // Faces of another size are a broken invariant, caught in debug builds.
    EXPECT_DEATH(faceLines(FaceLandmarks{}, numberedFace(0)), "kFaceLandmarkCount");
#endif
}

TEST(FaceRegion, CropsMapOntoTheTurnedSquareAndBack)
{
    for (const double angle : {0.0, 0.3, -1.2, std::numbers::pi / 2}) {
        const FaceRegion region{{310.0, 140.0}, 96.0, angle};
        const cv::Matx23d toImage = region.cropToImage(192);
        cv::Matx23d toCrop;
        cv::invertAffineTransform(toImage, toCrop);
        EXPECT_LT(cv::norm(region.toImage({96, 96}, 192) - region.centre), 1e-9) << angle;
        // The crop's x axis runs along the angle, half the region from the centre.
        const cv::Point2d right = region.toImage({192, 96}, 192) - region.centre;
        EXPECT_LT(cv::norm(right - cv::Point2d(48 * std::cos(angle), 48 * std::sin(angle))), 1e-9) << angle;
        for (const cv::Point2d p : {cv::Point2d(0, 0), cv::Point2d(191, 7), cv::Point2d(33.5, 150.25)}) {
            const cv::Point2d q = region.toImage(p, 192);
            const cv::Point2d back(toCrop(0, 0) * q.x + toCrop(0, 1) * q.y + toCrop(0, 2), toCrop(1, 0) * q.x + toCrop(1, 1) * q.y + toCrop(1, 2));
            EXPECT_LT(cv::norm(back - p), 1e-9) << angle;
        }
    }
}

// Crops are upright and show the picture's top right where it is; crop pixels of 44 and
// 94 picture pixels across, turned or not, average the noise under them (sampling a few
// points of it would leave most of the noise in).
TEST(FaceImageSource, CropsAreUprightAndAverageTheirFootprint)
{
    for (const int width : {400, 4000}) {
        cv::Mat picture(width / 2, width, CV_8UC3, cv::Scalar(0, 0, 0));
        picture(cv::Rect(width / 2, 0, width / 2, width / 4)).setTo(cv::Scalar(0, 0, 255));
        const FaceImageSource source(test::imageFromPicture(picture));
        const FaceRegion whole{{width / 2.0, width / 4.0}, static_cast<double>(width), 0.0};
        const cv::Mat crop = source.crop(whole.cropToImage(32), 32);
        EXPECT_EQ(crop.at<cv::Vec3b>(12, 20), cv::Vec3b(255, 0, 0)) << width; // RGB, top right
        EXPECT_EQ(crop.at<cv::Vec3b>(20, 12), cv::Vec3b(0, 0, 0)) << width;
        EXPECT_EQ(crop.at<cv::Vec3b>(2, 20), cv::Vec3b(0, 0, 0)) << width; // above the picture
    }
    cv::Mat noise(2000, 2000, CV_8UC3);
    cv::RNG(7).fill(noise, cv::RNG::UNIFORM, 0, 256);
    const FaceImageSource source(test::imageFromPicture(noise));
    for (const double size : {700.0, 1500.0}) {
        for (const double angle : {0.0, 0.4}) {
            const double scale = size / 16.0;
            const cv::Mat crop = source.crop(FaceRegion{{1000, 1000}, size, angle}.cropToImage(16), 16);
            cv::Scalar mean;
            cv::Scalar spread;
            cv::meanStdDev(crop.reshape(1), mean, spread);
            // Uniform noise has a deviation of 74; the mean of n × n pixels, 74 / n.
            EXPECT_LT(spread[0], 2.0 * 74.0 / scale + 1.0) << size << " " << angle;
            EXPECT_NEAR(mean[0], 127.5, 2.0) << size << " " << angle;
        }
    }
}

// Every face of up to a quarter of a tile lies wholly in some tile; there are at most
// kMaxSearchTiles, none under kMinSearchTile pixels.
TEST(FaceDetector, SearchTilesCoverThePictureWithinTheirBounds)
{
    const struct {
        int width, height;
        std::size_t minTiles;
    } cases[] = {{2400, 1800, 9}, {1800, 2400, 9}, {1920, 1080, 9}, {30000, 3000, 2}, {256, 256, 9}, {255, 1000, 0}, {3000, 30, 0}};
    for (const auto& c : cases) {
        const std::vector<FaceRegion> tiles = searchTiles(c.width, c.height);
        EXPECT_GE(tiles.size(), c.minTiles) << c.width << "x" << c.height;
        EXPECT_LE(tiles.size(), static_cast<std::size_t>(kMaxSearchTiles)) << c.width << "x" << c.height;
        if (tiles.empty())
            continue;
        const double face = tiles.front().size / 4.0;
        const cv::Rect2d picture(0, 0, c.width, c.height);
        for (double y = 0; y < c.height; y += c.height / 17.0) {
            for (double x = 0; x < c.width; x += c.width / 17.0) {
                const cv::Rect2d square = cv::Rect2d(x - face / 2, y - face / 2, face, face) & picture;
                const bool inside = std::any_of(tiles.begin(), tiles.end(), [&](const FaceRegion& t) {
                    const cv::Rect2d tile(t.centre.x - t.size / 2, t.centre.y - t.size / 2, t.size, t.size);
                    return (square & tile).area() >= square.area() - 1e-6;
                });
                EXPECT_TRUE(inside) << c.width << "x" << c.height << " at " << x << ", " << y;
            }
        }
    }
}

FaceDetection detection(cv::Rect2d box, float score)
{
    FaceDetection d;
    d.box = box;
    d.keypoints.fill(box.tl());
    d.score = score;
    return d;
}

TEST(FaceDetector, OverlappingBoxesMergeByScoreAndAnchorsFollowTheGrids)
{
    const std::vector<FaceDetection> merged = mergeOverlapping(
        {detection({300, 0, 50, 50}, 0.7f), detection({10, 10, 100, 100}, 0.6f), detection({20, 10, 100, 100}, 0.9f)});
    ASSERT_EQ(merged.size(), 2u);
    EXPECT_FLOAT_EQ(merged[0].score, 0.9f);
    EXPECT_NEAR(merged[0].box.x, (0.9 * 20 + 0.6 * 10) / 1.5, 1e-5);
    EXPECT_NEAR(merged[0].keypoints[3].x, merged[0].box.x, 1e-9);
    EXPECT_EQ(merged[1].box, cv::Rect2d(300, 0, 50, 50));

    const std::vector<cv::Point2f> anchors = shortRangeAnchors();
    ASSERT_EQ(anchors.size(), 16u * 16u * 2u + 8u * 8u * 6u);
    EXPECT_EQ(anchors[0], anchors[1]);
    EXPECT_EQ(anchors[0], cv::Point2f(1 / 32.0f, 1 / 32.0f));
    EXPECT_EQ(anchors[2], cv::Point2f(3 / 32.0f, 1 / 32.0f));
    EXPECT_EQ(anchors[512], cv::Point2f(1 / 16.0f, 1 / 16.0f));
    EXPECT_EQ(anchors.back(), cv::Point2f(15 / 16.0f, 15 / 16.0f));
}

} // namespace
} // namespace plyra
