// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QPointer>

#include <vector>

class QAction;

namespace plyra {

class MorphEditor;

/// Edit ▸ Predict Counterparts of one window: the checkable action shows the user
/// default "predictCounterparts" (on unless turned off) and hands it to the window's
/// editors; turning it in one window writes the default and turns it in every window.
/// Threads: main thread only.
class CounterpartPredictionToggle : public QObject {
    Q_OBJECT

public:
    static void registerDefault();

    CounterpartPredictionToggle(QAction* action, std::vector<MorphEditor*> editors, QObject* parent);
    ~CounterpartPredictionToggle() override;

private:
    void choose(bool predicting);
    void apply(bool predicting);

    QAction* m_action;
    std::vector<QPointer<MorphEditor>> m_editors;
};

} // namespace plyra
