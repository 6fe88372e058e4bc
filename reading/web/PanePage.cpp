// SPDX-License-Identifier: GPL-3.0-or-later

#include "reading/web/PanePage.h"

#include "platform/Literals.h"
#include "reading/web/Addresses.h"
#include "reading/web/PageBoxes.h"
#include "reading/web/PaneScheme.h"
#include "reading/web/ScriptBoxes.h"

#include <QAction>
#include <QAuthenticator>
#include <QCoreApplication>
#include <QPointer>
#include <QWebEngineDownloadRequest>
#include <QWebEngineLoadingInfo>
#include <QWebEngineSettings>
#include <QWebEngineView>

namespace {

constexpr qsizetype mostBegun = 100; ///< addresses that are remembered

bool isLeaving(QWebEnginePage::WebAction action)
{
    return action == QWebEnginePage::Back || action == QWebEnginePage::Forward || action == QWebEnginePage::Reload;
}

/// Of a command of the program or of the context menu, which scripts can only repeat for what was on show before.
bool isByProgram(QWebEnginePage::NavigationType type)
{
    return type == QWebEnginePage::NavigationTypeTyped || type == QWebEnginePage::NavigationTypeBackForward ||
           type == QWebEnginePage::NavigationTypeReload;
}

/// What the context menu saves: the press that counts was in the menu.
bool isSaving(QWebEnginePage::WebAction action)
{
    return action == QWebEnginePage::DownloadLinkToDisk || action == QWebEnginePage::DownloadImageToDisk ||
           action == QWebEnginePage::DownloadMediaToDisk || action == QWebEnginePage::SavePage;
}

} // namespace

PanePage::PanePage(QWebEngineProfile *profile, PageBoxes &boxes, Kind kind, QObject *parent)
    : QWebEnginePage(profile, parent), m_boxes(boxes), m_kind(kind), m_course(*settings()), m_acts(boxes)
{
    limitRights();
    followCourse();
    connect(&m_acts, &UserActs::acted, &m_boxes, &PageBoxes::renew);
}

void PanePage::limitRights()
{
    QWebEngineSettings *options = settings();
    options->setAttribute(QWebEngineSettings::LocalContentCanAccessFileUrls, false);
    options->setAttribute(QWebEngineSettings::LocalContentCanAccessRemoteUrls, true); // pictures in a feed's text
    options->setAttribute(QWebEngineSettings::NavigateOnDropEnabled, false);
    options->setAttribute(QWebEngineSettings::AutoLoadIconsForPage, false);
    options->setAttribute(QWebEngineSettings::HyperlinkAuditingEnabled, false);
    options->setAttribute(QWebEngineSettings::PlaybackRequiresUserGesture, true);
    options->setAttribute(QWebEngineSettings::WebRTCPublicInterfacesOnly, true);
    options->setUnknownUrlSchemePolicy(QWebEngineSettings::AllowUnknownUrlSchemesFromUserInteraction);

    connect(this, &QWebEnginePage::featurePermissionRequested, this, [this](const QUrl &origin, Feature feature) {
        setFeaturePermission(origin, feature, PermissionDeniedByUser);
    });
    // Left as it comes, it counts as an empty name and password, which the engine would try again and again.
    const auto refuse = [](const QUrl &, QAuthenticator *answer) { *answer = QAuthenticator(); };
    connect(this, &QWebEnginePage::authenticationRequired, this, refuse);
    connect(this, &QWebEnginePage::proxyAuthenticationRequired, this, refuse);
}

void PanePage::followCourse()
{
    connect(this, &QWebEnginePage::urlChanged, this, [this](const QUrl &url) {
        if (m_course.isAwaited(url))
            m_acts.pass();
        if (m_course.arrive(url))
            QMetaObject::invokeMethod(
                this, [this] { QWebEnginePage::triggerAction(Reload); }, Qt::QueuedConnection);
    });
    connect(this, &QWebEnginePage::loadingChanged, this, [this](const QWebEngineLoadingInfo &loading) {
        if (loading.status() != QWebEngineLoadingInfo::LoadStartedStatus)
            m_course.end(loading.url());
    });
}

