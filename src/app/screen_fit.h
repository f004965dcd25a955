// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

class QWidget;

namespace plyra {

/// Keeps every window of the application within the available area of its screen: a
/// window that is shown or grows larger than that area (a render window for a large
/// movie, any window at a high scale factor) is made smaller and moved onto the screen.
/// Threads: main thread only.
class ScreenFit : public QObject {
    Q_OBJECT

public:
    /// Watches every window of the application from now on.
    static void install();
    /// Makes window fit its screen's available area; nothing for a window that fits.
    static void fit(QWidget* window);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    using QObject::QObject;
};

} // namespace plyra
