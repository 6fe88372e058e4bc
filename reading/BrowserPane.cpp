#include "reading/BrowserPane.h"

#include "reading/PanePage.h"
#include "reading/PaneScheme.h"

#include <QAction>
#include <QDir>
#include <QFileDialog>
#include <QList>
#include <QPointer>
#include <QStandardPaths>
#include <QTimer>
#include <QVBoxLayout>
#include <QWebEngineDownloadRequest>
#include <QWebEngineHistory>
#include <QWebEngineNewWindowRequest>
#include <QWebEngineProfile>
#include <QWebEngineScript>
#include <QWebEngineView>

#include <array>
#include <utility>

namespace {

constexpr int progressMax = 100;
constexpr int forwardCommand = 1;
constexpr int backCommand = 2;
constexpr QSize smallestPopup(200, 150);
constexpr QSize standardPopup(800, 600);

struct ActionText
{
    QWebEnginePage::WebAction action;
    QString text;
};

/// The context menu of a page speaks French; what makes no sense in a pane is left out of it.
void setUpActions(QWebEnginePage &page)
{
    const std::array<ActionText, 20> texts = {{
        {QWebEnginePage::Back, QStringLiteral("Précédent")},
        {QWebEnginePage::Forward, QStringLiteral("Suivant")},
        {QWebEnginePage::Reload, QStringLiteral("Actualiser")},
        {QWebEnginePage::Stop, QStringLiteral("Arrêter")},
        {QWebEnginePage::Cut, QStringLiteral("Couper")},
        {QWebEnginePage::Copy, QStringLiteral("Copier")},
        {QWebEnginePage::Paste, QStringLiteral("Coller")},
        {QWebEnginePage::PasteAndMatchStyle, QStringLiteral("Coller sans mise en forme")},
        {QWebEnginePage::Undo, QStringLiteral("Annuler")},
        {QWebEnginePage::Redo, QStringLiteral("Rétablir")},
        {QWebEnginePage::SelectAll, QStringLiteral("Tout sélectionner")},
        {QWebEnginePage::OpenLinkInThisWindow, QStringLiteral("Suivre le lien")},
        {QWebEnginePage::OpenLinkInNewWindow, QStringLiteral("Ouvrir le lien dans une nouvelle fenêtre")},
        {QWebEnginePage::CopyLinkToClipboard, QStringLiteral("Copier l'adresse du lien")},
        {QWebEnginePage::DownloadLinkToDisk, QStringLiteral("Enregistrer la cible du lien...")},
        {QWebEnginePage::CopyImageToClipboard, QStringLiteral("Copier l'image")},
        {QWebEnginePage::CopyImageUrlToClipboard, QStringLiteral("Copier l'adresse de l'image")},
        {QWebEnginePage::DownloadImageToDisk, QStringLiteral("Enregistrer l'image...")},
        {QWebEnginePage::CopyMediaUrlToClipboard, QStringLiteral("Copier l'adresse du média")},
        {QWebEnginePage::SavePage, QStringLiteral("Enregistrer la page...")},
    }};
    for (const ActionText &entry : texts)
        page.action(entry.action)->setText(entry.text);
    for (const auto action : {QWebEnginePage::ViewSource, QWebEnginePage::OpenLinkInNewTab,
                              QWebEnginePage::OpenLinkInNewBackgroundTab, QWebEnginePage::InspectElement})
        page.action(action)->setVisible(false);
}

} // namespace

struct BrowserPane::Private
{
    Private(BrowserPane &owner, DataDirectory directory, Messages &boxes)
        : pane(owner), scheme(std::move(directory)), messages(boxes)
    {}
    ~Private();

    void navigate(const QString &target);
    void start();
    void connectPage();
    void handleNewWindow(QWebEngineNewWindowRequest &request, PanePage &opener);
    void handleDownload(QWebEngineDownloadRequest &download);
    void handleRendererGone(QWebEnginePage::RenderProcessTerminationStatus status);
    bool isBusyAsking() const { return page && page->isAsking(); }

    BrowserPane &pane;
    PaneScheme scheme;
    Messages &messages;
    QPointer<QWebEngineProfile> profile;
    QPointer<PanePage> page;
    QPointer<QWebEngineView> view;
    QList<QPointer<QWebEngineView>> popups;
    QString pending; ///< asked for before the engine ran, or while a question is on show
    bool loading = false;
    bool choosingDownload = false;
    int rendererDeaths = 0; ///< since the program or the user last went somewhere
};

BrowserPane::Private::~Private()
{
    // Pages go before the profile that they live in, and that before its scheme handler.
    for (const QPointer<QWebEngineView> &popup : std::as_const(popups))
        delete popup.data();
    delete view.data();
    delete page.data();
    delete profile.data();
}

