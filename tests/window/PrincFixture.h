// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/DesktopSurroundings.h"
#include "app/Program.h"
#include "controls/cToolbar.h"
#include "platform/Literals.h"
#include "reading/BrowserPane.h"
#include "reading/ItemListView.h"
#include "tests/fixtures/Eventually.h"
#include "tests/fixtures/FakeDownloader.h"
#include "tests/fixtures/FakeMessages.h"
#include "tests/fixtures/FeedTexts.h"
#include "tests/fixtures/TemporaryDataDirectory.h"
#include "window/AddressBox.h"
#include "window/FeedTreeView.h"
#include "window/TrayShell.h"
#include "window/frmPrinc.h"
#include "window/frmUpdate.h"

#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QMenu>
#include <QPointer>
#include <QTest>
#include <QTimer>

/// A notification area without a desktop.
class FakeTrayShell final : public TrayShell
{
public:
    FakeTrayShell(const bool &available, QPointer<QMenu> &menu, QStringList &log)
        : m_available(available), m_menu(menu), m_log(log)
    {}
    void setNotify(Notify notify) override { m_notify = std::move(notify); }
    void setMenu(QMenu *menu) override { m_menu = menu; }
    void add(const TrayRecord &record) override { m_log += u"icon added: "_s + TrayRecord::textOf(record.szTip); }
    void modify(const TrayRecord &record) override { m_log += u"icon changed: "_s + TrayRecord::textOf(record.szTip); }
    void remove(const TrayRecord &) override { m_log += u"icon removed"_s; }
    void setVersion(const TrayRecord &) override {}
    bool isAvailable() const override { return m_available; }
    void raise(int value) const { m_notify(value); }

private:
    const bool &m_available;
    QPointer<QMenu> &m_menu;
    QStringList &m_log;
    Notify m_notify;
};

/// A help that notes what is asked for.
class FakeHelp final : public HelpSystem
{
public:
    explicit FakeHelp(QStringList &log) : m_log(log) {}
    void htmlHelp(const QString &file, HelpCommand, const HelpData &argument) override
    {
        const auto *topic = std::get_if<qint32>(&argument);
        m_log += u"help of "_s + file.section(u'/', -1) + (topic ? u", topic %1"_s.arg(*topic) : u", contents"_s);
    }

private:
    QStringList &m_log;
};

/// The main window over a data directory of its own, without the browser's engine, desktop or network.
class PrincFixture
{
public:
    PrincFixture()
    {
        data.write(u"feeds.xml"_s, "<?xml version=\"1.0\"?><favoris></favoris>");
        messages.onShow = [this](const Message &box) {
            log += u"box \"%1\": %2 (icon %3, buttons %4)"_s.arg(box.title, QString(box.text).replace(u'\n', u'|'))
                       .arg(int(box.icon))
                       .arg(int(box.buttons));
        };
    }

