// SPDX-License-Identifier: MIT
#pragma once

#include "inspector/timing_cell.h"

#include <QWidget>

#include <array>
#include <optional>

class QToolButton;
class QLabel;

namespace plyra {

class TimeField;
class TimingTimeline;

/// The line timing inspector's view: the six time fields (start point and end point
/// move from/until, dissolve start and end), the timeline under them and a help button.
/// Threads: main thread only.
class LineTimingView : public QWidget {
    Q_OBJECT

public:
    explicit LineTimingView(QWidget* parent = nullptr);

    TimeField* field(TimingCell cell) const { return m_fields[cellIndex(cell)]; }
    /// The cell a control is, if it is one of the six fields.
    std::optional<TimingCell> cellOf(const QObject* control) const;
    TimingTimeline* timeline() const { return m_timeline; }
    QToolButton* helpButton() const { return m_helpButton; }

    /// The six fields' values.
    TimingValues values() const;
    /// Shows the values in the fields and on the timeline.
    void setValues(const TimingValues& values);
    /// Enables or disables the two dissolve fields and the dissolve row of the timeline.
    void setDissolveEnabled(bool enabled);
    void setFrameTime(std::optional<float> time);

protected:
    void changeEvent(QEvent* event) override;

private:
    void buildLayout();
    void retranslate();
    void updateToolTips();

    std::array<TimeField*, 6> m_fields{};
    std::array<QLabel*, 3> m_rowLabels{};
    std::array<QLabel*, 4> m_columnLabels{};
    TimingTimeline* m_timeline;
    QToolButton* m_helpButton;
};

} // namespace plyra
