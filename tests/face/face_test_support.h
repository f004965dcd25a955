// SPDX-License-Identifier: MIT
#pragma once

#include "face/face_landmarker.h"
#include "platform/image/image.h"

#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

#include <gtest/gtest.h>

#include <memory>
#include <string>

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

/// The landmarker over the networks this build converted; the test is skipped without.
inline std::unique_ptr<FaceLandmarker> landmarkerOrSkip()
{
    const std::optional<FaceModelFiles> files = FaceModelFiles::inFolder(std::string(PLYRA_BINARY_DIR) + "/resources/face");
    if (!files)
        return nullptr;
    std::string error;
    std::unique_ptr<FaceLandmarker> landmarker = FaceLandmarker::create(*files, &error);
    EXPECT_TRUE(landmarker) << error;
    return landmarker;
}

} // namespace plyra::test
