// SPDX-License-Identifier: MIT
#pragma once

#include "render/render_controller.h"

#include <QImage>

#include <vector>

namespace plyra {

/// The render of the preview strip: one small frame per cell at evenly spaced times from
/// 0 to 1 (spaced as the document's movie easing spaces frames), computed at the cells'
/// size with the preview's coarser grid, every cell blank at the start of a render and
/// filled strictly from the first to the last.
/// Threads: main thread.
class PreviewStripRender : public RenderController {
public:
    /// A job fills a cell whose time differs from its own by less than this.
    static constexpr float kTimeTolerance = 0.001f;
    static constexpr int kDefaultCellCount = 5;

    explicit PreviewStripRender(MorphDocument& document);

    /// Sets the cells' number (at least 1) and their times; cells keep no images.
    void setCellCount(int count);
    int cellCount() const { return static_cast<int>(m_cells.size()); }
    /// The size frames are rendered at; answers whether it changed by a whole pixel.
    bool setCellSize(FrameSize size);
    FrameSize cellSize() const { return m_cellSize; }

    float cellTime(int index) const { return m_cells[static_cast<std::size_t>(index)].time; }
    /// The cell's frame; null while the cell is blank.
    const QImage& cellImage(int index) const { return m_cells[static_cast<std::size_t>(index)].image; }
    int filledCellCount() const;

    /// The grid spacing of the preview: the user default's, else 6.
    float previewInterpolationFactor() const;

    /// Blanks every cell and starts their render; false (cells unchanged) without images.
    bool recalc() override;

protected:
    /// The job of cell `frame`: its time, the cells' size, the preview's grid.
    MorphCalculationJob::Ptr newMorphJob(std::uint32_t frame) override;
    void consumeFinishedJobs() override;

private:
    struct Cell {
        float time = 0.0f;
        QImage image;
    };
    static float timeOfCell(int index, int count);

    std::vector<Cell> m_cells;
    FrameSize m_cellSize;
};

} // namespace plyra
