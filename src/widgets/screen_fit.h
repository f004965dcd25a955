// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

class QWidget;

namespace plyra {

/// Keeps the windows of the application within the available area of their screen where
/// the program decides their size: a window shown for the first time that is larger than
/// that area (any window at a high scale factor) is made smaller and moved onto the
/// screen, and so is a window after a resize of the program's own (fit()), such as a
/// render window sized to a large movie. What the user does later, such as stretching a
/// window across two monitors, is left alone.
/// Threads: main thread only.
class ScreenFit : public QObject {
    Q_OBJECT

public:
    /// Fits every window of the application that is shown for the first time from now on.
    static void install();
    /// Makes window fit its screen's available area; nothing for a window that fits.
    static void fit(QWidget* window);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    using QObject::QObject;
};

} // namespace plyra