void BrowserPane::Private::start()
{
    const QString first = std::exchange(pending, {});
    profile = new QWebEngineProfile(&pane); // off the record: nothing of the web stays on the disk
    profile->installUrlSchemeHandler(PaneScheme::name(), &scheme);
    page = new PanePage(profile, messages, PanePage::Kind::Pane);
    page->setBackgroundColor(pane.palette().color(QPalette::Base));
    connectPage();

    view = new QWebEngineView(&pane);
    view->setPage(page);
    view->setAccessibleName(pane.accessibleName());
    pane.layout()->addWidget(view);
    pane.setFocusProxy(view);
    setUpActions(*page);
    Q_EMIT pane.CommandStateChange(forwardCommand, false);
    Q_EMIT pane.CommandStateChange(backCommand, false);
    if (!first.isEmpty())
        navigate(first);
}

void BrowserPane::Private::connectPage()
{
    connect(page, &QWebEnginePage::linkHovered, &pane, [this](const QString &link) {
        const QUrl url(link);
        Q_EMIT pane.StatusTextChange(PaneScheme::isServed(url) ? scheme.fileAddressOf(url).toString() : link);
    });
    connect(page, &QWebEnginePage::loadStarted, &pane, [this] {
        loading = true;
        Q_EMIT pane.DownloadBegin();
    });
    connect(page, &QWebEnginePage::loadProgress, &pane, [this](int progress) {
        if (loading)
            Q_EMIT pane.ProgressChange(progress, progressMax);
    });
    connect(page, &QWebEnginePage::loadFinished, &pane, [this] {
        loading = false;
        Q_EMIT pane.DocumentComplete();
    });
    connect(page->action(QWebEnginePage::Forward), &QAction::enabledChanged, &pane,
            [this](bool enabled) { Q_EMIT pane.CommandStateChange(forwardCommand, enabled); });
    connect(page->action(QWebEnginePage::Back), &QAction::enabledChanged, &pane,
            [this](bool enabled) { Q_EMIT pane.CommandStateChange(backCommand, enabled); });
    connect(page, &PanePage::feedLinkAccepted, &pane, &BrowserPane::feedLinkAccepted);
    connect(page, &PanePage::systemLinkActivated, &pane, &BrowserPane::systemLinkActivated);
    connect(page, &PanePage::linkFollowed, &pane, [this] { rendererDeaths = 0; });
    connect(page, &PanePage::questionAnswered, &pane, [this] {
        if (!pending.isEmpty())
            navigate(std::exchange(pending, {}));
    });
    connect(page, &QWebEnginePage::newWindowRequested, &pane,
            [this](QWebEngineNewWindowRequest &request) { handleNewWindow(request, *page); });
    connect(page, &QWebEnginePage::renderProcessTerminated, &pane,
            [this](QWebEnginePage::RenderProcessTerminationStatus status) { handleRendererGone(status); });
    connect(profile, &QWebEngineProfile::downloadRequested, &pane,
            [this](QWebEngineDownloadRequest *download) { handleDownload(*download); });
}

void BrowserPane::Private::navigate(const QString &target)
{
    if (!view || isBusyAsking()) {
        pending = target;
        return;
    }
    QUrl url = scheme.addressOf(target);
    if (!url.isValid())
        url = QUrl::fromUserInput(target);
    if (PanePage::canShow(url)) {
        // The engine takes the address on show for a reload and would scroll the next item's page to where this one
        // stood. The script runs in a world of its own, out of the page's reach and free of its policy.
        if (PaneScheme::owns(url) && url == page->url())
            page->runJavaScript(QStringLiteral("window.scrollTo(0, 0)"), QWebEngineScript::ApplicationWorld);
        page->load(url);
    } else if (PanePage::belongsToSystem(url))
        Q_EMIT pane.systemLinkActivated(url.toString(QUrl::FullyEncoded));
}

void BrowserPane::Private::handleNewWindow(QWebEngineNewWindowRequest &request, PanePage &opener)
{
    const QPointer<BrowserPane> alive = &pane;
    if (!opener.popupIsAllowed() || !alive)
        return;
    // A window of its own that nothing here follows any more, but for its end: it can't outlive the profile.
    auto *window = new QWebEngineView;
    window->setAttribute(Qt::WA_DeleteOnClose);
    auto *content = new PanePage(profile, messages, PanePage::Kind::Popup, window);
    window->setPage(content);
    setUpActions(*content);
    QObject::connect(content, &QWebEnginePage::windowCloseRequested, window, &QWidget::close);
    QObject::connect(content, &QWebEnginePage::titleChanged, window, &QWidget::setWindowTitle);
    QObject::connect(content, &PanePage::systemLinkActivated, &pane, &BrowserPane::systemLinkActivated);
    QObject::connect(content, &QWebEnginePage::newWindowRequested, &pane,
                     [this, content](QWebEngineNewWindowRequest &next) { handleNewWindow(next, *content); });
    const QSize asked = request.requestedGeometry().size();
    window->resize(asked.isEmpty() ? standardPopup : asked.expandedTo(smallestPopup));
    popups.removeAll(QPointer<QWebEngineView>());
    popups.append(window);
    request.openIn(content);
    window->show();
}

