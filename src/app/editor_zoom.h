// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QSize>
#include <QSizeF>

#include <array>
#include <functional>
#include <optional>

class QScrollArea;

namespace plyra {

class MorphEditor;

/// Zooms the two editors of a document window together. Each editor shows its image at
/// the image's own aspect, at a scale of display units per image pixel: "fit" is the
/// largest scale that shows the whole image in the editor's scroll area, zooming in
/// doubles both scales, zooming out halves them but stops at fit and never enlarges (an
/// editor below fit stays as it is), Actual Size shows one image pixel per device pixel
/// (the zoom factor counts device pixels too). Each change runs in six steps drawn at
/// once, so that it shows as an animation, and the selection is centred after every
/// step. While an editor is at fit it follows the size of its scroll area. An editor
/// without an image of its own shows the other one and takes the other editor's size.
/// Threads: main thread only.
class EditorZoom : public QObject {
    Q_OBJECT

public:
    static constexpr int kSteps = 6;
    /// Zooming in stops when the four target lengths add up to more than this.
    static constexpr double kLargestTotal = 1000000.0;
    /// Zooming out stops when the four target lengths add up to less than this.
    static constexpr double kSmallestTotal = 200.0;

    struct Editor {
        MorphEditor* view = nullptr;
        QScrollArea* scrollArea = nullptr;
    };

    /// centre is called after every step; redraw draws the window at once.
    EditorZoom(std::array<Editor, 2> editors, std::function<void()> centre, std::function<void()> redraw,
        QObject* parent = nullptr);

    /// False, and nothing changes, when the editors are already as large as allowed.
    bool zoomIn();
    /// False, and nothing changes, when both editors are at fit (or would be too small).
    bool zoomOut();
    void zoomToFit();
    void actualSize();
    /// Fits the editors chosen at once, without animation (new images, a new window).
    void fit(std::array<bool, 2> editors);

    /// The scale of each editor's own image; none for an editor without one.
    std::array<std::optional<double>, 2> scales() const;
    bool isAtFit(int editor) const { return m_atFit[static_cast<std::size_t>(editor)]; }
    /// The zoom factor for the status bar, such as "52 %", or one for each image when
    /// they differ.
    QString zoomText() const;

signals:
    void zoomChanged();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    using Scales = std::array<std::optional<double>, 2>;

    /// The targets of a change for the scales given (totals checked by the callers).
    static Scales zoomInTargets(const Scales& scales);
    static Scales zoomOutTargets(const Scales& scales, const Scales& fitScales);

    std::optional<QSizeF> imageSize(int editor) const;
    Scales fitScales() const;
    double total(const Scales& scales) const;
    /// Whether the editors already have the sizes of these scales.
    bool showsAt(const Scales& targets) const;
    void animate(const Scales& targets);
    void applyScales(const Scales& scales);
    QSize sizeAt(int editor, double scale) const;

    std::array<Editor, 2> m_editors;
    std::function<void()> m_centre;
    std::function<void()> m_redraw;
    std::array<bool, 2> m_atFit{true, true};
};

} // namespace plyra
