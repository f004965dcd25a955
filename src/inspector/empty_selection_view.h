// SPDX-License-Identifier: MIT
#pragma once

#include <QLabel>

namespace plyra {

/// What the inspector panel shows when nothing is selected.
/// Threads: main thread only.
class EmptySelectionView : public QLabel {
    Q_OBJECT

public:
    explicit EmptySelectionView(QWidget* parent = nullptr);

protected:
    void changeEvent(QEvent* event) override;

private:
    void retranslate();
};

} // namespace plyra
