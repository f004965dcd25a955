// SPDX-License-Identifier: MIT
#include "face/face_landmark_network_internal.h"

#include "face/face_landmarks.h"

#include <cmath>
#include <string>

namespace plyra::face_internal {

FaceLandmarkNetwork::FaceLandmarkNetwork(const std::string& onnxPath)
    : FaceLandmarkNetwork(cv::dnn::readNetFromONNX(onnxPath))
{
}

FaceLandmarkNetwork::FaceLandmarkNetwork(cv::dnn::Net net)
    : m_net(std::move(net))
{
    // Another network under the same file name fails here, at loading, and not while the
    // points are read.
    float score = 0.0f;
    run(cv::Mat::zeros(kInputSize, kInputSize, CV_8UC3), &score);
}

std::vector<float> FaceLandmarkNetwork::run(const cv::Mat& rgb, float* faceScore)
{
    m_net.setInput(cv::dnn::blobFromImage(rgb, 1.0 / 255.0));
    std::vector<cv::Mat> outputs;
    m_net.forward(outputs, std::vector<cv::String>{"conv2d_21", "conv2d_31"});
    if (outputs[0].total() != 3 * kFaceLandmarkCount || outputs[1].total() != 1)
        CV_Error(cv::Error::StsUnmatchedSizes, "the landmark network gives " + std::to_string(outputs[0].total())
                + " coordinates and " + std::to_string(outputs[1].total()) + " scores, not "
                + std::to_string(3 * kFaceLandmarkCount) + " and 1");
    *faceScore = outputs[1].ptr<float>()[0];
    const float* values = outputs[0].ptr<float>();
    return {values, values + outputs[0].total()};
}

RegionLandmarks FaceLandmarkNetwork::landmarks(const FaceImageSource& image, const FaceRegion& region)
{
    float score = 0.0f;
    const std::vector<float> values = run(image.crop(region.cropToImage(kInputSize), kInputSize), &score);
    RegionLandmarks result;
    result.presence = 1.0f / (1.0f + std::exp(-score));
    result.points.reserve(kFaceLandmarkCount);
    for (std::size_t i = 0; i < kFaceLandmarkCount; ++i)
        result.points.push_back(region.toImage({values[3 * i], values[3 * i + 1]}, kInputSize));
    return result;
}

} // namespace plyra::face_internal
