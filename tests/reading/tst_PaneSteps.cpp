// SPDX-License-Identifier: GPL-3.0-or-later

#include "controls/FrenchTexts.h"
#include "reading/PageText.h"
#include "tests/fixtures/Steps.h"
#include "tests/reading/PaneFixture.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QWebEngineProfile>
#include <QWebEngineSettings>

/// What pages try, from an item, a file or the web, and what comes of it: where the pane is then, what it asks, hands
/// out and fetches, and whether scripts run. The steps stand in data/pane.txt, a page and an act each.
class tst_PaneSteps : public QObject, public PaneFixture
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { FrenchTexts::install(*qApp); }
    void cleanupTestCase() { m_pane.reset(); }

    void everyStepHasItsEffects()
    {
        QTimer look;
        connect(&look, &QTimer::timeout, this, &tst_PaneSteps::answerBox);
        look.start(5);
        const Steps steps{[this](const Steps::Given &given) { return begin(given); },
                          [this](const QString &step, const QString &wanted) { return take(step, wanted); },
                          u" --> "_s};
        const QString difference = steps.differenceFrom(u"pane.txt"_s);
        if (difference.isEmpty())
            return;
        // The engine's processes go their own ways: what goes wrong once in a hundred steps is told, twice is a fault.
        qWarning("Played again, since %s", qPrintable(difference));
        m_patience = fullPatience();
        m_pane.reset();
        m_isWatched = false;
        QCOMPARE(steps.differenceFrom(u"pane.txt"_s), QString());
    }

