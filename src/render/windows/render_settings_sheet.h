// SPDX-License-Identifier: MIT
#pragma once

#include "render/render_settings.h"

#include <QDialog>

#include <array>
#include <cstdint>
#include <optional>

class QButtonGroup;
class QCheckBox;
class QComboBox;
class QDialogButtonBox;
class QFormLayout;
class QLabel;
class QLineEdit;
class QRadioButton;

namespace plyra {

/// The settings a render sheet edits; the timing entries are absent from a sheet without
/// timing controls (the single-frame window's).
struct SheetSettings {
    std::optional<std::uint32_t> numberOfFrames;
    std::optional<float> framesPerSecond;
    std::optional<bool> reverse;
    int frameWidth = 0;
    int frameHeight = 0;
    FrameRatioMode frameRatioMode = FrameRatioMode::AsFirstImage;
    bool sizeToView = true;
    /// The frame has the document's frame size; absent from a sheet without that choice.
    std::optional<bool> documentFrameSize;
};

/// The settings sheet of a render window: frame count, rate and total duration, the
/// direction, the frame size (following the window, fixed, or, in the single-frame
/// window, the document's) and the ratio it keeps.
/// Dependent fields follow as the user types: the duration, the enabled size fields and
/// the other side of a ratio-bound size.
/// Threads: main thread.
class RenderSettingsSheet : public QDialog {
    Q_OBJECT

public:
    enum class Contents { FrameSize, FrameSizeAndTiming };

    explicit RenderSettingsSheet(Contents contents, QWidget* parent = nullptr);

    /// Fills every control from the settings; aspectRatios are the document's width ÷
    /// height of the first and the last image, used while the ratio is bound, and
    /// documentSize the document's frame size, shown beside its choice.
    void load(const SheetSettings& settings, std::array<float, 2> aspectRatios, QSize documentSize = {});
    /// The settings as the controls show them now.
    SheetSettings values() const;

    // The controls, for the window that runs the sheet and for tests; null when absent.
    QLineEdit* numberOfFramesField() const { return m_numberOfFrames; }
    QLineEdit* framesPerSecondField() const { return m_framesPerSecond; }
    QLabel* durationField() const { return m_duration; }
    QCheckBox* reverseSwitch() const { return m_reverse; }
    QComboBox* ratioPopup() const { return m_ratioPopup; }
    QRadioButton* sizeToWindowButton() const { return m_sizeToWindow; }
    QRadioButton* fixedSizeButton() const { return m_fixedSize; }
    QRadioButton* documentSizeButton() const { return m_documentSize; }
    QLineEdit* frameWidthField() const { return m_frameWidth; }
    QLineEdit* frameHeightField() const { return m_frameHeight; }
    QDialogButtonBox* buttons() const { return m_buttons; }

protected:
    /// Where subclasses add rows of their own.
    QFormLayout* form() const { return m_form; }
    /// How long the frames last in all, in seconds; the base: frames ÷ rate.
    virtual double totalSeconds(float frames, float framesPerSecond) const;
    /// Shows the total duration again (a subclass's own fields changed).
    void updateDuration() { framesPerSecondFieldChanged(); }

private:
    void buildTimingRows();
    void buildSizeRows(bool documentSize);
    void numberOfFramesFieldChanged();
    void framesPerSecondFieldChanged();
    void sizeToWindowButtonChanged();
    void frameWidthFieldChanged();
    void frameHeightFieldChanged();
    void ratioPopupChanged();
    void updateOkButton();
    FrameRatioMode chosenRatioMode() const;
    std::optional<float> boundAspectRatio() const;
    int intValue(const QLineEdit* field) const;
    float floatValue(const QLineEdit* field) const;

    QFormLayout* m_form = nullptr;
    QLineEdit* m_numberOfFrames = nullptr;
    QLineEdit* m_framesPerSecond = nullptr;
    QLabel* m_duration = nullptr;
    QCheckBox* m_reverse = nullptr;
    QComboBox* m_ratioPopup = nullptr;
    QButtonGroup* m_sizeChoice = nullptr;
    QRadioButton* m_sizeToWindow = nullptr;
    QRadioButton* m_fixedSize = nullptr;
    QRadioButton* m_documentSize = nullptr;
    QLineEdit* m_frameWidth = nullptr;
    QLineEdit* m_frameHeight = nullptr;
    QDialogButtonBox* m_buttons = nullptr;
    std::array<float, 2> m_aspectRatios{1.0f, 1.0f};
};

} // namespace plyra
