#include "window/frmPrinc.h"

#include "controls/ImageList.h"
#include "controls/ProgressBar.h"
#include "controls/StatusBar.h"
#include "controls/cReBar.h"
#include "controls/cToolbar.h"
#include "controls/cToolbarHost.h"
#include "dialogs/MakerSite.h"
#include "platform/Messages.h"
#include "platform/Numbers.h"
#include "platform/net/Downloader.h"
#include "reading/BrowserPane.h"
#include "reading/ItemListView.h"
#include "window/AddressBand.h"
#include "window/BrowserToolbar.h"
#include "window/FeedTreeView.h"
#include "window/MainToolbar.h"
#include "window/PaneLayout.h"
#include "window/SplitBar.h"
#include "window/frmSysTray.h"
#include "window/frmUpdate.h"

#include <QCloseEvent>

namespace {

const QString homePage = QStringLiteral("home.htm");
const QString statePanel = QStringLiteral("state");

} // namespace

frmPrinc::frmPrinc(Surroundings surroundings)
    : m_s(std::move(surroundings)), m_catalogue(m_s.directory, m_tree, m_DESCrypt, m_s.clock),
      m_dwlFeed(m_s.makeDownloader()), m_dwlUpdate(m_s.makeDownloader()), m_dialogs(dialogNeeds()),
      tbrMenu(new cToolbar(this)), cToolbar1(new cToolbar(this)), cToolbar2(new cToolbar(this)),
      fraToolbar(new AddressBand(this)), tvwFavoris(new FeedTreeView(m_tree, ImageLists::vbalImageList1(), this)),
      picHorizontalSplit(new SplitBar(
          Qt::Horizontal, m_s.scale,
          [this] { return PaneLayout::horizontalBounds(width() * m_s.scale.twipsPerPixelX); }, this)),
      lvwItems(new ItemListView(Dates(), m_s.scale, this)),
      picVerticalSplit(new SplitBar(
          Qt::Vertical, m_s.scale,
          [this] {
              const double perPixel = m_s.scale.twipsPerPixelY;
              return PaneLayout::verticalBounds(height() * perPixel, m_bands.height() * perPixel,
                                                stabPrinc->height() * perPixel);
          },
          this)),
      cToolbarHost1(new cToolbarHost(this)), tlbBrowser(new cToolbar(this)),
      WebBrowser1(new BrowserPane(m_s.directory, m_s.messages, this)), stabPrinc(new StatusBar(this)),
      prbChargement(new ProgressBar(stabPrinc)), m_bands({this, tbrMenu, cToolbar1, cToolbar2, fraToolbar}),
      m_menus(this, tvwFavoris, m_s.settings), m_pages(m_s.directory, m_current, Dates()),
      m_windowForReading({*tlbBrowser, *lvwItems, m_menus, [this] { return m_scheduler.updateRunning(); },
                          [this](const QString &text) { m_dialogs.showMailDialog(text); }}),
      m_reading(m_pages, m_current, m_s.settings, *lvwItems, *WebBrowser1, m_windowForReading),
      m_windowForEngine({*fraToolbar, *lvwItems, m_reading, *cToolbar1, *tlbBrowser, *prbChargement, *stabPrinc,
                         *WebBrowser1, [this] { m_dialogs.showAuthentication(); },
                         [this](const QString &title, qint16 count) { announce(title, count); }}),
      m_opener(m_s.directory, m_current, *m_dwlFeed, m_windowForEngine, m_s.messages),
      m_scheduler({m_s.directory, m_tree, m_catalogue.tables, m_current, m_s.settings, m_DESCrypt, *m_dwlUpdate,
                   m_windowForEngine, m_s.isConnected, m_s.clock, m_s.wait}),
      m_treeCommands({m_tree, m_catalogue, m_opener, m_current, *tvwFavoris, *cToolbar1, m_menus.mnuTreeView,
                      m_windowForEngine, m_s.messages, m_s.inputBox, m_s.directory.file(homePage)}),
      m_server(m_s.runtimeDirectory)
{
    setWindowTitle(QStringLiteral("Quillwire"));
    setWindowIcon(QIcon(QStringLiteral(":/icons/quillwire.svg")));
    nameParts();
}

frmPrinc::~frmPrinc() = default;

Dialogs::Needs frmPrinc::dialogNeeds()
{
    return {
        .frame = this,
        .messages = m_s.messages,
        .directory = m_s.directory,
        .settings = m_s.settings,
        .current = m_current,
        .tables = m_catalogue.tables,
        .cipher = m_DESCrypt,
        .selectedNode = [this] { return m_tree.selected(); },
        .addressText = [this] { return addressText(); },
        .setAddressText = [this](const QString &text) { setAddressText(text); },
        .LoadFile = [this] { LoadFile(); },
        .navigate = [this](const QString &url) { navigate(url); },
        .openInSystemBrowser = [this](const QString &url) { openInSystemBrowser(url); },
        .AddFeed = [this](const std::shared_ptr<CachedFeed> &document, const QString &url) { AddFeed(document, url); },
        .makeDownloader = m_s.makeDownloader,
        .makeHelp = m_s.makeHelp,
        .runAtStartup = m_s.runAtStartup,
        .wait = m_s.wait};
}

