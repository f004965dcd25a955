// SPDX-License-Identifier: MIT
#include "inspector/time_field.h"

#include <QLocale>
#include <QToolTip>

#include <algorithm>
#include <cmath>
#include <optional>

namespace plyra {
namespace {

constexpr int kDecimals = 4;

std::optional<float> parseTime(const QLocale& locale, const QString& text)
{
    bool ok = false;
    float value = locale.toFloat(text, &ok);
    if (!ok)
        value = QLocale::c().toFloat(text, &ok);
    if (!ok || !std::isfinite(value))
        return std::nullopt;
    return std::clamp(value, 0.0f, 1.0f);
}

} // namespace

TimeField::TimeField(QWidget* parent)
    : QLineEdit(parent)
{
    setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    setMaxLength(32);
    // Return commits even an unchanged value (it spreads a chain again); leaving the
    // field commits only a change.
    connect(this, &QLineEdit::returnPressed, this, &TimeField::commit);
    connect(this, &QLineEdit::editingFinished, this, [this] {
        if (isModified())
            commit();
    });
    showValue();
}

void TimeField::setValue(float value)
{
    m_value = value;
    if (hasFocus() && isModified())
        return;
    showValue();
}

QString TimeField::timeText(const QLocale& locale, float value)
{
    QLocale numbers = locale;
    numbers.setNumberOptions(QLocale::OmitGroupSeparator);
    // Adding 0 turns -0 into 0.
    QString text = numbers.toString(static_cast<double>(value) + 0.0, 'f', kDecimals);
    const QString point = numbers.decimalPoint();
    if (text.contains(point)) {
        while (text.endsWith(numbers.zeroDigit()))
            text.chop(1);
        if (text.endsWith(point))
            text.chop(point.size());
    }
    if (text == numbers.negativeSign() + numbers.zeroDigit())
        text = numbers.zeroDigit();
    return text;
}

void TimeField::commit()
{
    const std::optional<float> parsed = parseTime(locale(), text().trimmed());
    if (!parsed) {
        refuse();
        return;
    }
    m_value = *parsed;
    showValue();
    emit valueCommitted();
}

void TimeField::refuse()
{
    showValue();
    QToolTip::showText(mapToGlobal(QPoint(0, height())), tr("Enter a time from 0 to 1."), this);
}

void TimeField::showValue()
{
    setText(timeText(locale(), m_value));
    setModified(false);
}

} // namespace plyra
