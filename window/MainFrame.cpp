// SPDX-License-Identifier: GPL-3.0-or-later

#include "window/MainFrame.h"

#include "controls/ImageList.h"
#include "controls/ProgressBar.h"
#include "controls/StatusBar.h"
#include "controls/cToolbar.h"
#include "controls/cToolbarHost.h"
#include "platform/Literals.h"
#include "platform/Messages.h"
#include "platform/Numbers.h"
#include "reading/BrowserPane.h"
#include "reading/ItemListView.h"
#include "window/AddressBand.h"
#include "window/BrowserToolbar.h"
#include "window/FeedTreeView.h"
#include "window/LongLived.h"
#include "window/MainToolbar.h"
#include "window/PaneLayout.h"
#include "window/SplitBar.h"

namespace {

constexpr int barWidth = 5;   // pixels
constexpr int paneMargin = 3; // pixels
constexpr int smallHostHeight = 26;
constexpr int bigHostHeight = 50;
constexpr int smallBandHeight = 22;
constexpr int bigBandHeight = 46;
const QString statePanel = u"state"_s;
const QString progressPanel = u"progressbar"_s;
const QString countPanel = u"glue"_s;

} // namespace

MainFrame::MainFrame(Parts parts)
    : tbrMenu(new cToolbar(&parts.form)), cToolbar1(new cToolbar(&parts.form)), cToolbar2(new cToolbar(&parts.form)),
      fraToolbar(new AddressBand(parts.longLived.addresses, &parts.form)),
      tvwFavoris(
          new FeedTreeView(parts.longLived.tree, parts.longLived.treeState, ImageLists::vbalImageList1(), &parts.form)),
      picHorizontalSplit(new SplitBar(
          Qt::Horizontal, parts.scale,
          [this] { return PaneLayout::horizontalBounds(m_parts.form.width() * m_parts.scale.twipsPerPixelX); },
          &parts.form)),
      lvwItems(new ItemListView(parts.longLived.dates, parts.scale, &parts.form)),
      picVerticalSplit(new SplitBar(
          Qt::Vertical, parts.scale,
          [this] {
              const double perPixel = m_parts.scale.twipsPerPixelY;
              return PaneLayout::verticalBounds(m_parts.form.height() * perPixel, m_bands.height() * perPixel,
                                                stabPrinc->height() * perPixel);
          },
          &parts.form)),
      cToolbarHost1(new cToolbarHost(&parts.form)), tlbBrowser(new cToolbar(&parts.form)),
      WebBrowser1(new BrowserPane(parts.longLived.directory, parts.messages, &parts.form)),
      stabPrinc(new StatusBar(&parts.form)), prbChargement(new ProgressBar(stabPrinc)),
      menus(&parts.form, tvwFavoris, parts.longLived.settings), m_parts(parts),
      m_bands({&parts.form, tbrMenu, cToolbar1, cToolbar2, fraToolbar})
{
    nameControls();
    connect(&m_bands, &RebarBands::heightChanged, this, &MainFrame::recalcLayout);
    connect(picHorizontalSplit, &SplitBar::released, this, &MainFrame::handleHorizontalBar);
    connect(picVerticalSplit, &SplitBar::released, this, &MainFrame::handleVerticalBar);
}

void MainFrame::nameControls()
{
    const auto name = [](QWidget *control, const QString &objectName, const QString &accessibleName = {}) {
        control->setObjectName(objectName);
        if (!accessibleName.isEmpty())
            control->setAccessibleName(accessibleName);
    };
    name(tbrMenu, u"tbrMenu"_s, u"Barre de menus"_s);
    name(cToolbar1, u"cToolbar1"_s, u"Barre d'outils"_s);
    name(cToolbar2, u"cToolbar2"_s);
    name(tvwFavoris, u"tvwFavoris"_s);
    name(picHorizontalSplit, u"picHorizontalSplit"_s, u"Séparation entre les favoris et les messages"_s);
    name(lvwItems, u"lvwItems"_s);
    name(picVerticalSplit, u"picVerticalSplit"_s, u"Séparation entre les messages et la page"_s);
    name(cToolbarHost1, u"cToolbarHost1"_s);
    name(tlbBrowser, u"tlbBrowser"_s, u"Barre d'outils de la page"_s);
    name(WebBrowser1, u"WebBrowser1"_s);
    name(stabPrinc, u"stabPrinc"_s);
    name(prbChargement, u"prbChargement"_s, u"Chargement"_s);
}

