// SPDX-License-Identifier: MIT
#include "app/editor_zoom.h"

#include "editor/morph_editor.h"
#include "widgets/screen_change.h"

#include <QEvent>
#include <QLocale>
#include <QScrollArea>

#include <cmath>

namespace plyra {

EditorZoom::EditorZoom(std::array<Editor, 2> editors, std::function<void()> centre, std::function<void()> redraw,
    QObject* parent)
    : QObject(parent)
    , m_editors(editors)
    , m_centre(std::move(centre))
    , m_redraw(std::move(redraw))
{
    for (const Editor& editor : m_editors)
        editor.scrollArea->installEventFilter(this);
    // The zoom factor counts device pixels: on a screen of another scale it reads anew.
    followScreenChanges(m_editors[0].view, [this] { emit zoomChanged(); });
}

std::optional<QSizeF> EditorZoom::imageSize(int editor) const
{
    return m_editors[static_cast<std::size_t>(editor)].view->imageSize();
}

std::array<std::optional<double>, 2> EditorZoom::scales() const
{
    Scales scales;
    for (int i : {0, 1})
        if (const std::optional<QSizeF> image = imageSize(i); image && image->width() > 0.0)
            scales[static_cast<std::size_t>(i)] = m_editors[static_cast<std::size_t>(i)].view->width() / image->width();
    return scales;
}

EditorZoom::Scales EditorZoom::fitScales() const
{
    Scales scales;
    for (int i : {0, 1}) {
        const std::optional<QSizeF> image = imageSize(i);
        if (!image || image->width() <= 0.0)
            continue;
        const QSizeF content = MorphEditor::contentSizeOf(*m_editors[static_cast<std::size_t>(i)].scrollArea);
        scales[static_cast<std::size_t>(i)] = MorphEditor::fittedSize(*image, content).width() / image->width();
    }
    return scales;
}

QSize EditorZoom::sizeAt(int editor, double scale) const
{
    const QSizeF image = imageSize(editor).value_or(QSizeF());
    // Both sides from the one scale: the shown image keeps its aspect up to rounding.
    return QSize(std::max(1, int(std::lround(image.width() * scale))), std::max(1, int(std::lround(image.height() * scale))));
}

double EditorZoom::total(const Scales& scales) const
{
    double sum = 0.0;
    for (int i : {0, 1})
        if (const std::optional<double> scale = scales[static_cast<std::size_t>(i)]) {
            const QSize size = sizeAt(i, *scale);
            // An editor without an image takes the other's size.
            sum += (size.width() + size.height()) * (scales[static_cast<std::size_t>(1 - i)] ? 1.0 : 2.0);
        }
    return sum;
}

EditorZoom::Scales EditorZoom::zoomInTargets(const Scales& scales)
{
    Scales targets;
    for (std::size_t i = 0; i < 2; ++i)
        if (scales[i])
            targets[i] = *scales[i] * 2.0;
    return targets;
}

EditorZoom::Scales EditorZoom::zoomOutTargets(const Scales& scales, const Scales& fitScales)
{
    Scales targets;
    for (std::size_t i = 0; i < 2; ++i)
        if (scales[i] && fitScales[i])
            // Below fit (a small image at Actual Size) zooming out would enlarge it.
            targets[i] = *scales[i] <= *fitScales[i] ? *scales[i] : std::max(*scales[i] / 2.0, *fitScales[i]);
    return targets;
}

bool EditorZoom::zoomIn()
{
    const Scales targets = zoomInTargets(scales());
    if (!targets[0] && !targets[1])
        return false;
    if (total(targets) > kLargestTotal)
        return false;
    m_atFit = {false, false};
    animate(targets);
    return true;
}

bool EditorZoom::zoomOut()
{
    const Scales current = scales();
    const Scales fit = fitScales();
    const Scales targets = zoomOutTargets(current, fit);
    if (showsAt(targets) || total(targets) < kSmallestTotal)
        return false;
    // An editor that stays as it is keeps whether it is at fit.
    for (std::size_t i = 0; i < 2; ++i)
        if (targets[i] != current[i])
            m_atFit[i] = targets[i] && fit[i] && *targets[i] == *fit[i];
    animate(targets);
    return true;
}

void EditorZoom::zoomToFit()
{
    m_atFit = {true, true};
    animate(fitScales());
}

void EditorZoom::actualSize()
{
    // One image pixel per device pixel: on a screen of two device pixels per unit, half a unit.
    Scales targets;
    for (int i : {0, 1})
        if (imageSize(i))
            targets[static_cast<std::size_t>(i)] = 1.0 / m_editors[static_cast<std::size_t>(i)].view->devicePixelRatioF();
    const Scales fit = fitScales();
    for (std::size_t i = 0; i < 2; ++i)
        m_atFit[i] = fit[i] && targets[i] && *fit[i] == *targets[i];
    animate(targets);
}

void EditorZoom::fit(std::array<bool, 2> editors)
{
    const Scales fit = fitScales();
    Scales targets = scales();
    for (std::size_t i = 0; i < 2; ++i)
        if (editors[i]) {
            targets[i] = fit[i];
            m_atFit[i] = true;
        }
    applyScales(targets);
    emit zoomChanged();
}

void EditorZoom::animate(const Scales& targets)
{
    const Scales start = scales();
    for (int step = 1; step <= kSteps; ++step) {
        const double f = double(step) / kSteps;
        Scales now;
        for (std::size_t i = 0; i < 2; ++i)
            if (targets[i])
                now[i] = start[i] ? *start[i] + (*targets[i] - *start[i]) * f : *targets[i];
        applyScales(now);
        m_centre();
        m_redraw();
    }
    emit zoomChanged();
}

void EditorZoom::applyScales(const Scales& scales)
{
    for (int i : {0, 1})
        if (const std::optional<double> scale = scales[static_cast<std::size_t>(i)])
            m_editors[static_cast<std::size_t>(i)].view->resize(sizeAt(i, *scale));
    for (int i : {0, 1})
        if (!imageSize(i) && imageSize(1 - i))
            m_editors[static_cast<std::size_t>(i)].view->resize(m_editors[static_cast<std::size_t>(1 - i)].view->size());
}

bool EditorZoom::showsAt(const Scales& targets) const
{
    for (int i : {0, 1})
        if (const std::optional<double> target = targets[static_cast<std::size_t>(i)];
            target && sizeAt(i, *target) != m_editors[static_cast<std::size_t>(i)].view->size())
            return false;
    return true;
}

QString EditorZoom::zoomText() const
{
    // In device pixels per image pixel, so that Actual Size reads 100 % on any screen.
    Scales shown = scales();
    for (std::size_t i = 0; i < 2; ++i)
        if (shown[i])
            shown[i] = *shown[i] * m_editors[i].view->devicePixelRatioF();
    auto percent = [](double scale) { return QLocale().toString(qlonglong(std::llround(scale * 100.0))); };
    if (shown[0] && shown[1] && std::lround(*shown[0] * 100.0) != std::lround(*shown[1] * 100.0))
        return tr("Zoom %1 % | %2 %").arg(percent(*shown[0]), percent(*shown[1]));
    if (shown[0] || shown[1])
        return tr("Zoom %1 %").arg(percent(shown[0] ? *shown[0] : *shown[1]));
    return {};
}

bool EditorZoom::eventFilter(QObject* watched, QEvent* event)
{
    // A scroll area that changes size refits the editors that are at fit.
    if (event->type() == QEvent::Resize) {
        std::array<bool, 2> refit{};
        for (std::size_t i = 0; i < 2; ++i)
            refit[i] = watched == m_editors[i].scrollArea && m_atFit[i] && imageSize(int(i));
        if (refit[0] || refit[1])
            fit(refit);
    }
    return QObject::eventFilter(watched, event);
}

} // namespace plyra
