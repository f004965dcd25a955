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
    // Picture pixels per crop pixel. Rather than reducing the whole picture first (a
    // 24-megapixel photograph takes longer to reduce than the networks take to run),
    // the crop is sampled up to four times as finely and then averaged down: a box filter
    // over the crop pixel's own footprint, reading a few hundred thousand pixels.
    const double scale = std::sqrt(std::abs(cropToImage(0, 0) * cropToImage(1, 1) - cropToImage(0, 1) * cropToImage(1, 0)));
    const int fine = std::clamp(static_cast<int>(std::ceil(scale)), 1, kMaxSupersampling);
    const Bitmap& pixels = *m_image.bitmap();
    const cv::Mat source(pixels.height(), pixels.width(), CV_8UC4, const_cast<std::uint8_t*>(pixels.data()), pixels.bytesPerRow());
    // Fine pixel index -> crop point (centres at +0.5) -> picture point -> bitmap rows,
    // which run bottom first -> bitmap pixel index.
    const double f = 1.0 / fine;
    const cv::Matx33d toBitmap{1, 0, -0.5, 0, -1, height() - 0.5, 0, 0, 1};
    const cv::Matx33d fineToCrop{f, 0, 0.5 * f, 0, f, 0.5 * f, 0, 0, 1};
    const cv::Matx33d m = toBitmap * homogeneous(cropToImage) * fineToCrop;
    cv::Mat sampled;
    cv::warpAffine(source, sampled, cv::Matx23d(m(0, 0), m(0, 1), m(0, 2), m(1, 0), m(1, 1), m(1, 2)),
        {size * fine, size * fine}, cv::INTER_LINEAR | cv::WARP_INVERSE_MAP, cv::BORDER_CONSTANT, cv::Scalar(0, 0, 0, 0));
    if (fine > 1)
        cv::resize(sampled, sampled, {size, size}, 0, 0, cv::INTER_AREA);
    cv::Mat rgb;
    cv::cvtColor(sampled, rgb, cv::COLOR_RGBA2RGB);
    return rgb;
}

} // namespace plyra::face_internal
