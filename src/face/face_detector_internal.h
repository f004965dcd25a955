// SPDX-License-Identifier: MIT
#pragma once

#include "face/face_image_source_internal.h"
#include "face/face_region_internal.h"

#include <opencv2/dnn.hpp>

#include <array>
#include <functional>
#include <string>
#include <vector>

namespace plyra::face_internal {

/// One face the detector found, in picture pixels (y down).
struct FaceDetection {
    cv::Rect2d box;
    /// The eye on the picture's left, the other eye, nose tip, mouth, and the two ears.
    std::array<cv::Point2d, 6> keypoints;
    float score = 0.0f;
};

/// Asked between the steps of a search; true ends it early, without a result.
using SearchStop = std::function<bool()>;

/// The anchor centres of the short-range detector in unit coordinates of its input.
std::vector<cv::Point2f> shortRangeAnchors();

/// The squares in which small faces are looked for: half the short side, overlapping their
/// neighbours by half, at most kMaxSearchTiles (larger squares where more would be needed),
/// none when they would be under kMinSearchTile pixels.
std::vector<FaceRegion> searchTiles(int width, int height);
inline constexpr int kMaxSearchTiles = 16;
inline constexpr double kMinSearchTile = 128.0;

/// Each cluster of boxes that overlap the most confident one by kMergeOverlap (of their
/// union) becomes their score-weighted mean, which is steadier than the single best box;
/// the most confident cluster first.
std::vector<FaceDetection> mergeOverlapping(std::vector<FaceDetection> candidates);
inline constexpr double kMergeOverlap = 0.3;

/// The short-range face detector (a single-shot detector on a 128 × 128 picture of the
/// whole image): its anchors, and the decoding of boxes and key points.
/// Threads: one thread at a time per detector.
class FaceDetector {
public:
    static constexpr int kInputSize = 128;

    /// Throws cv::Exception when the file is not a network OpenCV reads, or when the
    /// network's outputs are not those of the short-range detector.
    explicit FaceDetector(const std::string& onnxPath);
    explicit FaceDetector(cv::dnn::Net net);

    /// The faces with a score of at least minScore, most confident first; small faces
    /// are looked for in searchTiles() when the whole picture shows none. Nothing once
    /// stop answers true, which it is asked before each look.
    std::vector<FaceDetection> detect(const FaceImageSource& image, const SearchStop& stop = {}, float minScore = 0.5f);

    /// The network's raw outputs (boxes, scores) for an RGB picture of kInputSize pixels;
    /// throws cv::Exception when their sizes do not fit the anchors.
    std::array<cv::Mat, 2> run(const cv::Mat& rgb);

private:
    std::vector<FaceDetection> detectIn(const FaceImageSource& image, const FaceRegion& region, float minScore);

    cv::dnn::Net m_net;
    std::vector<cv::Point2f> m_anchors;
};

} // namespace plyra::face_internal
