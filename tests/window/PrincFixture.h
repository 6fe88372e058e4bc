// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/DesktopSurroundings.h"
#include "app/Program.h"
#include "controls/cToolbar.h"
#include "platform/Literals.h"
#include "platform/net/Downloader.h"
#include "reading/BrowserPane.h"
#include "reading/ItemListView.h"
#include "tests/fixtures/FakeMessages.h"
#include "tests/fixtures/TemporaryDataDirectory.h"
#include "window/AddressBox.h"
#include "window/FeedTreeView.h"
#include "window/TrayShell.h"
#include "window/frmPrinc.h"
#include "window/frmUpdate.h"

#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QPointer>
#include <QSignalSpy>
#include <QTest>

/// A notification area without a desktop.
class FakeTrayShell final : public TrayShell
{
public:
    FakeTrayShell(const bool &available, QPointer<QMenu> &menu) : m_available(available), m_menu(menu) {}
    void setNotify(Notify notify) override { m_notify = std::move(notify); }
    void setMenu(QMenu *menu) override { m_menu = menu; }
    void add(const TrayRecord &) override {}
    void modify(const TrayRecord &) override {}
    void remove(const TrayRecord &) override {}
    void setVersion(const TrayRecord &) override {}
    bool isAvailable() const override { return m_available; }
    void raise(int value) const { m_notify(value); }

private:
    const bool &m_available;
    QPointer<QMenu> &m_menu;
    Notify m_notify;
};

/// A help that notes the topics asked for; -1 is the table of contents.
class FakeHelp final : public HelpSystem
{
public:
    explicit FakeHelp(QList<qint32> &topics) : m_topics(topics) {}
    void htmlHelp(const QString &, HelpCommand, const HelpData &argument) override
    {
        const auto *topic = std::get_if<qint32>(&argument);
        m_topics.append(topic ? *topic : -1);
    }

private:
    QList<qint32> &m_topics;
};

/// The main window over a data directory of its own, without the browser's engine, desktop or outside network.
class PrincFixture
{
public:
    PrincFixture() { data.write(u"feeds.xml"_s, "<?xml version=\"1.0\"?><favoris></favoris>"); }

    /// The first or a further run of the program: settings from the file, the window up and shown.
    void start(const QString &commandLine = {})
    {
        window.reset();
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
        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window.get()));
    }

    /// Likewise, with the keyboard in the window.
    void startActive()
    {
        start();
        window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(window.get()));
    }

    Desktop desktop()
    {
        Desktop desktop{messages};
        desktop.makeTrayShell = [this] {
            auto shell = std::make_unique<FakeTrayShell>(trayAvailable, trayMenu);
            tray = shell.get();
            return shell;
        };
        desktop.openInSystemBrowser = [this](const QString &url) {
            openInSystemBrowser(url);
            return true;
        };
        desktop.inputBox = [this](QWidget *, const QString &, const QString &) { return inputAnswer; };
        desktop.askFeedFile = [](QWidget *, const QString &, const QString &) { return QString(); };
        return desktop;
    }

    Dialogs::Outside dialogs()
    {
        return {[this] { return makeDownloader(); },
                [this] { return std::make_unique<FakeHelp>(helpTopics); },
                {[] { return 0; }, [](int) {}},
                [](int milliseconds) { QTest::qWait(qMin(milliseconds, 5)); }};
    }

    /// What the program holds for the window, to be looked at and changed.
    AppSettings &settings() const { return program->longLived().settings; }
    FeedTree &feedTree() const { return program->longLived().tree; }
    FeedNodePtr selected() const { return program->longLived().treeState.selected(); }

    /// Writes a catalogue and the cache files of its feeds.
    void writeCatalogue(const QByteArray &favoris) { data.write(u"feeds.xml"_s, favoris); }

    template <class Control>
    Control *control(const char *name) const
    {
        return window->findChild<Control *>(QString::fromLatin1(name));
    }
    FeedTreeView *tree() const { return control<FeedTreeView>("tvwFavoris"); }
    ItemListView *list() const { return control<ItemListView>("lvwItems"); }
    cToolbar *toolbar() const { return control<cToolbar>("cToolbar1"); }
    cToolbar *browserToolbar() const { return control<cToolbar>("tlbBrowser"); }
    FeedNodePtr node(const char *key) const { return feedTree().find(QString::fromLatin1(key)); }

    QPoint placeOf(const FeedNodePtr &node) const { return tree()->visualRect(feedTree().indexOf(node)).center(); }
    void click(const FeedNodePtr &node) const
    {
        QTest::mouseClick(tree()->viewport(), Qt::LeftButton, {}, placeOf(node));
    }
    void clickRow(int row, int column, Qt::MouseButton button = Qt::LeftButton) const
    {
        const QRect cell = list()->visualRect(list()->items().index(row, column - 1));
        QTest::mouseClick(list()->viewport(), button, {}, cell.center());
    }

    /// Chooses the entry with that caption in one of the window's menus.
    void choose(const QString &caption) const
    {
        for (QAction *action : window->findChildren<QAction *>())
            if (action->text() == caption)
                return action->trigger();
        QFAIL(qPrintable(caption));
    }

    /// The enabled state of the four buttons of the main toolbar, as "1" and "0".
    QString buttons() const
    {
        QString states;
        for (int i = 0; i < toolbar()->buttonCount(); ++i)
            states += toolbar()->isButtonEnabled(i) ? u'1' : u'0';
        return states;
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
    std::function<void(AppSettings &)> adjustSettings;
    QDateTime now = QDateTime(QDate(2004, 7, 1), QTime(12, 0));
    QString inputAnswer;
    std::function<void(const QString &)> openInSystemBrowser = [](const QString &) {};
    bool trayAvailable = true;
    FakeTrayShell *tray = nullptr;
    QPointer<QMenu> trayMenu;
    int releases = 0;
    QList<qint32> helpTopics;
    std::function<std::unique_ptr<Downloader>()> makeDownloader = [] { return std::make_unique<Downloader>(); };
    std::unique_ptr<Program> program;
    std::unique_ptr<frmPrinc> window; ///< ends before the program
};
