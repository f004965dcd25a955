// SPDX-License-Identifier: MIT
#include "inspector/inspector_panel.h"

#include <QEvent>
#include <QVBoxLayout>

namespace plyra {

InspectorPanel::InspectorPanel(QWidget* parent)
    : QWidget(parent, Qt::Tool)
    , m_layout(new QVBoxLayout(this))
{
    setObjectName(QStringLiteral("inspectorPanel"));
    // The panel follows the document window in front; showing it must not take the
    // keyboard away from that window.
    setAttribute(Qt::WA_ShowWithoutActivating);
    m_layout->setContentsMargins(10, 10, 10, 10);
    m_layout->setSizeConstraint(QLayout::SetMinimumSize);
    retranslate();
}

QWidget* InspectorPanel::replaceContentView(QWidget* view)
{
    QWidget* previous = m_content;
    if (previous == view)
        return nullptr;
    if (previous) {
        m_layout->removeWidget(previous);
        previous->hide();
        previous->setParent(nullptr);
    }
    m_content = view;
    if (view) {
        m_layout->addWidget(view);
        view->show();
    }
    return previous;
}

void InspectorPanel::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    emit visibilityChanged(true);
}

void InspectorPanel::hideEvent(QHideEvent* event)
{
    QWidget::hideEvent(event);
    emit visibilityChanged(false);
}

void InspectorPanel::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslate();
    QWidget::changeEvent(event);
}

void InspectorPanel::retranslate()
{
    setWindowTitle(tr("Inspector"));
    setAccessibleName(tr("Inspector"));
}

} // namespace plyra
