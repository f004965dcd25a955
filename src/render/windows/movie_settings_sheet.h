// SPDX-License-Identifier: MIT
#pragma once

#include "model/movie_settings.h"
#include "render/windows/render_settings_sheet.h"

#include <QString>

namespace plyra {

/// The movie window's settings sheet: the render settings, the timing of the whole movie
/// (easing, holds on the first and last image, ping-pong), the codec and the quality. A
/// stored codec or quality that is not among the choices is shown as one more item,
/// selected, so that confirming the sheet keeps it.
/// Threads: main thread.
class MovieSettingsSheet : public RenderSettingsSheet {
    Q_OBJECT

public:
    explicit MovieSettingsSheet(QWidget* parent = nullptr);

    /// Fills the codec pop-up with the codec choices and selects codecFormat, and the
    /// quality pop-up with the quality choices and selects codecQuality.
    void loadCodec(const QString& codecFormat, int codecQuality);
    /// The four-character code of the selected codec item.
    QString codecFormat() const;
    /// The value of the selected quality item.
    int codecQuality() const;

    QComboBox* codecPopup() const { return m_codecPopup; }
    QComboBox* qualityPopup() const { return m_qualityPopup; }

    /// Shows the timing; the hold fields take seconds in the locale's form.
    void loadTiming(const MovieTiming& timing);
    MovieTiming timing() const;

    QComboBox* easingPopup() const { return m_easingPopup; }
    QLineEdit* holdStartField() const { return m_holdStart; }
    QLineEdit* holdEndField() const { return m_holdEnd; }
    QCheckBox* pingPongSwitch() const { return m_pingPong; }

    /// The title of a codec or quality choice, in the user's language.
    static QString choiceTitle(const char* title);

protected:
    /// With the holds and the way back of a ping-pong movie.
    double totalSeconds(float frames, float framesPerSecond) const override;

private:
    void buildTimingRows();

    QComboBox* m_easingPopup = nullptr;
    QLineEdit* m_holdStart = nullptr;
    QLineEdit* m_holdEnd = nullptr;
    QCheckBox* m_pingPong = nullptr;
    QComboBox* m_codecPopup = nullptr;
    QComboBox* m_qualityPopup = nullptr;
};

} // namespace plyra
