// SPDX-License-Identifier: MIT
#pragma once

#include "render/windows/render_window.h"

class QSlider;

namespace plyra {

class FrameRenderController;
class FrameView;

/// The single-frame window: one frame of the morph at the time chosen with the "Morph
/// position" slider of its toolbar, shown scaled to the window, saved as a JPEG at
/// quality 95, or as a lossless PNG or TIFF when the chosen name ends so.
/// Threads: main thread.
class FrameWindow : public RenderWindow {
    Q_OBJECT

public:
    static constexpr auto kTimeSliderIdentifier = "timeSlider";
    static constexpr int kSliderSteps = 10000;

    explicit FrameWindow(MorphDocument& document, QWidget* parent = nullptr);

    FrameRenderController& renderer() const { return m_renderer; }
    FrameView* imageView() const { return m_imageView; }
    QSlider* timeSlider() const { return m_slider; }

    float time() const;
    /// Changes of at most 0.001 do nothing; otherwise the title, the slider and, 0.1 s
    /// later, the frame follow, and timeChanged() is emitted.
    void setTime(float time);

    QSize viewSize() const override;

signals:
    /// The window's morph time changed (the inspector marks it).
    void timeChanged(float time);

protected:
    void showPolledResults() override;
    QString windowTitleForDocumentDisplayName(const QString& name) const override;
    RenderSettingsSheet* createSettingsSheet() override;
    SaveFileTypes saveFileTypes() const override;
    bool saveRenderedFramesToPath(const QString& path, QString* error) override;

private:
    // The base owns the controller; the window keeps its own kind of it.
    FrameWindow(MorphDocument& document, FrameRenderController* renderer, QWidget* parent);
    void takeTimeFromSlider(int value);

    FrameRenderController& m_renderer;
    FrameView* m_imageView = nullptr;
    QSlider* m_slider = nullptr;
};

} // namespace plyra
