// SPDX-License-Identifier: MIT
#include "app/counterpart_prediction_toggle.h"

#include "editor/morph_editor.h"
#include "platform/qt/user_defaults.h"
#include "platform/qt/user_defaults_keys.h"

#include <QAction>

#include <algorithm>

namespace plyra {
namespace {

// Every window's toggle, so that a choice made in one reaches all.
std::vector<CounterpartPredictionToggle*>& liveToggles()
{
    static std::vector<CounterpartPredictionToggle*> toggles;
    return toggles;
}

QString defaultsKey()
{
    return QLatin1String(DefaultsKey::kPredictCounterparts);
}

} // namespace

void CounterpartPredictionToggle::registerDefault()
{
    UserDefaults::standard().registerDefaults({{defaultsKey(), true}});
}

CounterpartPredictionToggle::CounterpartPredictionToggle(QAction* action, std::vector<MorphEditor*> editors,
    QObject* parent)
    : QObject(parent)
    , m_action(action)
{
    for (MorphEditor* editor : editors)
        m_editors.emplace_back(editor);
    m_action->setCheckable(true);
    apply(UserDefaults::standard().boolean(defaultsKey()));
    connect(m_action, &QAction::toggled, this, &CounterpartPredictionToggle::choose);
    liveToggles().push_back(this);
}

CounterpartPredictionToggle::~CounterpartPredictionToggle()
{
    std::vector<CounterpartPredictionToggle*>& toggles = liveToggles();
    toggles.erase(std::remove(toggles.begin(), toggles.end(), this), toggles.end());
}

void CounterpartPredictionToggle::choose(bool predicting)
{
    UserDefaults::standard().setBoolean(defaultsKey(), predicting);
    for (CounterpartPredictionToggle* toggle : liveToggles())
        toggle->apply(predicting);
}

void CounterpartPredictionToggle::apply(bool predicting)
{
    const QSignalBlocker quiet(m_action);
    m_action->setChecked(predicting);
    for (const QPointer<MorphEditor>& editor : m_editors)
        if (editor)
            editor->setPredictsCounterparts(predicting);
}

} // namespace plyra
