// SPDX-License-Identifier: MIT
#pragma once

#include "platform/image/image.h"

#include <opencv2/core.hpp>

#include <vector>

namespace plyra::face_internal {

/// A bitmap image as the face networks see it: square crops, upright (y down), RGB, each
/// crop pixel the average of the picture under it. Where a crop pixel covers more than
/// kMaxSupersampling picture pixels across, the part of the picture under the crop is
/// first halved (averaging 2 × 2 blocks) until it covers at most that many; the halvings
/// are kept for the next crops of the same part.
/// Threads: one thread at a time (the halvings are cached); the image is only read.
class FaceImageSource {
public:
    static constexpr int kMaxSupersampling = 4;

    explicit FaceImageSource(Image image);

    bool isValid() const { return m_image.bitmap() != nullptr; }
    int width() const;
    int height() const;

    /// An RGB crop of size × size pixels whose point (u, v) shows the picture at
    /// cropToImage · (u, v, 1); outside the picture is black.
    cv::Mat crop(const cv::Matx23d& cropToImage, int size) const;

    /// How many times smaller than the bitmap a crop of that scale (picture pixels per
    /// crop pixel) reads the picture: 1, or the power of two that brings the scale to at
    /// most kMaxSupersampling.
    static int reductionFor(double scale);

private:
    cv::Mat bitmapPixels() const;
    /// The bitmap pixels (rows bottom first) under a crop and the bilinear footprint of
    /// its samples, on the grid of whole blocks of factor pixels.
    cv::Rect areaUnder(const cv::Matx23d& cropToImage, int size, int factor) const;
    /// The area halved until it is factor times smaller, kept for the next crops.
    const cv::Mat& reduced(const cv::Rect& area, int factor) const;

    Image m_image;
    mutable cv::Rect m_reducedArea;
    mutable std::vector<cv::Mat> m_halvings; // the area reduced by 2, 4, 8, …
};

} // namespace plyra::face_internal
