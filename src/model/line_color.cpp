// SPDX-License-Identifier: MIT
#include "model/line_color.h"

#include "platform/typedstream/color_archive.h"

namespace plyra {

LineColor::Ptr LineColor::make(float red, float green, float blue, float alpha)
{
    return std::make_shared<const LineColor>(LineColor{red, green, blue, alpha});
}

LineColor::Ptr LineColor::fromQColor(const QColor& color)
{
    const QColor rgb = color.toRgb();
    return make(rgb.redF(), rgb.greenF(), rgb.blueF(), rgb.alphaF());
}

const LineColor::Ptr& LineColor::defaultColor()
{
    static const Ptr color = make(0.5f, 1.0f, 0.0f, 1.0f);
    return color;
}

LineColor::Ptr LineColor::fromArchive(const std::vector<std::uint8_t>& archive, std::string* error)
{
    const std::optional<ArchivedColor> color = readColorArchive(archive, error);
    if (!color)
        return nullptr;
    const Rgba rgba = color->rgba();
    return make(rgba.red, rgba.green, rgba.blue, rgba.alpha);
}

std::vector<std::uint8_t> LineColor::archive() const
{
    return writeColorArchive(ArchivedColor::calibratedRgb(red, green, blue, alpha));
}

QColor LineColor::toQColor() const
{
    return QColor::fromRgbF(red, green, blue, alpha);
}

} // namespace plyra