    /// The first or a further run of the program: settings from the file, the window up and shown.
    void start(const QString &commandLine = {})
    {
        window.reset();
        downloaders.clear();
        const QByteArray fresh = Files::read(QString::fromUtf8(SAMPLES_DIR "/../resources/data/params.xml")).bytes;
        program = std::make_unique<Program>(
            Program::Surroundings{data.directory(), fresh, ScreenScale(), messages, [this] { return now; },
                                  [](int milliseconds) { QTest::qWait(qMin(milliseconds, 5)); }, [] { return true; },
                                  [this] { return makeDownloader(); }, runtime.path(), [this] { ++releases; }});
        QVERIFY(program->loadSettings());
        settings().soundPath.clear();
        if (adjustSettings)
            adjustSettings(settings());
        window = std::make_unique<frmPrinc>(program->longLived(), desktop(), dialogs());
        QObject::connect(window.get(), &frmPrinc::closeAsked, program.get(), &Program::end);
        window->findChild<BrowserPane *>()->hide(); // an engine isn't started for a pane that nobody sees
        program->start(*window, DesktopSurroundings::screens(), commandLine);
        shownByTheStart = window->isVisible();
        window->show();
        window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(window.get()));
    }

    Desktop desktop()
    {
        Desktop desktop{messages};
        desktop.makeTrayShell = [this] {
            auto shell = std::make_unique<FakeTrayShell>(trayAvailable, trayMenu, log);
            tray = shell.get();
            return shell;
        };
        desktop.openInSystemBrowser = [this](const QString &url) {
            log += u"opens "_s + url;
            return systemBrowserOpens;
        };
        desktop.inputBox = [this](QWidget *, const QString &prompt, const QString &title) {
            log += u"asks for a line \"%1\": %2"_s.arg(title, prompt);
            return inputAnswer;
        };
        desktop.askFeedFile = [this](QWidget *, const QString &title, const QString &filter) {
            log += u"asks for a file \"%1\": %2"_s.arg(title, filter);
            return inputAnswer;
        };
        return desktop;
    }

    Dialogs::Outside dialogs()
    {
        return {[this] { return makeDownloader(); },
                [this] { return std::make_unique<FakeHelp>(log); },
                {[] { return 0; }, [](int) {}},
                [](int milliseconds) { QTest::qWait(qMin(milliseconds, 5)); }};
    }

    /// A downloader that soon answers from `pages`, as long as `serversAnswer`.
    std::unique_ptr<Downloader> makeDownloader()
    {
        auto downloader = std::make_unique<FakeDownloader>();
        downloaders.push_back(downloader.get());
        auto *looks = new QTimer(downloader.get());
        QObject::connect(looks, &QTimer::timeout, downloader.get(), [this, answering = downloader.get()] {
            answering->pages = pages;
            if (serversAnswer)
                answering->answer();
        });
        looks->start(1);
        return downloader;
    }

    bool isDownloading() const
    {
        return std::any_of(downloaders.begin(), downloaders.end(),
                           [](const QPointer<FakeDownloader> &one) { return one && one->isRunning(); });
    }

    /// Writes two feeds, A (2) with three items in the folder D (1), and B (3) beside it with one. The second item of A
    /// has all that an item may have.
    void writeFeeds(const QByteArray &comments = "http://h/c")
    {
        data.write(u"feeds.xml"_s,
                   R"(<?xml version="1.0"?>
<favoris><dir name="D" key="1" visible="1"><feed name="A" url="http://h/2" key="2" ttl="60" cache="-7"/></dir>)"
                   R"(<feed name="B" url="http://h/3" key="3" ttl="60" cache="-7"/></favoris>)");
        const QByteArray parts = "<title>b</title><comments>" + comments +
                                 "</comments><enclosure url='http://h/b.mp3' length='9' type='a/b'/>";
        data.write(u"feeds/2.xml"_s,
                   FeedTexts::rss(u"A"_s, {u"a"_s, u"b"_s, u"c"_s}).replace("<title>b</title>", parts));
        data.write(u"feeds/3.xml"_s, FeedTexts::rss(u"B"_s, {u"d"_s}));
    }

    /// What the program holds for the window, to be looked at and changed.
    AppSettings &settings() const { return program->longLived().settings; }
    FeedTree &feedTree() const { return program->longLived().tree; }

    template <class Control>
    Control *control(const char *name) const
    {
        return window->findChild<Control *>(QString::fromLatin1(name));
    }
    FeedTreeView *tree() const { return control<FeedTreeView>("tvwFavoris"); }
    ItemListView *list() const { return control<ItemListView>("lvwItems"); }
    cToolbar *toolbar() const { return control<cToolbar>("cToolbar1"); }
    cToolbar *browserToolbar() const { return control<cToolbar>("tlbBrowser"); }
    BrowserPane *page() const { return control<BrowserPane>("WebBrowser1"); }
    AddressBox *txtURL() const { return control<AddressBox>("txtURL"); }
    QString statusText() const { return control<QWidget>("stabPrinc")->findChild<QLabel *>(u"state"_s)->text(); }
    FeedNodePtr node(const char *key) const { return feedTree().find(QString::fromLatin1(key)); }

    QPoint placeOf(const FeedNodePtr &node) const { return tree()->visualRect(feedTree().indexOf(node)).center(); }
    void click(const char *key) const { QTest::mouseClick(tree()->viewport(), Qt::LeftButton, {}, placeOf(node(key))); }
    void rightClick(const char *key) const
    {
        const QPoint place = placeOf(node(key));
        QContextMenuEvent event(QContextMenuEvent::Mouse, place, tree()->viewport()->mapToGlobal(place));
        QCoreApplication::sendEvent(tree()->viewport(), &event);
    }
    void clickRow(int row, Qt::MouseButton button = Qt::LeftButton) const
    {
        const QRect cell = list()->visualRect(list()->items().index(row, 0));
        QTest::mouseClick(list()->viewport(), button, {}, cell.center());
    }
    void enter(const QString &address) const
    {
        txtURL()->setText(address);
        QTest::keyClick(txtURL(), Qt::Key_Return);
    }

    /// Chooses the entry with that caption in one of the window's menus.
    void choose(const QString &caption) const
    {
        for (QAction *action : window->findChildren<QAction *>())
            if (action->text() == caption)
                return action->trigger();
        QFAIL(qPrintable(caption));
    }

    /// The popup of new items; null before the first one.
    static frmUpdate *popup()
    {
        for (QWidget *widget : QApplication::topLevelWidgets())
            if (auto *update = qobject_cast<frmUpdate *>(widget))
                return update;
        return nullptr;
    }

    TemporaryDataDirectory data;
    QTemporaryDir runtime;
    FakeMessages messages;
    QStringList log; ///< what went out of the window
    std::function<void(AppSettings &)> adjustSettings;
    QDateTime now = QDateTime(QDate(2004, 7, 1), QTime(12, 0));
    QString inputAnswer;
    bool systemBrowserOpens = true;
    bool trayAvailable = true;
    bool shownByTheStart = false;
    FakeTrayShell *tray = nullptr;
    QPointer<QMenu> trayMenu;
    int releases = 0;
    QHash<QString, QByteArray> pages; ///< what servers have, by address
    bool serversAnswer = true;
    std::vector<QPointer<FakeDownloader>> downloaders; ///< that of the opener, that of the updates, those of dialogs
    std::unique_ptr<Program> program;
    std::unique_ptr<frmPrinc> window; ///< ends before the program
};
