// SPDX-License-Identifier: MIT
#include "inspector/empty_selection_view.h"

#include <QEvent>

namespace plyra {

EmptySelectionView::EmptySelectionView(QWidget* parent)
    : QLabel(parent)
{
    setObjectName(QStringLiteral("emptySelectionView"));
    setAlignment(Qt::AlignCenter);
    setEnabled(false);
    setMinimumSize(220, 120);
    retranslate();
}

void EmptySelectionView::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslate();
    QLabel::changeEvent(event);
}

void EmptySelectionView::retranslate()
{
    setText(tr("No Selection"));
    setAccessibleName(tr("No Selection"));
}

} // namespace plyra
