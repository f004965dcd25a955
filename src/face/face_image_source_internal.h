// SPDX-License-Identifier: MIT
#pragma once

#include "platform/image/image.h"

#include <opencv2/core.hpp>

namespace plyra::face_internal {

/// A bitmap image as the face networks see it: square crops, upright (y down), RGB,
/// filtered to their own resolution without reducing the whole picture first.
/// Threads: any; the image is only read.
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
    static constexpr int kMaxSupersampling = 4;
    Image m_image;
};

} // namespace plyra::face_internal
