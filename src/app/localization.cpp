// SPDX-License-Identifier: MIT
#include "app/localization.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QCoreApplication>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QMetaProperty>
#include <QTableWidget>

namespace plyra {
namespace {

// A property the view can both read and write, like a getter with its setter.
bool hasWritableProperty(const QObject* object, const char* name)
{
    const QMetaObject* meta = object->metaObject();
    const int index = meta->indexOfProperty(name);
    if (index < 0)
        return false;
    const QMetaProperty property = meta->property(index);
    return property.isReadable() && property.isWritable() && property.metaType().id() == QMetaType::QString;
}

void localizeProperty(QObject* object, const char* name, QString (*lookUp)(const QString&))
{
    if (hasWritableProperty(object, name))
        object->setProperty(name, lookUp(object->property(name).toString()));
}

// Cells of a list or table are looked up directly, numbers and empty texts included.
bool localizeCells(QWidget* view)
{
    if (auto* list = qobject_cast<QListWidget*>(view)) {
        for (int i = 0; i < list->count(); ++i)
            list->item(i)->setText(lookUpInterfaceString(list->item(i)->text()));
        return true;
    }
    if (auto* table = qobject_cast<QTableWidget*>(view)) {
        for (int row = 0; row < table->rowCount(); ++row)
            for (int column = 0; column < table->columnCount(); ++column)
                if (QTableWidgetItem* cell = table->item(row, column))
                    cell->setText(lookUpInterfaceString(cell->text()));
        return true;
    }
    return false;
}

bool isImageView(const QWidget* view)
{
    const auto* label = qobject_cast<const QLabel*>(view);
    return label && !label->pixmap().isNull();
}

} // namespace

QString lookUpInterfaceString(const QString& text)
{
    const QByteArray key = text.toUtf8();
    return QCoreApplication::translate(kInterfaceContext, key.constData());
}

QString localizedInterfaceString(const QString& text)
{
    if (text.isEmpty() || text.front().isDigit())
        return text;
    return lookUpInterfaceString(text);
}

void localizeMenu(QMenu* menu)
{
    if (!menu)
        return;
    menu->setTitle(localizedInterfaceString(menu->title()));
    for (QAction* item : menu->actions()) {
        item->setText(localizedInterfaceString(item->text()));
        localizeMenu(item->menu());
    }
}

void localizeMenu(QComboBox* popUp)
{
    if (!popUp)
        return;
    for (int i = 0; i < popUp->count(); ++i)
        popUp->setItemText(i, localizedInterfaceString(popUp->itemText(i)));
}

void localizeViewTree(QWidget* view)
{
    if (!view)
        return;
    for (QWidget* child : view->findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
        localizeViewTree(child);
    if (!view->toolTip().isEmpty())
        view->setToolTip(localizedInterfaceString(view->toolTip()));
    if (localizeCells(view))
        return;
    if (auto* popUp = qobject_cast<QComboBox*>(view)) {
        localizeMenu(popUp);
        return;
    }
    if (isImageView(view))
        return;
    localizeProperty(view, "title", localizedInterfaceString);
    localizeProperty(view, "text", localizedInterfaceString);
}

void localizeWindow(QWidget* window)
{
    if (!window)
        return;
    window->setWindowTitle(lookUpInterfaceString(window->windowTitle()));
    window->setWindowIconText(lookUpInterfaceString(window->windowIconText()));
    localizeViewTree(window);
}

} // namespace plyra
