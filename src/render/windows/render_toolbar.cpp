// SPDX-License-Identifier: MIT
#include "render/windows/render_toolbar.h"

#include "render/windows/progress_pie.h"

#include <QLabel>
#include <QVBoxLayout>
#include <QWidgetAction>

#include <cmath>

namespace plyra {

RenderToolbar::RenderToolbar(QWidget* parent)
    : QToolBar(parent)
{
    setObjectName(QStringLiteral("renderToolbar"));
    setWindowTitle(tr("Toolbar"));
    setAccessibleName(tr("Toolbar"));
    setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    setIconSize({24, 24});
    setMovable(false);
    m_progress = new ProgressPie(this);
    addWidgetItem(QString::fromLatin1(kProgressIdentifier), tr("Progress"), m_progress);
}

QAction* RenderToolbar::addItem(const QString& identifier, QAction* action)
{
    action->setObjectName(identifier);
    addAction(action);
    return action;
}

QAction* RenderToolbar::addWidgetItem(const QString& identifier, const QString& label, QWidget* widget)
{
    // A widget has no label of its own in a toolbar: put one under it, as buttons have.
    auto* item = new QWidget(this);
    auto* layout = new QVBoxLayout(item);
    layout->setContentsMargins(4, 0, 4, 0);
    layout->setSpacing(2);
    // A widget that may grow (a slider) takes the item's width; others sit in its middle.
    const bool grows = widget->sizePolicy().horizontalPolicy() & QSizePolicy::ExpandFlag;
    layout->addWidget(widget, 0, grows ? Qt::Alignment() : Qt::AlignHCenter);
    auto* caption = new QLabel(label, item);
    caption->setAlignment(Qt::AlignHCenter);
    caption->setBuddy(widget);
    layout->addWidget(caption);
    auto* action = new QWidgetAction(this);
    action->setText(label);
    action->setDefaultWidget(item);
    return addItem(identifier, action);
}

QAction* RenderToolbar::itemWithIdentifier(const QString& identifier) const
{
    for (QAction* action : actions())
        if (action->objectName() == identifier)
            return action;
    return nullptr;
}

QStringList RenderToolbar::itemIdentifiers() const
{
    QStringList identifiers;
    for (const QAction* action : actions())
        identifiers.append(action->objectName());
    return identifiers;
}

void RenderToolbar::validate(float progress)
{
    const bool complete = std::fabs(progress - 1.0f) < 0.0001f;
    if (QAction* save = itemWithIdentifier(QString::fromLatin1(kSaveIdentifier)))
        save->setEnabled(complete);
    m_progress->setFraction(progress);
    m_progress->setEnabled(std::fabs(progress - 1.0f) > 0.0001f);
}

} // namespace plyra
