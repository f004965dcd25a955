// SPDX-License-Identifier: MIT
#pragma once

#include <QLineEdit>
#include <QLocale>

namespace plyra {

/// A text field holding one morph time. Typed numbers use the field's locale (a decimal
/// comma in German; a decimal point is understood too), are clamped to 0...1 and are
/// committed by Return, or by leaving the field after a change; text that is no number
/// is refused with a hint and the field shows its value again.
/// Threads: main thread only.
class TimeField : public QLineEdit {
    Q_OBJECT

public:
    explicit TimeField(QWidget* parent = nullptr);

    float value() const { return m_value; }
    /// Shows the value. While the user is typing into the field only the value changes,
    /// so that a refresh does not take the text from under the cursor.
    void setValue(float value);
    /// The text of a time in a locale: at most four decimals, the setters' resolution.
    static QString timeText(const QLocale& locale, float value);

signals:
    /// The user entered a new value (already clamped and stored in value()).
    void valueCommitted();

private:
    void commit();
    void refuse();
    void showValue();

    float m_value = 0.0f;
};

} // namespace plyra
