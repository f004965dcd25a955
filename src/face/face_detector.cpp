// SPDX-License-Identifier: MIT
#include "face/face_detector_internal.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace plyra::face_internal {
namespace {

constexpr int kValuesPerBox = 16;
constexpr float kScoreClip = 100.0f;
// Tiles grow by this step until there are few enough.
constexpr double kTileGrowth = 1.25;

double overlap(const cv::Rect2d& a, const cv::Rect2d& b)
{
    const double common = (a & b).area();
    return common / (a.area() + b.area() - common);
}

// Starts of squares of side along a length: evenly spread, the last flush with the far
// end; one centred square where the length is shorter than the side.
std::vector<double> tileStarts(int length, double side)
{
    const int count = std::max(1, static_cast<int>(std::ceil((length - side) / (side / 2.0))) + 1);
    std::vector<double> starts;
    for (int i = 0; i < count; ++i)
        starts.push_back(count > 1 ? i * (length - side) / (count - 1) : (length - side) / 2.0);
    return starts;
}

} // namespace

// Anchors of a 16 × 16 grid with two per cell, then of an 8 × 8 grid with six, in row
// order; boxes are relative to a unit anchor.
std::vector<cv::Point2f> shortRangeAnchors()
{
    std::vector<cv::Point2f> anchors;
    for (const auto& [grid, perCell] : {std::pair{16, 2}, std::pair{8, 6}}) {
        for (int y = 0; y < grid; ++y) {
            for (int x = 0; x < grid; ++x) {
                for (int i = 0; i < perCell; ++i)
                    anchors.emplace_back((x + 0.5f) / grid, (y + 0.5f) / grid);
            }
        }
    }
    return anchors;
}

std::vector<FaceRegion> searchTiles(int width, int height)
{
    double side = std::min(width, height) / 2.0;
    if (side < kMinSearchTile)
        return {};
    while (tileStarts(width, side).size() * tileStarts(height, side).size() > kMaxSearchTiles)
        side *= kTileGrowth;
    std::vector<FaceRegion> regions;
    for (const double y : tileStarts(height, side)) {
        for (const double x : tileStarts(width, side))
            regions.push_back({{x + side / 2.0, y + side / 2.0}, side, 0.0});
    }
    return regions;
}

std::vector<FaceDetection> mergeOverlapping(std::vector<FaceDetection> candidates)
{
    std::sort(candidates.begin(), candidates.end(), [](const auto& a, const auto& b) { return a.score > b.score; });
    std::vector<FaceDetection> merged;
    std::vector<bool> used(candidates.size(), false);
    for (std::size_t i = 0; i < candidates.size(); ++i) {
        if (used[i])
            continue;
        FaceDetection sum{};
        double weight = 0.0;
        for (std::size_t j = i; j < candidates.size(); ++j) {
            if (used[j] || overlap(candidates[i].box, candidates[j].box) < kMergeOverlap)
                continue;
            used[j] = true;
            const double w = candidates[j].score;
            sum.box = {sum.box.x + w * candidates[j].box.x, sum.box.y + w * candidates[j].box.y,
                sum.box.width + w * candidates[j].box.width, sum.box.height + w * candidates[j].box.height};
            for (std::size_t k = 0; k < sum.keypoints.size(); ++k)
                sum.keypoints[k] += w * candidates[j].keypoints[k];
            weight += w;
        }
        sum.box = {sum.box.x / weight, sum.box.y / weight, sum.box.width / weight, sum.box.height / weight};
        for (cv::Point2d& p : sum.keypoints)
            p /= weight;
        sum.score = candidates[i].score;
        merged.push_back(sum);
    }
    return merged;
}

FaceDetector::FaceDetector(const std::string& onnxPath)
    : FaceDetector(cv::dnn::readNetFromONNX(onnxPath))
{
}

FaceDetector::FaceDetector(cv::dnn::Net net)
    : m_net(std::move(net))
    , m_anchors(shortRangeAnchors())
{
    // Another network under the same file name fails here, at loading.
    run(cv::Mat::zeros(kInputSize, kInputSize, CV_8UC3));
}

std::array<cv::Mat, 2> FaceDetector::run(const cv::Mat& rgb)
{
    m_net.setInput(cv::dnn::blobFromImage(rgb, 1.0 / 127.5, {}, cv::Scalar::all(127.5)));
    std::vector<cv::Mat> outputs;
    m_net.forward(outputs, std::vector<cv::String>{"regressors", "classificators"});
    if (outputs[0].total() != m_anchors.size() * kValuesPerBox || outputs[1].total() != m_anchors.size())
        CV_Error(cv::Error::StsUnmatchedSizes, "the face detector gives " + std::to_string(outputs[0].total()) + " box values and "
                + std::to_string(outputs[1].total()) + " scores, not " + std::to_string(m_anchors.size() * kValuesPerBox)
                + " and " + std::to_string(m_anchors.size()));
    return {outputs[0], outputs[1]};
}

std::vector<FaceDetection> FaceDetector::detect(const FaceImageSource& image, const SearchStop& stop, float minScore)
{
    const auto stopped = [&stop] { return stop && stop(); };
    if (stopped())
        return {};
    // The whole picture, letterboxed into the square the network sees.
    const double longSide = std::max(image.width(), image.height());
    std::vector<FaceDetection> found = detectIn(image, {{image.width() / 2.0, image.height() / 2.0}, longSide, 0.0}, minScore);
    if (found.empty()) {
        // A face under about a tenth of the picture is too small for the detector at that
        // scale: look again in overlapping parts of it.
        for (const FaceRegion& tile : searchTiles(image.width(), image.height())) {
            if (stopped())
                return {};
            std::vector<FaceDetection> more = detectIn(image, tile, minScore);
            found.insert(found.end(), more.begin(), more.end());
        }
    }
    return mergeOverlapping(std::move(found));
}

std::vector<FaceDetection> FaceDetector::detectIn(const FaceImageSource& image, const FaceRegion& region, float minScore)
{
    const std::array<cv::Mat, 2> outputs = run(image.crop(region.cropToImage(kInputSize), kInputSize));
    const float* boxes = outputs[0].ptr<float>();
    const float* scores = outputs[1].ptr<float>();
    const auto toImage = [&](float x, float y) { return region.toImage({x * kInputSize, y * kInputSize}, kInputSize); };
    const double side = region.size / kInputSize;
    std::vector<FaceDetection> candidates;
    for (std::size_t i = 0; i < m_anchors.size(); ++i) {
        const float score = 1.0f / (1.0f + std::exp(-std::clamp(scores[i], -kScoreClip, kScoreClip)));
        if (score < minScore)
            continue;
        const float* v = boxes + i * kValuesPerBox;
        const cv::Point2f a = m_anchors[i];
        const auto point = [&](int k) { return toImage(v[k] / kInputSize + a.x, v[k + 1] / kInputSize + a.y); };
        FaceDetection d;
        const cv::Point2d centre = point(0);
        d.box = {centre.x - v[2] * side / 2, centre.y - v[3] * side / 2, v[2] * side, v[3] * side};
        for (int k = 0; k < 6; ++k)
            d.keypoints[static_cast<std::size_t>(k)] = point(4 + 2 * k);
        d.score = score;
        candidates.push_back(d);
    }
    return candidates;
}

} // namespace plyra::face_internal
