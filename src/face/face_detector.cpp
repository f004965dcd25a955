// SPDX-License-Identifier: MIT
#include "face/face_detector_internal.h"

#include <algorithm>
#include <cmath>

namespace plyra::face_internal {
namespace {

constexpr int kValuesPerBox = 16;
constexpr float kScoreClip = 100.0f;
constexpr double kMergeOverlap = 0.3;

// Anchor centres of the short-range detector: a 16 × 16 grid with two anchors per cell,
// then an 8 × 8 grid with six, in row order; boxes are relative to a unit anchor.
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

// Squares of half the short side, each overlapping its neighbours by half, covering the picture.
std::vector<FaceRegion> tiles(int width, int height)
{
    const double side = std::min(width, height) / 2.0;
    const auto count = [side](int length) { return static_cast<int>(std::ceil((length - side) / (side / 2.0))) + 1; };
    const int columns = count(width);
    const int rows = count(height);
    std::vector<FaceRegion> regions;
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column) {
            // Spread evenly, the last square flush with the far edge.
            const double x = columns > 1 ? column * (width - side) / (columns - 1) : 0.0;
            const double y = rows > 1 ? row * (height - side) / (rows - 1) : 0.0;
            regions.push_back({{x + side / 2.0, y + side / 2.0}, side, 0.0});
        }
    }
    return regions;
}

double overlap(const cv::Rect2d& a, const cv::Rect2d& b)
{
    const double common = (a & b).area();
    return common / (a.area() + b.area() - common);
}

// Weighted merging: each cluster of boxes that overlap the most confident one becomes
// their score-weighted mean, which is steadier than keeping the single best box.
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

} // namespace

FaceDetector::FaceDetector(const std::string& onnxPath)
    : m_net(cv::dnn::readNetFromONNX(onnxPath))
    , m_anchors(shortRangeAnchors())
{
}

std::array<cv::Mat, 2> FaceDetector::run(const cv::Mat& rgb)
{
    m_net.setInput(cv::dnn::blobFromImage(rgb, 1.0 / 127.5, {}, cv::Scalar::all(127.5)));
    std::vector<cv::Mat> outputs;
    m_net.forward(outputs, std::vector<cv::String>{"regressors", "classificators"});
    return {outputs[0], outputs[1]};
}

std::vector<FaceDetection> FaceDetector::detect(const FaceImageSource& image, float minScore)
{
    // The whole picture, letterboxed into the square the network sees.
    const double longSide = std::max(image.width(), image.height());
    std::vector<FaceDetection> found = detectIn(image, {{image.width() / 2.0, image.height() / 2.0}, longSide, 0.0}, minScore);
    if (found.empty()) {
        // A face under about a tenth of the picture is too small for the detector at that
        // scale: look again in overlapping squares of half the short side.
        for (const FaceRegion& tile : tiles(image.width(), image.height())) {
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