void frmPrinc::load(const QString &commandLine)
{
    buildFrame();
    connectPanes();
    addCommands();
    navigate(m_s.directory.file(homePage));
    m_catalogue.loadCatalogue();
    showTrayIcon(true);
    connect(&m_server, &InstanceServer::textReceived, this, &frmPrinc::handleHandOver);
    connect(&m_server, &InstanceServer::activationAsked, this, &frmPrinc::handleActivationAsked);
    m_server.listen();
    if (!commandLine.isEmpty())
        m_opener.openCommandLine(commandLine);
    m_scheduler.start(m_s.settings.updateAtStart);
}

void frmPrinc::connectPanes()
{
    connect(&m_bands, &RebarBands::heightChanged, this, &frmPrinc::recalcLayout);
    connect(picHorizontalSplit, &SplitBar::released, this, [this] {
        m_s.settings.splitHorizontal = Numbers::roundToInt16(picHorizontalSplit->positionTwips());
        recalcLayout();
    });
    connect(picVerticalSplit, &SplitBar::released, this, [this] {
        m_s.settings.splitVertical =
            Numbers::roundToInt16(picVerticalSplit->positionTwips() - m_bands.height() * m_s.scale.twipsPerPixelY);
        recalcLayout();
    });
    connect(cToolbar1, &cToolbar::ButtonClick, this, &frmPrinc::handleMainButton);
    connect(fraToolbar, &AddressBand::entered, &m_opener, &FeedOpener::handleAddressEntered);
    connect(fraToolbar, &AddressBand::imageClicked, this, &frmPrinc::handleImage1);

    m_browserToolbar = std::make_unique<BrowserToolbar>(
        BrowserToolbar::Parts{*tlbBrowser, m_menus.mnuAttachment, *WebBrowser1, m_reading, m_current,
                              [this](const QString &url) { openInSystemBrowser(url); }});
    connect(WebBrowser1, &BrowserPane::StatusTextChange, this,
            [this](const QString &text) { stabPrinc->setPanelText(statePanel, text); });
    connect(WebBrowser1, &BrowserPane::ProgressChange, this, &frmPrinc::handlePageProgress);
    connect(WebBrowser1, &BrowserPane::DocumentComplete, this, [this] { prbChargement->hide(); });
    // Queued: what is opened may raise a run-time error, which can't travel through the browser engine.
    connect(WebBrowser1, &BrowserPane::feedLinkAccepted, this, &frmPrinc::handleFeedLink, Qt::QueuedConnection);
    connect(WebBrowser1, &BrowserPane::systemLinkActivated, this, &frmPrinc::openInSystemBrowser);
}

void frmPrinc::addCommands()
{
    const auto add = [this](const char16_t *key, std::function<void()> action) {
        m_commands.add(QString::fromUtf16(key), std::move(action));
    };
    const auto site = [this](const QString &path) {
        return [this, path] { openInSystemBrowser(MakerSite::page(path)); };
    };
    add(u"mnuQuitter", [this] { postClose(); });
    add(u"mnuOffice", [this] { setStyle(QStringLiteral("mnuOffice")); });
    add(u"mnuStandard", [this] { setStyle(QStringLiteral("mnuStandard")); });
    add(u"mnuTBGrande", [this] { setToolbarSize(QStringLiteral("mnuTBGrande")); });
    add(u"mnuTBPetite", [this] { setToolbarSize(QStringLiteral("mnuTBPetite")); });
    add(u"mnuMajAll", [this] { updateAllFeeds(); });
    add(u"mnuOptions", [this] { m_dialogs.showOptions(); });
    add(u"mnuRechercherFeedster", [this] { m_dialogs.showSearchDialog(1); });
    add(u"mnuRechercherDayPop", [this] { m_dialogs.showSearchDialog(2); });
    add(u"mnuRechercherWeb", [this] { m_dialogs.showSearchDialog(3); });
    add(u"mnuImporterFlux", [this] { m_dialogs.showImport(); });
    add(u"mnuExporterFlux", [this] { m_dialogs.showExport(); });
    add(u"mnuAideSommaire", [this] { m_dialogs.showHelp(); });
    add(u"mnuWebAccueil", site(QString()));
    add(u"mnuWebInfos", site(QStringLiteral("prog/Quillwire/")));
    add(u"mnuWebFAQ", site(QStringLiteral("prog/Quillwire/faq.php")));
    add(u"mnuApropos", [this] { m_dialogs.showAbout(); });
    add(u"mnuPopLvwMarkAsUnread", [this] { m_reading.MarkSelectedItem(true); });
    add(u"mnuPopLvwMarkAsRead", [this] { m_reading.MarkSelectedItem(false); });
    add(u"mnuPopLvwSupprimer", [this] { m_reading.DeleteSelectedItem(); });
    add(u"mnuRafraichir", [this] { updateFeed(m_tree.selected()); });
    add(u"mnuSupprimer", [this] { m_treeCommands.deleteSelectedNode(m_tree.selected()); });
    add(u"mnuProprietes", [this] { showFeedProperties(); });
    add(u"mnuNouveauDossier", [this] { m_treeCommands.createFolder(m_tree.selected()); });
    connectMenu(m_menus.m_cMenu);
    connectMenu(m_menus.mnuPopUpListView);
    connectMenu(m_menus.mnuTreeView);
    connect(&m_menus.mnuPopUpListViewHeader, &cPopupMenu::Click, this, &frmPrinc::handleColumnEntry);
}

