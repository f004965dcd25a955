// SPDX-License-Identifier: MIT
#include "app/plyra_application.h"

#include "app/counterpart_prediction_toggle.h"
#include "app/document_manager.h"
#include "app/document_prompts.h"
#include "app/document_recovery.h"
#include "app/help_window.h"
#include "app/morph_app_controller.h"
#include "app/morph_editor_window_controller.h"
#include "app/package_file_dialog.h"
#include "app/textured_background.h"
#include "app/update_alerts.h"
#include "inspector/inspector_controller.h"
#include "model/morph_document.h"
#include "platform/qt/qt_run_loop.h"
#include "platform/user_text.h"
#include "platform/temporary_files.h"
#include "render/movie_render_controller.h"
#include "widgets/screen_fit.h"

#include <QApplication>
#include <QDialog>
#include <QFileInfo>
#include <QIcon>
#include <QLibraryInfo>
#include <QLocale>
#include <QMessageBox>
#include <QTranslator>

namespace plyra {
namespace {

const char* const kTranslationAreas[] = {"plyra_app", "plyra_editor", "plyra_render", "plyra_inspector", "plyra_widgets", "plyra_core"};

// The language installTranslations() chose; the help is shown in it.
QString s_interfaceLanguage = QStringLiteral("en");

// Numbers are shown and read as the interface's language writes them: a German interface
// chosen by LANGUAGE alone writes "0,3" even where the locale of LANG writes "0.3". A
// locale of that language (de_CH under LANG) is kept as it is. The system locale takes its
// language from LANGUAGE when LANG says nothing more (C.UTF-8) but its numbers from LANG,
// so it is rebuilt from its name rather than used as it is.
std::string translateUserText(const char* context, const char* text)
{
    return QCoreApplication::translate(context, text).toStdString();
}

void useNumbersOf(const QString& language)
{
    const QLocale wanted(language);
    const QLocale system(QLocale::system().name());
    QLocale::setDefault(system.language() == wanted.language() ? system : wanted);
}

bool isImageArgument(const QString& argument)
{
    const QFileInfo info(argument);
    return info.isFile() && !argument.endsWith(QLatin1Char('.') + QLatin1String(PackageFileDialog::kExtension));
}

} // namespace

void PlyraApplication::configure(QApplication& application)
{
    application.setApplicationName(QStringLiteral("plyra"));
    application.setApplicationDisplayName(QStringLiteral("Plyra"));
    application.setApplicationVersion(QStringLiteral(PLYRA_VERSION));
    application.setOrganizationName(QStringLiteral("Plyra"));
    application.setOrganizationDomain(QStringLiteral("plyra.org"));
    application.setDesktopFileName(QStringLiteral("org.plyra.Plyra"));
    application.setWindowIcon(QIcon(QStringLiteral(":/app/icons/plyra.svg")));
    application.setQuitOnLastWindowClosed(false);
    bindRunLoopToQtEventLoop();
    setUserTextTranslator(&translateUserText);
    ScreenFit::install();
    installTranslations(QLocale().uiLanguages());
    MorphAppController::registerDefaults();
    TexturedBackground::registerDefault();
    CounterpartPredictionToggle::registerDefault();
}

QString PlyraApplication::installTranslations(const QStringList& languages)
{
    s_interfaceLanguage = QStringLiteral("en");
    useNumbersOf(s_interfaceLanguage);
    for (const QString& language : languages) {
        const QString code = language.left(2).toLower();
        if (code == QLatin1String("en"))
            return {};
        bool found = false;
        for (const char* area : kTranslationAreas) {
            auto translator = std::make_unique<QTranslator>(qApp);
            if (translator->load(QStringLiteral(":/i18n/%1_%2.qm").arg(QLatin1String(area), code))) {
                QCoreApplication::installTranslator(translator.release());
                found = true;
            }
        }
        if (!found)
            continue;
        // Qt's own texts: standard buttons, file and colour dialogs.
        auto qtBase = std::make_unique<QTranslator>(qApp);
        if (qtBase->load(QStringLiteral("qtbase_%1").arg(code), QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
            QCoreApplication::installTranslator(qtBase.release());
        s_interfaceLanguage = code;
        useNumbersOf(code);
        return code;
    }
    return {};
}

PlyraApplication::PlyraApplication(std::unique_ptr<DocumentPrompts> prompts, std::unique_ptr<UpdateAlerts> alerts)
    : m_appController(std::make_unique<MorphAppController>(std::move(alerts)))
{
    m_documents = std::make_unique<DocumentManager>(std::move(prompts),
        [this](std::unique_ptr<MorphDocument> document, const QString& path, const QString& untitled) {
            return new MorphEditorWindowController(std::move(document), path, untitled, *this);
        });
    connect(m_documents.get(), &DocumentManager::lastWindowClosed, this, &PlyraApplication::finished);
    connectInspector();
    m_recovery = std::make_unique<DocumentRecovery>(*m_documents);
}

void PlyraApplication::connectInspector()
{
    InspectorController* inspector = InspectorController::sharedInspectorController();
    connect(inspector, &InspectorController::helpRequested, this, &PlyraApplication::showHelp);
}

PlyraApplication::~PlyraApplication()
{
    delete m_help.data();
}

bool PlyraApplication::openArguments(const QStringList& arguments)
{
    if (arguments.isEmpty())
        return m_documents->newDocument() != nullptr;
    if (arguments.size() <= 2 && std::all_of(arguments.begin(), arguments.end(), isImageArgument))
        return m_documents->newDocumentWithImages(arguments.value(0), arguments.value(1)) != nullptr;
    bool opened = false;
    for (const QString& path : arguments)
        opened = m_documents->openDocument(path) != nullptr || opened;
    return opened;
}

void PlyraApplication::applicationDidFinishLaunching()
{
    TemporaryFiles::removeThoseOfEndedProcesses(MovieRenderController::kTemporaryMovieFolder,
        MovieRenderController::kTemporaryMoviePrefix);
    m_recovery->offerLeftCopies([this] { return m_terminating; });
    if (!m_terminating)
        m_appController->applicationDidFinishLaunching();
}

void PlyraApplication::terminate()
{
    m_terminating = true;
    m_recovery->writeAllNow();
    for (QWidget* widget : QApplication::topLevelWidgets())
        if (auto* dialog = qobject_cast<QDialog*>(widget); dialog && dialog->isVisible())
            dialog->reject();
    QCoreApplication::exit(0);
}

void PlyraApplication::discardAllDocuments()
{
    m_documents->discardAll();
}

void PlyraApplication::newDocument()
{
    m_documents->newDocument();
}

void PlyraApplication::openDocument()
{
    m_documents->openDocumentInteractively(QApplication::activeWindow());
}

void PlyraApplication::openRecentDocument(const QString& path)
{
    m_documents->openDocument(path);
}

QStringList PlyraApplication::recentDocuments() const
{
    return m_documents->recentDocuments().paths();
}

void PlyraApplication::clearRecentDocuments()
{
    m_documents->recentDocuments().clear();
}

bool PlyraApplication::saveDocument(MorphEditorWindowController* window)
{
    return m_documents->save(window);
}

bool PlyraApplication::saveDocumentAs(MorphEditorWindowController* window)
{
    return m_documents->saveAs(window);
}

void PlyraApplication::revertDocument(MorphEditorWindowController* window)
{
    m_documents->revert(window);
}

bool PlyraApplication::closeDocument(MorphEditorWindowController* window)
{
    return m_documents->close(window);
}

void PlyraApplication::quit()
{
    if (m_documents->closeAll() && m_documents->windows().empty())
        emit finished();
}

void PlyraApplication::showHelp(const QString& page)
{
    if (!m_help)
        m_help = new HelpWindow(s_interfaceLanguage);
    m_help->showPage(page);
}

void PlyraApplication::checkForUpdates()
{
    m_appController->checkForUpdatesRequested();
}

void PlyraApplication::showAbout()
{
    QMessageBox::about(QApplication::activeWindow(), tr("About Plyra"),
        tr("<h3>Plyra %1</h3><p>Morphs one still image into another through pairs of corresponding lines.</p>"
           "<p>Licensed under the MIT licence.</p>")
            .arg(QApplication::applicationVersion()));
}

} // namespace plyra
