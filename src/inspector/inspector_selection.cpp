// SPDX-License-Identifier: MIT
#include "inspector/inspector_selection.h"

#include <QDebug>

#include <algorithm>

namespace plyra {
namespace {

QString itemDescription(const QVariant& item)
{
    if (MorphLine::Ptr line = lineInSelectionItem(item))
        return QString::fromStdString(line->description());
    if (item.canConvert<QString>()) {
        const QString text = item.toString();
        if (!text.isEmpty())
            return text;
    }
    QString text;
    QDebug(&text).nospace().noquote() << item;
    return text;
}

QString indented(const QString& text)
{
    QString result = QStringLiteral("    ") + text;
    result.replace(QLatin1Char('\n'), QStringLiteral("\n    "));
    return result;
}

} // namespace

QVariant selectionItem(const MorphLine::Ptr& line)
{
    return QVariant::fromValue(line);
}

MorphLine::Ptr lineInSelectionItem(const QVariant& item)
{
    if (item.metaType() != QMetaType::fromType<MorphLine::Ptr>())
        return nullptr;
    return item.value<MorphLine::Ptr>();
}

QVariantList selectionOfLines(const std::vector<MorphLine::Ptr>& lines)
{
    QVariantList selection;
    selection.reserve(static_cast<qsizetype>(lines.size()));
    for (const MorphLine::Ptr& line : lines)
        selection.append(selectionItem(line));
    return selection;
}

std::vector<MorphLine::Ptr> linesInSelection(const QVariantList& selection)
{
    std::vector<MorphLine::Ptr> lines;
    lines.reserve(static_cast<std::size_t>(selection.size()));
    for (const QVariant& item : selection)
        if (MorphLine::Ptr line = lineInSelectionItem(item))
            lines.push_back(std::move(line));
    return lines;
}

bool selectionHoldsOnlyLines(const QVariantList& selection)
{
    return !selection.isEmpty()
        && std::all_of(selection.begin(), selection.end(),
            [](const QVariant& item) { return lineInSelectionItem(item) != nullptr; });
}

QString selectionDescription(const QVariantList& selection)
{
    QStringList entries;
    for (const QVariant& item : selection)
        entries.append(indented(itemDescription(item)));
    if (entries.isEmpty())
        return QStringLiteral("()");
    return QStringLiteral("(\n") + entries.join(QStringLiteral(",\n")) + QStringLiteral("\n)");
}

} // namespace plyra
