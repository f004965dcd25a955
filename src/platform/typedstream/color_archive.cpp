// SPDX-License-Identifier: MIT
#include "platform/typedstream/color_archive.h"

#include "platform/typedstream/color_object_decoder_internal.h"
#include "platform/typedstream/typed_stream_reader_internal.h"
#include "platform/typedstream/typed_stream_writer_internal.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace plyra {

namespace {

float unitClamped(float value)
{
    return std::isnan(value) ? 0.0f : std::clamp(value, 0.0f, 1.0f);
}

Rgba clamped(Rgba c)
{
    return Rgba { unitClamped(c.red), unitClamped(c.green), unitClamped(c.blue),
                  unitClamped(c.alpha) };
}

ArchivedColor withComponents(ColorSpaceKind kind, std::initializer_list<float> values)
{
    ArchivedColor color;
    color.kind = kind;
    std::copy(values.begin(), values.end(), color.components.begin());
    return color;
}

void writeColorObject(typedstream::TypedStreamWriter& writer, const ArchivedColor& color)
{
    writer.writeNewObject();
    writer.writeNewClass("NSColor", 0);
    writer.writeNewClass("NSObject", 0);
    writer.writeNil();
    writer.writeSharedString("c");
    writer.writeInteger(static_cast<std::int32_t>(color.kind));
    const std::size_t count = color.componentCount();
    writer.writeSharedString(std::string(count, 'f'));
    for (std::size_t i = 0; i < count; ++i)
        writer.writeFloat(color.components[i]);
    writer.writeEndOfObject();
}

} // namespace

ArchivedColor ArchivedColor::calibratedRgb(float red, float green, float blue, float alpha)
{
    return withComponents(ColorSpaceKind::CalibratedRgb, { red, green, blue, alpha });
}

ArchivedColor ArchivedColor::deviceRgb(float red, float green, float blue, float alpha)
{
    return withComponents(ColorSpaceKind::DeviceRgb, { red, green, blue, alpha });
}

ArchivedColor ArchivedColor::calibratedWhite(float white, float alpha)
{
    return withComponents(ColorSpaceKind::CalibratedWhite, { white, alpha });
}

ArchivedColor ArchivedColor::deviceWhite(float white, float alpha)
{
    return withComponents(ColorSpaceKind::DeviceWhite, { white, alpha });
}

ArchivedColor ArchivedColor::deviceCmyk(float cyan, float magenta, float yellow, float black,
                                        float alpha)
{
    return withComponents(ColorSpaceKind::DeviceCmyk, { cyan, magenta, yellow, black, alpha });
}

ArchivedColor ArchivedColor::named(std::string catalog, std::string name,
                                   std::optional<ArchivedColor> fallback)
{
    ArchivedColor color;
    color.kind = ColorSpaceKind::Named;
    color.catalog = std::move(catalog);
    color.name = std::move(name);
    if (fallback)
        color.fallback = std::make_shared<const ArchivedColor>(std::move(*fallback));
    return color;
}

std::size_t ArchivedColor::componentCount(ColorSpaceKind kind)
{
    switch (kind) {
    case ColorSpaceKind::CalibratedRgb:
    case ColorSpaceKind::DeviceRgb:
        return 4;
    case ColorSpaceKind::CalibratedWhite:
    case ColorSpaceKind::DeviceWhite:
        return 2;
    case ColorSpaceKind::DeviceCmyk:
        return 5;
    case ColorSpaceKind::Named:
        return 0;
    }
    return 0;
}

Rgba ArchivedColor::rgba() const
{
    const auto& c = components;
    switch (kind) {
    case ColorSpaceKind::CalibratedRgb:
    case ColorSpaceKind::DeviceRgb:
        return clamped({ c[0], c[1], c[2], c[3] });
    case ColorSpaceKind::CalibratedWhite:
    case ColorSpaceKind::DeviceWhite:
        return clamped({ c[0], c[0], c[0], c[1] });
    case ColorSpaceKind::DeviceCmyk: {
        const float white = 1.0f - unitClamped(c[3]);
        return clamped({ (1.0f - unitClamped(c[0])) * white, (1.0f - unitClamped(c[1])) * white,
                         (1.0f - unitClamped(c[2])) * white, c[4] });
    }
    case ColorSpaceKind::Named:
        return fallback ? fallback->rgba() : Rgba { 0.0f, 0.0f, 0.0f, 1.0f };
    }
    return Rgba {};
}

bool operator==(const ArchivedColor& a, const ArchivedColor& b)
{
    if (a.kind != b.kind || a.components != b.components || a.catalog != b.catalog
        || a.name != b.name)
        return false;
    if (!a.fallback || !b.fallback)
        return !a.fallback && !b.fallback;
    return *a.fallback == *b.fallback;
}

std::optional<ArchivedColor> readColorArchive(const std::vector<std::uint8_t>& bytes,
                                              std::string* error)
{
    try {
        typedstream::TypedStreamReader reader(bytes);
        reader.readHeader();
        typedstream::ColorObjectDecoder decoder(reader);
        return decoder.readRootColor();
    } catch (const typedstream::TypedStreamError& e) {
        if (error)
            *error = e.what();
        return std::nullopt;
    }
}

std::vector<std::uint8_t> writeColorArchive(const ArchivedColor& color)
{
    typedstream::TypedStreamWriter writer;
    writer.writeSharedString("@");
    if (color.kind == ColorSpaceKind::CalibratedRgb || color.kind == ColorSpaceKind::CalibratedWhite) {
        writeColorObject(writer, color);
    } else {
        const Rgba c = color.rgba();
        writeColorObject(writer, ArchivedColor::calibratedRgb(c.red, c.green, c.blue, c.alpha));
    }
    return writer.take();
}

} // namespace plyra
