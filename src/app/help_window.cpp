// SPDX-License-Identifier: MIT
#include "app/help_window.h"

#include <QAction>
#include <QFileInfo>
#include <QTextBrowser>
#include <QToolBar>

namespace plyra {

HelpWindow::HelpWindow(const QString& language, QWidget* parent)
    : QMainWindow(parent)
    , m_language(language)
    , m_browser(new QTextBrowser(this))
{
    setWindowTitle(tr("Plyra Help"));
    setObjectName(QStringLiteral("helpWindow"));
    m_browser->setOpenExternalLinks(true);
    m_browser->setAccessibleName(tr("Help page"));
    setCentralWidget(m_browser);

    QToolBar* bar = addToolBar(tr("Navigation"));
    bar->setObjectName(QStringLiteral("helpNavigation"));
    bar->setMovable(false);
    QAction* back = bar->addAction(QIcon::fromTheme(QStringLiteral("go-previous")), tr("Back"), m_browser, &QTextBrowser::backward);
    back->setShortcut(QKeySequence::Back);
    QAction* forward = bar->addAction(QIcon::fromTheme(QStringLiteral("go-next")), tr("Forward"), m_browser, &QTextBrowser::forward);
    forward->setShortcut(QKeySequence::Forward);
    bar->addAction(QIcon::fromTheme(QStringLiteral("go-home")), tr("Contents"), this, [this] { showPage(QStringLiteral("index")); });
    connect(m_browser, &QTextBrowser::backwardAvailable, back, &QAction::setEnabled);
    connect(m_browser, &QTextBrowser::forwardAvailable, forward, &QAction::setEnabled);
    back->setEnabled(false);
    forward->setEnabled(false);
    connect(m_browser, &QTextBrowser::sourceChanged, this, [this] {
        if (!m_browser->documentTitle().isEmpty())
            setWindowTitle(tr("Plyra Help: %1").arg(m_browser->documentTitle()));
    });
    resize(720, 640);
}

QString HelpWindow::pagePath(const QString& page, const QString& language)
{
    const QString localized = QStringLiteral(":/help/%1/%2.html").arg(language, page);
    if (QFileInfo::exists(localized))
        return localized;
    const QString english = QStringLiteral(":/help/en/%1.html").arg(page);
    return QFileInfo::exists(english) ? english : QStringLiteral(":/help/en/index.html");
}

void HelpWindow::showPage(const QString& page)
{
    m_browser->setSource(QUrl(QStringLiteral("qrc") + pagePath(page, m_language)));
    show();
    raise();
    activateWindow();
}

QString HelpWindow::currentPage() const
{
    return QFileInfo(m_browser->source().path()).completeBaseName();
}

} // namespace plyra
