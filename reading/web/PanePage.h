// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QElapsedTimer>
#include <QWebEnginePage>

class Messages;

/// A page of the browser pane, or of a window that the user allowed it to open: decides where it may go.
///
/// Pages of the data directory and local files run no script. A local file or a page of the data directory is reached
/// only when the program navigates there or the user goes back to it, never by a link of a page of the web; the address
/// of another program's scheme is handed out and not followed. Markup of a feed can't lead away without a click.
class PanePage final : public QWebEnginePage
{
    Q_OBJECT

public:
    enum class Kind { Pane, Popup };

    /// `profile` and `messages` outlive the page. Only a page of the pane asks about feeds.
    PanePage(QWebEngineProfile *profile, Messages &messages, Kind kind, QObject *parent = nullptr);

    /// True for an address that a navigation of the program may go to: http, https, a local file, the private scheme.
    static bool canShow(const QUrl &url);

    /// True for a scheme that another program of the system takes (mailto and the like) and that is safe to hand over.
    static bool belongsToSystem(const QUrl &url);

    /// True while a question of this page is on show. The engine is then in the middle of a navigation, so that no
    /// other may be begun.
    bool isAsking() const { return m_asking; }

    /// The user's answer to whether a pop-up may open. A refusal holds for the attempts that follow it closely.
    bool popupIsAllowed();

Q_SIGNALS:
    /// See BrowserPane. Both come after the engine has finished with the navigation.
    void feedLinkAccepted(const QString &url);
    void systemLinkActivated(const QString &url);

    /// A question was answered and closed.
    void questionAnswered();

    /// The user followed a link.
    void linkFollowed();

protected:
    bool acceptNavigationRequest(const QUrl &url, NavigationType type, bool isMainFrame) override;
    void javaScriptAlert(const QUrl &securityOrigin, const QString &text) override;
    bool javaScriptConfirm(const QUrl &securityOrigin, const QString &text) override;
    bool javaScriptPrompt(const QUrl &securityOrigin, const QString &text, const QString &standard,
                          QString *result) override;
    void javaScriptConsoleMessage(JavaScriptConsoleMessageLevel level, const QString &text, int line,
                                  const QString &source) override;

private:
    bool mayGo(const QUrl &url, NavigationType type, bool isMainFrame);
    bool isFeedForTheProgram(const QUrl &url);
    bool ask(const QString &question);
    bool scriptMayInterrupt();
    void allowScripts(const QUrl &url);

    Messages &m_messages;
    Kind m_kind;
    bool m_asking = false;
    bool m_leaving =
        false; ///< a click or the program leads from a page of the folder to the web; redirections may follow
    int m_scriptDialogs = 0;
    QElapsedTimer m_sincePopupRefused;
};