void MainFrame::build()
{
    const AppSettings &settings = m_parts.longLived.settings;
    ToolbarLook::applyStyle(*tbrMenu, settings.officeStyle);
    tbrMenu->CreateFromMenu(&menus.m_cMenu);
    MainToolbar::build(*cToolbar1, settings);
    cToolbar2->hide();
    m_bands.create();
    m_bands.restoreBands(settings.rebarLayout);
    BrowserToolbar::build(*tlbBrowser, settings);
    cToolbarHost1->Capture(tlbBrowser);
    setHostHeight();
    for (int column = 1; column <= itemColumnCount; ++column)
        lvwItems->setColumnWidthTwips(column, settings.columnWidth[static_cast<std::size_t>(column)]);
    buildStatusBar();
    setPaneOrder();
    tvwFavoris->setFocus();
    m_built = true;
    recalcLayout();
}

std::vector<QWidget *> MainFrame::panes() const
{
    return {tvwFavoris, lvwItems, WebBrowser1, &fraToolbar->txtURL()};
}

void MainFrame::setPaneOrder()
{
    const std::vector<QWidget *> order = panes();
    for (std::size_t i = 1; i < order.size(); ++i)
        QWidget::setTabOrder(order[i - 1], order[i]);
}

void MainFrame::buildStatusBar()
{
    stabPrinc->addPanel(statePanel, 500);
    stabPrinc->addPanel(progressPanel, 150);
    stabPrinc->addPanel(countPanel, 200, StatusBar::Panel::Glue);
    prbChargement->setValue(50);
    prbChargement->hide();
    placeProgressBar();
    connect(stabPrinc, &StatusBar::panelsMoved, this, &MainFrame::placeProgressBar);
}

void MainFrame::placeProgressBar()
{
    prbChargement->setGeometry(stabPrinc->panelRect(progressPanel).adjusted(1, 1, -1, -1));
}

void MainFrame::recalcLayout()
{
    if (!m_built || m_bandsTaken || m_bands.position() != 0)
        return;
    const QWidget &form = m_parts.form;
    const double perX = m_parts.scale.twipsPerPixelX;
    const double perY = m_parts.scale.twipsPerPixelY;
    const int rebarHeight = m_bands.resize(form.width());
    const int statusHeight = stabPrinc->sizeHint().height();
    stabPrinc->setGeometry(0, form.height() - statusHeight, form.width(), statusHeight);

    FrameMeasures measures;
    measures.width = form.width() * perX;
    measures.height = form.height() * perY;
    measures.rebarHeight = rebarHeight * perY;
    measures.statusHeight = statusHeight * perY;
    measures.hostHeight = (m_parts.longLived.settings.smallToolbars ? smallHostHeight : bigHostHeight) * perY;
    measures.barWidth = barWidth * perX;
    measures.margin = paneMargin * perX;
    measures.horizontal = m_parts.longLived.settings.splitHorizontal;
    measures.vertical = m_parts.longLived.settings.splitVertical;
    const PaneLayout layout = PaneLayout::of(measures);
    const auto place = [this](QWidget *pane, const QRectF &twips) {
        pane->setGeometry(PaneLayout::toPixels(twips, m_parts.scale));
    };
    place(tvwFavoris, layout.tree);
    place(picHorizontalSplit, layout.horizontalBar);
    place(lvwItems, layout.list);
    place(picVerticalSplit, layout.verticalBar);
    place(cToolbarHost1, layout.toolbarHost);
    place(WebBrowser1, layout.browser);
}

