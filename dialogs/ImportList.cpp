// SPDX-License-Identifier: GPL-3.0-or-later

#include "dialogs/ImportList.h"

#include "dialogs/DialogParts.h"
#include "exchange/OpmlDocument.h"
#include "platform/Literals.h"
#include "platform/Numbers.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QSignalBlocker>
#include <QStyledItemDelegate>
#include <QTreeWidget>

using namespace DialogParts;

namespace {

enum Role { KeyRole = Qt::UserRole, TagRole };

/// Paints names that are longer than any screen only as far as they can be seen: laying out megabytes takes seconds.
class NameDelegate final : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        constexpr int air = 4; // pixels between the boxes of two rows
        return QStyledItemDelegate::sizeHint(option, index) + QSize(0, air);
    }

protected:
    void initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const override
    {
        QStyledItemDelegate::initStyleOption(option, index);
        option->text.truncate(ImportList::maxShownName);
    }
};

} // namespace

ImportList::ImportList(const QString &caption, const OpmlDocument &document)
    : QGroupBox(caption), m_opmlDocument(document)
{
    buildTree();
    m_chkCkeckAll = named(new QCheckBox(u"&Tout cocher"_s), u"chkCkeckAll"_s);
    connect(m_chkCkeckAll, &QCheckBox::toggled, this, &ImportList::handleCheckAll);

    auto *grid = new QGridLayout(this);
    grid->addWidget(m_tvwListeFlux, 0, 0);
    grid->addWidget(buildDetails(), 0, 1);
    grid->addWidget(m_chkCkeckAll, 1, 0);
    grid->setColumnStretch(0, 1);
    grid->setColumnStretch(1, 1);
}

void ImportList::buildTree()
{
    m_tvwListeFlux = named(new QTreeWidget, u"tvwListeFlux"_s);
    m_tvwListeFlux->setAccessibleName(u"Flux à importer"_s);
    m_tvwListeFlux->setHeaderHidden(true);
    m_tvwListeFlux->setRootIsDecorated(false);
    m_tvwListeFlux->setUniformRowHeights(true);
    m_tvwListeFlux->setExpandsOnDoubleClick(false);
    m_tvwListeFlux->setItemDelegate(new NameDelegate(m_tvwListeFlux));
    m_tvwListeFlux->setMinimumSize(fontMetrics().averageCharWidth() * 34, fontMetrics().lineSpacing() * 10);
    m_tvwListeFlux->installEventFilter(this);
    connect(m_tvwListeFlux, &QTreeWidget::itemClicked, this, [this](QTreeWidgetItem *item) {
        m_tvwListeFlux->setCurrentItem(item);
        showOutlineDescription(*item);
    });
    connect(m_tvwListeFlux, &QTreeWidget::itemChanged, this, &ImportList::handleItemChanged);
    connect(m_tvwListeFlux, &QTreeWidget::itemDoubleClicked, this, &ImportList::handleItemDoubleClicked);
}

QWidget *ImportList::buildDetails()
{
    auto *picDetails = named(new QWidget, u"picDetails"_s);
    m_txtTitre = lineEdit(u"txtTitre"_s);
    m_txtTitre->setReadOnly(true);
    m_txtTitre->setFocusPolicy(Qt::ClickFocus);
    m_txtDescription = textBox(u"txtDescription"_s);
    m_txtDescription->setReadOnly(true);
    m_txtDescription->setFocusPolicy(Qt::ClickFocus);
    auto *details = new QVBoxLayout(picDetails);
    details->setContentsMargins(0, 0, 0, 0);
    details->addWidget(label(u"Titre :"_s, m_txtTitre));
    details->addWidget(m_txtTitre);
    details->addWidget(label(u"Description :"_s, m_txtDescription));
    details->addWidget(m_txtDescription, 1);
    return picDetails;
}

bool ImportList::fill()
{
    const std::optional<OpmlDocument::List> list = m_opmlDocument.list();
    if (!list)
        return false;
    const QSignalBlocker quiet(m_tvwListeFlux);
    m_tvwListeFlux->clear();
    m_txtTitre->setText(list->title);
    m_txtTitre->setCursorPosition(0);
    QList<QTreeWidgetItem *> items;
    items.reserve(static_cast<qsizetype>(list->feeds.size()));
    for (const OpmlDocument::Feed &feed : list->feeds) {
        auto *item = new QTreeWidgetItem({feed.text});
        item->setData(0, KeyRole, QString::number(feed.position));
        item->setData(0, TagRole, feed.address);
        item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable | Qt::ItemNeverHasChildren);
        item->setCheckState(0, Qt::Unchecked);
        items.append(item);
    }
    m_tvwListeFlux->addTopLevelItems(items);
    m_checkedCount = 0;
    return true;
}

std::vector<ImportRun::Feed> ImportList::ticked() const
{
    std::vector<ImportRun::Feed> feeds;
    for (int i = 0; i < m_tvwListeFlux->topLevelItemCount(); ++i) {
        const QTreeWidgetItem *const item = m_tvwListeFlux->topLevelItem(i);
        if (item->checkState(0) == Qt::Checked)
            feeds.push_back({item->text(0), item->data(0, TagRole).toString()});
    }
    return feeds;
}

void ImportList::showOutlineDescription(const QTreeWidgetItem &item)
{
    const int index = item.data(0, KeyRole).toString().toInt();
    showText(*m_txtDescription, m_opmlDocument.description(index));
}

bool ImportList::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_tvwListeFlux && event->type() == QEvent::KeyPress) {
        // The control moves the selection itself, after this.
        const int key = static_cast<QKeyEvent *>(event)->key();
        const QTreeWidgetItem *const selected = m_tvwListeFlux->currentItem();
        const QTreeWidgetItem *next = nullptr;
        if (selected && key == Qt::Key_Down)
            next = m_tvwListeFlux->itemBelow(selected);
        else if (selected && key == Qt::Key_Up)
            next = m_tvwListeFlux->itemAbove(selected);
        if (next)
            showOutlineDescription(*next);
    }
    return QGroupBox::eventFilter(watched, event);
}

void ImportList::countChecked(bool checked)
{
    m_checkedCount = Numbers::roundToInt16(m_checkedCount + (checked ? 1 : -1));
}

void ImportList::handleItemChanged(QTreeWidgetItem *item)
{
    countChecked(item->checkState(0) == Qt::Checked);
}

void ImportList::handleItemDoubleClicked(QTreeWidgetItem *item)
{
    const bool checked = item->checkState(0) != Qt::Checked;
    countChecked(checked);
    const QSignalBlocker quiet(m_tvwListeFlux);
    item->setCheckState(0, checked ? Qt::Checked : Qt::Unchecked);
    m_tvwListeFlux->setCurrentItem(item);
}

void ImportList::handleCheckAll(bool checked)
{
    const QSignalBlocker quiet(m_tvwListeFlux);
    m_checkedCount = 0;
    for (int i = 0; i < m_tvwListeFlux->topLevelItemCount(); ++i) {
        m_tvwListeFlux->topLevelItem(i)->setCheckState(0, checked ? Qt::Checked : Qt::Unchecked);
        if (checked)
            countChecked(true);
    }
}
