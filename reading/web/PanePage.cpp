// SPDX-License-Identifier: GPL-3.0-or-later

#include "reading/web/PanePage.h"

#include "platform/Literals.h"
#include "platform/Messages.h"
#include "reading/web/PaneScheme.h"

#include <QPointer>
#include <QSet>
#include <QWebEngineSettings>

namespace {

constexpr qint64 popupRefusalHolds = 1000; ///< milliseconds
constexpr int mostScriptDialogs = 5;       ///< of one page; a page can't hold the program with an endless row of boxes

bool runsScripts(const QUrl &url)
{
    return !PaneScheme::owns(url) && !url.isLocalFile();
}

bool isWeb(const QUrl &url)
{
    return url.scheme() == "http"_L1 || url.scheme() == "https"_L1;
}

} // namespace

PanePage::PanePage(QWebEngineProfile *profile, Messages &messages, Kind kind, QObject *parent)
    : QWebEnginePage(profile, parent), m_messages(messages), m_kind(kind)
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

    connect(this, &QWebEnginePage::urlChanged, this, &PanePage::allowScripts);
    connect(this, &QWebEnginePage::featurePermissionRequested, this, [this](const QUrl &origin, Feature feature) {
        setFeaturePermission(origin, feature, PermissionDeniedByUser);
    });
}

bool PanePage::canShow(const QUrl &url)
{
    return isWeb(url) || url.isLocalFile() || PaneScheme::isServed(url);
}

bool PanePage::belongsToSystem(const QUrl &url)
{
    static const QSet<QString> schemes = {u"mailto"_s, u"news"_s, u"nntp"_s,   u"ftp"_s,    u"ftps"_s, u"tel"_s,
                                          u"callto"_s, u"sip"_s,  u"sips"_s,   u"sms"_s,    u"xmpp"_s, u"irc"_s,
                                          u"ircs"_s,   u"feed"_s, u"magnet"_s, u"webcal"_s, u"geo"_s};
    return schemes.contains(url.scheme());
}

bool PanePage::acceptNavigationRequest(const QUrl &url, NavigationType type, bool isMainFrame)
{
    if (belongsToSystem(url)) {
        if (type == NavigationTypeLinkClicked)
            QMetaObject::invokeMethod(
                this, [this, url] { Q_EMIT systemLinkActivated(url.toString(QUrl::FullyEncoded)); },
                Qt::QueuedConnection);
        return false;
    }
    if (!mayGo(url, type, isMainFrame))
        return false;

    const QPointer<PanePage> alive = this;
    const bool taken = m_kind == Kind::Pane && isFeedForTheProgram(url);
    if (!alive || taken)
        return false;

    if (isMainFrame) {
        if (type == NavigationTypeLinkClicked || type == NavigationTypeFormSubmitted)
            Q_EMIT linkFollowed();
        m_leaving = !PaneScheme::owns(url);
        m_scriptDialogs = 0;
        allowScripts(url);
    }
    return true;
}

bool PanePage::mayGo(const QUrl &url, NavigationType type, bool isMainFrame)
{
    const bool byProgramOrHistory =
        type == NavigationTypeTyped || type == NavigationTypeBackForward || type == NavigationTypeReload;
    if (url.isLocalFile())
        return isMainFrame && byProgramOrHistory;
    const bool onOwnPage = PaneScheme::owns(this->url());
    if (PaneScheme::owns(url))
        return isMainFrame && PaneScheme::isServed(url) && (byProgramOrHistory || onOwnPage);
    if (isWeb(url)) {
        // A refresh element in a feed's text comes as a redirection without a click before it.
        const bool byUser =
            byProgramOrHistory || type == NavigationTypeLinkClicked || type == NavigationTypeFormSubmitted;
        return !isMainFrame || byUser || !onOwnPage || m_leaving;
    }
    // What scripts make: empty frames, texts of their own. A page of the data directory has no use for them.
    const bool madeByScript =
        url.scheme() == "about"_L1 || url.scheme() == "blob"_L1 || (url.scheme() == "data"_L1 && !isMainFrame);
    return madeByScript && !(isMainFrame && onOwnPage);
}

bool PanePage::isFeedForTheProgram(const QUrl &url)
{
    const QString address = url.toString(QUrl::FullyEncoded);
    const QString ending = address.right(4);
    if (ending != ".rdf"_L1 && ending != ".xml"_L1 && ending != ".rss"_L1)
        return false;
    const QPointer<PanePage> alive = this;
    if (!ask(u"Le fichier semble être un fichier RSS, voulez-vous tenter de l'ouvrir ?"_s) || !alive)
        return false;
    QMetaObject::invokeMethod(
        this, [this, address] { Q_EMIT feedLinkAccepted(address); }, Qt::QueuedConnection);
    return true;
}

bool PanePage::popupIsAllowed()
{
    // A page that tries again and again must not keep the user behind an endless row of boxes.
    if (m_sincePopupRefused.isValid() && m_sincePopupRefused.elapsed() < popupRefusalHolds) {
        m_sincePopupRefused.start();
        return false;
    }
    const QPointer<PanePage> alive = this;
    if (ask(u"Le navigateur essaie d'ouvrir un pop-up, voulez-vous l'autoriser ?"_s))
        return !alive.isNull();
    if (alive)
        m_sincePopupRefused.start();
    return false;
}

/// Yes or no. A second question while one is on show counts as answered with no.
bool PanePage::ask(const QString &question)
{
    if (m_asking)
        return false;
    m_asking = true;
    const QPointer<PanePage> alive = this;
    const Messages::Answer answer =
        m_messages.show({question, u"Information"_s, Message::Icon::Information, Message::Buttons::YesNo});
    if (alive) {
        m_asking = false;
        QMetaObject::invokeMethod(this, &PanePage::questionAnswered, Qt::QueuedConnection);
    }
    return answer == Messages::Answer::Yes;
}

void PanePage::allowScripts(const QUrl &url)
{
    settings()->setAttribute(QWebEngineSettings::JavascriptEnabled, runsScripts(url));
}

bool PanePage::scriptMayInterrupt()
{
    return !m_asking && ++m_scriptDialogs <= mostScriptDialogs;
}

void PanePage::javaScriptAlert(const QUrl &securityOrigin, const QString &text)
{
    if (scriptMayInterrupt())
        QWebEnginePage::javaScriptAlert(securityOrigin, text);
}

bool PanePage::javaScriptConfirm(const QUrl &securityOrigin, const QString &text)
{
    return scriptMayInterrupt() && QWebEnginePage::javaScriptConfirm(securityOrigin, text);
}

bool PanePage::javaScriptPrompt(const QUrl &securityOrigin, const QString &text, const QString &standard,
                                QString *result)
{
    return scriptMayInterrupt() && QWebEnginePage::javaScriptPrompt(securityOrigin, text, standard, result);
}

void PanePage::javaScriptConsoleMessage(JavaScriptConsoleMessageLevel, const QString &, int, const QString &)
{
    // What web pages report about themselves is nobody's matter here.
}
