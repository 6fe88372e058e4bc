// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "reading/web/PageCourse.h"
#include "reading/web/UserActs.h"

#include <QSet>
#include <QWebEnginePage>

#include <functional>
#include <optional>

class PageBoxes;
class QWebEngineDownloadRequest;

/// A page of the browser pane, or of a window that the user allowed it to open: decides where it may go.
///
/// Pages of the data directory and local files run no script. A local file or a page of the data directory is reached
/// only when the program navigates there or the user goes back to it, never by a link of a page of the web nor by a
/// command of the context menu; the address of another program's scheme is handed out and not followed. Markup of a
/// feed can't lead away without a click. Servers that want a password are told that there is none.
class PanePage final : public QWebEnginePage
{
    Q_OBJECT

public:
    enum class Kind { Pane, Popup };

    /// `profile` and `boxes` outlive the page. Only a page of the pane asks about feeds and shows what is local.
    PanePage(QWebEngineProfile *profile, PageBoxes &boxes, Kind kind, QObject *parent = nullptr);

    /// Does what is due with an address that the pane can't go to, once the engine has finished with what it is in the
    /// middle of: asks about one of a feed, hands out one of another program of the system if that `isAsked` for by the
    /// user or the program, and forgets any other.
    void handOver(const QUrl &url, bool isAsked);

    /// Loads `url` for the program. It may be local, and the page on show is left without a question.
    void go(const QUrl &url);

    UserActs &acts() { return m_acts; }

    /// The user's answer to whether a window may open with `url`. A refusal holds until the next act of the user.
    bool popupIsAllowed(const QUrl &url);

    /// Whether the user may be asked about `download`: an act of theirs began it, and it brings nothing that is local.
    bool mayDownload(const QWebEngineDownloadRequest &download);

    /// Carries out a command of the program or of the context menu, which counts as an act of the user.
    void triggerAction(WebAction action, bool checked = false) override;

Q_SIGNALS:
    /// See BrowserPane. All come after the engine has finished with the navigation.
    void feedLinkAccepted(const QString &url);
    void systemLinkActivated(const QString &url);
    void extensionsAsked();

protected:
    bool acceptNavigationRequest(const QUrl &url, NavigationType type, bool isMainFrame) override;
    QStringList chooseFiles(FileSelectionMode mode, const QStringList &oldFiles,
                            const QStringList &acceptedMimeTypes) override;
    void javaScriptAlert(const QUrl &securityOrigin, const QString &text) override;
    bool javaScriptConfirm(const QUrl &securityOrigin, const QString &text) override;
    bool javaScriptPrompt(const QUrl &securityOrigin, const QString &text, const QString &standard,
                          QString *result) override;
    void javaScriptConsoleMessage(JavaScriptConsoleMessageLevel level, const QString &text, int line,
                                  const QString &source) override;

private:
    void limitRights();
    void followCourse();
    void leave();
    bool mayGo(const QUrl &url, NavigationType type, bool isMainFrame) const;
    bool isTakenOver(const QUrl &url, NavigationType type, bool isMainFrame);
    void noteWhatBegan(const QUrl &url, NavigationType type, bool isMainFrame);
    bool isFeedForTheProgram(const QUrl &url);
    bool mayBeLeft();
    std::optional<bool> showOwn(const std::function<bool()> &box, const QString &matter = {});

    PageBoxes &m_boxes;
    Kind m_kind;
    PageCourse m_course;
    UserActs m_acts;
    QUrl m_allowed;           ///< what the program navigated to last
    QSet<QUrl> m_begunByUser; ///< addresses that may turn out to be downloads
};
