// SPDX-License-Identifier: MIT
#include "app/update_alerts.h"

#include "platform/qt/user_defaults.h"

#include <QApplication>
#include <QDesktopServices>
#include <QMessageBox>
#include <QPushButton>

namespace plyra {

bool MessageBoxUpdateAlerts::askToOpenHomePage(const QString& latestVersion, const QString& localVersion)
{
    QMessageBox box(QMessageBox::Information, QApplication::translate("MorphAppController", "New version found"),
        QApplication::translate("MorphAppController", "The latest version of Plyra is %1 and your running %2.")
            .arg(latestVersion, localVersion),
        QMessageBox::NoButton, QApplication::activeWindow());
    QPushButton* open = box.addButton(QApplication::translate("MorphAppController", "Open Plyra home page"), QMessageBox::AcceptRole);
    box.addButton(QApplication::translate("MorphAppController", "Cancel"), QMessageBox::RejectRole);
    box.setDefaultButton(open);
    box.exec();
    return box.clickedButton() == open;
}

void MessageBoxUpdateAlerts::showUpToDate()
{
    QMessageBox::information(QApplication::activeWindow(), QApplication::translate("MorphAppController", "Plyra is up to date"), QString());
}

void MessageBoxUpdateAlerts::showNoUpdateAddress()
{
    QMessageBox::information(QApplication::activeWindow(), QApplication::translate("MorphAppController", "Check for Updates"),
        QApplication::translate("MorphAppController",
            "No update address is set. To check for updates, set versionCheckURL in %1 to the address of a version list.")
            .arg(UserDefaults::standard().fileName()));
}

void MessageBoxUpdateAlerts::openHomePage(const QUrl& url)
{
    QDesktopServices::openUrl(url);
}

} // namespace plyra
