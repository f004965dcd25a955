// SPDX-License-Identifier: MIT
#pragma once

#include "face/face_image_source_internal.h"
#include "face/face_region_internal.h"

#include <opencv2/dnn.hpp>

#include <array>
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

/// The short-range face detector (a single-shot detector on a 128 × 128 picture of the
/// whole image): its anchors, the decoding of boxes and key points, and the merging of
/// overlapping boxes.
/// Threads: one thread at a time per detector.
class FaceDetector {
public:
    static constexpr int kInputSize = 128;

    /// Throws cv::Exception when the file is not a network OpenCV reads.
    explicit FaceDetector(const std::string& onnxPath);

    /// The faces with a score of at least minScore, most confident first; small faces
    /// are looked for in parts of the picture when the whole shows none.
    std::vector<FaceDetection> detect(const FaceImageSource& image, float minScore = 0.5f);

    /// The network's raw outputs (boxes, scores) for an RGB picture of kInputSize pixels.
    std::array<cv::Mat, 2> run(const cv::Mat& rgb);

private:
    std::vector<FaceDetection> detectIn(const FaceImageSource& image, const FaceRegion& region, float minScore);

    cv::dnn::Net m_net;
    std::vector<cv::Point2f> m_anchors;
};

} // namespace plyra::face_internal
