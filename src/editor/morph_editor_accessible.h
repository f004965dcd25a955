// SPDX-License-Identifier: MIT
#pragma once

#include <QAccessibleWidget>

namespace plyra {

/// What assistive technology sees of a line editor: a canvas (not a generic panel),
/// named after its image, whose description says how many lines it has and how many are
/// selected, and whose help tells how to use it.
/// Threads: main thread only.
class MorphEditorAccessible : public QAccessibleWidget {
public:
    explicit MorphEditorAccessible(QWidget* editor);

    /// Makes every MorphEditor use this interface; calling it again does nothing.
    static void install();
};

} // namespace plyra