void frmPrinc::connectMenu(cPopupMenu &menu)
{
    connect(&menu, &cPopupMenu::Click, this, [this, &menu](int index) { m_commands.run(menu.ItemKey(index)); });
}

// --- The end of the program

void frmPrinc::unload()
{
    if (std::exchange(m_unloaded, true))
        return;
    m_scheduler.stop();
    m_dwlFeed->blockSignals(true);
    m_dwlUpdate->blockSignals(true);
    m_frmUpdate.reset();
    m_current.document->Save();
    m_s.settings.rebarLayout = m_bands.layout();
    m_bands.removeAllBands();
    showTrayIcon(false);
    m_server.close();
    saveAndClose();
    Q_EMIT unloaded();
}

void frmPrinc::saveAndClose()
{
    m_catalogue.saveCatalogueState();
    m_s.settingsFile.saveSettings(m_s.settings, geometryInTwips(), [this] { saveAndClose(); });
    m_s.releaseInstance();
}

void frmPrinc::abandon()
{
    m_unloaded = true;
    m_scheduler.stop();
    m_dwlFeed->blockSignals(true);
    m_dwlUpdate->blockSignals(true);
    m_server.close();
}

void frmPrinc::postClose()
{
    QMetaObject::invokeMethod(
        this,
        [this] {
            close();
            unload(); // a window that was never shown gets no close event
        },
        Qt::QueuedConnection);
}

void frmPrinc::closeEvent(QCloseEvent *event)
{
    unload();
    event->accept();
}

WindowGeometry frmPrinc::geometryInTwips() const
{
    const double perX = m_s.scale.twipsPerPixelX;
    const double perY = m_s.scale.twipsPerPixelY;
    WindowGeometry geometry{x() * perX, y() * perY, width() * perX, height() * perY, {}};
    for (int column = 1; column <= itemColumnCount; ++column)
        geometry.columnWidth[static_cast<std::size_t>(column)] = lvwItems->columnWidthTwips(column);
    return geometry;
}

// --- Minimising

void frmPrinc::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    // Without an icon that leads back to it the window stays minimised, as other windows do.
    if (event->type() == QEvent::WindowStateChange && isMinimized() && m_frmSysTray && m_frmSysTray->isAvailable())
        QMetaObject::invokeMethod(
            this,
            [this] {
                m_iconic = true;
                hide();
            },
            Qt::QueuedConnection);
}

// --- The tray icon and the second start

void frmPrinc::showTrayIcon(bool shown)
{
    if (!shown) {
        m_frmSysTray.reset();
        return;
    }
    m_frmSysTray = std::make_unique<frmSysTray>(m_s.makeTrayShell(), windowIcon(), QStringLiteral("Quillwire"));
    m_frmSysTray->AddMenuItem(QStringLiteral("&Ouvrir"), QStringLiteral("ouvrir"), true);
    m_frmSysTray->AddMenuItem(QStringLiteral("-"), QString(), false);
    m_frmSysTray->AddMenuItem(QStringLiteral("&Quitter"), QStringLiteral("quitter"), false);
    m_frmSysTray->setToolTip(QStringLiteral("Quillwire 3.1"));
    m_frmSysTray->setIconHandle(m_frmSysTray->handleOf(windowIcon()));
    connectTray();
}

void frmPrinc::connectTray()
{
    // A double click doesn't show a window that was never shown; only the menu's entry does. That is wanted.
    connect(m_frmSysTray.get(), &frmSysTray::SysTrayDoubleClick, this, [this] {
        openIcon();
        raise();
        activateWindow();
    });
    connect(m_frmSysTray.get(), &frmSysTray::SysTrayMouseDown, this, [this](int button) {
        if (button == 2)
            m_frmSysTray->ShowMenu();
    });
    connect(m_frmSysTray.get(), &frmSysTray::MenuClick, this, [this](int, const QString &key) { handleTrayMenu(key); });
}

