// SPDX-License-Identifier: GPL-3.0-or-later

#include "reading/web/EngineView.h"

#include "platform/Literals.h"
#include "reading/web/Addresses.h"

#include <QAction>
#include <QTimer>
#include <QWebEngineNewWindowRequest>
#include <QWebEngineProfile>
#include <QWebEngineScript>
#include <QWebEngineView>

#include <utility>

namespace {

constexpr int progressMax = 100;
constexpr int forwardCommand = 1;
constexpr int backCommand = 2;
constexpr int pagesAClearing = 10;
constexpr QSize smallestPopup(200, 150);
constexpr QSize standardPopup(800, 600);

/// What makes no sense in a pane is left out of the context menu of a page.
void setUpActions(QWebEnginePage &page)
{
    for (const auto action : {QWebEnginePage::ViewSource, QWebEnginePage::OpenLinkInNewTab,
                              QWebEnginePage::OpenLinkInNewBackgroundTab, QWebEnginePage::InspectElement})
        page.action(action)->setVisible(false);
}

/// The window bears the title of its page, or the page's address; until there is one, the address that it comes from.
void keepNamed(QWidget &window, const QWebEnginePage &page, const QUrl &origin)
{
    const auto name = [&window, &page, origin] {
        const QUrl url = Addresses::isWeb(page.url()) ? page.url() : origin;
        window.setWindowTitle(page.title().isEmpty() ? url.toDisplayString() : page.title());
    };
    QObject::connect(&page, &QWebEnginePage::titleChanged, &window, name);
    QObject::connect(&page, &QWebEnginePage::urlChanged, &window, name);
    name();
}

} // namespace

EngineView::EngineView(const Folder &folder, Messages &messages, QWidget *parent, Events events)
    : m_colours(*parent), m_scheme(folder, m_colours), m_boxes(messages), m_events(std::move(events)),
      m_downloads(m_boxes, m_events)
{
    m_profile = new QWebEngineProfile(&m_context); // off the record: nothing of the web stays on the disk
    m_profile->setHttpAcceptLanguage(u"fr-FR,fr;q=0.9,en;q=0.5"_s);
    m_profile->installUrlSchemeHandler(PaneScheme::name(), &m_scheme);
    m_profile->setUrlRequestInterceptor(&m_guard);
    m_page = new PanePage(m_profile, m_boxes, PanePage::Kind::Pane);
    m_page->setBackgroundColor(m_colours.paper());
    connectPage();
    connectColours();

    m_view = new QWebEngineView(parent);
    m_view->setPage(m_page);
    m_view->setAccessibleName(parent->accessibleName());
    m_page->acts().watch(*m_view);
    setUpActions(*m_page);
    m_events.commandState(forwardCommand, false);
    m_events.commandState(backCommand, false);
}

EngineView::~EngineView()
{
    // Pages go before the profile that they live in, and that before its scheme handler.
    for (const QPointer<QWebEngineView> &popup : std::as_const(m_popups))
        delete popup.data();
    delete m_view.data();
    delete m_page.data();
    delete m_profile.data();
}

QWidget *EngineView::widget()
{
    return m_view;
}

void EngineView::connectPage()
{
    QObject::connect(m_page, &QWebEnginePage::linkHovered, &m_context, [this](const QString &link) {
        const QUrl url(link);
        m_events.statusText(PaneScheme::isServed(url) ? m_scheme.fileAddressOf(url).toString() : link);
    });
    QObject::connect(m_page, &QWebEnginePage::loadStarted, &m_context, [this] {
        m_loading = true;
        m_events.downloadBegin();
    });
    QObject::connect(m_page, &QWebEnginePage::loadProgress, &m_context, [this](int progress) {
        if (m_loading)
            m_events.progress(progress, progressMax);
    });
    QObject::connect(m_page, &QWebEnginePage::loadFinished, &m_context, [this] {
        m_loading = false;
        // The child in which the engine draws takes the focus, and comes anew with each process.
        if (QWidget *const drawing = m_view->focusProxy())
            drawing->setAccessibleName(m_view->accessibleName());
        clearEarlierPages();
        m_events.documentComplete();
    });
    QObject::connect(m_page->action(QWebEnginePage::Forward), &QAction::enabledChanged, &m_context,
                     [this](bool enabled) { m_events.commandState(forwardCommand, enabled); });
    QObject::connect(m_page->action(QWebEnginePage::Back), &QAction::enabledChanged, &m_context,
                     [this](bool enabled) { m_events.commandState(backCommand, enabled); });
    QObject::connect(m_page, &PanePage::feedLinkAccepted, &m_context,
                     [this](const QString &url) { m_events.feedLinkAccepted(url); });
    QObject::connect(m_page, &PanePage::systemLinkActivated, &m_context,
                     [this](const QString &url) { m_events.systemLinkActivated(url); });
    QObject::connect(m_page, &PanePage::extensionsAsked, &m_context, [this] { m_events.extensionsAsked(); });
    QObject::connect(&m_page->acts(), &UserActs::acted, &m_context, [this] { m_rendererDeaths = 0; });
    QObject::connect(&m_boxes, &PageBoxes::closed, &m_context, [this] {
        if (!m_pending.isEmpty())
            navigate(std::exchange(m_pending, {}));
    });
    QObject::connect(m_page, &QWebEnginePage::newWindowRequested, &m_context,
                     [this](QWebEngineNewWindowRequest &request) { handleNewWindow(request, *m_page); });
    QObject::connect(m_page, &QWebEnginePage::renderProcessTerminated, &m_context,
                     [this](QWebEnginePage::RenderProcessTerminationStatus status) { handleRendererGone(status); });
    QObject::connect(m_profile, &QWebEngineProfile::downloadRequested, &m_context,
                     [this](QWebEngineDownloadRequest *download) { m_downloads.handle(*download); });
}

