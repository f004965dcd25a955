// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QUrl>

class QWidget;

namespace plyra {

/// How the update check speaks to the user: the two alerts, the note that no update
/// address is set, and opening the home page. Tests put a recorder in its place.
/// Threads: main thread only.
class UpdateAlerts {
public:
    virtual ~UpdateAlerts() = default;
    /// "New version found"; true when the user chose to open the home page.
    virtual bool askToOpenHomePage(const QString& latestVersion, const QString& localVersion) = 0;
    /// "Plyra is up to date".
    virtual void showUpToDate() = 0;
    /// The check was asked for, but there is no address to ask.
    virtual void showNoUpdateAddress() = 0;
    virtual void openHomePage(const QUrl& url) = 0;
};

/// The alerts as modal message boxes, and the home page in the user's browser.
class MessageBoxUpdateAlerts : public UpdateAlerts {
public:
    bool askToOpenHomePage(const QString& latestVersion, const QString& localVersion) override;
    void showUpToDate() override;
    void showNoUpdateAddress() override;
    void openHomePage(const QUrl& url) override;
};

} // namespace plyra