void frmPrinc::handleTrayMenu(const QString &key)
{
    if (key == QLatin1String("ouvrir"))
        comeForward();
    else if (key == QLatin1String("quitter"))
        postClose();
}

void frmPrinc::openIcon()
{
    if (!m_iconic && !isMinimized())
        return;
    m_iconic = false;
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
}

void frmPrinc::comeForward()
{
    openIcon();
    show();
    raise();
    activateWindow();
}

void frmPrinc::hideToTray()
{
    if (m_frmSysTray && m_frmSysTray->isAvailable())
        hide();
    else
        showMinimized();
}

void frmPrinc::handleHandOver(const QString &text)
{
    if (!isVisible())
        comeForward();
    m_opener.openCommandLine(text);
    comeForward();
}

void frmPrinc::handleActivationAsked()
{
    comeForward();
}

// --- What the panes and the toolbar ask for

void frmPrinc::handleMainButton(int index)
{
    const FeedNodePtr selected = m_tree.selected();
    if (index == MainToolbar::Actualiser && selected)
        updateFeed(selected);
    else if (index == MainToolbar::Supprimer && selected)
        m_treeCommands.deleteSelectedNode(selected);
    else if (index == MainToolbar::Proprietes)
        showFeedProperties();
    else if (index == MainToolbar::Ajouter)
        AddFeed(nullptr, QString());
}

void frmPrinc::handleColumnEntry(int index)
{
    cPopupMenu &menu = m_menus.mnuPopUpListViewHeader;
    const int column = menu.ItemData(index);
    const auto place = static_cast<std::size_t>(column);
    const bool wasShown = menu.Checked(index);
    const qint16 saved = m_s.settings.columnWidthInt.at(place);
    lvwItems->setColumnWidthTwips(column, wasShown     ? 0
                                          : saved != 0 ? saved
                                                       : m_s.settings.columnDefaultWidth.at(place));
    menu.setChecked(index, !wasShown);
}

void frmPrinc::handlePageProgress(int progress, int progressMax)
{
    if (progressMax == 0)
        return;
    prbChargement->show();
    // Not in percent: for a page the bar stays at 0 or 1, which is wanted.
    prbChargement->setValue(Numbers::roundToInt32(static_cast<double>(progress) / progressMax));
}

void frmPrinc::handleFeedLink(const QString &url)
{
    setAddressText(url);
    m_opener.handleAddressEntered();
}

void frmPrinc::handleImage1()
{
    const QString path = m_s.askFeedFile(QStringLiteral("Ouvrir un fichier RSS"),
                                         QStringLiteral("Fichiers XML (*.xml);;Fichiers RSS (*.rss);;"
                                                        "Fichiers RDF (*.rdf);;Tous les fichiers (*)"));
    if (!path.isEmpty())
        setAddressText(path);
}

void frmPrinc::announce(const QString &title, qint16 count)
{
    if (!m_frmUpdate)
        m_frmUpdate =
            std::make_unique<frmUpdate>(frmUpdate::workAreaOf(this), m_s.settings, std::make_unique<WaveSoundPlayer>());
    m_frmUpdate->addMessageToQueue(title, count);
}

void frmPrinc::updateFeed(const FeedNodePtr &node)
{
    m_scheduler.updateFeed(node);
}

void frmPrinc::updateAllFeeds()
{
    m_scheduler.updateAllFeeds();
}

void frmPrinc::showFeedProperties()
{
    m_dialogs.showFeedProperties();
}

// --- What dialogs and panes ask for

void frmPrinc::AddFeed(const std::shared_ptr<CachedFeed> &document, const QString &strURL)
{
    if (!document && !m_current.addressFeedShown)
        return;
    if (document)
        m_current.document = document;
    m_catalogue.addFeed({m_current.document->Title(), m_current.document->Ttl(),
                         strURL.isEmpty() ? addressText() : strURL, m_current.strUsername, m_current.strPassword});
}

void frmPrinc::LoadFile()
{
    m_opener.LoadFile();
}

void frmPrinc::navigate(const QString &url)
{
    WebBrowser1->Navigate(url);
}

void frmPrinc::openInSystemBrowser(const QString &url)
{
    if (!m_s.openInSystemBrowser(url))
        stabPrinc->setPanelText(statePanel, QStringLiteral("Impossible d'ouvrir : ") + url);
}

QString frmPrinc::addressText() const
{
    return fraToolbar->txtURL().text();
}

void frmPrinc::setAddressText(const QString &text)
{
    fraToolbar->txtURL().setText(text);
}