void PanePage::go(const QUrl &url)
{
    m_allowed = url;
    leave();
    load(url);
}

/// The program sends the page on show away. What the next one does comes from no press, be it at the same address.
void PanePage::leave()
{
    m_acts.pass();
    m_course.leave();
}

void PanePage::triggerAction(WebAction action, bool checked)
{
    if (isSaving(action))
        m_acts.press();
    else
        m_acts.command();
    if (isLeaving(action) && this->action(action)->isEnabled())
        leave();
    QWebEnginePage::triggerAction(action, checked);
    if (action == Stop)
        m_course.giveUp();
}

bool PanePage::acceptNavigationRequest(const QUrl &url, NavigationType type, bool isMainFrame)
{
    const bool byClick = type == NavigationTypeLinkClicked || type == NavigationTypeFormSubmitted;
    if (byClick && !Addresses::runsScripts(m_course.onShow()) && !m_course.scriptsAreOn())
        m_acts.press(); // nothing but the user clicks there, be it by an aid that presses nothing
    const QPointer<PanePage> alive = this;
    const bool goes = !isTakenOver(url, type, isMainFrame);
    if (!alive)
        return false;
    if (goes && isMainFrame)
        m_course.begin(url);
    else if (isByProgram(type) && isMainFrame)
        m_course.giveUp();
    return goes;
}

/// What goes on elsewhere, in ours as a feed or in a program of the system, or nowhere.
bool PanePage::isTakenOver(const QUrl &url, NavigationType type, bool isMainFrame)
{
    if (mayGo(url, type, isMainFrame)) {
        noteWhatBegan(url, type, isMainFrame);
        return isFeedForTheProgram(url);
    }
    const bool fromStartPage = m_course.onShow().matches(PaneScheme::startPage(), QUrl::RemoveFragment);
    if (PaneScheme::leadsToExtensions(url) && fromStartPage && isMainFrame && type == NavigationTypeLinkClicked)
        QMetaObject::invokeMethod(this, &PanePage::extensionsAsked, Qt::QueuedConnection);
    else if (!Addresses::isWeb(url)) // to the web somebody would have had to click
        handOver(url, type == NavigationTypeLinkClicked);
    return true;
}

void PanePage::handOver(const QUrl &url, bool isAsked)
{
    // The pane goes there in no case: its engine needn't wait for an answer.
    const auto ask = [this, url, isAsked] {
        const QPointer<PanePage> alive = this;
        if (!isFeedForTheProgram(url) && alive && isAsked && Addresses::belongsToSystem(url))
            Q_EMIT systemLinkActivated(url.toString(QUrl::FullyEncoded));
    };
    QMetaObject::invokeMethod(this, ask, Qt::QueuedConnection);
}

bool PanePage::mayGo(const QUrl &url, NavigationType type, bool isMainFrame) const
{
    const QUrl &onShow = m_course.onShow();
    const bool again = type == NavigationTypeBackForward || type == NavigationTypeReload;
    const bool allowed = again || (type == NavigationTypeTyped && url == m_allowed);
    if (url.isLocalFile())
        return isMainFrame && allowed;
    if (PaneScheme::owns(url))
        return isMainFrame && m_kind == Kind::Pane && PaneScheme::isServed(url) &&
               (allowed || PaneScheme::owns(onShow));
    if (Addresses::isWeb(url)) {
        // A refresh element in a feed's text comes as a redirection without a click before it.
        const bool byUser =
            isByProgram(type) || type == NavigationTypeLinkClicked || type == NavigationTypeFormSubmitted;
        return !isMainFrame || byUser || !PaneScheme::owns(onShow) || Addresses::isWeb(m_course.target());
    }
    // A page of the data directory has no use for what scripts make.
    const bool isMade = Addresses::isMadeByPages(url, isMainFrame) && !(isMainFrame && PaneScheme::owns(onShow));
    return isMade;
}

