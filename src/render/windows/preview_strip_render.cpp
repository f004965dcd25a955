// SPDX-License-Identifier: MIT
#include "render/windows/preview_strip_render.h"

#include "engine/image_conversion.h"
#include "render/document_movie_settings.h"
#include "render/easing.h"
#include "render/frame_output.h"

#include <algorithm>
#include <cmath>

namespace plyra {

PreviewStripRender::PreviewStripRender(MorphDocument& document)
    : RenderController(document)
{
    setCellCount(kDefaultCellCount);
}

float PreviewStripRender::timeOfCell(int index, int count)
{
    // A strip of one cell shows the middle of the morph.
    if (count < 2)
        return 0.5f;
    return static_cast<float>(index) / static_cast<float>(count - 1);
}

void PreviewStripRender::setCellCount(int count)
{
    count = std::max(count, 1);
    m_cells.assign(static_cast<std::size_t>(count), Cell{});
    for (int i = 0; i < count; ++i)
        m_cells[static_cast<std::size_t>(i)].time = timeOfCell(i, count);
}

bool PreviewStripRender::setCellSize(FrameSize size)
{
    if (std::fabs(size.width - m_cellSize.width) < 1.0f && std::fabs(size.height - m_cellSize.height) < 1.0f)
        return false;
    m_cellSize = size;
    return true;
}

int PreviewStripRender::filledCellCount() const
{
    return static_cast<int>(std::count_if(m_cells.begin(), m_cells.end(), [](const Cell& cell) { return !cell.image.isNull(); }));
}

float PreviewStripRender::previewInterpolationFactor() const
{
    return interpolationFactorFromDefaults(6.0f);
}

bool PreviewStripRender::recalc()
{
    settings().setNumberOfFrames(static_cast<std::uint32_t>(m_cells.size()));
    // The strip shows the movie's pace: its cells at the frame times the movie's easing gives.
    const Easing easing = documentMovieSettings(document()).timing.easing;
    const int count = cellCount();
    for (int i = 0; i < count; ++i)
        m_cells[static_cast<std::size_t>(i)].time = count < 2 ? timeOfCell(i, count)
            : static_cast<float>(easedProgress(easing, static_cast<double>(timeOfCell(i, count))));
    if (!RenderController::recalc())
        return false;
    // The strip blanks out until the new frames arrive.
    for (Cell& cell : m_cells)
        cell.image = QImage();
    return true;
}

MorphCalculationJob::Ptr PreviewStripRender::newMorphJob(std::uint32_t frame)
{
    return MorphCalculationJob::create(
        m_cells[frame].time, Size{m_cellSize.width, m_cellSize.height}, previewInterpolationFactor());
}

void PreviewStripRender::consumeFinishedJobs()
{
    for (Cell& cell : m_cells) {
        if (!cell.image.isNull())
            continue;
        for (const MorphCalculationJob::Ptr& job : jobs()) {
            if (!(std::fabs(job->time() - cell.time) < kTimeTolerance))
                continue;
            // A cell waits for its frame, and every later cell waits with it.
            if (!job->isDone())
                return;
            // A later job of the same time replaces the image of an earlier one.
            if (const std::optional<Bitmap> bitmap = bitmapFromImage(job->outputImage()))
                cell.image = imageFromBitmap(*bitmap);
        }
    }
    jobs().clear();
}

} // namespace plyra
