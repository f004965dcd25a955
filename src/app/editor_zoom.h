// SPDX-License-Identifier: MIT
#pragma once

#include <QSize>
#include <QSizeF>

#include <array>
#include <functional>

class QScrollArea;
class QWidget;

namespace plyra {

/// Zooms the two editors of a document window together: in, to twice their size, and
/// out, to half their size but never smaller than what fills their scroll areas, each
/// in six steps that are drawn at once so that they show as an animation. After every
/// step the selection is centred again.
/// Threads: main thread only.
class EditorZoom {
public:
    static constexpr int kSteps = 6;
    /// Zooming in stops when the four target lengths add up to more than this.
    static constexpr double kLargestTotal = 1000000.0;
    /// Zooming out stops when the four target lengths add up to less than this.
    static constexpr double kSmallestTotal = 200.0;

    struct Editor {
        QWidget* view = nullptr;
        QScrollArea* scrollArea = nullptr;
    };

    /// centre is called after every step; redraw draws the window at once.
    EditorZoom(std::array<Editor, 2> editors, std::function<void()> centre, std::function<void()> redraw);

    /// False, and nothing changes, when the editors are already as large as allowed.
    bool zoomIn();
    /// False, and nothing changes, when the editors would end up too small.
    bool zoomOut();

    /// The targets both directions aim at, for sizes and visible areas given directly.
    static std::array<QSizeF, 2> zoomInTargets(const std::array<QSizeF, 2>& sizes);
    static std::array<QSizeF, 2> zoomOutTargets(const std::array<QSizeF, 2>& sizes, const std::array<QSizeF, 2>& visible);
    static double total(const std::array<QSizeF, 2>& sizes);

private:
    void animate(const std::array<QSizeF, 2>& targets);
    std::array<QSizeF, 2> sizes() const;

    std::array<Editor, 2> m_editors;
    std::function<void()> m_centre;
    std::function<void()> m_redraw;
};

} // namespace plyra
