// The frame of the main window: how its parts are built, named and placed, and the two switches of its look.

#include "window/frmPrinc.h"

#include "controls/ProgressBar.h"
#include "controls/StatusBar.h"
#include "controls/cToolbar.h"
#include "controls/cToolbarHost.h"
#include "platform/Messages.h"
#include "reading/BrowserPane.h"
#include "reading/ItemListView.h"
#include "window/AddressBand.h"
#include "window/BrowserToolbar.h"
#include "window/FeedTreeView.h"
#include "window/MainToolbar.h"
#include "window/PaneLayout.h"
#include "window/SplitBar.h"

namespace {

const QString statePanel = QStringLiteral("state");
const QString progressPanel = QStringLiteral("progressbar");
constexpr int barWidth = 5;   // pixels
constexpr int paneMargin = 3; // pixels
constexpr int smallHostHeight = 26;
constexpr int bigHostHeight = 50;
constexpr int smallBandHeight = 22;
constexpr int bigBandHeight = 46;

} // namespace

void frmPrinc::buildFrame()
{
    const AppSettings &settings = m_s.settings;
    ToolbarLook::applyStyle(*tbrMenu, settings.officeStyle);
    tbrMenu->CreateFromMenu(&m_menus.m_cMenu);
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
    setTabOrder(tvwFavoris, lvwItems);
    setTabOrder(lvwItems, WebBrowser1);
    setTabOrder(WebBrowser1, &fraToolbar->txtURL());
    tvwFavoris->setFocus();
    m_loaded = true;
    recalcLayout();
}

void frmPrinc::buildStatusBar()
{
    stabPrinc->addPanel(statePanel, 500);
    stabPrinc->addPanel(progressPanel, 150);
    stabPrinc->addPanel(QStringLiteral("glue"), 200, StatusBar::Panel::Glue);
    prbChargement->setValue(50);
    prbChargement->hide();
    placeProgressBar();
    connect(stabPrinc, &StatusBar::panelsMoved, this, &frmPrinc::placeProgressBar);
}

void frmPrinc::placeProgressBar()
{
    prbChargement->setGeometry(stabPrinc->panelRect(progressPanel).adjusted(1, 1, -1, -1));
}

void frmPrinc::nameParts()
{
    tbrMenu->setObjectName(QStringLiteral("tbrMenu"));
    cToolbar1->setObjectName(QStringLiteral("cToolbar1"));
    cToolbar2->setObjectName(QStringLiteral("cToolbar2"));
    tvwFavoris->setObjectName(QStringLiteral("tvwFavoris"));
    picHorizontalSplit->setObjectName(QStringLiteral("picHorizontalSplit"));
    lvwItems->setObjectName(QStringLiteral("lvwItems"));
    picVerticalSplit->setObjectName(QStringLiteral("picVerticalSplit"));
    cToolbarHost1->setObjectName(QStringLiteral("cToolbarHost1"));
    tlbBrowser->setObjectName(QStringLiteral("tlbBrowser"));
    WebBrowser1->setObjectName(QStringLiteral("WebBrowser1"));
    stabPrinc->setObjectName(QStringLiteral("stabPrinc"));
    prbChargement->setObjectName(QStringLiteral("prbChargement"));

    tbrMenu->setAccessibleName(QStringLiteral("Barre de menus"));
    cToolbar1->setAccessibleName(QStringLiteral("Barre d'outils"));
    tlbBrowser->setAccessibleName(QStringLiteral("Barre d'outils de la page"));
    picHorizontalSplit->setAccessibleName(QStringLiteral("Séparation entre les favoris et les messages"));
    picVerticalSplit->setAccessibleName(QStringLiteral("Séparation entre les messages et la page"));
    prbChargement->setAccessibleName(QStringLiteral("Chargement"));
}

void frmPrinc::recalcLayout()
{
    if (!m_loaded || m_unloaded || m_bands.position() != 0)
        return;
    const double perX = m_s.scale.twipsPerPixelX;
    const double perY = m_s.scale.twipsPerPixelY;
    const int rebarHeight = m_bands.resize(width());
    const int statusHeight = stabPrinc->sizeHint().height();
    stabPrinc->setGeometry(0, height() - statusHeight, width(), statusHeight);

    FrameMeasures measures;
    measures.width = width() * perX;
    measures.height = height() * perY;
    measures.rebarHeight = rebarHeight * perY;
    measures.statusHeight = statusHeight * perY;
    measures.hostHeight = (m_s.settings.smallToolbars ? smallHostHeight : bigHostHeight) * perY;
    measures.barWidth = barWidth * perX;
    measures.margin = paneMargin * perX;
    measures.horizontal = m_s.settings.splitHorizontal;
    measures.vertical = m_s.settings.splitVertical;
    const PaneLayout layout = PaneLayout::of(measures);
    const auto place = [this](QWidget *pane, const QRectF &twips) {
        pane->setGeometry(PaneLayout::toPixels(twips, m_s.scale));
    };
    place(tvwFavoris, layout.tree);
    place(picHorizontalSplit, layout.horizontalBar);
    place(lvwItems, layout.list);
    place(picVerticalSplit, layout.verticalBar);
    place(cToolbarHost1, layout.toolbarHost);
    place(WebBrowser1, layout.browser);
}

void frmPrinc::resizeEvent(QResizeEvent *)
{
    if (!isMinimized())
        recalcLayout();
}

void frmPrinc::setHostHeight()
{
    cToolbarHost1->setHostHeight(m_s.settings.smallToolbars ? smallHostHeight : bigHostHeight);
}

void frmPrinc::setStyle(const QString &key)
{
    const cToolbar::ControlsVersion version = cToolbar1->commonControlsVersion();
    if (version.major == 4 && version.minor < 71) {
        m_s.messages.show({QStringLiteral("Impossible de changer le style"), QStringLiteral("Information"),
                           Message::Icon::Information, Message::Buttons::Ok});
        return;
    }
    const QString office = QStringLiteral("mnuOffice");
    const QString standard = QStringLiteral("mnuStandard");
    const bool officeStyle = key == office;
    for (cToolbar *toolbar : findChildren<cToolbar *>())
        ToolbarLook::applyStyle(*toolbar, officeStyle);
    // The other three menus keep the look that they had at the start until the next one; that is wanted.
    m_menus.m_cMenu.setOfficeXpStyle(officeStyle);
    m_menus.mnuPopUpListView.setOfficeXpStyle(officeStyle);
    m_menus.checkOneOf(officeStyle ? office : standard, officeStyle ? standard : office);
    m_s.settings.officeStyle = officeStyle;
}

void frmPrinc::setToolbarSize(const QString &key)
{
    const QString big = QStringLiteral("mnuTBGrande");
    const QString small = QStringLiteral("mnuTBPetite");
    const bool smallToolbars = key == small;
    m_menus.checkOneOf(smallToolbars ? small : big, smallToolbars ? big : small);
    m_s.settings.smallToolbars = smallToolbars;
    ToolbarLook::applySize(*cToolbar1, smallToolbars);
    ToolbarLook::applySize(*tlbBrowser, smallToolbars);
    setHostHeight();
    m_bands.setToolbarHeight(smallToolbars ? smallBandHeight : bigBandHeight);
    recalcLayout();
}
