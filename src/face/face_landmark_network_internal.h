// SPDX-License-Identifier: MIT
#pragma once

#include "face/face_image_source_internal.h"
#include "face/face_region_internal.h"

#include <opencv2/dnn.hpp>

#include <string>
#include <vector>

namespace plyra::face_internal {

/// The landmarks of one region and how sure the network is that it shows a face.
struct RegionLandmarks {
    std::vector<cv::Point2d> points; // picture pixels, y down
    float presence = 0.0f;
};

/// The 468-point landmark network run on a 192 × 192 crop of a face region.
/// Threads: one thread at a time per network.
class FaceLandmarkNetwork {
public:
    static constexpr int kInputSize = 192;

    /// Throws cv::Exception when the file is not a network OpenCV reads, or when the
    /// network's outputs are not those of the 468-point landmark network.
    explicit FaceLandmarkNetwork(const std::string& onnxPath);
    explicit FaceLandmarkNetwork(cv::dnn::Net net);

    RegionLandmarks landmarks(const FaceImageSource& image, const FaceRegion& region);

    /// The network's raw outputs (x, y, z per point in crop pixels; the face score before
    /// the logistic function) for an RGB crop of kInputSize pixels. Throws cv::Exception
    /// when the network gives another number of values.
    std::vector<float> run(const cv::Mat& rgb, float* faceScore);

private:
    cv::dnn::Net m_net;
};

} // namespace plyra::face_internal
