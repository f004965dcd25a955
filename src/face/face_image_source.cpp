// SPDX-License-Identifier: MIT
#include "face/face_image_source_internal.h"

#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cmath>
#include <utility>

namespace plyra::face_internal {
namespace {

cv::Matx33d homogeneous(const cv::Matx23d& m)
{
    return {m(0, 0), m(0, 1), m(0, 2), m(1, 0), m(1, 1), m(1, 2), 0, 0, 1};
}

} // namespace

FaceImageSource::FaceImageSource(Image image)
    : m_image(std::move(image))
{
}

int FaceImageSource::width() const
{
    return m_image.bitmap() ? m_image.bitmap()->width() : 0;
}

int FaceImageSource::height() const
{
    return m_image.bitmap() ? m_image.bitmap()->height() : 0;
}

cv::Mat FaceImageSource::crop(const cv::Matx23d& cropToImage, int size) const
{
    // Picture pixels per crop pixel; the level halves that until one level pixel is at
    // most about one crop pixel, so that bilinear sampling does not alias.
    const double scale = std::sqrt(std::abs(cropToImage(0, 0) * cropToImage(1, 1) - cropToImage(0, 1) * cropToImage(1, 0)));
    const int level = scale > 1.0 ? std::clamp(static_cast<int>(std::floor(std::log2(scale))), 0, 16) : 0;
    const std::shared_ptr<const Bitmap> pixels = m_image.reducedLevel(level);
    const cv::Mat source(pixels->height(), pixels->width(), CV_8UC4, const_cast<std::uint8_t*>(pixels->data()),
        pixels->bytesPerRow());
    // Crop pixel index -> crop point (centres at +0.5) -> picture point -> the level's
    // rows, which run bottom first -> level pixel index.
    const double f = 1.0 / std::ldexp(1.0, level);
    const cv::Matx33d toLevel{f, 0, -0.5, 0, -f, height() * f - 0.5, 0, 0, 1};
    const cv::Matx33d pixelCentre{1, 0, 0.5, 0, 1, 0.5, 0, 0, 1};
    const cv::Matx33d m = toLevel * homogeneous(cropToImage) * pixelCentre;
    cv::Mat rgba;
    cv::warpAffine(source, rgba, cv::Matx23d(m(0, 0), m(0, 1), m(0, 2), m(1, 0), m(1, 1), m(1, 2)), {size, size},
        cv::INTER_LINEAR | cv::WARP_INVERSE_MAP, cv::BORDER_CONSTANT, cv::Scalar(0, 0, 0, 0));
    cv::Mat rgb;
    cv::cvtColor(rgba, rgb, cv::COLOR_RGBA2RGB);
    return rgb;
}

} // namespace plyra::face_internal
