// SPDX-License-Identifier: MIT
#include "app/localization.h"

#include <QApplication>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QTest>
#include <QTranslator>
#include <QVBoxLayout>

using namespace plyra;

namespace {

/// A string table in memory: English text to translation, in the interface's context.
class TableTranslator : public QTranslator {
public:
    QHash<QString, QString> entries;
    mutable QStringList lookups;

    QString translate(const char* context, const char* source, const char*, int) const override
    {
        if (qstrcmp(context, kInterfaceContext) != 0)
            return {};
        lookups.append(QString::fromUtf8(source));
        return entries.value(QString::fromUtf8(source));
    }
    bool isEmpty() const override { return false; }
};

} // namespace

class LocalizationTest : public QObject {
    Q_OBJECT

private:
    TableTranslator m_table;

private slots:
    void initTestCase()
    {
        m_table.entries = {{QStringLiteral("25"), QStringLiteral("fünfundzwanzig")}, {QString(), QStringLiteral("(leer)")},
            {QStringLiteral("File"), QStringLiteral("Datei")}, {QStringLiteral("Open"), QStringLiteral("Öffnen")},
            {QStringLiteral("Recent"), QStringLiteral("Zuletzt")}, {QStringLiteral("Clear"), QStringLiteral("Leeren")},
            {QStringLiteral("Deep"), QStringLiteral("Tief")}, {QStringLiteral("Frames"), QStringLiteral("Bilder")},
            {QStringLiteral("Settings"), QStringLiteral("Einstellungen")}, {QStringLiteral("Free"), QStringLiteral("Frei")},
            {QStringLiteral("Tip"), QStringLiteral("Hinweis")}, {QStringLiteral("Parent tip"), QStringLiteral("Eltern-Hinweis")},
            {QStringLiteral("Render"), QStringLiteral("Berechnen")}};
        QCoreApplication::installTranslator(&m_table);
    }

    void interfaceStrings_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("expected");
        QTest::newRow("entry") << "File" << "Datei";
        QTest::newRow("no entry") << "Unknown" << "Unknown";
        QTest::newRow("number stays a number") << "25" << "25";
        QTest::newRow("empty stays empty") << "" << "";
    }

    void interfaceStrings()
    {
        QFETCH(QString, text);
        QFETCH(QString, expected);
        QCOMPARE(localizedInterfaceString(text), expected);
    }

    void menusAreLocalisedTitleFirstThenItemsThenSubmenusAtAnyDepth()
    {
        QMenu file(QStringLiteral("File"));
        file.addAction(QStringLiteral("Open"));
        QMenu* recent = file.addMenu(QStringLiteral("Recent"));
        recent->addAction(QStringLiteral("Clear"));
        recent->addMenu(QStringLiteral("Deep"))->addAction(QStringLiteral("25"));
        m_table.lookups.clear();
        localizeMenu(&file);
        QCOMPARE(file.title(), QStringLiteral("Datei"));
        QCOMPARE(file.actions().at(0)->text(), QStringLiteral("Öffnen"));
        QCOMPARE(recent->title(), QStringLiteral("Zuletzt"));
        QCOMPARE(recent->actions().at(0)->text(), QStringLiteral("Leeren"));
        QMenu* deep = recent->actions().at(1)->menu();
        QCOMPARE(deep->title(), QStringLiteral("Tief"));
        QCOMPARE(deep->actions().at(0)->text(), QStringLiteral("25"));
        // The item's own title before its submenu's title.
        QVERIFY(m_table.lookups.indexOf(QStringLiteral("Recent")) < m_table.lookups.lastIndexOf(QStringLiteral("Clear")));
    }

    void viewTreesFollowTheKindOfEachView()
    {
        QWidget window;
        window.setWindowTitle(QString());
        window.setWindowIconText(QStringLiteral("Render"));
        auto* layout = new QVBoxLayout(&window);
        auto* box = new QGroupBox(QStringLiteral("Settings"), &window);
        box->setToolTip(QStringLiteral("Parent tip"));
        auto* field = new QLineEdit(QStringLiteral("25"), box);
        auto* emptyField = new QLineEdit(box);
        auto* label = new QLabel(QStringLiteral("Frames"), box);
        label->setToolTip(QStringLiteral("Tip"));
        auto* cells = new QListWidget(box);
        cells->addItems({QStringLiteral("25"), QStringLiteral("Frames")});
        auto* popUp = new QComboBox(box);
        popUp->addItems({QStringLiteral("Free"), QStringLiteral("25")});
        auto* image = new QLabel(box);
        image->setPixmap(QPixmap(4, 4));
        auto* boxLayout = new QVBoxLayout(box);
        for (QWidget* w : std::initializer_list<QWidget*>{field, emptyField, label, cells, popUp, image})
            boxLayout->addWidget(w);
        layout->addWidget(box);

        m_table.lookups.clear();
        localizeWindow(&window);
        QCOMPARE(window.windowTitle(), QStringLiteral("(leer)")); // looked up directly, even empty
        QCOMPARE(window.windowIconText(), QStringLiteral("Berechnen"));
        QCOMPARE(box->title(), QStringLiteral("Einstellungen"));
        QCOMPARE(field->text(), QStringLiteral("25"));
        QCOMPARE(emptyField->text(), QString());
        QCOMPARE(label->text(), QStringLiteral("Bilder"));
        QCOMPARE(cells->item(0)->text(), QStringLiteral("fünfundzwanzig")); // cells are looked up directly
        QCOMPARE(cells->item(1)->text(), QStringLiteral("Bilder"));
        QCOMPARE(popUp->itemText(0), QStringLiteral("Frei"));
        QCOMPARE(popUp->itemText(1), QStringLiteral("25"));
        QCOMPARE(label->toolTip(), QStringLiteral("Hinweis"));
        QCOMPARE(box->toolTip(), QStringLiteral("Eltern-Hinweis"));
        // Tool tips of subviews come before the tool tip of their parent.
        QVERIFY(m_table.lookups.indexOf(QStringLiteral("Tip")) < m_table.lookups.indexOf(QStringLiteral("Parent tip")));
    }
};

QTEST_MAIN(LocalizationTest)
#include "localization_test.moc"
