// SPDX-License-Identifier: GPL-3.0-or-later

#include "reading/web/PaneScheme.h"

#include "platform/Literals.h"
#include "reading/web/PageColours.h"

#include <QBuffer>
#include <QFileInfo>
#include <QWebEngineUrlRequestJob>
#include <QWebEngineUrlScheme>

#include <array>
#include <utility>

namespace {

constexpr QLatin1String host("pages");
constexpr QLatin1String generatedPage("tmp.htm");
constexpr QLatin1String homePage("home.htm");
constexpr QLatin1String styleSheet("style.css");
constexpr QLatin1String linkIcon("slien.gif");
constexpr QLatin1String extensionsLink("extensions");
constexpr std::array<QLatin1String, 4> servedFiles = {generatedPage, homePage, styleSheet, linkIcon};

/// Pictures, sound and frames of the web are shown as a feed's text asks for them; no script runs, no plug-in, and
/// nothing comes from a file. The one sheet is named in full: a page that took itself for its sheet would bring a style
/// of the feed's after all.
constexpr char policy[] =
    "<meta http-equiv=\"Content-Security-Policy\" content=\""
    "default-src 'none'; img-src quillwire: http: https: data:; style-src quillwire://pages/style.css; "
    "media-src http: https:; frame-src http: https:; form-action http: https:; base-uri 'none'\">";

QUrl address(QLatin1String file)
{
    return QUrl(QString::fromLatin1(PaneScheme::name()) % u"://" % host % u'/' % file);
}

QString fileName(const QUrl &url)
{
    return url.path().mid(1);
}

/// The head of our own begins so where the page is in UTF-8. What a feed says comes behind it, and counts for nothing.
bool saysUtf8(const QByteArray &generated)
{
    return generated.startsWith("<html>\r\n<head><meta charset=\"utf-8\" />");
}

bool declaresCharset(const QByteArray &page)
{
    constexpr qsizetype declarationRoom = 1024; // as far as browsers look
    return page.left(declarationRoom).toLower().contains("charset=");
}

QByteArray contentType(const QString &name, const QByteArray &content, bool isInUtf8)
{
    if (name == styleSheet)
        return "text/css; charset=utf-8";
    if (name == linkIcon)
        return "image/gif";
    if (name == generatedPage)
        return isInUtf8 ? "text/html; charset=utf-8" : "text/html; charset=windows-1252";
    return declaresCharset(content) ? "text/html" : "text/html; charset=utf-8";
}

} // namespace

PaneScheme::PaneScheme(WebPane::Folder folder, const PageColours &colours, QObject *parent)
    : QWebEngineUrlSchemeHandler(parent), m_folder(std::move(folder)), m_colours(colours)
{}

QByteArray PaneScheme::name()
{
    return "quillwire";
}

void PaneScheme::registerScheme()
{
    QWebEngineUrlScheme scheme(name());
    scheme.setSyntax(QWebEngineUrlScheme::Syntax::Host);
    // Neither a secure scheme (pictures of plain http sites would be left out) nor a local one (its pages couldn't
    // reach their own style sheet once local content is kept from files). Pages of the web are turned away by the
    // handler.
    QWebEngineUrlScheme::registerScheme(scheme);
}

bool PaneScheme::owns(const QUrl &url)
{
    return url.scheme().toLatin1() == name();
}

bool PaneScheme::isServed(const QUrl &url)
{
    if (!owns(url) || url.host() != host || !url.path().startsWith(u'/'))
        return false;
    const QString file = fileName(url);
    for (const QLatin1String served : servedFiles)
        if (file == served)
            return true;
    return false;
}

QUrl PaneScheme::startPage()
{
    return address(homePage);
}

bool PaneScheme::leadsToExtensions(const QUrl &url)
{
    return url == address(extensionsLink);
}

QString PaneScheme::pathOf(const QString &file) const
{
    return QFileInfo(m_folder.path + u'/' + file).absoluteFilePath();
}

QUrl PaneScheme::addressOf(const QString &path) const
{
    const QString local = path.startsWith("file:"_L1) ? QUrl(path).toLocalFile() : path;
    const QString wanted = QFileInfo(local).absoluteFilePath();
    for (const QLatin1String served : servedFiles) {
        if (pathOf(served) == wanted)
            return address(served);
    }
    return {};
}

QUrl PaneScheme::fileAddressOf(const QUrl &url) const
{
    if (!isServed(url))
        return url;
    return QUrl::fromLocalFile(pathOf(fileName(url)));
}

void PaneScheme::requestStarted(QWebEngineUrlRequestJob *job)
{
    const QUrl url = job->requestUrl();
    const QUrl initiator = job->initiator(); // empty for a navigation of the program
    if (!isServed(url) || !(initiator.isEmpty() || owns(initiator)) || job->requestMethod() != "GET") {
        job->fail(QWebEngineUrlRequestJob::RequestDenied);
        return;
    }
    const QString file = fileName(url);
    const bool isColours = file == styleSheet && url.hasQuery();
    Files::Content content =
        isColours ? Files::Content{Files::ReadResult::Read, m_colours.rule().toLatin1()} : m_folder.read(pathOf(file));
    if (content.result != Files::ReadResult::Read) {
        job->fail(content.result == Files::ReadResult::Absent ? QWebEngineUrlRequestJob::UrlNotFound
                                                              : QWebEngineUrlRequestJob::RequestFailed);
        return;
    }
    const bool isInUtf8 = saysUtf8(content.bytes);
    if (file == generatedPage || file == homePage)
        content.bytes = guardedPage(content.bytes);
    auto *reply = new QBuffer(job);
    reply->setData(content.bytes);
    reply->open(QIODevice::ReadOnly);
    job->reply(contentType(file, content.bytes, isInUtf8), reply);
}

QByteArray PaneScheme::guardedPage(const QByteArray &page) const
{
    // The engine keeps sheets that it has read: other colours are another address.
    const QString link =
        u"<link rel=\"stylesheet\" href=\"quillwire://pages/style.css?%1\">"_s.arg(qHash(m_colours.rule()), 0, 16);
    QByteArray guarded = page;
    guarded.replace(QByteArrayView("\0", 1), QByteArrayView());
    // Behind the document type, which counts only at the very beginning.
    qsizetype place = 0;
    if (guarded.left(9).toLower() == "<!doctype")
        place = guarded.indexOf('>') + 1;
    guarded.insert(place, policy + link.toLatin1());
    return guarded;
}
