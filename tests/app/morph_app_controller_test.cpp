// SPDX-License-Identifier: MIT
#include "app/morph_app_controller.h"
#include "app/update_alerts.h"
#include "platform/log.h"
#include "platform/qt/qt_run_loop.h"
#include "platform/qt/user_defaults.h"
#include "platform/qt/user_defaults_keys.h"

#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>

using namespace plyra;

namespace {

/// Records what the update check shows, and answers the "New version found" alert.
class RecordingAlerts : public UpdateAlerts {
public:
    struct Record {
        QStringList asked; // "latest/local"
        int upToDate = 0;
        int noAddress = 0;
        QList<QUrl> opened;
        bool answer = true;
    };
    explicit RecordingAlerts(Record& record) : m_record(record) { }
    bool askToOpenHomePage(const QString& latest, const QString& local) override
    {
        m_record.asked.append(latest + QLatin1Char('/') + local);
        return m_record.answer;
    }
    void showUpToDate() override { ++m_record.upToDate; }
    void showNoUpdateAddress() override { ++m_record.noAddress; }
    void openHomePage(const QUrl& url) override { m_record.opened.append(url); }

private:
    Record& m_record;
};

/// A one-page HTTP server on 127.0.0.1 that answers every request with the same body.
class VersionServer : public QTcpServer {
public:
    QByteArray body;
    int requests = 0;

    VersionServer()
    {
        connect(this, &QTcpServer::newConnection, this, [this] {
            while (QTcpSocket* socket = nextPendingConnection()) {
                connect(socket, &QTcpSocket::readyRead, socket, [this, socket] {
                    if (!socket->readAll().contains("\r\n\r\n"))
                        return;
                    ++requests;
                    socket->write("HTTP/1.1 200 OK\r\nContent-Type: application/xml\r\nConnection: close\r\nContent-Length: "
                        + QByteArray::number(body.size()) + "\r\n\r\n" + body);
                    socket->disconnectFromHost();
                });
                connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
            }
        });
    }
    QString address() const { return QStringLiteral("http://127.0.0.1:%1/software/plyra/version.plist").arg(serverPort()); }
};

QByteArray versionList(const char* version)
{
    return QByteArray("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>"
                      "<key>CFBundleShortVersionString</key><string>")
        + version + "</string></dict></plist>";
}

} // namespace

class MorphAppControllerTest : public QObject {
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    VersionServer m_server;
    RecordingAlerts::Record m_record;
    std::unique_ptr<MorphAppController> m_controller;

    void check(bool requested)
    {
        QSignalSpy finished(m_controller.get(), &MorphAppController::checkFinished);
        if (requested)
            m_controller->checkForUpdatesRequested();
        else
            m_controller->applicationDidFinishLaunching();
        if (finished.isEmpty())
            QVERIFY(finished.wait(5000));
    }

private slots:
    void initTestCase()
    {
        bindRunLoopToQtEventLoop();
        QVERIFY(m_server.listen(QHostAddress::LocalHost));
    }

    void init()
    {
        UserDefaults::standard().useFile(m_dir.filePath(QStringLiteral("defaults.ini")));
        UserDefaults::standard().remove(QStringLiteral("CheckForUpdates"));
        UserDefaults::standard().setObject(QLatin1String(DefaultsKey::kVersionCheckURL), m_server.address());
        MorphAppController::registerDefaults();
        m_record = {};
        m_server.requests = 0;
        m_controller = std::make_unique<MorphAppController>(std::make_unique<RecordingAlerts>(m_record));
    }

