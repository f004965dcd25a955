// SPDX-License-Identifier: MIT
#pragma once

#include "widgets/customizable_toolbar.h"

namespace plyra {

class ProgressPie;

/// The toolbar of a render window: the progress indicator, and the items the window
/// registers ("save", "showInfo" and those of its kind), which the user may arrange.
/// Threads: main thread.
class RenderToolbar : public CustomizableToolbar {
    Q_OBJECT

public:
    static constexpr auto kProgressIdentifier = "progressIndicator";
    static constexpr auto kSaveIdentifier = "save";
    static constexpr auto kSettingsIdentifier = "showInfo";

    /// identifier names the kind of window whose arrangement the user keeps.
    RenderToolbar(const QString& identifier, QWidget* parent);

    ProgressPie* progressIndicator() const { return m_progress; }

private:
    ProgressPie* m_progress = nullptr;
};

} // namespace plyra
