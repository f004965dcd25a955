// SPDX-License-Identifier: MIT
#include "app/morph_app_controller.h"

#include "app/update_alerts.h"
#include "platform/log.h"
#include "platform/plist/xml_plist.h"
#include "platform/qt/user_defaults.h"
#include "platform/qt/user_defaults_keys.h"

#include <QCoreApplication>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>

namespace plyra {
namespace {

constexpr int kRequestTimeoutMs = 60 * 1000;

std::string utf8(const QString& text)
{
    return text.toStdString();
}

// The "CFBundleShortVersionString" of a version list; empty when the answer is not a
// property list or does not name a version.
QString latestVersionIn(const QByteArray& data)
{
    const std::vector<std::uint8_t> bytes(data.begin(), data.end());
    const std::optional<PropertyList> list = parsePropertyListData(bytes);
    if (!list)
        return {};
    const PropertyList* version = list->find("CFBundleShortVersionString");
    if (!version || !version->string())
        return {};
    return QString::fromStdString(*version->string());
}

} // namespace

MorphAppController::MorphAppController(std::unique_ptr<UpdateAlerts> alerts, QObject* parent)
    : QObject(parent)
    , m_alerts(std::move(alerts))
    , m_network(new QNetworkAccessManager(this))
{
}

MorphAppController::~MorphAppController()
{
    dropRequest();
}

void MorphAppController::registerDefaults()
{
    UserDefaults::standard().registerDefaults({{QLatin1String(DefaultsKey::kCheckForUpdates), true}});
}

void MorphAppController::applicationDidFinishLaunching()
{
    if (UserDefaults::standard().boolean(QLatin1String(DefaultsKey::kCheckForUpdates)) && versionListUrl().isValid())
        checkForUpdates();
}

void MorphAppController::checkForUpdatesRequested()
{
    m_reportWhenUpToDate = true;
    if (!versionListUrl().isValid()) {
        m_alerts->showNoUpdateAddress();
        emit checkFinished();
        return;
    }
    checkForUpdates();
}

QUrl MorphAppController::versionListUrl() const
{
    const QUrl url(UserDefaults::standard().string(QLatin1String(DefaultsKey::kVersionCheckURL)));
    return url.isValid() && !url.scheme().isEmpty() ? url : QUrl();
}

QUrl MorphAppController::homePage() const
{
    QUrl root = versionListUrl();
    root.setPath(QStringLiteral("/"));
    root.setQuery(QString());
    root.setFragment(QString());
    return root;
}

void MorphAppController::checkForUpdates()
{
    const QUrl url = versionListUrl();
    if (!url.isValid()) {
        logLine("Could not create connection to (no address) for checking version.");
        emit checkFinished();
        return;
    }
    dropRequest();
    QNetworkRequest request(url);
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    request.setAttribute(QNetworkRequest::CacheSaveControlAttribute, false);
    request.setTransferTimeout(kRequestTimeoutMs);
    m_versionCheck = m_network->get(request);
    if (!m_versionCheck) {
        logLine(formatString("Could not create connection to %s for checking version.", utf8(url.toString()).c_str()));
        emit checkFinished();
        return;
    }
    m_versionData.clear();
    connect(m_versionCheck, &QNetworkReply::metaDataChanged, this, [this] { m_versionData.clear(); });
    connect(m_versionCheck, &QNetworkReply::readyRead, this, &MorphAppController::onReadyRead);
    connect(m_versionCheck, &QNetworkReply::finished, this, &MorphAppController::onFinished);
}

void MorphAppController::onReadyRead()
{
    if (m_versionCheck)
        m_versionData.append(m_versionCheck->readAll());
}

void MorphAppController::onFinished()
{
    QNetworkReply* reply = m_versionCheck;
    if (!reply)
        return;
    if (reply->error() != QNetworkReply::NoError) {
        const std::string reason = utf8(reply->errorString());
        const std::string address = utf8(reply->url().toString());
        dropRequest();
        logLine(formatString("Connection failed! Error - %s %s", reason.c_str(), address.c_str()));
        emit checkFinished();
        return;
    }
    m_versionData.append(reply->readAll());
    const QByteArray data = m_versionData;
    dropRequest();
    evaluateAnswer(data);
    emit checkFinished();
}

void MorphAppController::evaluateAnswer(const QByteArray& data)
{
    const QString latest = latestVersionIn(data);
    const QString local = QCoreApplication::applicationVersion();
    if (local.isEmpty()) {
        logLine("Could not get local version");
        return;
    }
    if (latest.isEmpty()) {
        logLine("Could not get latest version");
        return;
    }
    // A plain comparison of character codes, so 1.10 orders before 1.9.
    if (QString::compare(local, latest, Qt::CaseSensitive) < 0) {
        if (m_alerts->askToOpenHomePage(latest, local))
            m_alerts->openHomePage(homePage());
        return;
    }
    if (m_reportWhenUpToDate)
        m_alerts->showUpToDate();
}

void MorphAppController::dropRequest()
{
    if (QNetworkReply* reply = m_versionCheck) {
        m_versionCheck = nullptr;
        reply->disconnect(this);
        reply->abort();
        reply->deleteLater();
    }
    m_versionData.clear();
}

} // namespace plyra
