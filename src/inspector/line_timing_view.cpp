// SPDX-License-Identifier: MIT
#include "inspector/line_timing_view.h"

#include "inspector/time_field.h"
#include "inspector/timing_timeline.h"

#include <QEvent>
#include <QGridLayout>
#include <QLabel>
#include <QIcon>
#include <QToolButton>

namespace plyra {

LineTimingView::LineTimingView(QWidget* parent)
    : QWidget(parent)
    , m_timeline(new TimingTimeline(this))
    , m_helpButton(new QToolButton(this))
{
    setObjectName(QStringLiteral("lineTimingView"));
    for (TimeField*& field : m_fields)
        field = new TimeField(this);
    for (QLabel*& label : m_rowLabels)
        label = new QLabel(this);
    for (QLabel*& label : m_columnLabels)
        label = new QLabel(this);
    // The desktop's help icon when its theme has one; the text alone otherwise.
    m_helpButton->setIcon(QIcon::fromTheme(QStringLiteral("help-contents")));
    m_helpButton->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    buildLayout();
    retranslate();
}

void LineTimingView::buildLayout()
{
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setHorizontalSpacing(8);
    grid->setColumnStretch(1, 1);
    grid->setColumnStretch(2, 1);
    // Column heads above the move rows and again above the dissolve row.
    grid->addWidget(m_columnLabels[0], 0, 1, Qt::AlignHCenter);
    grid->addWidget(m_columnLabels[1], 0, 2, Qt::AlignHCenter);
    grid->addWidget(m_columnLabels[2], 3, 1, Qt::AlignHCenter);
    grid->addWidget(m_columnLabels[3], 3, 2, Qt::AlignHCenter);
    const int fieldRows[3] = {1, 2, 4};
    for (int row = 0; row < 3; ++row) {
        grid->addWidget(m_rowLabels[static_cast<std::size_t>(row)], fieldRows[row], 0);
        m_rowLabels[static_cast<std::size_t>(row)]->setBuddy(m_fields[static_cast<std::size_t>(row * 2)]);
        grid->addWidget(m_fields[static_cast<std::size_t>(row * 2)], fieldRows[row], 1);
        grid->addWidget(m_fields[static_cast<std::size_t>(row * 2 + 1)], fieldRows[row], 2);
    }
    grid->setRowMinimumHeight(5, 6);
    grid->addWidget(m_timeline, 6, 0, 1, 3);
    grid->addWidget(m_helpButton, 7, 0, 1, 3, Qt::AlignRight);
    for (std::size_t i = 1; i < m_fields.size(); ++i)
        setTabOrder(m_fields[i - 1], m_fields[i]);
}

std::optional<TimingCell> LineTimingView::cellOf(const QObject* control) const
{
    for (TimingCell cell : kTimingCells)
        if (control && field(cell) == control)
            return cell;
    return std::nullopt;
}

TimingValues LineTimingView::values() const
{
    TimingValues values{};
    for (TimingCell cell : kTimingCells)
        values[cellIndex(cell)] = field(cell)->value();
    return values;
}

void LineTimingView::setValues(const TimingValues& values)
{
    for (TimingCell cell : kTimingCells)
        field(cell)->setValue(values[cellIndex(cell)]);
    m_timeline->setValues(values);
}

void LineTimingView::setDissolveEnabled(bool enabled)
{
    field(TimingCell::DissolveStart)->setEnabled(enabled);
    field(TimingCell::DissolveEnd)->setEnabled(enabled);
    m_rowLabels[2]->setEnabled(enabled);
    m_timeline->setDissolveEnabled(enabled);
    updateToolTips();
}

void LineTimingView::setFrameTime(std::optional<float> time)
{
    m_timeline->setFrameTime(time);
}

void LineTimingView::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslate();
    QWidget::changeEvent(event);
}

void LineTimingView::retranslate()
{
    m_rowLabels[0]->setText(tr("&Start point:"));
    m_rowLabels[1]->setText(tr("&End point:"));
    m_rowLabels[2]->setText(tr("&Dissolve:"));
    m_columnLabels[0]->setText(tr("Begins moving"));
    m_columnLabels[1]->setText(tr("Stops moving"));
    m_columnLabels[2]->setText(tr("Starts"));
    m_columnLabels[3]->setText(tr("Ends"));

    const QString names[6] = {
        tr("Start point begins moving"), tr("Start point stops moving"),
        tr("End point begins moving"), tr("End point stops moving"),
        tr("Dissolve starts"), tr("Dissolve ends"),
    };
    for (std::size_t i = 0; i < m_fields.size(); ++i)
        m_fields[i]->setAccessibleName(names[i]);
    updateToolTips();
    m_helpButton->setText(tr("Help"));
    m_helpButton->setAccessibleName(tr("Help on line timing"));
    m_helpButton->setToolTip(tr("Help on line timing"));
}

void LineTimingView::updateToolTips()
{
    for (TimeField* field : m_fields) {
        if (field->isEnabledTo(this))
            field->setToolTip(tr("%1: a time from 0 (first image) to 1 (last image)").arg(field->accessibleName()));
        else
            field->setToolTip(tr("Dissolving needs both a first and a last image."));
    }
}

} // namespace plyra
