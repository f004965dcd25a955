// SPDX-License-Identifier: MIT
#include "app/help_window.h"

#include <QAction>
#include <QFileInfo>
#include <QLocale>
#include <QTextBrowser>
#include <QToolBar>

namespace plyra {
namespace {

// The interface's language: the first of the user's languages that has a translation
// of the interface, which is what the translators loaded at start-up chose too.
QString interfaceLanguage()
{
    for (const QString& language : QLocale().uiLanguages()) {
        const QString code = language.left(2).toLower();
        if (code == QLatin1String("en"))
            return code;
        if (QFileInfo::exists(QStringLiteral(":/help/%1/index.html").arg(code)))
            return code;
    }
    return QStringLiteral("en");
}

} // namespace

HelpWindow::HelpWindow(QWidget* parent)
    : QMainWindow(parent)
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
    m_browser->setSource(QUrl(QStringLiteral("qrc") + pagePath(page, interfaceLanguage())));
    show();
    raise();
    activateWindow();
}

QString HelpWindow::currentPage() const
{
    return QFileInfo(m_browser->source().path()).completeBaseName();
}

} // namespace plyra
