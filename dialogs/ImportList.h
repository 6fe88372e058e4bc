// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "exchange/ImportRun.h"

#include <QGroupBox>

#include <vector>

class OpmlDocument;
class QCheckBox;
class QLineEdit;
class QPlainTextEdit;
class QTreeWidget;
class QTreeWidgetItem;

/// The wizard's page on which the feeds of an OPML document are ticked.
class ImportList final : public QGroupBox
{
    Q_OBJECT

public:
    /// Characters of a feed's name that are painted; more than any screen shows.
    static constexpr int maxShownName = 500;

    /// The page, empty. `document` isn't owned and outlives it.
    ImportList(const QString &caption, const OpmlDocument &document);

    /// Replaces the list by that of the document, nothing ticked; the box for all and the description stay what they
    /// were. False, with nothing changed, when the document is no list.
    bool fill();

    /// The feeds that are ticked, from above.
    std::vector<ImportRun::Feed> ticked() const;

    /// How many are ticked. Kept by hand with each tick; only fill() and the box for all count anew.
    qint16 checkedCount() const { return m_checkedCount; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void buildTree();
    QWidget *buildDetails();
    void showOutlineDescription(const QTreeWidgetItem &item);
    void handleItemChanged(QTreeWidgetItem *item);
    void handleItemDoubleClicked(QTreeWidgetItem *item);
    void handleCheckAll(bool checked);
    void countChecked(bool checked);

    const OpmlDocument &m_opmlDocument;
    qint16 m_checkedCount = 0;
    QTreeWidget *m_tvwListeFlux = nullptr;
    QCheckBox *m_chkCkeckAll = nullptr;
    QLineEdit *m_txtTitre = nullptr;
    QPlainTextEdit *m_txtDescription = nullptr;
};
