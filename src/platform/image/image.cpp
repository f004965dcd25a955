// SPDX-License-Identifier: MIT
#include "platform/image/image.h"

#include "platform/image/box_reduce_internal.h"
#include "platform/image/kernel.h"
#include "platform/log.h"

#include <mutex>
#include <utility>

namespace plyra {

struct Image::Node {
    Kind kind = Kind::Null;
    Rect extent = Rect::null();
    std::shared_ptr<const Bitmap> bitmap;
    FloatBitmap floatBitmap;
    KernelApplication application;

    // Box-reduced levels of a bitmap, index = level; filled on demand.
    mutable std::mutex levelMutex;
    mutable std::vector<std::shared_ptr<const Bitmap>> levels;
};

Image::Image(std::shared_ptr<const Node> node)
    : m_node(std::move(node))
{
}

Image Image::fromBitmap(Bitmap bitmap, float originX, float originY)
{
    if (bitmap.isEmpty())
        return {};
    auto node = std::make_shared<Node>();
    node->kind = Kind::Bitmap;
    node->extent = {originX, originY, static_cast<float>(bitmap.width()), static_cast<float>(bitmap.height())};
    node->bitmap = std::make_shared<const Bitmap>(std::move(bitmap));
    node->levels.push_back(node->bitmap);
    return Image(std::move(node));
}

Image Image::fromFloatData(std::vector<float> values, std::size_t bytesPerRow, int width, int height,
                           std::vector<float> fifth)
{
    const std::size_t pixelBytes = FloatBitmap::kFloatsPerPixel * sizeof(float);
    if (width <= 0 || height <= 0 || bytesPerRow % sizeof(float) != 0
        || bytesPerRow < static_cast<std::size_t>(width) * pixelBytes)
        return {};
    const std::size_t floatsPerRow = bytesPerRow / sizeof(float);
    const std::size_t needed = floatsPerRow * static_cast<std::size_t>(height - 1)
        + static_cast<std::size_t>(width) * FloatBitmap::kFloatsPerPixel;
    if (values.size() < needed)
        return {};
    if (!fifth.empty() && fifth.size() != static_cast<std::size_t>(width) * static_cast<std::size_t>(height))
        return {};
    auto node = std::make_shared<Node>();
    node->kind = Kind::FloatBitmap;
    node->extent = {0.0f, 0.0f, static_cast<float>(width), static_cast<float>(height)};
    node->floatBitmap = FloatBitmap(std::move(values), floatsPerRow, width, height, std::move(fifth));
    return Image(std::move(node));
}

Image Image::fromKernel(KernelApplication application)
{
    if (!application.kernel || !application.kernel->accepts(application.arguments))
        return {};
    auto node = std::make_shared<Node>();
    node->kind = Kind::Kernel;
    node->extent = application.extent;
    node->application = std::move(application);
    return Image(std::move(node));
}

Image::Kind Image::kind() const
{
    return m_node ? m_node->kind : Kind::Null;
}

Rect Image::extent() const
{
    return m_node ? m_node->extent : Rect::null();
}

const Bitmap* Image::bitmap() const
{
    return kind() == Kind::Bitmap ? m_node->bitmap.get() : nullptr;
}

const FloatBitmap* Image::floatBitmap() const
{
    return kind() == Kind::FloatBitmap ? &m_node->floatBitmap : nullptr;
}

const KernelApplication* Image::kernelApplication() const
{
    return kind() == Kind::Kernel ? &m_node->application : nullptr;
}

std::shared_ptr<const Bitmap> Image::reducedLevel(int level) const
{
    if (kind() != Kind::Bitmap || level < 0)
        return nullptr;
    std::lock_guard guard(m_node->levelMutex);
    auto& levels = m_node->levels;
    while (static_cast<int>(levels.size()) <= level) {
        const Bitmap& previous = *levels.back();
        if (previous.width() == 1 && previous.height() == 1) {
            levels.push_back(levels.back());
            continue;
        }
        levels.push_back(std::make_shared<const Bitmap>(boxReduceByTwo(previous)));
    }
    return levels[static_cast<std::size_t>(level)];
}

std::string Image::description() const
{
    static const char* const kNames[] = {"null", "bitmap", "float bitmap", "kernel"};
    const Rect r = extent();
    std::string kindName = kNames[static_cast<int>(kind())];
    if (const KernelApplication* application = kernelApplication())
        kindName += " " + application->kernel->name();
    return formatString("<Image %s %s>", kindName.c_str(), r.description().c_str());
}

} // namespace plyra
