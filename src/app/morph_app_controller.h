// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QNetworkReply>
#include <QObject>
#include <QPointer>
#include <QUrl>

#include <memory>

class QNetworkAccessManager;

namespace plyra {

class UpdateAlerts;

/// Checks whether a newer version of Plyra exists: silently at launch when the user
/// allows it ("CheckForUpdates"), and with a report on request. The version list is a
/// property list at the address in the user default "versionCheckURL"; without an
/// address nothing is checked at launch and a request says so.
/// Threads: main thread only; the network replies arrive on the main event loop.
class MorphAppController : public QObject {
    Q_OBJECT

public:
    explicit MorphAppController(std::unique_ptr<UpdateAlerts> alerts, QObject* parent = nullptr);
    ~MorphAppController() override;

    /// Registers the user default "CheckForUpdates" (true unless the user said no).
    static void registerDefaults();

    /// At launch: starts a silent check when "CheckForUpdates" is true.
    void applicationDidFinishLaunching();
    /// The menu command: from now on an up-to-date answer is reported too.
    void checkForUpdatesRequested();
    /// Starts a request (a running one is dropped and replaced).
    void checkForUpdates();

    bool isChecking() const { return m_versionCheck != nullptr; }
    /// The site's root, opened when the user wants the new version.
    QUrl homePage() const;

signals:
    /// A check ended: answered, failed or refused (for tests and the status bar).
    void checkFinished();

private:
    QUrl versionListUrl() const;
    void onReadyRead();
    void onFinished();
    void evaluateAnswer(const QByteArray& data);
    void dropRequest();

    std::unique_ptr<UpdateAlerts> m_alerts;
    QNetworkAccessManager* m_network = nullptr;
    QPointer<QNetworkReply> m_versionCheck;
    QByteArray m_versionData;
    bool m_reportWhenUpToDate = false;
};

} // namespace plyra
