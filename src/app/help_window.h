// SPDX-License-Identifier: MIT
#pragma once

#include <QMainWindow>

class QTextBrowser;

namespace plyra {

/// The application's help: HTML pages built into the program, shown in a window of its
/// own with back, forward and contents. Pages are in the interface's language where a
/// translation of them exists, else in English.
/// Threads: main thread only.
class HelpWindow : public QMainWindow {
    Q_OBJECT

public:
    /// The pages: "index", "getting-started", "editors", "timing", "rendering"; shown in
    /// the language the interface's translations were loaded for ("en" for none).
    explicit HelpWindow(const QString& language, QWidget* parent = nullptr);

    /// Shows the page (the contents for an unknown name) and brings the window forward.
    void showPage(const QString& page);
    QString currentPage() const;

    /// The resource path of a page in the given language, falling back to English.
    static QString pagePath(const QString& page, const QString& language);

private:
    QString m_language;
    QTextBrowser* m_browser;
};

} // namespace plyra
