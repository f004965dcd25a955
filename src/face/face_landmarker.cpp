// SPDX-License-Identifier: MIT
#include "face/face_landmarker.h"

#include "face/face_detector_internal.h"
#include "face/face_landmark_network_internal.h"

#include <algorithm>
#include <stdexcept>

namespace plyra {
namespace {

using namespace face_internal;

// The square around a face is this much larger than the face, as the landmark network
// was trained on.
constexpr double kRegionScale = 1.5;
constexpr float kMinPresence = 0.5f;

} // namespace

struct FaceLandmarker::Networks {
    FaceDetector detector;
    FaceLandmarkNetwork landmarks;
};

FaceLandmarker::FaceLandmarker(std::unique_ptr<Networks> networks)
    : m_networks(std::move(networks))
{
}

FaceLandmarker::~FaceLandmarker() = default;

std::unique_ptr<FaceLandmarker> FaceLandmarker::create(const FaceModelFiles& files, std::string* error)
{
    try {
        return std::unique_ptr<FaceLandmarker>(new FaceLandmarker(std::make_unique<Networks>(
            Networks{FaceDetector(files.detector.string()), FaceLandmarkNetwork(files.landmarks.string())})));
    } catch (const cv::Exception& e) {
        if (error)
            *error = "the face networks do not load: " + e.err;
        return nullptr;
    }
}

std::optional<FaceLandmarks> FaceLandmarker::find(const Image& image, const Stop& stop)
{
    try {
        return search(image, stop);
    } catch (const cv::Exception& e) {
        // OpenCV's own message names its source file and function: the reason is enough.
        throw std::runtime_error(e.err);
    }
}

std::optional<FaceLandmarks> FaceLandmarker::search(const Image& image, const Stop& stop)
{
    const FaceImageSource source(image);
    if (!source.isValid())
        return std::nullopt;
    const std::vector<FaceDetection> faces = m_networks->detector.detect(source, stop);
    if (faces.empty() || (stop && stop()))
        return std::nullopt;
    const FaceDetection& face = *std::max_element(faces.begin(), faces.end(),
        [](const FaceDetection& a, const FaceDetection& b) { return a.box.area() < b.box.area(); });
    const cv::Point2d centre = (face.box.tl() + face.box.br()) / 2.0;
    const FaceRegion first = regionAround(centre, std::max(face.box.width, face.box.height), face.keypoints[0],
        face.keypoints[1], kRegionScale);
    RegionLandmarks found = m_networks->landmarks.landmarks(source, first);
    if (found.presence < kMinPresence)
        return std::nullopt;
    if (stop && stop())
        return std::nullopt;
    // The second square follows the face itself rather than the detector's box: it is
    // the same for a face however it is turned, scaled or placed in the picture; the
    // line between the outer eye corners sets its turn.
    const FaceRegion second = regionAroundLandmarks(found.points, face_landmark::kLeftEyeOuterCorner,
        face_landmark::kRightEyeOuterCorner, kRegionScale);
    if (RegionLandmarks refined = m_networks->landmarks.landmarks(source, second); refined.presence >= kMinPresence)
        found = std::move(refined);
    FaceLandmarks result;
    result.points.reserve(found.points.size());
    const double w = source.width();
    const double h = source.height();
    for (const cv::Point2d& p : found.points)
        result.points.push_back({static_cast<float>(p.x / w), static_cast<float>(1.0 - p.y / h)});
    return result;
}

} // namespace plyra
