// SPDX-License-Identifier: MIT
// What the face tests and the face benchmark share: the fixture pictures as images, the
// converted networks of this build, and the two accuracy measures (hand-marked points,
// and a turned, scaled and moved picture), as fractions of the distance between the eyes.
#pragma once

#include "face/face_chains.h"
#include "face/face_landmarker.h"
#include "platform/image/image.h"

#include <opencv2/core/persistence.hpp>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace plyra::test {

inline std::string photoPath(const std::string& name)
{
    return std::string(PLYRA_TEST_DATA) + "/photos/" + name;
}

/// An opaque RGBA bitmap image of an 8-bit BGR picture (rows top first).
inline Image imageFromPicture(const cv::Mat& bgr)
{
    cv::Mat rgba;
    cv::cvtColor(bgr, rgba, cv::COLOR_BGR2RGBA);
    Bitmap bitmap(rgba.cols, rgba.rows);
    for (int y = 0; y < rgba.rows; ++y)
        std::memcpy(bitmap.row(rgba.rows - 1 - y), rgba.ptr(y), static_cast<std::size_t>(rgba.cols) * 4);
    return Image::fromBitmap(std::move(bitmap));
}

/// The landmarker over the networks this build converted; null without them (error
/// stays empty) or when they do not load (error says why).
inline std::unique_ptr<FaceLandmarker> convertedLandmarker(std::string* error)
{
    const std::optional<FaceModelFiles> files = FaceModelFiles::inFolder(std::string(PLYRA_BINARY_DIR) + "/resources/face");
    return files ? FaceLandmarker::create(*files, error) : nullptr;
}

/// Landmarks in pixels of a picture of that size (y down).
inline std::vector<cv::Point2d> inPixels(const FaceLandmarks& face, cv::Size size)
{
    std::vector<cv::Point2d> points;
    for (const Point& p : face.points)
        points.emplace_back(p.x * size.width, (1.0 - p.y) * size.height);
    return points;
}

inline double eyeDistance(const std::vector<cv::Point2d>& p)
{
    using namespace face_landmark;
    const auto at = [&p](int i) { return p[static_cast<std::size_t>(i)]; };
    return cv::norm((at(kLeftEyeOuterCorner) + at(kLeftEyeInnerCorner)) / 2.0 - (at(kRightEyeInnerCorner) + at(kRightEyeOuterCorner)) / 2.0);
}

/// An error of one point, as a fraction of the eye distance, and what it is of.
struct PointError {
    std::string what;
    double error = 0.0;
};

/// Per fixture photo of tests/data/face/hand_marks.json, the error of the landmark that
/// matches each hand-marked point; found is false when no face was found.
struct PhotoErrors {
    std::string photo;
    bool found = false;
    std::vector<PointError> points;
};

inline std::vector<PhotoErrors> handMarkErrors(FaceLandmarker& landmarker)
{
    cv::FileStorage marks(std::string(PLYRA_TEST_DATA) + "/face/hand_marks.json", cv::FileStorage::READ | cv::FileStorage::FORMAT_JSON);
    const cv::FileNode indices = marks["landmarks"];
    std::vector<PhotoErrors> photos;
    for (const cv::FileNode& photo : marks["faces"]) {
        const cv::Mat picture = cv::imread(photoPath(photo.name()));
        const std::optional<FaceLandmarks> face = landmarker.find(imageFromPicture(picture));
        PhotoErrors& result = photos.emplace_back(PhotoErrors{photo.name(), face.has_value(), {}});
        if (!face)
            continue;
        const std::vector<cv::Point2d> found = inPixels(*face, picture.size());
        for (const cv::FileNode& mark : photo) {
            const cv::Point2d handMarked(mark[0].real(), mark[1].real());
            const cv::Point2d landmark = found[static_cast<std::size_t>(indices[mark.name()].real())];
            result.points.push_back({mark.name(), cv::norm(landmark - handMarked) / eyeDistance(found)});
        }
    }
    return photos;
}

/// For ast_face.png turned by 10°, scaled by 0.8 and moved, the distance of each chain
/// landmark from the moved landmark of the original; empty when a face was not found.
inline std::vector<PointError> movedFaceErrors(FaceLandmarker& landmarker)
{
    const cv::Mat picture = cv::imread(photoPath("ast_face.png"));
    cv::Matx23d move = cv::getRotationMatrix2D({150, 150}, 10.0, 0.8);
    move(0, 2) += 70;
    move(1, 2) += 20;
    cv::Mat moved;
    cv::warpAffine(picture, moved, move, {420, 360}, cv::INTER_AREA, cv::BORDER_REPLICATE);
    const auto original = landmarker.find(imageFromPicture(picture));
    const auto changed = landmarker.find(imageFromPicture(moved));
    if (!original || !changed)
        return {};
    const std::vector<cv::Point2d> before = inPixels(*original, picture.size());
    const std::vector<cv::Point2d> after = inPixels(*changed, moved.size());
    std::vector<PointError> errors;
    for (const FaceChain& chain : faceChains()) {
        for (const int i : chain.landmarks) {
            const cv::Point2d p = before[static_cast<std::size_t>(i)];
            const cv::Point2d expected(move(0, 0) * p.x + move(0, 1) * p.y + move(0, 2), move(1, 0) * p.x + move(1, 1) * p.y + move(1, 2));
            errors.push_back({std::string(chain.name) + " " + std::to_string(i),
                cv::norm(after[static_cast<std::size_t>(i)] - expected) / eyeDistance(after)});
        }
    }
    return errors;
}

} // namespace plyra::test
