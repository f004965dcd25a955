// SPDX-License-Identifier: MIT
#include "face/face_image_source_internal.h"

#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <bit>
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

int FaceImageSource::reductionFor(double scale)
{
    int factor = 1;
    while (scale / factor > kMaxSupersampling)
        factor *= 2;
    return factor;
}

cv::Mat FaceImageSource::bitmapPixels() const
{
    const Bitmap& pixels = *m_image.bitmap();
    return {pixels.height(), pixels.width(), CV_8UC4, const_cast<std::uint8_t*>(pixels.data()), pixels.bytesPerRow()};
}

cv::Rect FaceImageSource::areaUnder(const cv::Matx23d& cropToImage, int size, int factor) const
{
    double left = width();
    double right = 0.0;
    double bottom = height();
    double top = 0.0;
    for (const auto& [u, v] : {std::pair{0, 0}, std::pair{size, 0}, std::pair{0, size}, std::pair{size, size}}) {
        const double x = cropToImage(0, 0) * u + cropToImage(0, 1) * v + cropToImage(0, 2);
        const double y = height() - (cropToImage(1, 0) * u + cropToImage(1, 1) * v + cropToImage(1, 2));
        left = std::min(left, x);
        right = std::max(right, x);
        bottom = std::min(bottom, y);
        top = std::max(top, y);
    }
    // One reduced pixel more on each side for the bilinear samples at the edges; the
    // last partial block at the right and top is left out.
    const auto low = [factor](double at) { return std::max(0, (static_cast<int>(std::floor(at)) / factor - 1) * factor); };
    const auto high = [factor](double at, int limit) {
        return std::min(limit / factor, static_cast<int>(std::ceil(at)) / factor + 2) * factor;
    };
    const int x0 = low(left);
    const int y0 = low(bottom);
    return {x0, y0, std::max(0, high(right, width()) - x0), std::max(0, high(top, height()) - y0)};
}

const cv::Mat& FaceImageSource::reduced(const cv::Rect& area, int factor) const
{
    const auto level = static_cast<std::size_t>(std::countr_zero(static_cast<unsigned>(factor)));
    if ((m_reducedArea & area) != area || m_halvings.size() < level) {
        // The first crop, the detector's look at the whole picture, usually needs the
        // largest factor: what later crops need is then there already.
        m_reducedArea = area;
        m_halvings.clear();
        cv::Mat part = bitmapPixels()(area);
        for (std::size_t i = 0; i < level; ++i) {
            cv::Mat half;
            cv::resize(part, half, {part.cols / 2, part.rows / 2}, 0, 0, cv::INTER_AREA);
            m_halvings.push_back(half);
            part = half;
        }
    }
    return m_halvings[level - 1];
}

cv::Mat FaceImageSource::crop(const cv::Matx23d& cropToImage, int size) const
{
    // Picture pixels per crop pixel: the picture (or its halving) is sampled that finely,
    // at most kMaxSupersampling times per crop pixel, and averaged down to the crop.
    const double scale = std::sqrt(std::abs(cropToImage(0, 0) * cropToImage(1, 1) - cropToImage(0, 1) * cropToImage(1, 0)));
    const int factor = reductionFor(scale);
    const int fine = std::clamp(static_cast<int>(std::ceil(scale / factor)), 1, kMaxSupersampling);
    cv::Mat source = bitmapPixels();
    cv::Point origin(0, 0);
    if (factor > 1) {
        const cv::Rect area = areaUnder(cropToImage, size, factor);
        if (area.empty())
            return cv::Mat::zeros(size, size, CV_8UC3);
        source = reduced(area, factor);
        origin = m_reducedArea.tl();
    }
    // Fine pixel index -> crop point (centres at +0.5) -> picture point -> bitmap point,
    // rows bottom first -> pixel index of the source, factor bitmap pixels each.
    const double f = 1.0 / fine;
    const double r = 1.0 / factor;
    const cv::Matx33d toSource{r, 0, -origin.x * r - 0.5, 0, -r, (height() - origin.y) * r - 0.5, 0, 0, 1};
    const cv::Matx33d fineToCrop{f, 0, 0.5 * f, 0, f, 0.5 * f, 0, 0, 1};
    const cv::Matx33d m = toSource * homogeneous(cropToImage) * fineToCrop;
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
