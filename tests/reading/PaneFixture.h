// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/Literals.h"
#include "reading/BrowserPane.h"
#include "tests/fixtures/Eventually.h"
#include "tests/fixtures/FakeMessages.h"
#include "tests/fixtures/LocalHttpServer.h"
#include "tests/fixtures/TemporaryDataDirectory.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <QWebEngineScript>
#include <QWebEngineView>

#include <csignal>
#include <memory>
#include <optional>

using namespace Qt::StringLiterals;

inline constexpr int patience = 15000; ///< milliseconds; a page takes a few dozen

/// What stands in every test page: a big link in the upper left corner, where the tests click.
inline QByteArray linkPage(const QByteArray &target, const QByteArray &attributes = {})
{
    return "<html><body topmargin=0 leftmargin=0><a href=\"" + target + "\" " + attributes +
           "><table width=300 height=200><tr><td>lien</table></a></body></html>";
}

inline QByteArray wideBytes(const QString &text)
{
    QByteArray bytes;
    for (const QChar c : text)
        bytes.append(static_cast<char>(c.unicode() & 0xFF)).append(static_cast<char>(c.unicode() >> 8));
    return bytes;
}

inline void letPass(int milliseconds)
{
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

/// A browser pane over a data directory and a server, and what tests do with its page.
class PaneFixture
{
public:
    /// Comes before the application: the engine starts quicker so.
    static void initMain() { qputenv("QTWEBENGINE_CHROMIUM_FLAGS", "--disable-gpu"); }

protected:
    /// A pane whose download question is answered by the test.
    class Pane final : public BrowserPane
    {
    public:
        using BrowserPane::BrowserPane;
        QString downloadPath;
        int downloadQuestions = 0;

    protected:
        QString askDownloadPath(const QString &) override
        {
            ++downloadQuestions;
            return downloadPath;
        }
    };

    TemporaryDataDirectory m_data;
    FakeMessages m_messages;
    std::unique_ptr<LocalHttpServer> m_server;
    std::unique_ptr<Pane> m_pane; ///< one for all tests but those that say so: the engine's start is slow

    void makePane()
    {
        m_pane = std::make_unique<Pane>(m_data.directory(), m_messages);
        m_pane->resize(600, 400);
        m_pane->show();
    }

    QWebEngineView *view() const { return m_pane->findChild<QWebEngineView *>(); }

    /// What a script out of the page's reach says.
    QString evaluate(const QString &script, int milliseconds = patience) const
    {
        const auto result = std::make_shared<std::optional<QString>>();
        view()->page()->runJavaScript(script, QWebEngineScript::ApplicationWorld,
                                      [result](const QVariant &value) { *result = value.toString(); });
        return eventually([&result] { return result->has_value(); }, milliseconds) ? **result : u"no answer"_s;
    }

    /// The page's visible text, also while it still loads.
    QString text() const { return evaluate(u"document.body ? document.body.innerText : ''"_s); }

    bool goAndWait(const QString &address)
    {
        QSignalSpy finished(m_pane.get(), &BrowserPane::DocumentComplete);
        m_pane->Navigate(address);
        return eventually([&finished] { return !finished.isEmpty(); });
    }

    /// Shows a page with a link to `target`.
    bool showsLink(const QString &target)
    {
        writePage(linkPage(target.toUtf8()));
        return goAndWait(page()) && showsText(u"lien"_s);
    }

    bool showsText(const QString &part) const
    {
        QElapsedTimer waited;
        for (waited.start(); waited.elapsed() < patience; letPass(10))
            if (text().contains(part))
                return true;
        return false;
    }

    /// Before a page is painted the engine throws input away.
    void waitForPaint() const
    {
        const QString painted = u"performance.getEntriesByName('first-contentful-paint').length > 0"_s;
        QElapsedTimer waited;
        for (waited.start(); waited.elapsed() < patience && evaluate(painted) != u"true"_s;)
            letPass(10);
    }

    void clickLink() const
    {
        waitForPaint();
        QWidget *target = view()->focusProxy();
        QTest::mouseMove(target, QPoint(20, 20));
        QTest::mouseClick(target, Qt::LeftButton, {}, QPoint(20, 20));
    }

    void killRenderer() const { ::kill(static_cast<pid_t>(view()->page()->renderProcessPid()), SIGKILL); }

    void writePage(const QByteArray &body) const { m_data.write(u"tmp.htm"_s, body); }
    QString page() const { return m_data.file(u"tmp.htm"_s); }
    QString fileAddress(const QString &name) const { return QUrl::fromLocalFile(m_data.file(name)).toString(); }

    void setUp()
    {
        m_server = std::make_unique<LocalHttpServer>();
        m_messages.shown.clear();
        m_messages.answer = Messages::Answer::No;
        m_messages.onShow = nullptr;
        m_data.write(u"home.htm"_s, "<!DOCTYPE html><html><body><p>Départ</p></body></html>");
        m_data.write(u"style.css"_s, "p {}");
        m_data.write(u"slien.gif"_s, "GIF89a");
        if (!m_pane)
            makePane();
        m_pane->downloadPath.clear();
        m_pane->downloadQuestions = 0;
    }
};
