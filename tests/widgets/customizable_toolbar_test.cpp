// SPDX-License-Identifier: MIT
#include "platform/qt/user_defaults.h"
#include "widgets/customizable_toolbar.h"
#include "widgets/toolbar_customize_dialog.h"

#include <QAction>
#include <QListWidget>
#include <QMainWindow>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>

using namespace plyra;

class CustomizableToolbarTest : public QObject {
    Q_OBJECT

private:
    QTemporaryDir m_dir;

    // A toolbar of two actions, "a" and "b", both shown by default.
    struct Bar {
        QMainWindow window;
        CustomizableToolbar* toolbar = new CustomizableToolbar(QStringLiteral("TestWindow"), &window);
        QAction a{QStringLiteral("&Alpha")};
        QAction b{QStringLiteral("&Beta")};

        Bar()
        {
            toolbar->addItem(QStringLiteral("a"), &a, QStringLiteral("A"), QStringLiteral("Alpha item"));
            toolbar->addItem(QStringLiteral("b"), &b, QStringLiteral("B"), QStringLiteral("Beta item"));
            toolbar->setItemSets({QStringLiteral("a"), QStringLiteral("b")},
                {QStringLiteral("a"), QStringLiteral("b"), QLatin1String(CustomizableToolbar::kSeparator),
                    QLatin1String(CustomizableToolbar::kFlexibleSpace)});
        }
    };

private slots:
    void initTestCase() { UserDefaults::standard().useFile(m_dir.filePath(QStringLiteral("defaults.ini"))); }

    void arrangementsAreKeptPerIdentifier_data()
    {
        QTest::addColumn<QStringList>("chosen");
        QTest::addColumn<QStringList>("shown");
        QTest::addColumn<bool>("stored");
        QTest::newRow("default") << QStringList{"a", "b"} << QStringList{"a", "b"} << false;
        QTest::newRow("reordered") << QStringList{"b", "a"} << QStringList{"b", "a"} << true;
        QTest::newRow("spacers") << QStringList{"NSToolbarFlexibleSpaceItem", "a", "NSToolbarSeparatorItem"}
                                 << QStringList{"NSToolbarFlexibleSpaceItem", "a", "NSToolbarSeparatorItem"} << true;
        QTest::newRow("unknown and not allowed") << QStringList{"x", "a", "NSToolbarSpaceItem"} << QStringList{"a"} << true;
    }

    void arrangementsAreKeptPerIdentifier()
    {
        QFETCH(QStringList, chosen);
        QFETCH(QStringList, shown);
        QFETCH(bool, stored);
        {
            Bar bar;
            bar.toolbar->setShownIdentifiers(chosen);
            QCOMPARE(bar.toolbar->shownIdentifiers(), shown);
            QCOMPARE(bar.toolbar->actions().size(), shown.size());
            QCOMPARE(bar.toolbar->itemWithIdentifier(QStringLiteral("a")), &bar.a);
            QCOMPARE(bar.a.iconText(), QStringLiteral("A"));
        }
        QCOMPARE(UserDefaults::standard().contains(QStringLiteral("TestWindow/toolbarItems")), stored);
        Bar next; // a new window of the same kind
        QCOMPARE(next.toolbar->shownIdentifiers(), shown);
        next.toolbar->setShownIdentifiers(next.toolbar->defaultItemIdentifiers());
    }

    void theDialogReordersAndRestores()
    {
        ToolbarCustomizeDialog dialog;
        dialog.setEntries({{QStringLiteral("a"), QStringLiteral("Alpha")}, {QStringLiteral("b"), QStringLiteral("Beta")},
                              {QStringLiteral("c"), QStringLiteral("Gamma")}},
            {QStringLiteral("b")}, {QStringLiteral("a"), QStringLiteral("b")});
        auto* list = dialog.findChild<QListWidget*>();
        QCOMPARE(list->item(0)->text(), QStringLiteral("Beta")); // shown ones first, in order
        QCOMPARE(dialog.chosenIdentifiers(), QStringList{"b"});
        list->item(2)->setCheckState(Qt::Checked);
        list->setCurrentRow(2);
        auto button = [&](const char* text) {
            for (QPushButton* b : dialog.findChildren<QPushButton*>())
                if (b->text() == QLatin1String(text))
                    return b;
            return static_cast<QPushButton*>(nullptr);
        };
        QTest::mouseClick(button("Move Up"), Qt::LeftButton);
        QTest::mouseClick(button("Move Up"), Qt::LeftButton);
        QCOMPARE(dialog.chosenIdentifiers(), (QStringList{"c", "b"}));
        QTest::mouseClick(button("Restore Defaults"), Qt::LeftButton);
        QCOMPARE(dialog.chosenIdentifiers(), (QStringList{"a", "b"}));
    }
};

QTEST_MAIN(CustomizableToolbarTest)
#include "customizable_toolbar_test.moc"
