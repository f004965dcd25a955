// SPDX-License-Identifier: MIT
#include "inspector/inspector.h"

#include "inspector/inspectable_window.h"

namespace plyra {

Inspector::Inspector(QObject* parent)
    : QObject(parent)
{
}

Inspector::~Inspector()
{
    delete m_view.data();
}

QWidget* Inspector::view()
{
    if (!m_view)
        m_view = createView();
    return m_view;
}

void Inspector::setView(QWidget* view)
{
    if (view == m_view)
        return;
    if (m_view)
        m_view->deleteLater();
    m_view = view;
}

InspectableWindow* Inspector::documentWindow() const
{
    return dynamic_cast<InspectableWindow*>(m_documentWindow.data());
}

bool Inspector::isValidInspectorForTargets(const QVariantList&) const
{
    return false;
}

void Inspector::revert()
{
}

QWidget* Inspector::createView()
{
    return nullptr;
}

} // namespace plyra
