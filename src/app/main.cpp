// SPDX-License-Identifier: MIT
#include "app/document_prompts.h"
#include "app/plyra_application.h"
#include "app/termination_signals.h"
#include "app/update_alerts.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QTimer>

int main(int argc, char* argv[])
{
    QApplication application(argc, argv);
    plyra::PlyraApplication::configure(application);

    QCommandLineParser parser;
    parser.setApplicationDescription(QApplication::translate("main", "Morphs one still image into another."));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addPositionalArgument(QStringLiteral("files"),
        QApplication::translate("main", "Documents (*.plyra) to open, or a first and a last image for a new document."),
        QStringLiteral("[DOCUMENT.plyra...|FIRST LAST]"));
    parser.process(application);

    plyra::PlyraApplication plyraApp(std::make_unique<plyra::DialogDocumentPrompts>(), std::make_unique<plyra::MessageBoxUpdateAlerts>());
    QObject::connect(&plyraApp, &plyra::PlyraApplication::finished, &application, &QApplication::quit);
    // Asked to end from outside: unsaved changes go to their recovery copies, dialogs and
    // event loops end, and the windows close once exec() has returned, so that nothing
    // they made (temporary movies) is left behind.
    plyra::TerminationSignals termination;
    QObject::connect(&termination, &plyra::TerminationSignals::terminationRequested, &plyraApp,
        [&plyraApp](int) { plyraApp.terminate(); });
    if (!plyraApp.openArguments(parser.positionalArguments()))
        return 1;
    QTimer::singleShot(0, &plyraApp, &plyra::PlyraApplication::applicationDidFinishLaunching);
    const int status = plyraApp.isTerminating() ? 0 : application.exec();
    // Only now: no dialog's event loop is left on the stack.
    plyraApp.discardAllDocuments();
    return status;
}
