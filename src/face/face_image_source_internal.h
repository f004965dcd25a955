// SPDX-License-Identifier: MIT
#pragma once

#include "platform/image/image.h"

#include <opencv2/core.hpp>

namespace plyra::face_internal {

/// A bitmap image as the face networks see it: upright (y down), RGB, sampled from the
/// image's box-filtered level that is closest above the resolution a crop needs, so that
/// a crop of a 24-megapixel photograph reads a few hundred thousand pixels, not all.
/// Threads: any; the image's levels are shared and built once.
class FaceImageSource {
public:
    explicit FaceImageSource(Image image);

    bool isValid() const { return m_image.bitmap() != nullptr; }
    int width() const;
    int height() const;

    /// An RGB crop of size × size pixels whose point (u, v) shows the picture at
    /// cropToImage · (u, v, 1); outside the picture is black.
    cv::Mat crop(const cv::Matx23d& cropToImage, int size) const;

private:
    Image m_image;
};

} // namespace plyra::face_internal
