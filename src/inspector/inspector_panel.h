// SPDX-License-Identifier: MIT
#pragma once

#include <QPointer>
#include <QWidget>

class QVBoxLayout;

namespace plyra {

/// The inspector panel's window: a tool window that floats over the document windows
/// without belonging to any of them, showing one content view at a time.
/// Threads: main thread only.
class InspectorPanel : public QWidget {
    Q_OBJECT

public:
    explicit InspectorPanel(QWidget* parent = nullptr);

    QWidget* contentView() const { return m_content; }
    /// Shows view as the content; the previous content is taken out of the panel
    /// (without a parent, hidden) and returned, null when there was none.
    QWidget* replaceContentView(QWidget* view);

signals:
    void visibilityChanged(bool visible);

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void retranslate();

    QVBoxLayout* m_layout;
    QPointer<QWidget> m_content;
};

} // namespace plyra