private:
    using State = QMap<QString, QString>;

    QString begin(const Steps::Given &given)
    {
        if (given.contains(u"new"_s))
            m_pane.reset();
        setUp();
        if (given.contains(u"new"_s) || !m_isWatched)
            watch();
        m_messages.onShow = [this](const Message &message) {
            note(u"asks %1 \"%2\""_s.arg(int(message.icon)).arg(message.text));
            if (const QString step = std::exchange(m_meanwhile, {}); !step.isEmpty())
                m_isInBox = true, act(step), letPass(150), m_isInBox = false;
        };
        m_meanwhile.clear();
        if (!goAndWait(m_data.file(u"home.htm"_s)) || !showsText(u"Départ"_s))
            return u"no start page"_s;
        settle();
        return {};
    }

    void watch()
    {
        m_isWatched = true;
        connect(m_pane.get(), &BrowserPane::feedLinkAccepted, this,
                [this](const QString &url) { note(u"feed "_s + url); });
        connect(m_pane.get(), &BrowserPane::systemLinkActivated, this,
                [this](const QString &url) { note(u"system "_s + url); });
        connect(m_pane.get(), &BrowserPane::extensionsAsked, this, [this] { note(u"extensions"_s); });
        connect(m_pane.get(), &BrowserPane::StatusTextChange, this, [this](const QString &text) {
            if (text.contains(u' ')) // not the address that the mouse stands on
                note(u"status "_s + text);
        });
        connect(m_pane.get(), &BrowserPane::ProgressChange, this, [this](int progress, int progressMax) {
            if (progress > progressMax)
                note(u"progress past its end"_s);
        });
        connect(m_pane.get(), &BrowserPane::CommandStateChange, this,
                [this](int command, bool on) { m_commands[command] = on; });
    }

    void note(const QString &event) { m_events += event; }

    /// Answers what the engine asks for a page.
    void answerBox()
    {
        auto *box = qobject_cast<QDialog *>(QApplication::activeModalWidget());
        if (!box)
            return;
        QStringList parts = {box->windowTitle()};
        for (const QLabel *label : box->findChildren<QLabel *>())
            if (!label->text().isEmpty())
                parts += (label->textFormat() == Qt::PlainText ? u""_s : u"markup "_s) + label->text().left(60);
        for (const QLineEdit *line : box->findChildren<QLineEdit *>())
            parts += u"with "_s + line->text();
        const QList<QAbstractButton *> buttons = box->findChildren<QAbstractButton *>();
        for (const QAbstractButton *button : buttons)
            parts += button->text();
        note(u"box "_s + parts.join(u", "_s).replace(u'\n', u' '));
        if (m_messages.answer == Messages::Answer::Yes && !buttons.isEmpty())
            buttons.front()->click();
        else
            box->reject();
    }

    QString named(QString address) const
    {
        return address.replace(m_server->url({}), u"WEB"_s)
            .replace(QUrl(m_server->url({})).authority(), u"HOST"_s)
            .replace(QUrl::fromLocalFile(m_data.directory().path()).toString(), u"DATA"_s);
    }

    State state()
    {
        State all;
        if (!m_pane)
            return all;
        all[u"at"_s] = m_pane->LocationURL();
        all[u"text"_s] = evaluate(u"document.body ? document.body.innerText : ''"_s, 700).simplified().left(60);
        if (!m_pane)
            return all;
        all[u"title"_s] = view()->title();
        all[u"scripts"_s] =
            view()->settings()->testAttribute(QWebEngineSettings::JavascriptEnabled) ? u"on"_s : u"off"_s;
        all[u"back"_s] = QVariant(m_commands.value(2)).toString();
        all[u"forward"_s] = QVariant(m_commands.value(1)).toString();
        all[u"saved"_s] = QString::fromUtf8(m_data.read(u"taken"_s));
        for (const QWidget *widget : QApplication::topLevelWidgets())
            if (qobject_cast<const QWebEngineView *>(widget))
                all[u"window"_s] += widget->windowTitle() + u" %1x%2 "_s.arg(widget->width()).arg(widget->height());
        return all;
    }

    /// What happened since the step began, and what is otherwise.
    QString changes()
    {
        const State now = state();
        for (const LocalHttpServer::Request &request : m_server->takeRequests())
            if (request.path != u"/favicon.ico"_s && // and on a busy machine the engine may ask twice for a page
                !(request.path == u"/link.html"_s && m_events.contains(u"gets /link.html"_s)))
                m_events += u"gets "_s + request.path;
        QStringList parts = m_events + QStringList(m_pane ? m_pane->downloadQuestions : 0, u"asks where to save"_s);
        parts.sort();
        QStringList told;
        for (qsizetype i = 0; i < parts.size(); i += parts.count(parts[i]))
            told += parts[i] + (parts.count(parts[i]) > 1 ? u" x %1"_s.arg(parts.count(parts[i])) : QString());
        for (auto entry = now.cbegin(); entry != now.cend(); ++entry)
            if (entry.value() != m_before.value(entry.key()))
                told += entry.key() + u' ' + entry.value();
        return m_pane ? named(told.join(u"; "_s)) : u"gone"_s;
    }

    QString take(const QString &step, const QString &wanted)
    {
        const QStringList preparations = {u"serve"_s, u"answer"_s, u"save-as"_s, u"meanwhile"_s};
        if (preparations.contains(step.section(u' ', 0, 0))) {
            act(step);
            return {};
        }
        act(step);
        QString seen;
        QElapsedTimer waited;
        for (waited.start(); waited.elapsed() < m_patience; letPass(10))
            if ((seen = changes()) == wanted)
                break;
        const auto happened = [this] { return m_events.size() + m_server->totalHits(); };
        const qsizetype before = happened();
        letPass(20); // what isn't wanted may come later, at the latest in the next step
        if (happened() != before)
            seen = changes();
        if (seen != wanted)
            m_patience = 900; // it has failed; no need to wait for the rest
        settle();
        return seen;
    }

    void settle()
    {
        m_events.clear();
        m_server->takeRequests();
        m_before = state();
        if (m_pane)
            m_pane->downloadQuestions = 0;
    }

    void serve(const QString &path, const QString &kind, QByteArray body)
    {
        body.replace("WEB", m_server->url({}).toUtf8()).replace("DATA", fileAddress({}).chopped(1).toUtf8());
        LocalHttpServer::Answer answer{.body = body, .headers = {{"Content-Type", "text/html"}}};
        if (kind == u"zip"_s)
            answer.headers = {{"Content-Type", "application/zip"}};
        if (kind == u"svg"_s)
            answer.headers = {{"Content-Type", "image/svg+xml"}};
        if (kind == u"moved"_s)
            answer = LocalHttpServer::Answer::redirect(QString::fromUtf8(body));
        if (kind == u"guarded"_s)
            answer = LocalHttpServer::Answer::unauthorized(body);
        answer.silent = kind == u"silent"_s;
        if (kind == u"nothing"_s)
            answer.status = 204;
        m_server->setAnswer(path, answer);
    }

    /// Chooses in the context menu of the link.
    void choose(QWebEnginePage::WebAction action)
    {
        waitForPaint();
        view()->setContextMenuPolicy(Qt::CustomContextMenu);
        QSignalSpy opened(view(), &QWidget::customContextMenuRequested);
        QTest::mouseClick(view()->focusProxy(), Qt::RightButton, {}, QPoint(20, 20));
        if (eventually([&opened] { return !opened.isEmpty(); }))
            view()->page()->triggerAction(action);
    }

    /// A page with that content, or with a link to it (and the link's attributes), and with a number by which it's
    /// known.
    QByteArray pageOf(const QString &verb, const QString &content)
    {
        QByteArray text = "<html><body topmargin=0 leftmargin=0>" + content.toUtf8() + "</body></html>";
        if (verb.endsWith(u"link"_s))
            text = linkPage(content.section(u' ', 0, 0).toUtf8(), content.section(u' ', 1).toUtf8());
        return text.replace("<body", QByteArray("<body data-n=" + QByteArray::number(++m_pages)));
    }

    void goTo(const QString &address)
    {
        m_pane->Navigate(address);
        const QString number = u"document.body && document.readyState != 'loading' ? document.body.dataset.n : ''"_s;
        QElapsedTimer waited;
        for (waited.start(); !m_isInBox && waited.elapsed() < m_patience; letPass(5))
            if (evaluate(number, 700) == QString::number(m_pages))
                break;
    }

    void act(const QString &step)
    {
        const QString verb = step.section(u' ', 0, 0);
        const QString name = step.section(u' ', 1, 1);
        QString rest = step.section(u' ', 1);
        rest.replace(u"WEB"_s, m_server->url({})).replace(u"DATA"_s, fileAddress({}).chopped(1));
        if (verb == u"serve"_s)
            serve(name, step.section(u' ', 2, 2), step.section(u' ', 3).toUtf8());
        else if (verb == u"item"_s || verb == u"item-link"_s)
            writePage(pageOf(verb, rest)), goTo(page());
        else if (verb == u"utf8-item"_s) // as the program begins it
            writePage("<html>\r\n" + QByteArray(PageText::utf8.head.data()) + pageOf(verb, rest).mid(6)), goTo(page());
        else if (verb == u"home-link"_s)
            m_data.write(u"home.htm"_s, pageOf(verb, rest)), goTo(m_data.file(u"home.htm"_s));
        else if (verb == u"file"_s || verb == u"file-link"_s)
            m_data.write(u"local.html"_s, pageOf(verb, rest)), goTo(m_data.file(u"local.html"_s));
        else if (verb == u"web-link"_s)
            m_server->setBody(u"/link.html"_s, pageOf(verb, rest), "text/html"), goTo(m_server->url(u"/link.html"_s));
        else if (verb == u"go"_s)
            m_pane->Navigate(rest);
        else if (verb == u"click"_s)
            clickLink();
        else if (verb == u"click-again-at-once"_s) { // the second press was meant for the box before it
            clickLink();
            (void)eventually([this] { return m_events.size() == 5; });
            clickLink();
            letPass(600);
        } else if (verb == u"press-beside"_s)
            QTest::mouseClick(view()->focusProxy(), Qt::LeftButton, {}, QPoint(400, 300));
        else if (verb == u"choose"_s)
            choose(rest == u"save"_s     ? QWebEnginePage::DownloadLinkToDisk
                   : rest == u"window"_s ? QWebEnginePage::OpenLinkInNewWindow
                                         : QWebEnginePage::OpenLinkInNewTab);
        else if (verb == u"answer"_s)
            m_messages.answer = rest == u"yes"_s ? Messages::Answer::Yes : Messages::Answer::No;
        else if (verb == u"save-as"_s)
            m_pane->downloadPath = m_data.file(rest);
        else if (verb == u"meanwhile"_s)
            m_meanwhile = rest;
        else if (verb == u"pause"_s) // longer than a press is taken to be meant for the box before
            letPass(550);
        else if (verb == u"rights"_s)
            tellRights();
        else if (verb == u"kill"_s)
            killRenderer();
        else if (verb == u"end"_s)
            m_pane.reset();
        else if (verb == u"back"_s)
            m_pane->GoBack();
        else if (verb == u"forward"_s)
            m_pane->GoForward();
        else if (verb == u"refresh"_s)
            m_pane->Refresh();
        else if (verb == u"stop"_s)
            m_pane->Stop();
        else
            note(u"NO SUCH STEP"_s);
    }

    void tellRights()
    {
        const QWebEngineSettings &settings = *view()->settings();
        QString rights = u"rights %1:"_s.arg(settings.unknownUrlSchemePolicy());
        for (int right = 0; right <= QWebEngineSettings::NavigateOnDropEnabled; ++right)
            rights += settings.testAttribute(static_cast<QWebEngineSettings::WebAttribute>(right)) ? u"1"_s : u"0"_s;
        note(rights + (view()->page()->profile()->isOffTheRecord() ? u" off the record"_s : QString()));
    }

    State m_before;
    QStringList m_events;
    QHash<int, bool> m_commands;
    QString m_meanwhile; ///< a step to take while the next question is on show
    static int fullPatience() { return qEnvironmentVariableIsSet("QUILLWIRE_WRITE_GOLDENS") ? 3000 : 8000; }
    int m_patience = fullPatience(); ///< milliseconds
    int m_pages = 0;
    bool m_isWatched = false;
    bool m_isInBox = false;
};

QTEST_MAIN(tst_PaneSteps)
#include "tst_PaneSteps.moc"