void MainFrame::handleHorizontalBar()
{
    m_parts.longLived.settings.splitHorizontal = Numbers::roundToInt16(picHorizontalSplit->positionTwips());
    recalcLayout();
}

void MainFrame::handleVerticalBar()
{
    m_parts.longLived.settings.splitVertical =
        Numbers::roundToInt16(picVerticalSplit->positionTwips() - m_bands.height() * m_parts.scale.twipsPerPixelY);
    recalcLayout();
}

void MainFrame::setHostHeight()
{
    cToolbarHost1->setHostHeight(m_parts.longLived.settings.smallToolbars ? smallHostHeight : bigHostHeight);
}

void MainFrame::setStyle(const QString &key)
{
    const cToolbar::ControlsVersion version = cToolbar1->commonControlsVersion();
    if (version.major == 4 && version.minor < 71) {
        m_parts.messages.show(
            {u"Impossible de changer le style"_s, u"Information"_s, Message::Icon::Information, Message::Buttons::Ok});
        return;
    }
    const QString office = u"mnuOffice"_s;
    const QString standard = u"mnuStandard"_s;
    const bool officeStyle = key == office;
    for (cToolbar *toolbar : m_parts.form.findChildren<cToolbar *>())
        ToolbarLook::applyStyle(*toolbar, officeStyle);
    // The other three menus keep the look that they had at the start until the next one: they belong to panes, which
    // change their look as a whole.
    menus.m_cMenu.setOfficeXpStyle(officeStyle);
    menus.mnuPopUpListView.setOfficeXpStyle(officeStyle);
    menus.checkOneOf(officeStyle ? office : standard, officeStyle ? standard : office);
    m_parts.longLived.settings.officeStyle = officeStyle;
}

void MainFrame::setToolbarSize(const QString &key)
{
    const QString big = u"mnuTBGrande"_s;
    const QString small = u"mnuTBPetite"_s;
    const bool smallToolbars = key == small;
    menus.checkOneOf(smallToolbars ? small : big, smallToolbars ? big : small);
    m_parts.longLived.settings.smallToolbars = smallToolbars;
    ToolbarLook::applySize(*cToolbar1, smallToolbars);
    ToolbarLook::applySize(*tlbBrowser, smallToolbars);
    setHostHeight();
    m_bands.fitToolbar(smallToolbars ? smallBandHeight : bigBandHeight);
    recalcLayout();
}

void MainFrame::setStatusText(const QString &text)
{
    stabPrinc->setPanelText(statePanel, text);
}

void MainFrame::setCountText(const QString &text)
{
    stabPrinc->setPanelText(countPanel, text);
}

void MainFrame::showColumn(int column, bool shown)
{
    const auto place = static_cast<std::size_t>(column);
    const qint16 saved = m_parts.longLived.settings.columnWidthInt.at(place);
    const qint16 width = saved != 0 ? saved : m_parts.longLived.settings.columnDefaultWidth.at(place);
    lvwItems->setColumnWidthTwips(column, shown ? width : 0);
}

QString MainFrame::takeBandLayout()
{
    QString layout = m_bands.layout();
    m_bandsTaken = true;
    m_bands.removeAllBands();
    return layout;
}

WindowGeometry MainFrame::geometryInTwips() const
{
    const QWidget &form = m_parts.form;
    const double perX = m_parts.scale.twipsPerPixelX;
    const double perY = m_parts.scale.twipsPerPixelY;
    WindowGeometry geometry{form.x() * perX, form.y() * perY, form.width() * perX, form.height() * perY, {}};
    for (int column = 1; column <= itemColumnCount; ++column)
        geometry.columnWidth[static_cast<std::size_t>(column)] = lvwItems->columnWidthTwips(column);
    return geometry;
}
