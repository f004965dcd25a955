// SPDX-License-Identifier: MIT
// The names of undoable actions, as the model, the editors and the commands set them:
// English keys, kept untranslated in the undo manager, so that the Edit menu translates
// them once, in the context "UndoAction", in whatever language it shows. This list is the
// one place that puts them into the translation sources; a new name goes here.
#include <QtGlobal>

namespace plyra {
namespace {

[[maybe_unused]] const char* const kUndoActionNames[] = {
    QT_TRANSLATE_NOOP("UndoAction", "New Line"),
    QT_TRANSLATE_NOOP("UndoAction", "Delete Line"),
    QT_TRANSLATE_NOOP("UndoAction", "Set Image"),
    QT_TRANSLATE_NOOP("UndoAction", "Change colour"),
    QT_TRANSLATE_NOOP("UndoAction", "Move Line"),
    QT_TRANSLATE_NOOP("UndoAction", "Change settings"),
    QT_TRANSLATE_NOOP("UndoAction", "Connect line"),
    QT_TRANSLATE_NOOP("UndoAction", "Disconnect line"),
    QT_TRANSLATE_NOOP("UndoAction", "Create lines"),
    QT_TRANSLATE_NOOP("UndoAction", "Add Face Lines"),
    QT_TRANSLATE_NOOP("UndoAction", "Flip Lines"),
    QT_TRANSLATE_NOOP("UndoAction", "Transform Lines"),
    QT_TRANSLATE_NOOP("UndoAction", "Duplicate Lines"),
    QT_TRANSLATE_NOOP("UndoAction", "Transform Lines"),
    QT_TRANSLATE_NOOP("UndoAction", "Duplicate Lines"),
    QT_TRANSLATE_NOOP("UndoAction", "Flip Lines"),
    QT_TRANSLATE_NOOP("UndoAction", "Duplicate Lines"),
    QT_TRANSLATE_NOOP("UndoAction", "Change Movie Settings"),
};

} // namespace
} // namespace plyra
