// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QToolButton>

namespace plyra {

/// A colour well: a button that shows a colour (over a checkerboard, so that a
/// translucent colour reads as one) and opens the colour dialog, with an opacity
/// control, to choose another.
/// Threads: main thread only.
class LineColorWell : public QToolButton {
    Q_OBJECT

public:
    explicit LineColorWell(QWidget* parent = nullptr);

    QColor color() const { return m_color; }
    /// Shows the colour; emits nothing.
    void setColor(const QColor& color);

    QSize sizeHint() const override { return {50, 28}; }
    QSize minimumSizeHint() const override { return {40, 23}; }

signals:
    /// The user chose a colour in the dialog.
    void colorChosen(const QColor& color);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void chooseColor();

    QColor m_color;
};

} // namespace plyra