/// Our own pages are in the colours of the palette; those of the web count on white paper.
void EngineView::connectColours()
{
    QObject::connect(m_page, &QWebEnginePage::urlChanged, &m_context, [this](const QUrl &url) {
        m_page->setBackgroundColor(PaneScheme::owns(url) ? m_colours.paper() : QColor(Qt::white));
    });
    QObject::connect(&m_colours, &PageColours::changed, &m_context, [this] {
        if (!PaneScheme::owns(m_page->url()))
            return;
        m_page->setBackgroundColor(m_colours.paper());
        // The rule is the sheet's first. To load the page anew would lose its place and ask its servers once more.
        m_page->runJavaScript(u"var sheet = document.styleSheets[0]; if (sheet) { sheet.deleteRule(0); "
                              "sheet.insertRule('%1', 0) }"_s.arg(m_colours.rule()),
                              QWebEngineScript::ApplicationWorld);
    });
}

/// The engine lets what is left of earlier pages pile up to tens of megabytes, and has no word for clearing it away.
/// Asked for an array that nobody can give, it looks for room first, which is the same.
void EngineView::clearEarlierPages()
{
    if (PaneScheme::owns(m_page->url()) && ++m_pagesShown % pagesAClearing == 0)
        m_page->runJavaScript(u"try { new ArrayBuffer(2 ** 40) } catch (e) {}"_s, QWebEngineScript::ApplicationWorld);
}

void EngineView::navigate(const QString &target)
{
    if (m_boxes.isOpen()) {
        m_pending = target;
        return;
    }
    m_page->acts().command();
    QUrl url = m_scheme.addressOf(target);
    if (!url.isValid())
        url = QUrl::fromUserInput(target);
    if (Addresses::canShow(url)) {
        // The engine takes the address on show for a reload and would scroll the next item's page to where this one
        // stood. The script runs in a world of its own, out of the page's reach and free of its policy.
        if (PaneScheme::owns(url) && url == m_page->url())
            m_page->runJavaScript(u"window.scrollTo(0, 0)"_s, QWebEngineScript::ApplicationWorld);
        m_page->go(url);
    } else {
        m_page->handOver(url, true);
    }
}

void EngineView::goBack()
{
    if (!m_boxes.isOpen())
        m_page->triggerAction(QWebEnginePage::Back);
}

void EngineView::goForward()
{
    if (!m_boxes.isOpen())
        m_page->triggerAction(QWebEnginePage::Forward);
}

void EngineView::refresh()
{
    if (!m_boxes.isOpen())
        m_page->triggerAction(QWebEnginePage::Reload);
}

void EngineView::stop()
{
    if (!m_boxes.isOpen())
        m_page->triggerAction(QWebEnginePage::Stop);
}

QString EngineView::location() const
{
    return m_scheme.fileAddressOf(m_page->url()).toString(QUrl::FullyEncoded);
}

void EngineView::handleNewWindow(QWebEngineNewWindowRequest &request, PanePage &opener)
{
    const QPointer<QObject> alive = &m_context;
    if (Addresses::isOfFeed(request.requestedUrl())) {
        opener.handOver(request.requestedUrl(), true); // nothing that a window could show
        return;
    }
    if (!opener.popupIsAllowed(request.requestedUrl()) || !alive)
        return;
    // A window of its own that nothing here follows any more, but for its end: it can't outlive the profile.
    auto *window = new QWebEngineView;
    window->setAttribute(Qt::WA_DeleteOnClose);
    auto *content = new PanePage(m_profile, m_boxes, PanePage::Kind::Popup, window);
    window->setPage(content);
    content->acts().watch(*window);
    setUpActions(*content);
    QObject::connect(content, &QWebEnginePage::windowCloseRequested, window, &QWidget::close);
    keepNamed(*window, *content, Addresses::isWeb(request.requestedUrl()) ? request.requestedUrl() : opener.url());
    QObject::connect(content, &PanePage::feedLinkAccepted, &m_context,
                     [this](const QString &url) { m_events.feedLinkAccepted(url); });
    QObject::connect(content, &PanePage::systemLinkActivated, &m_context,
                     [this](const QString &url) { m_events.systemLinkActivated(url); });
    QObject::connect(content, &QWebEnginePage::newWindowRequested, &m_context,
                     [this, content](QWebEngineNewWindowRequest &next) { handleNewWindow(next, *content); });
    const QSize asked = request.requestedGeometry().size();
    window->resize(asked.isEmpty() ? standardPopup : asked.expandedTo(smallestPopup));
    m_popups.removeAll(QPointer<QWebEngineView>());
    m_popups.append(window);
    request.openIn(content);
    window->show();
}

/// A page whose process is gone is loaded once more, then replaced by the start page, then left: the next navigation
/// starts a new process by itself.
void EngineView::handleRendererGone(QWebEnginePage::RenderProcessTerminationStatus status)
{
    if (status == QWebEnginePage::NormalTerminationStatus)
        return;
    ++m_rendererDeaths;
    if (m_loading) {
        m_loading = false;
        m_events.documentComplete();
    }
    m_events.statusText(u"L'affichage de la page s'est arrêté de façon inattendue"_s);
    if (m_rendererDeaths > 2)
        return;
    QTimer::singleShot(0, m_page, [this, again = m_rendererDeaths == 1] {
        if (again)
            m_page->QWebEnginePage::triggerAction(QWebEnginePage::Reload); // no act of the user
        else
            m_page->go(m_scheme.startPage());
    });
}
