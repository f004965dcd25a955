// SPDX-License-Identifier: MIT
#pragma once

#include "render/windows/render_window.h"

class QDoubleSpinBox;
class QSlider;

namespace plyra {

class FrameRenderController;
class FrameView;

/// The single-frame window: one frame of the morph at the time chosen with the "Morph
/// position" slider of its toolbar, or typed exactly into the time field beside it,
/// shown scaled to the window, saved as a JPEG at quality 95, or as a lossless PNG or
/// TIFF when the chosen name ends so. Unless its settings say otherwise the frame has the
/// document's frame size, whatever the window's size, so that Save writes it whole.
/// Threads: main thread.
class FrameWindow : public RenderWindow {
    Q_OBJECT

public:
    static constexpr auto kTimeSliderIdentifier = "timeSlider";
    static constexpr auto kTimeFieldIdentifier = "timeField";
    static constexpr int kSliderSteps = 10000;

    explicit FrameWindow(MorphDocument& document, QWidget* parent = nullptr);

    FrameRenderController& renderer() const { return m_renderer; }
    FrameView* imageView() const { return m_imageView; }
    QSlider* timeSlider() const { return m_slider; }
    QDoubleSpinBox* timeField() const { return m_timeField; }

    float time() const;
    /// Changes of at most 0.001 do nothing; otherwise the title, the slider, the time
    /// field and, 0.1 s later, the frame follow, and timeChanged() is emitted.
    void setTime(float time);
    /// The same for a time typed exactly: any change counts.
    void setExactTime(float time);

    /// Whether the frame has the document's frame size (else it follows the settings).
    bool usesDocumentFrameSize() const { return m_documentFrameSize; }
    void setUsesDocumentFrameSize(bool on);
    /// The time as the title and the field show it: a percentage with the decimals it
    /// needs (up to three) in the window's locale.
    QString percentText(float time) const;

    QSize viewSize() const override;

signals:
    /// The window's morph time changed (the inspector marks it).
    void timeChanged(float time);

protected:
    void takeDocumentSettings() override;
    SheetSettings sheetSettings() override;
    void applySheetSettings() override;
    void showPolledResults() override;
    QString windowTitleForDocumentDisplayName(const QString& name) const override;
    RenderSettingsSheet* createSettingsSheet() override;
    SaveFileTypes saveFileTypes() const override;
    bool saveRenderedFramesToPath(const QString& path, QString* error) override;

private:
    // The base owns the controller; the window keeps its own kind of it.
    FrameWindow(MorphDocument& document, FrameRenderController* renderer, QWidget* parent);
    void buildTimeControls();
    void takeTimeFromSlider(int value);
    void takeTimeFromField(double percent);
    void followTime(float time);

    FrameRenderController& m_renderer;
    FrameView* m_imageView = nullptr;
    QSlider* m_slider = nullptr;
    QDoubleSpinBox* m_timeField = nullptr;
    bool m_documentFrameSize = true;
};

} // namespace plyra
