// SPDX-License-Identifier: MIT
#include "widgets/toolbar_customize_dialog.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace plyra {

ToolbarCustomizeDialog::ToolbarCustomizeDialog(QWidget* parent)
    : QDialog(parent)
    , m_list(new QListWidget(this))
{
    setWindowTitle(tr("Customize Toolbar"));
    m_list->setAccessibleName(tr("Toolbar items"));
    m_list->setDragDropMode(QAbstractItemView::InternalMove);

    auto* up = new QPushButton(tr("Move Up"), this);
    auto* down = new QPushButton(tr("Move Down"), this);
    auto* defaults = new QPushButton(tr("Restore Defaults"), this);
    connect(up, &QPushButton::clicked, this, [this] { moveCurrent(-1); });
    connect(down, &QPushButton::clicked, this, [this] { moveCurrent(1); });
    connect(defaults, &QPushButton::clicked, this, [this] { fill(m_defaults); });

    auto* side = new QVBoxLayout;
    side->addWidget(up);
    side->addWidget(down);
    side->addStretch();
    side->addWidget(defaults);
    auto* middle = new QHBoxLayout;
    middle->addWidget(m_list, 1);
    middle->addLayout(side);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel(tr("Choose the items of the toolbar and their order:"), this));
    layout->addLayout(middle);
    layout->addWidget(buttons);
}

void ToolbarCustomizeDialog::setEntries(const QList<Entry>& allowed, const QStringList& shown, const QStringList& defaults)
{
    m_allowed = allowed;
    m_defaults = defaults;
    fill(shown);
}

void ToolbarCustomizeDialog::fill(const QStringList& shown)
{
    m_list->clear();
    auto add = [this](const Entry& entry, bool checked) {
        auto* item = new QListWidgetItem(entry.label, m_list);
        item->setData(Qt::UserRole, entry.identifier);
        item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
        item->setCheckState(checked ? Qt::Checked : Qt::Unchecked);
    };
    for (const QString& identifier : shown)
        for (const Entry& entry : m_allowed)
            if (entry.identifier == identifier)
                add(entry, true);
    for (const Entry& entry : m_allowed)
        if (!shown.contains(entry.identifier))
            add(entry, false);
}

void ToolbarCustomizeDialog::moveCurrent(int by)
{
    const int row = m_list->currentRow();
    const int target = row + by;
    if (row < 0 || target < 0 || target >= m_list->count())
        return;
    QListWidgetItem* item = m_list->takeItem(row);
    m_list->insertItem(target, item);
    m_list->setCurrentRow(target);
}

QStringList ToolbarCustomizeDialog::chosenIdentifiers() const
{
    QStringList chosen;
    for (int row = 0; row < m_list->count(); ++row)
        if (m_list->item(row)->checkState() == Qt::Checked)
            chosen.append(m_list->item(row)->data(Qt::UserRole).toString());
    return chosen;
}

} // namespace plyra