/// Remembers what a press, or the program, sent for: it may turn out to be a download, and servers may be slow.
void PanePage::noteWhatBegan(const QUrl &url, NavigationType type, bool isMainFrame)
{
    const bool ledOn = isMainFrame && type == NavigationTypeRedirect && m_begunByUser.contains(m_course.target());
    if (type != NavigationTypeTyped && !ledOn && !m_acts.isFresh())
        return;
    if (m_begunByUser.size() == mostBegun)
        m_begunByUser.clear();
    m_begunByUser.insert(url);
}

/// Asks about the address of a feed, which one of ours in the folder never is. Windows of the web's own aren't
/// followed; but an address that only a program for feeds takes is this program's there as well.
bool PanePage::isFeedForTheProgram(const QUrl &url)
{
    if (!Addresses::isOfFeed(url) && (m_kind != Kind::Pane || PaneScheme::owns(url) || !Addresses::endsLikeFeed(url)))
        return false;
    const QString address = url.toString(QUrl::FullyEncoded);
    const QPointer<PanePage> alive = this;
    const bool taken =
        m_boxes.ask(u"Le fichier semble être un fichier RSS, voulez-vous tenter de l'ouvrir ?"_s, address)
            .value_or(false);
    if (!alive || !taken)
        return false;
    QMetaObject::invokeMethod(
        this, [this, address] { Q_EMIT feedLinkAccepted(address); }, Qt::QueuedConnection);
    return true;
}

bool PanePage::popupIsAllowed(const QUrl &url)
{
    return !m_course.isLeft() && Addresses::mayOpenWindow(url) &&
           m_boxes.ask(u"Le navigateur essaie d'ouvrir un pop-up, voulez-vous l'autoriser ?"_s, u"pop-up"_s)
               .value_or(false);
}

bool PanePage::mayDownload(const QWebEngineDownloadRequest &download)
{
    const QUrl url = download.url();
    m_course.end(url); // there is no page behind it
    if (download.isSavePageDownload())
        return true;
    return Addresses::maySave(url) && (m_begunByUser.remove(url) || m_acts.isFresh());
}

bool PanePage::mayBeLeft()
{
    return m_course.isLeft() ||
           m_boxes.ask(u"Cette page demande une confirmation avant d'être quittée. Voulez-vous la quitter ?"_s)
               .value_or(true);
}

/// A box of the page's own. A page that the program leaves has none any more.
std::optional<bool> PanePage::showOwn(const std::function<bool()> &box, const QString &matter)
{
    return m_course.isLeft() ? std::nullopt : m_boxes.show(box, matter);
}

QStringList PanePage::chooseFiles(FileSelectionMode mode, const QStringList &oldFiles,
                                  const QStringList &acceptedMimeTypes)
{
    QStringList chosen;
    const auto choose = [&] {
        chosen = QWebEnginePage::chooseFiles(mode, oldFiles, acceptedMimeTypes);
        return !chosen.isEmpty();
    };
    showOwn(choose, u"files"_s);
    return chosen;
}

void PanePage::javaScriptAlert(const QUrl &securityOrigin, const QString &text)
{
    showOwn([&] {
        ScriptBoxes::alert(QWebEngineView::forPage(this), securityOrigin, text);
        return true;
    });
}

bool PanePage::javaScriptConfirm(const QUrl &securityOrigin, const QString &text)
{
    // The engine passes its question before leaving on as one of the page, known by its text.
    if (text ==
        QCoreApplication::translate(
            "QWebEnginePage", "Are you sure you want to leave this page? Changes that you made may not be saved."))
        return mayBeLeft();
    return showOwn([&] { return ScriptBoxes::confirm(QWebEngineView::forPage(this), securityOrigin, text); })
        .value_or(false);
}

bool PanePage::javaScriptPrompt(const QUrl &securityOrigin, const QString &text, const QString &standard,
                                QString *result)
{
    const auto box = [&] {
        return ScriptBoxes::prompt(QWebEngineView::forPage(this), securityOrigin, text, standard, *result);
    };
    return showOwn(box).value_or(false);
}

void PanePage::javaScriptConsoleMessage(JavaScriptConsoleMessageLevel, const QString &, int, const QString &)
{
    // What web pages report about themselves is nobody's matter here.
}
