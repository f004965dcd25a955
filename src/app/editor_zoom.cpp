// SPDX-License-Identifier: MIT
#include "app/editor_zoom.h"

#include <QScrollArea>
#include <QWidget>

#include <cmath>

namespace plyra {

EditorZoom::EditorZoom(std::array<Editor, 2> editors, std::function<void()> centre, std::function<void()> redraw)
    : m_editors(editors)
    , m_centre(std::move(centre))
    , m_redraw(std::move(redraw))
{
}

std::array<QSizeF, 2> EditorZoom::sizes() const
{
    return {QSizeF(m_editors[0].view->size()), QSizeF(m_editors[1].view->size())};
}

double EditorZoom::total(const std::array<QSizeF, 2>& sizes)
{
    return sizes[0].width() + sizes[0].height() + sizes[1].width() + sizes[1].height();
}

std::array<QSizeF, 2> EditorZoom::zoomInTargets(const std::array<QSizeF, 2>& sizes)
{
    return {sizes[0] * 2.0, sizes[1] * 2.0};
}

std::array<QSizeF, 2> EditorZoom::zoomOutTargets(const std::array<QSizeF, 2>& sizes, const std::array<QSizeF, 2>& visible)
{
    std::array<QSizeF, 2> targets;
    for (std::size_t i = 0; i < 2; ++i) {
        const QSizeF half = sizes[i] / 2.0;
        const bool belowVisible = half.width() < visible[i].width() || half.height() < visible[i].height();
        targets[i] = belowVisible ? visible[i] : half;
    }
    return targets;
}

bool EditorZoom::zoomIn()
{
    const std::array<QSizeF, 2> targets = zoomInTargets(sizes());
    if (total(targets) > kLargestTotal)
        return false;
    animate(targets);
    return true;
}

bool EditorZoom::zoomOut()
{
    const std::array<QSizeF, 2> visible = {QSizeF(m_editors[0].scrollArea->viewport()->size()),
        QSizeF(m_editors[1].scrollArea->viewport()->size())};
    const std::array<QSizeF, 2> targets = zoomOutTargets(sizes(), visible);
    if (total(targets) < kSmallestTotal)
        return false;
    animate(targets);
    return true;
}

void EditorZoom::animate(const std::array<QSizeF, 2>& targets)
{
    const std::array<QSizeF, 2> start = sizes();
    for (int step = 1; step <= kSteps; ++step) {
        const double f = double(step) / kSteps;
        for (std::size_t i = 0; i < 2; ++i) {
            const QSizeF size = start[i] + (targets[i] - start[i]) * f;
            // Widgets have whole-pixel sizes.
            m_editors[i].view->resize(int(std::lround(size.width())), int(std::lround(size.height())));
        }
        m_centre();
        m_redraw();
    }
}

} // namespace plyra
