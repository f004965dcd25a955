// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QPointer>
#include <QVariantList>
#include <QWidget>

namespace plyra {

class InspectableWindow;

/// Base of the inspectors that the inspector panel shows: an inspector offers a view,
/// says whether it can show a selection, and refreshes its view from the selection it
/// was given (its targets). The base class accepts nothing and shows nothing.
/// Threads: main thread only.
class Inspector : public QObject {
    Q_OBJECT

public:
    explicit Inspector(QObject* parent = nullptr);
    /// Deletes the view too, wherever it is shown or parked.
    ~Inspector() override;

    /// The inspector's view, made by createView() on first use.
    QWidget* view();
    /// Replaces the view; the old one is deleted once the current event is handled.
    void setView(QWidget* view);

    const QVariantList& targets() const { return m_targets; }
    void setTargets(const QVariantList& targets) { m_targets = targets; }

    /// The document window the targets come from, given by the panel with the targets.
    void setDocumentWindow(QWidget* window) { m_documentWindow = window; }
    QWidget* documentWindowWidget() const { return m_documentWindow; }
    /// The inspectable side of that window; null when there is none (or it is gone).
    InspectableWindow* documentWindow() const;

    virtual bool isValidInspectorForTargets(const QVariantList& targets) const;
    /// Refreshes the view from the targets.
    virtual void revert();

signals:
    /// Asks the application to open a page of its help ("timing" for the line timing).
    void helpRequested(const QString& page);

protected:
    /// Builds the view the first time view() is asked for; the base class has none.
    virtual QWidget* createView();

private:
    QPointer<QWidget> m_view;
    QVariantList m_targets;
    QPointer<QWidget> m_documentWindow;
};

} // namespace plyra
