// SPDX-License-Identifier: MIT
// SIGTERM, SIGINT and SIGHUP while a modal dialog is open (the save question, Open, Save
// As): the dialogs end first, exec() returns 0, unsaved changes are in a recovery copy,
// and only then do the windows go.
#include "app/document_manager.h"
#include "app/document_prompts.h"
#include "app/document_recovery.h"
#include "app/morph_editor_window_controller.h"
#include "app/plyra_application.h"
#include "app/termination_signals.h"
#include "app_test_support.h"
#include "model/morph_document.h"
#include "platform/qt/user_defaults.h"
#include "platform/run_loop.h"
#include "platform/stop_request.h"
#include "recovery/recovery_copy.h"

#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QTest>
#include <QTimer>

#include <csignal>
#include <unistd.h>

using namespace plyra;
using namespace plyra::test;

namespace {

/// Sends a signal to this process as soon as a dialog shows, as a user's kill would.
class SignalOnDialog : public QObject {
public:
    explicit SignalOnDialog(int signalNumber) : m_signal(signalNumber) { qApp->installEventFilter(this); }
    bool sent() const { return m_sent; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (!m_sent && event->type() == QEvent::Show && qobject_cast<QDialog*>(watched)) {
            m_sent = true;
            ::kill(::getpid(), m_signal);
        }
        return false;
    }

private:
    int m_signal;
    bool m_sent = false;
};

} // namespace

class TerminationTest : public QObject {
    Q_OBJECT

private:
    QTemporaryDir m_dir;

private slots:
    void initTestCase()
    {
        qputenv("XDG_STATE_HOME", QFile::encodeName(m_dir.filePath(QStringLiteral("state"))));
        UserDefaults::standard().useFile(m_dir.filePath(QStringLiteral("defaults.ini")));
        PlyraApplication::configure(*qApp);
    }

    void aSignalWithADialogOpenEndsCleanlyAndKeepsTheChanges_data()
    {
        QTest::addColumn<int>("signalNumber");
        QTest::addColumn<QString>("dialog");
        for (const auto& [number, name] : {std::pair{SIGTERM, "SIGTERM"}, {SIGINT, "SIGINT"}, {SIGHUP, "SIGHUP"}})
            for (const char* dialog : {"save question", "open", "save as"})
                QTest::addRow("%s, %s", name, dialog) << number << QString::fromLatin1(dialog);
    }

    void aSignalWithADialogOpenEndsCleanlyAndKeepsTheChanges()
    {
        QFETCH(int, signalNumber);
        QFETCH(QString, dialog);
        PlyraApplication app(std::make_unique<DialogDocumentPrompts>(), std::make_unique<SilentUpdateAlerts>());
        TerminationSignals termination;
        connect(&termination, &TerminationSignals::terminationRequested, &app, [&app](int) { app.terminate(); });
        MorphEditorWindowController* window = app.documents().newDocument();
        MorphLine::Ptr line = MorphLine::create();
        line->setEndPoint({0.7f, 0.3f}, 0, nullptr);
        window->document().addMorphLine(line);
        QCoreApplication::processEvents();
        RunLoop::main().runUntilIdle();

        SignalOnDialog signalOnDialog(signalNumber);
        QTimer::singleShot(0, &app, [&app, window, dialog] {
            if (dialog == QLatin1String("save question"))
                app.quit();
            else if (dialog == QLatin1String("open"))
                app.openDocument();
            else
                app.saveDocumentAs(window);
        });
        QCOMPARE(qApp->exec(), 0);
        StopRequest::clear(); // the signal asked long work to stop
        QVERIFY(signalOnDialog.sent());
        QVERIFY(app.isTerminating());
        QVERIFY(!QApplication::activeModalWidget());
        app.discardAllDocuments();
        QVERIFY(app.documents().windows().empty());

        const QDir store(app.recovery().store().folder());
        const QStringList copies = store.entryList(QDir::Dirs | QDir::NoDotAndDotDot);
        QCOMPARE(copies.size(), 1);
        const std::optional<RecoveryCopy> copy = RecoveryCopy::read(store.filePath(copies.constFirst()));
        QVERIFY(copy);
        QCOMPARE(copy->displayName, QStringLiteral("Untitled"));
        QVERIFY(QFileInfo::exists(copy->packagePath() + QStringLiteral("/info.plist")));
        QDir(copy->folder).removeRecursively();
    }
};

QTEST_MAIN(TerminationTest)
#include "termination_test.moc"
