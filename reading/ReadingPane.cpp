// SPDX-License-Identifier: GPL-3.0-or-later

#include "reading/ReadingPane.h"

#include "platform/Literals.h"
#include "reading/BrowserPane.h"
#include "reading/Integers.h"
#include "reading/ItemListView.h"
#include "reading/ReadingWindow.h"

namespace {

constexpr int readColumn = 2;

} // namespace

ReadingPane::ReadingPane(const PageWriter &pages, CurrentFeed &current, const AppSettings &settings,
                         ItemListView &lvwItems, BrowserPane &browser, ReadingWindow &window, QObject *parent)
    : QObject(parent), m_pages(pages), m_current(current), m_settings(settings), m_lvwItems(lvwItems),
      m_browser(browser), m_window(window)
{
    connect(&m_timRead, &QTimer::timeout, this, &ReadingPane::handleReadDelayOver);
    connect(&lvwItems, &ItemListView::clickedWithSelection, this,
            [this] { m_window.enableBrowserButton(u"send_mail"_s, true); });
    connect(&lvwItems, &ItemListView::rowClicked, this, &ReadingPane::handleRowClicked);
    connect(&lvwItems, &ItemListView::rightClickedWithoutSelection, this, [this] { m_window.showColumnMenu(); });
    connect(&lvwItems, &ItemListView::deletePressed, this, &ReadingPane::handleDeleteKey);
    connect(&lvwItems, &ItemListView::upPressed, this, &ReadingPane::handleUpKey);
    connect(&lvwItems, &ItemListView::downPressed, this, &ReadingPane::handleDownKey);
}

void ReadingPane::FillItemList()
{
    m_lvwItems.items().clear();
    m_window.enableBrowserButton(u"browser_attachment"_s, false);
    m_window.enableBrowserButton(u"browser_comments"_s, false);
    if (!m_window.updateRunning())
        ShowChannelPage();
    m_lvwItems.items().fill(*m_current.document);
}

void ReadingPane::ShowChannelPage()
{
    m_pages.writeChannelPage();
    m_browser.Navigate(m_pages.pagePath());
}

void ReadingPane::ShowItemPage(qint16 index)
{
    m_pages.writeItemPage(index);
    m_browser.Navigate2(m_pages.pagePath());

    const CachedFeed &feed = *m_current.document;
    ItemEnclosure enclosure;
    const bool hasAttachment = feed.GetItemEnclosure(index, enclosure);
    if (hasAttachment) {
        const QString size = PageWriter::FormatSize(enclosure.Length);
        m_window.setAttachmentEntry(PageWriter::UrlFileName(enclosure.Url) % u" (" % size % u")",
                                    QString::number(index));
    }
    m_window.enableBrowserButton(u"browser_attachment"_s, hasAttachment);
    // Only the next filling of the list disables the button: it stays on for an item without comments.
    if (!feed.ItemComments(index).isEmpty())
        m_window.enableBrowserButton(u"browser_comments"_s, true);

    // A timer that runs is left alone by an item that is read already; it then marks the row selected when it fires.
    if (feed.IsItemRead(index))
        return;
    if (m_settings.readDelay > 0)
        m_timRead.start(m_settings.readDelay);
    else if (m_settings.readDelay == 0)
        MarkSelectedItem(false);
}

void ReadingPane::sendItemByMail(qint16 index)
{
    m_window.showMailDialog(m_pages.mailText(index));
}

void ReadingPane::MarkSelectedItem(bool unread)
{
    const int row = m_lvwItems.selectedRow();
    if (row < 0)
        return;
    m_lvwItems.items().setRead(row, !unread);
    m_current.document->SetItemRead(m_lvwItems.items().key(row), !unread);
}

void ReadingPane::DeleteSelectedItem()
{
    const int row = m_lvwItems.selectedRow();
    if (row < 0)
        return;
    m_current.document->DeleteItem(m_lvwItems.items().key(row));
    m_current.document->Save();
    m_lvwItems.items().removeRow(row);
    m_lvwItems.selectRow(-1); // the view moves the selection to a neighbour by itself
}

int ReadingPane::selectedItem() const
{
    return m_lvwItems.items().key(m_lvwItems.selectedRow());
}

void ReadingPane::handleRowClicked(int row, int column, Qt::MouseButton button)
{
    const qint16 key = m_lvwItems.items().key(row);
    if (button == Qt::LeftButton && column == readColumn) {
        MarkSelectedItem(m_lvwItems.items().isShownRead(row));
        m_lvwItems.selectRow(-1);
    } else if (button == Qt::LeftButton) {
        ShowItemPage(key);
    } else if (button == Qt::RightButton) {
        const bool read = m_current.document->IsItemRead(key);
        m_window.showItemMenu(!read, read);
    }
}

void ReadingPane::handleDeleteKey()
{
    const auto position = static_cast<qint16>(m_lvwItems.selectedRow() + 1);
    const auto count = static_cast<qint16>(m_lvwItems.items().rowCount());
    const int next = position == count ? MaxInt(1, static_cast<qint16>(position - 1)) : position;
    DeleteSelectedItem();
    if (m_lvwItems.items().rowCount() == 0) {
        ShowChannelPage();
        return;
    }
    m_lvwItems.selectRow(next - 1);
    ShowItemPage(m_lvwItems.items().key(next - 1));
}

void ReadingPane::handleUpKey()
{
    const auto position = static_cast<qint16>(m_lvwItems.selectedRow() + 1);
    ShowItemPage(m_lvwItems.items().key(MaxInt(1, static_cast<qint16>(position - 1)) - 1));
}

void ReadingPane::handleDownKey()
{
    const int next = qMin(m_lvwItems.selectedRow() + 2, m_lvwItems.items().rowCount());
    ShowItemPage(m_lvwItems.items().key(next - 1));
}

void ReadingPane::handleReadDelayOver()
{
    m_timRead.stop();
    MarkSelectedItem(false);
}
