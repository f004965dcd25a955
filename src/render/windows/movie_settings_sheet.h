// SPDX-License-Identifier: MIT
#pragma once

#include "render/windows/render_settings_sheet.h"

#include <QString>

namespace plyra {

/// The movie window's settings sheet: the render settings plus the codec and the quality.
/// A stored codec or quality that is not among the choices is shown as one more item,
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

    /// The title of a codec or quality choice, in the user's language.
    static QString choiceTitle(const char* title);

private:
    QComboBox* m_codecPopup = nullptr;
    QComboBox* m_qualityPopup = nullptr;
};

} // namespace plyra
