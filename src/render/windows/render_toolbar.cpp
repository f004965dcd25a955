// SPDX-License-Identifier: MIT
#include "render/windows/render_toolbar.h"

#include "render/windows/progress_pie.h"

namespace plyra {

RenderToolbar::RenderToolbar(const QString& identifier, QWidget* parent)
    : CustomizableToolbar(identifier, parent)
{
    setObjectName(QStringLiteral("renderToolbar"));
    m_progress = new ProgressPie(this);
    addWidgetItem(QString::fromLatin1(kProgressIdentifier), m_progress, tr("Progress"), tr("Progress"));
}

} // namespace plyra
