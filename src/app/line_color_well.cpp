// SPDX-License-Identifier: MIT
#include "app/line_color_well.h"

#include <QColorDialog>
#include <QPainter>
#include <QStyleOptionToolButton>
#include <QStylePainter>

namespace plyra {

LineColorWell::LineColorWell(QWidget* parent)
    : QToolButton(parent)
{
    setMinimumSize(40, 23);
    setMaximumSize(50, 28);
    setAccessibleName(tr("Line colour"));
    setToolTip(tr("The colour in which lines are drawn"));
    connect(this, &QToolButton::clicked, this, &LineColorWell::chooseColor);
}

void LineColorWell::setColor(const QColor& color)
{
    if (color == m_color)
        return;
    m_color = color;
    setAccessibleDescription(color.name(QColor::HexArgb));
    update();
}

void LineColorWell::chooseColor()
{
    const QColor chosen = QColorDialog::getColor(m_color, window(), tr("Line colour"), QColorDialog::ShowAlphaChannel);
    if (!chosen.isValid())
        return;
    setColor(chosen);
    emit colorChosen(chosen);
}

void LineColorWell::paintEvent(QPaintEvent*)
{
    QStylePainter painter(this);
    QStyleOptionToolButton option;
    initStyleOption(&option);
    option.text.clear();
    option.icon = QIcon();
    painter.drawComplexControl(QStyle::CC_ToolButton, option);

    const QRect swatch = rect().adjusted(6, 5, -6, -5);
    const int cell = 4;
    for (int y = swatch.top(); y <= swatch.bottom(); y += cell)
        for (int x = swatch.left(); x <= swatch.right(); x += cell) {
            const bool dark = ((x - swatch.left()) / cell + (y - swatch.top()) / cell) % 2 != 0;
            painter.fillRect(QRect(x, y, cell, cell).intersected(swatch), dark ? QColor(200, 200, 200) : Qt::white);
        }
    painter.fillRect(swatch, m_color);
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawRect(swatch.adjusted(0, 0, -1, -1));
}

} // namespace plyra