    void answers_data()
    {
        QTest::addColumn<QString>("local");
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<bool>("requested");
        QTest::addColumn<bool>("openPage");
        QTest::addColumn<QStringList>("asked");
        QTest::addColumn<int>("upToDate");
        QTest::addColumn<QString>("logged");

        const QStringList none;
        QTest::newRow("newer, open the page") << "1.2" << versionList("1.3") << false << true << QStringList{"1.3/1.2"} << 0 << QString();
        QTest::newRow("newer, cancel") << "1.2" << versionList("1.3") << false << false << QStringList{"1.3/1.2"} << 0 << QString();
        QTest::newRow("same at launch: silent") << "1.3" << versionList("1.3") << false << true << none << 0 << QString();
        QTest::newRow("same on request") << "1.3" << versionList("1.3") << true << true << none << 1 << QString();
        QTest::newRow("1.10 orders before 1.9") << "1.10" << versionList("1.9") << false << true << QStringList{"1.9/1.10"} << 0 << QString();
        QTest::newRow("local newer on request") << "2.0" << versionList("1.9") << true << true << none << 1 << QString();
        QTest::newRow("not a property list") << "1.2" << QByteArray("<html><body>Not here</body></html>") << true << true << none << 0
                                             << QStringLiteral("Could not get latest version");
        QTest::newRow("no version key") << "1.2" << QByteArray("{ CFBundleVersion = 7; }") << true << true << none << 0
                                        << QStringLiteral("Could not get latest version");
        QTest::newRow("no local version") << "" << versionList("1.3") << true << true << none << 0 << QStringLiteral("Could not get local version");
    }

    void answers()
    {
        QFETCH(QString, local);
        QFETCH(QByteArray, answer);
        QFETCH(bool, requested);
        QFETCH(bool, openPage);
        QFETCH(QStringList, asked);
        QFETCH(int, upToDate);
        QFETCH(QString, logged);

        QCoreApplication::setApplicationVersion(local);
        m_server.body = answer;
        m_record.answer = openPage;
        LogCapture log;
        check(requested);
        QCOMPARE(m_server.requests, 1);
        QCOMPARE(m_record.asked, asked);
        QCOMPARE(m_record.upToDate, upToDate);
        const bool opens = !asked.isEmpty() && openPage;
        QCOMPARE(m_record.opened.size(), opens ? 1 : 0);
        if (opens)
            QCOMPARE(m_record.opened.constFirst(), QUrl(QStringLiteral("http://127.0.0.1:%1/").arg(m_server.serverPort())));
        if (!logged.isEmpty())
            QVERIFY(log.contains(logged.toStdString()));
        QVERIFY(!m_controller->isChecking());
    }

    void launchCheckCanBeTurnedOff()
    {
        QCoreApplication::setApplicationVersion(QStringLiteral("1.2"));
        m_server.body = versionList("1.3");
        UserDefaults::standard().setBoolean(QStringLiteral("CheckForUpdates"), false);
        m_controller->applicationDidFinishLaunching();
        QVERIFY(!m_controller->isChecking());
        QCoreApplication::processEvents();
        QCOMPARE(m_server.requests, 0);
        QVERIFY(m_record.asked.isEmpty());
        check(true); // the command still works
        QCOMPARE(m_server.requests, 1);
        QCOMPARE(m_record.asked, QStringList{QStringLiteral("1.3/1.2")});
    }

    void refusedConnectionIsOnlyLogged()
    {
        QTcpServer closed;
        QVERIFY(closed.listen(QHostAddress::LocalHost));
        const quint16 port = closed.serverPort();
        closed.close();
        UserDefaults::standard().setObject(QLatin1String(DefaultsKey::kVersionCheckURL),
            QStringLiteral("http://127.0.0.1:%1/software/plyra/version.plist").arg(port));
        LogCapture log;
        check(true);
        QVERIFY(log.contains("Connection failed! Error - "));
        QVERIFY(log.contains(QStringLiteral("127.0.0.1:%1").arg(port).toStdString()));
        QVERIFY(m_record.asked.isEmpty());
        QCOMPARE(m_record.upToDate, 0);
    }

    void withoutAnAddressNothingIsAsked()
    {
        UserDefaults::standard().remove(QLatin1String(DefaultsKey::kVersionCheckURL));
        m_controller->applicationDidFinishLaunching();
        QVERIFY(!m_controller->isChecking());
        QCoreApplication::processEvents();
        QCOMPARE(m_server.requests, 0);
        QCOMPARE(m_record.noAddress, 0);
        check(true);
        QCOMPARE(m_record.noAddress, 1);
        QCOMPARE(m_server.requests, 0);
    }
};

QTEST_MAIN(MorphAppControllerTest)
#include "morph_app_controller_test.moc"