void BrowserPane::Private::handleDownload(QWebEngineDownloadRequest &download)
{
    if (choosingDownload)
        return; // one question at a time; a request that isn't accepted is dropped by the engine
    choosingDownload = true;
    const QPointer<BrowserPane> alive = &pane;
    const QPointer<QWebEngineDownloadRequest> request = &download;
    const QDir folder(QStandardPaths::writableLocation(QStandardPaths::DownloadLocation));
    const QString path = pane.askDownloadPath(folder.filePath(QFileInfo(download.downloadFileName()).fileName()));
    if (!alive)
        return;
    choosingDownload = false;
    if (path.isEmpty() || !request)
        return;
    const QFileInfo chosen(path);
    request->setDownloadDirectory(chosen.absolutePath());
    request->setDownloadFileName(chosen.fileName());
    connect(request, &QWebEngineDownloadRequest::isFinishedChanged, &pane, [this, request, chosen] {
        const bool complete = request && request->state() == QWebEngineDownloadRequest::DownloadCompleted;
        Q_EMIT pane.StatusTextChange(
            (complete ? QStringLiteral("Téléchargement terminé : %1") : QStringLiteral("Échec du téléchargement : %1"))
                .arg(chosen.fileName()));
    });
    request->accept();
}

/// A page whose process is gone is loaded once more, then replaced by the start page, then left: the next navigation
/// starts a new process by itself.
void BrowserPane::Private::handleRendererGone(QWebEnginePage::RenderProcessTerminationStatus status)
{
    if (status == QWebEnginePage::NormalTerminationStatus)
        return;
    ++rendererDeaths;
    if (loading) {
        loading = false;
        Q_EMIT pane.DocumentComplete();
    }
    Q_EMIT pane.StatusTextChange(QStringLiteral("L'affichage de la page s'est arrêté de façon inattendue"));
    if (rendererDeaths > 2)
        return;
    QTimer::singleShot(0, page, [this, again = rendererDeaths == 1] {
        if (again)
            page->triggerAction(QWebEnginePage::Reload);
        else
            page->load(scheme.startPage());
    });
}

BrowserPane::BrowserPane(DataDirectory directory, Messages &messages, QWidget *parent)
    : QWidget(parent), d(std::make_unique<Private>(*this, std::move(directory), messages))
{
    setAccessibleName(QStringLiteral("Page"));
    setFocusPolicy(Qt::StrongFocus);
    auto *room = new QVBoxLayout(this);
    room->setContentsMargins(0, 0, 0, 0);
}

BrowserPane::~BrowserPane() = default;

void BrowserPane::registerScheme()
{
    PaneScheme::registerScheme();
}

void BrowserPane::Navigate(const QString &url)
{
    if (url.trimmed().isEmpty())
        return;
    d->rendererDeaths = 0;
    if (!isAlive() && isVisible()) {
        d->pending = url;
        d->start();
        return;
    }
    d->navigate(url);
}

void BrowserPane::Navigate2(const QString &url)
{
    Navigate(url);
}

void BrowserPane::GoBack()
{
    if (d->page && !d->isBusyAsking())
        d->page->history()->back();
}

void BrowserPane::GoForward()
{
    if (d->page && !d->isBusyAsking())
        d->page->history()->forward();
}

void BrowserPane::Refresh()
{
    if (d->page && !d->isBusyAsking())
        d->page->triggerAction(QWebEnginePage::Reload);
}

void BrowserPane::Stop()
{
    if (d->page && !d->isBusyAsking())
        d->page->triggerAction(QWebEnginePage::Stop);
}

QString BrowserPane::LocationURL() const
{
    return d->page ? d->scheme.fileAddressOf(d->page->url()).toString(QUrl::FullyEncoded) : QString();
}

bool BrowserPane::isAlive() const
{
    return !d->view.isNull();
}

void BrowserPane::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    // Behind the first painting of the window.
    QTimer::singleShot(0, this, [this] {
        if (!isAlive() && isVisible() && !d->pending.isEmpty())
            d->start();
    });
}

QString BrowserPane::askDownloadPath(const QString &proposed)
{
    return QFileDialog::getSaveFileName(this, QStringLiteral("Enregistrer sous"), proposed);
}
