// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace plyra {

/// The colour in which a document's lines are drawn: red, green, blue and alpha from 0
/// to 1 in calibrated RGB. A document holds its colour as a shared constant object and
/// tells a new colour from the stored one by identity, not by value.
/// Threads: an immutable value; any thread.
struct LineColor {
    using Ptr = std::shared_ptr<const LineColor>;

    float red = 0.5f;
    float green = 1.0f;
    float blue = 0.0f;
    float alpha = 1.0f;

    static Ptr make(float red, float green, float blue, float alpha);
    static Ptr fromQColor(const QColor& color);
    /// The colour used while a document has none of its own: 0.5, 1.0, 0.0, 1.0.
    static const Ptr& defaultColor();

    /// Reads a colour from a typed-stream colour archive (any colour space, converted to
    /// RGBA); null with a reason in error when the archive is damaged or holds no colour.
    static Ptr fromArchive(const std::vector<std::uint8_t>& archive, std::string* error = nullptr);
    /// The colour as a typed-stream archive of a calibrated RGB colour.
    std::vector<std::uint8_t> archive() const;

    QColor toQColor() const;
    bool operator==(const LineColor&) const = default;
};

} // namespace plyra
