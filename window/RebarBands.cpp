// SPDX-License-Identifier: GPL-3.0-or-later

#include "window/RebarBands.h"

#include "controls/Twips.h"
#include "controls/cReBar.h"
#include "controls/cToolbar.h"
#include "platform/Literals.h"

#include <cmath>

namespace {
const QString menuBand = u"MenuBar"_s;
const QString toolBand = u"ToolBar"_s;
const QString styleBand = u"StyleBar"_s;
constexpr int toolBandNumber = 1;
constexpr int menuBandHeight = 24;
constexpr int toolBandHeight = 40;
} // namespace

RebarBands::RebarBands(Parts parts, QObject *parent) : QObject(parent), m_parts(parts) {}

void RebarBands::newRebar(bool withMinimumHeights)
{
    if (m_cReBar1) {
        m_cReBar1->RemoveAllBands();
        delete m_cReBar1;
    }
    m_cReBar1 = new cReBar(m_parts.form);
    m_cReBar1->setObjectName(u"cReBar1"_s);
    const auto add = [&](QWidget *child, bool newRow, const QString &name, int minimumHeight) {
        m_cReBar1->AddBand(child, QString(), newRow, false, name);
        if (withMinimumHeights && minimumHeight > 0)
            m_cReBar1->setBandMinimumSize(m_cReBar1->BandCount() - 1, -1, minimumHeight);
    };
    add(m_parts.tbrMenu, true, menuBand, menuBandHeight);
    add(m_parts.cToolbar1, true, toolBand, toolBandHeight);
    add(m_parts.fraToolbar, false, styleBand, 0);
    connect(m_cReBar1, &cReBar::HeightChanged, this, &RebarBands::heightChanged);
    connect(m_cReBar1, &cReBar::ChevronPushed, this, &RebarBands::handleChevron);
}

void RebarBands::create()
{
    newRebar(true);
}

void RebarBands::restoreBands(const QString &layout)
{
    newRebar(false);
    if (!m_cReBar1->restoreLayout(layout))
        newRebar(true);
    m_cReBar1->show();
    m_cReBar1->RebarSize();
}

QString RebarBands::layout() const
{
    return m_cReBar1->saveLayout();
}

void RebarBands::removeAllBands()
{
    m_cReBar1->RemoveAllBands();
}

void RebarBands::fitToolbar(int minimumHeight)
{
    m_cReBar1->setBandMinimumSize(toolBandNumber, -1, minimumHeight);
    m_cReBar1->showAllOfBand(toolBandNumber);
    m_cReBar1->RebarSize();
}

int RebarBands::resize(int width)
{
    m_cReBar1->resize(width, m_cReBar1->height());
    m_cReBar1->RebarSize();
    m_cReBar1->setGeometry(0, 0, width, m_cReBar1->rebarHeight());
    return m_cReBar1->rebarHeight();
}

int RebarBands::height() const
{
    return m_cReBar1->rebarHeight();
}

int RebarBands::position() const
{
    return m_cReBar1->position();
}

void RebarBands::handleChevron(int id, double, double top, double right, double)
{
    const QString band = m_cReBar1->BandData(id);
    cToolbar *toolbar = band == menuBand    ? m_parts.tbrMenu
                        : band == toolBand  ? m_parts.cToolbar1
                        : band == styleBand ? m_parts.cToolbar2
                                            : nullptr;
    if (!toolbar)
        return;
    const QPoint place(static_cast<int>(std::floor(right / Twips::perPixelX(m_parts.form))) + 1,
                       static_cast<int>(std::floor(top / Twips::perPixelY(m_parts.form))));
    toolbar->ShowOverflow(m_cReBar1->mapToGlobal(place));
}
