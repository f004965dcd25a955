// SPDX-License-Identifier: MIT
#include "editor/morph_editor_accessible.h"

#include "editor/morph_editor.h"

namespace plyra {
namespace {

QAccessibleInterface* editorInterface(const QString& className, QObject* object)
{
    if (className == QLatin1String(MorphEditor::staticMetaObject.className()) && object && object->isWidgetType())
        return new MorphEditorAccessible(static_cast<QWidget*>(object));
    return nullptr;
}

} // namespace

MorphEditorAccessible::MorphEditorAccessible(QWidget* editor)
    : QAccessibleWidget(editor, QAccessible::Canvas)
{
}

void MorphEditorAccessible::install()
{
    static const bool installed = [] {
        QAccessible::installFactory(editorInterface);
        return true;
    }();
    (void)installed;
}

} // namespace plyra
