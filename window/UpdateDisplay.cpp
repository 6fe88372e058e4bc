// SPDX-License-Identifier: GPL-3.0-or-later

#include "window/UpdateDisplay.h"

#include "controls/ProgressBar.h"
#include "controls/ScreenReader.h"
#include "controls/StatusBar.h"
#include "controls/cToolbar.h"
#include "engine/UpdateScheduler.h"
#include "platform/Literals.h"
#include "reading/ItemListView.h"
#include "reading/ReadingPane.h"
#include "window/MainFrame.h"
#include "window/MainToolbar.h"
#include "window/frmUpdate.h"

#include <utility>

UpdateDisplay::UpdateDisplay(Parts parts, QObject *parent) : QObject(parent), m_parts(parts)
{
    const UpdateScheduler &scheduler = m_parts.scheduler;
    connect(&scheduler, &UpdateScheduler::began, this, &UpdateDisplay::handleBegan);
    connect(&scheduler, &UpdateScheduler::fetchBegan, this, [this] { m_parts.frame.prbChargement->show(); });
    connect(&scheduler, &UpdateScheduler::progress, this,
            [this](int percent) { m_parts.frame.prbChargement->setValue(percent); });
    connect(&scheduler, &UpdateScheduler::fetchEnded, this, [this] { m_parts.frame.prbChargement->hide(); });
    connect(&scheduler, &UpdateScheduler::newItemsFound, this, &UpdateDisplay::handleNewItems);
    connect(&scheduler, &UpdateScheduler::feedOnShowReloaded, this, &UpdateDisplay::handleReloaded);
    connect(&scheduler, &UpdateScheduler::feedRepaired, this, [this] { m_isRepaired = true; });
    connect(&scheduler, &UpdateScheduler::ended, this, &UpdateDisplay::handleEnded);
    connect(&scheduler, &UpdateScheduler::allBegan, this, [this] { enableUpdateButton(false); });
    connect(&scheduler, &UpdateScheduler::allEnded, this, [this] { enableUpdateButton(true); });
    connect(&scheduler, &UpdateScheduler::walkReached, this, [this](int place, int count) {
        if (!std::exchange(m_walks, true))
            m_newInWalk = 0;
        if (count > 1)
            m_parts.frame.setCountText(QString::number(place) + u" / "_s + QString::number(count));
    });
    connect(&scheduler, &UpdateScheduler::walkEnded, this, &UpdateDisplay::handleWalkEnded);
}

UpdateDisplay::~UpdateDisplay() = default;

void UpdateDisplay::dismissPopup()
{
    m_frmUpdate.reset();
}

void UpdateDisplay::enableUpdateButton(bool enabled)
{
    m_parts.frame.cToolbar1->setButtonEnabled(MainToolbar::Actualiser, enabled);
}

void UpdateDisplay::handleBegan(const FeedNodePtr &node)
{
    enableUpdateButton(false);
    m_parts.frame.setStatusText(u"Mise à jour de "_s + node->text());
}

void UpdateDisplay::handleNewItems(const QString &title, qint16 count)
{
    if (!m_parts.settings.notifyNew)
        return;
    if (!m_frmUpdate)
        m_frmUpdate = std::make_unique<frmUpdate>(frmUpdate::workAreaOf(&m_parts.form), m_parts.settings,
                                                  std::make_unique<WaveSoundPlayer>());
    m_frmUpdate->addMessageToQueue(title, count);
}

void UpdateDisplay::handleReloaded(qint16 newItems)
{
    const int row = m_parts.frame.lvwItems->selectedRow();
    m_parts.reading.FillItemList();
    if (row >= 0)
        m_parts.frame.lvwItems->selectRow(row + newItems); // the same item as before, now further down
}

void UpdateDisplay::handleEnded(const FeedNodePtr &node, qint16 newItems)
{
    if (!m_parts.scheduler.updateAllRunning())
        enableUpdateButton(true);
    const QString text = u"Mise à jour de "_s + node->text() + u" terminée ("_s + QString::number(newItems) +
                         u" nouveaux messages)"_s +
                         (std::exchange(m_isRepaired, false) ? u", flux réparé"_s : QString());
    m_parts.frame.setStatusText(text);
    m_newInWalk += newItems;
    if (!m_walks)
        ScreenReader::announce(*m_parts.frame.stabPrinc, text);
}

void UpdateDisplay::handleWalkEnded(bool asked)
{
    m_parts.frame.setCountText({});
    m_walks = false;
    // The feeds that are due come round every minute; who hears the screen has the popup for what they bring.
    if (asked)
        ScreenReader::announce(*m_parts.frame.stabPrinc,
                               u"Mise à jour terminée ("_s + QString::number(m_newInWalk) + u" nouveaux messages)"_s);
}
