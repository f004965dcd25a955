// SPDX-License-Identifier: MIT
#include "app/package_file_dialog.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QLineEdit>
#include <QListView>
#include <QMessageBox>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <functional>

using namespace plyra;

// Double-clicks an entry of the dialog's list, once the file system model shows it.
static void doubleClickEntry(QFileDialog& dialog, const QString& name)
{
    auto* list = dialog.findChild<QListView*>(QStringLiteral("listView"));
    QVERIFY(list);
    QModelIndex entry;
    QTRY_VERIFY_WITH_TIMEOUT(([&] {
        const QModelIndex root = list->rootIndex();
        for (int row = 0; row < list->model()->rowCount(root); ++row)
            if (list->model()->index(row, 0, root).data().toString() == name)
                entry = list->model()->index(row, 0, root);
        return entry.isValid();
    }()), 5000);
    list->scrollTo(entry);
    const QPoint centre = list->visualRect(entry).center();
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, centre);
    QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, centre);
}

// Runs what a person does in the dialog once it is open.
static void whenDialogOpens(std::function<void(QFileDialog&)> act)
{
    QTimer::singleShot(0, qApp, [act] {
        auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
        QVERIFY(dialog);
        act(*dialog);
    });
}

// Clicks the answer of the next question box, once it shows.
static void answerNextQuestion(QMessageBox::StandardButton answer)
{
    auto* poll = new QTimer(qApp);
    QObject::connect(poll, &QTimer::timeout, poll, [poll, answer] {
        if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
            box->button(answer)->click();
            poll->deleteLater();
        }
    });
    poll->start(20);
}

class PackageFileDialogTest : public QObject {
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    QString m_package;

private slots:
    void initTestCase()
    {
        m_package = m_dir.filePath(QStringLiteral("portrait.plyra"));
        QVERIFY(QDir().mkpath(m_package));
        QVERIFY(QDir().mkpath(m_dir.filePath(QStringLiteral("folder"))));
    }

    void openingAPackageTakesItInsteadOfBrowsingIntoIt()
    {
        whenDialogOpens([](QFileDialog& dialog) { doubleClickEntry(dialog, QStringLiteral("portrait.plyra")); });
        QCOMPARE(PackageFileDialog::getOpenPackageName(nullptr, m_dir.path()), QDir::cleanPath(m_package));
    }

    void anOrdinaryFolderIsBrowsed()
    {
        whenDialogOpens([](QFileDialog& dialog) {
            doubleClickEntry(dialog, QStringLiteral("folder"));
            QTRY_COMPARE(dialog.directory().dirName(), QStringLiteral("folder"));
            QTest::keyClick(&dialog, Qt::Key_Escape);
        });
        QCOMPARE(PackageFileDialog::getOpenPackageName(nullptr, m_dir.path()), QString());
    }

    void savingNamesAPackage()
    {
        whenDialogOpens([](QFileDialog& dialog) {
            auto* name = dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
            QVERIFY(name);
            name->setText(QStringLiteral("morph"));
            QTest::keyClick(name, Qt::Key_Return);
        });
        QCOMPARE(PackageFileDialog::getSavePackageName(nullptr, m_dir.path()), m_dir.filePath(QStringLiteral("morph.plyra")));
    }

    void replacingAPackageIsAskedFirst()
    {
        for (const auto answer : {QMessageBox::Cancel, QMessageBox::Yes}) {
            whenDialogOpens([answer](QFileDialog& dialog) {
                // The question comes once the dialog has closed.
                answerNextQuestion(answer);
                doubleClickEntry(dialog, QStringLiteral("portrait.plyra")); // choosing the existing package
            });
            const QString chosen = PackageFileDialog::getSavePackageName(nullptr, m_dir.path());
            QCOMPARE(chosen, answer == QMessageBox::Yes ? QDir::cleanPath(m_package) : QString());
        }
    }

    void enterOnAPackageNameTakesThePackageAndNeverEntersIt()
    {
        // Save As proposes the document's own package: Enter asks to replace it.
        whenDialogOpens([](QFileDialog& dialog) {
            auto* name = dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
            auto* buttons = dialog.findChild<QDialogButtonBox*>(QStringLiteral("buttonBox"));
            QVERIFY(name && buttons);
            QTRY_COMPARE(name->text(), QStringLiteral("portrait.plyra"));
            QCOMPARE(buttons->buttons().constFirst()->text(), QStringLiteral("&Save"));
            answerNextQuestion(QMessageBox::Yes);
            QTest::keyClick(name, Qt::Key_Return);
        });
        QCOMPARE(PackageFileDialog::getSavePackageName(nullptr, m_package), QDir::cleanPath(m_package));
        whenDialogOpens([](QFileDialog& dialog) {
            auto* name = dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
            QVERIFY(name);
            name->setText(QStringLiteral("portrait.plyra"));
            QTest::keyClick(name, Qt::Key_Return);
        });
        QCOMPARE(PackageFileDialog::getOpenPackageName(nullptr, m_dir.path()), QDir::cleanPath(m_package));
    }

    void packagePaths()
    {
        QVERIFY(PackageFileDialog::isPackagePath(m_package));
        QVERIFY(!PackageFileDialog::isPackagePath(m_dir.filePath(QStringLiteral("folder"))));
        QVERIFY(!PackageFileDialog::isPackagePath(m_dir.filePath(QStringLiteral("missing.plyra"))));
        QCOMPARE(PackageFileDialog::withPackageExtension(QStringLiteral("/a/b")), QStringLiteral("/a/b.plyra"));
        QCOMPARE(PackageFileDialog::withPackageExtension(QStringLiteral("/a/b.plyra")), QStringLiteral("/a/b.plyra"));
    }
};

QTEST_MAIN(PackageFileDialogTest)
#include "package_file_dialog_test.moc"
