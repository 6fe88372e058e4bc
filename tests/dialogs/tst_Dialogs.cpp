// SPDX-License-Identifier: GPL-3.0-or-later

#include "core/AppSettings.h"
#include "core/ExtensionsFile.h"
#include "core/FeedCatalogue.h"
#include "core/FeedTables.h"
#include "dialogs/frmAbout.h"
#include "dialogs/frmAuthentification.h"
#include "dialogs/frmExport.h"
#include "dialogs/frmExtensions.h"
#include "dialogs/frmImport.h"
#include "dialogs/frmOptions.h"
#include "dialogs/frmProprietes.h"
#include "dialogs/frmRechercher.h"
#include "dialogs/frmSendMail.h"
#include "engine/feed/CachedFeed.h"
#include "exchange/ImportRun.h"
#include "exchange/OpmlDownload.h"
#include "platform/MailSender.h"
#include "platform/net/SmtpMail.h"
#include "support/clsDES.h"
#include "tests/dialogs/DialogDump.h"
#include "tests/fixtures/AccessibleTree.h"
#include "tests/fixtures/FakeDownloader.h"
#include "tests/fixtures/FakeMessages.h"
#include "tests/fixtures/LocalSmtpServer.h"
#include "tests/fixtures/Steps.h"
#include "tests/fixtures/TemporaryDataDirectory.h"
#include "tests/fixtures/WidgetUser.h"

#include <QPushButton>
#include <QStackedLayout>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>

namespace {

/// What a dialog of one kind is opened with, and what it acts upon.
class World
{
public:
    World()
    {
        messages.onShow = [this](const Message &message) {
            meanwhile(u"box \"%1\" \"%2\" %3"_s.arg(message.title, message.text, QString::number(int(message.icon))));
        };
    }
    virtual ~World() = default;

    virtual std::unique_ptr<QDialog> open() = 0;
    virtual WidgetUser::State outside() const { return {}; }
    virtual bool act(const QString &) { return false; }

    /// Takes `step`, of the user or of the world around the dialog.
    void take(const QString &step)
    {
        try {
            if (step.startsWith(u"later "_s))
                later = step.section(u' ', 1).split(u", "_s);
            else if (!user->act(step) && !act(step))
                user->note(u"NO SUCH STEP"_s);
        } catch (const RunTimeError &error) {
            user->note(u"error %1"_s.arg(error.number()));
        }
    }

    Steps::Given given; ///< how the dialog is opened
    QDialog *form = nullptr;
    std::optional<WidgetUser> user;
    TemporaryDataDirectory data;

protected:
    /// Tells what has changed by the time that something happens in the middle of a step, and takes those set for then.
    void meanwhile(const QString &event)
    {
        user->noteWithChanges(event);
        for (const QString &step : std::exchange(later, {})) {
            take(step);
            user->noteWithChanges(step);
        }
    }
    QStringList later;
    QWidget window;
    FakeMessages messages;
};

class Options final : public World
{
    std::unique_ptr<QDialog> open() override
    {
        m_settings.startMode = given.value(u"startMode"_s, u"Minimisé"_s);
        m_settings.updateAtStart = true;
        m_settings.notifyNew = given.value(u"notify"_s) != u"no"_s;
        m_settings.soundPath = u"/son.wav"_s;
        m_settings.readDelay = given.value(u"readDelay"_s, u"60000"_s).toInt();
        m_settings.smtpServer = u"smtp.h"_s;
        m_settings.smtpPort = 2525;
        m_settings.fromMail = u"a@h"_s;
        m_settings.fromName = u"A"_s;
        m_entry = given.value(u"entry"_s).toInt();
        return std::make_unique<frmOptions>(
            &window, m_settings,
            frmOptions::RunAtStartup{[this] { return m_entry; }, [this](int state) { m_entry = state; }},
            [this] { return given.value(u"chosen"_s); });
    }

    WidgetUser::State outside() const override
    {
        return {{u"updateAtStart"_s, QVariant(m_settings.updateAtStart).toString()},
                {u"notifyNew"_s, QVariant(m_settings.notifyNew).toString()},
                {u"soundPath"_s, m_settings.soundPath},
                {u"readDelay"_s, QString::number(m_settings.readDelay)},
                {u"startMode"_s, m_settings.startMode},
                {u"smtpServer"_s, m_settings.smtpServer},
                {u"smtpPort"_s, QString::number(m_settings.smtpPort)},
                {u"fromMail"_s, m_settings.fromMail},
                {u"fromName"_s, m_settings.fromName},
                {u"entry"_s, QString::number(m_entry)}};
    }

    AppSettings m_settings;
    int m_entry = 0;
};

class Properties final : public World
{
    std::unique_ptr<QDialog> open() override
    {
        m_tree.addRoot(u"root"_s, u"Favoris"_s, NodeImage::Root);
        for (const QString &key : {u"9"_s, u"3"_s}) {
            m_selected = m_tree.addChild(m_tree.root(), key, u"Feed "_s + key, NodeImage::Feed);
            m_selected->tag = u"http://feed/"_s + key;
            m_tables.updatettl.Add(key, u"60"_s);
            m_tables.updatecache.Add(key, given.value(u"days"_s, u"7"_s));
            m_tables.havecache.Add(key, u"1"_s);
        }
        if (given.contains(u"user"_s)) {
            m_tables.usernames.Add(u"3"_s, given[u"user"_s]);
            m_tables.passwords.Add(u"3"_s, m_cipher.EncryptString(u"secret"_s, FeedCatalogue::cipherKey(u"3"_s), true));
        }
        if (given.contains(u"selected"_s))
            act(u"select "_s + given[u"selected"_s]);
        const auto feed = std::make_shared<CachedFeed>();
        data.write(u"long.xml"_s, "<rss version=\"2.0\"><channel><title>t</title><description>" +
                                      "a "_ba.repeated(40000) + "</description></channel></rss>");
        const QString file = given.value(u"feed"_s, u"" TEST_DATA_DIR "/properties.xml"_s);
        feed->Load(file == u"long.xml"_s   ? data.file(file)
                   : file.startsWith(u'/') ? file
                                           : u"" SAMPLES_DIR "/"_s + file);
        auto made = std::make_unique<frmProprietes>(
            &window, frmProprietes::Port{feed, given.contains(u"address"_s), given[u"address"_s],
                                         [this] { return m_selected; }, m_tables, m_cipher});
        if (!made->fillFrom())
            made->setWindowTitle(u"not filled"_s);
        return made;
    }

    bool act(const QString &step) override
    {
        const QString key = step.section(u' ', 1);
        m_selected = key == u"root"_s ? m_tree.root() : m_tree.find(key);
        return step.startsWith(u"select"_s);
    }

    WidgetUser::State outside() const override
    {
        WidgetUser::State tables;
        for (const QString &key : {u"3"_s, u"9"_s}) {
            QString secret = m_tables.passwords.Exists(key) ? m_tables.passwords.Item(key) : QString();
            tables[u"tables of "_s + key] =
                m_tables.updatettl.Item(key) + u'|' + m_tables.updatecache.Item(key) + u'|' +
                m_tables.havecache.Item(key) + u'|' +
                (m_tables.usernames.Exists(key) ? m_tables.usernames.Item(key) : u"none"_s) + u'|' +
                clsDES().DecryptString(secret, FeedCatalogue::cipherKey(key), true);
        }
        return tables;
    }

    FeedTree m_tree;
    FeedNodePtr m_selected;
    mutable FeedTables m_tables;
    clsDES m_cipher;
};

class Search final : public World
{
    std::unique_ptr<QDialog> open() override
    {
        const auto tell = [this](const char *verb) {
            return [this, verb](const QString &text) { user->note(QLatin1String(verb) + u' ' + text); };
        };
        const frmRechercher::Port port{
            tell("navigate"), tell("address"),
            [this](const QString &name, const QString &secret) { user->note(u"[%1:%2]"_s.arg(name, secret)); },
            [this] { user->note(u"LoadFile"_s); }};
        const SearchEndpoints endpoints{u"http://f/"_s, u"http://d/"_s, u"http://s/"_s, u"http://n/"_s, u"http://b/"_s};
        return std::make_unique<frmRechercher>(&window, port, endpoints, given.value(u"tab"_s).toInt());
    }

    WidgetUser::State outside() const override
    {
        return {{u"url"_s, dynamic_cast<frmRechercher &>(*form).searchUrl()}};
    }
};

class Import final : public World
{
    std::unique_ptr<QDialog> open() override
    {
        const auto downloader = [](FakeDownloader *&made) {
            auto owned = std::make_unique<FakeDownloader>();
            made = owned.get();
            return owned;
        };
        for (const QString &name : QDir(u"" TEST_DATA_DIR "/opml"_s).entryList(QDir::Files))
            data.write(name, Files::read(u"" TEST_DATA_DIR "/opml/"_s + name).bytes);
        m_download = std::make_unique<OpmlDownload>(downloader(m_list), data.file(u"tmp.opml"_s));
        m_run = std::make_unique<ImportRun>(
            downloader(m_feeds), data.file(u"tmp.xml"_s),
            [this](int) {
                meanwhile(u"pass of "_s + m_feeds->requests.back().url);
                m_feeds->answer();
            },
            [this](const std::shared_ptr<CachedFeed> &feed, const QString &url) {
                user->note(u"added %1 of %2"_s.arg(feed->Title(), url));
            });
        m_feeds->pages[u"http://h/2"_s] = "<rss version=\"2.0\"><channel><title>Two</title></channel></rss>";
        return std::make_unique<frmImport>(&window, messages, *m_download, *m_run,
                                           [this] { return given.value(u"chosen"_s); });
    }

    bool act(const QString &step) override
    {
        if (step.startsWith(u"server "_s)) // its status, and the list that it sends
            m_list->finish(step.section(u' ', 1, 1).toInt(), data.read(step.section(u' ', 2)));
        else if (step == u"cancelled"_s)
            m_list->CancelDownload();
        else if (step.startsWith(u"file "_s)) // what lies at the address that is in the box
            user->act(u"type txtOPMLPath "_s + data.file(step.section(u' ', 1)));
        else if (step.startsWith(u"open "_s)) // by the desktop
            dynamic_cast<frmImport &>(*form).openFile(data.file(step.section(u' ', 1)));
        else if (step == u"close"_s)
            user->note(form->close() ? u"closes"_s : u"stays"_s);
        else
            return false;
        return true;
    }

    WidgetUser::State outside() const override
    {
        return {{u"lists asked for"_s, QString::number(m_list->requests.size())},
                {u"feeds asked for"_s, QString::number(m_feeds->requests.size())},
                {u"download"_s, m_feeds->isRunning() ? u"runs"_s : u"rests"_s}};
    }

    FakeDownloader *m_list = nullptr;
    FakeDownloader *m_feeds = nullptr;
    std::unique_ptr<OpmlDownload> m_download;
    std::unique_ptr<ImportRun> m_run;
};

class Mail final : public World
{
    /// Tells what it is given, and fails as it is told.
    class Sender final : public MailSender
    {
    public:
        Sender(Mail &world, const std::function<void()> &keepAlive) : m_world(world), m_keepAlive(keepAlive) {}
        void setSmtpHost(const QString &host) override { tell(u"host"_s, host); }
        void setFrom(const QString &address) override { tell(u"from"_s, address); }
        void setFromDisplayName(const QString &name) override { tell(u"from name"_s, name); }
        void setRecipient(const QString &address) override { tell(u"to"_s, address); }
        void setRecipientDisplayName(const QString &name) override { tell(u"to name"_s, name); }
        void setSubject(const QString &subject) override { tell(u"subject"_s, subject); }
        void setMessage(const QString &text) override { tell(u"text"_s, text); }
        void Send() override
        {
            m_keepAlive();
            m_world.meanwhile(u"sends"_s);
            if (const QString reason = m_world.given.value(u"fails"_s); !reason.isEmpty())
                Q_EMIT SendFailed(reason);
            else
                Q_EMIT SendSuccesful();
        }

    private:
        void tell(const QString &field, const QString &text) { m_world.user->note(field + u' ' + text); }

        Mail &m_world;
        std::function<void()> m_keepAlive;
    };

    std::unique_ptr<QDialog> open() override
    {
        m_settings.smtpServer = u"smtp.h"_s;
        m_settings.fromMail = u"moi@h"_s;
        m_settings.fromName = u"Moi"_s;
        const QString word(given.value(u"letters"_s).toInt(), u'a');
        const QString text = u"Titre\r\n\r\nT"_s + QChar(0) + u"exte\u00a0:\u2028fin\r\n"_s;
        return std::make_unique<frmSendMail>(
            &window, m_settings, messages, word.isEmpty() ? text : word + u' ' + word,
            [this](int milliseconds) { meanwhile(u"waits %1"_s.arg(milliseconds)); },
            [this](const std::function<void()> &keepAlive) { return std::make_unique<Sender>(*this, keepAlive); });
    }

    bool act(const QString &step) override
    {
        dynamic_cast<frmSendMail &>(*form).showConnectionState(step == u"connected"_s);
        return step.endsWith(u"connected"_s);
    }

    AppSettings m_settings;
};

class ExtensionsWorld final : public World
{
    std::unique_ptr<QDialog> open() override
    {
        const QString path = data.file(given.value(u"folder"_s) + u"extensions.ini"_s);
        if (given.contains(u"file"_s))
            data.write(u"extensions.ini"_s, given[u"file"_s].replace(u'~', u'=').toUtf8());
        m_file = std::make_unique<ExtensionsFile>(path);
        m_file->load();
        return std::make_unique<frmExtensions>(
            &window, messages, frmExtensions::Port{m_file->extensions(), [this](const ExtensionKey &key, bool on) {
                                                       m_file->set(key, on);
                                                   }});
    }

    WidgetUser::State outside() const override
    {
        return {{u"file"_s, QString::fromUtf8(data.read(u"extensions.ini"_s))}};
    }

    std::unique_ptr<ExtensionsFile> m_file;
};

class Small final : public World
{
    std::unique_ptr<QDialog> open() override
    {
        if (given[u"kind"_s] == u"frmAbout"_s)
            return std::make_unique<frmAbout>(&window, [this](const QString &url) { user->note(url); });
        if (given[u"kind"_s] == u"frmAuthentification"_s)
            return std::make_unique<frmAuthentification>(
                &window, frmAuthentification::Port{
                             [this](const QString &name, const QString &secret) { user->note(name + u':' + secret); },
                             [this] { user->note(u"LoadFile"_s); }});
        data.write(u"feeds.xml"_s, given[u"catalogue"_s].toUtf8());
        auto made = std::make_unique<frmExport>(&window, data.file(u"feeds.xml"_s), [this] {
            return given[u"chosen"_s].replace(u"DATA"_s, data.directory().path());
        });
        if (auto *const name = made->findChild<QLineEdit *>(u"txtNom"_s);
            name->text() == QFileInfo(u"/proc/self"_s).owner())
            name->setText(u"the user"_s);
        return made;
    }

    WidgetUser::State outside() const override
    {
        return {{u"out.opml"_s, QString::fromUtf8(data.read(u"out.opml"_s))}};
    }
};

std::unique_ptr<World> worldOf(const QString &dialog)
{
    if (dialog == u"frmOptions"_s)
        return std::make_unique<Options>();
    if (dialog == u"frmExtensions"_s)
        return std::make_unique<ExtensionsWorld>();
    if (dialog == u"frmProprietes"_s)
        return std::make_unique<Properties>();
    if (dialog == u"frmRechercher"_s)
        return std::make_unique<Search>();
    if (dialog == u"frmImport"_s)
        return std::make_unique<Import>();
    if (dialog == u"frmSendMail"_s)
        return std::make_unique<Mail>();
    return std::make_unique<Small>();
}

struct PaintCount : public QObject
{
    bool eventFilter(QObject *, QEvent *event) override
    {
        count += event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }

    int count = 0;
};

} // namespace

/// What the dialogs do, step by step. Each file of data/steps is what a user does in dialogs of one kind, and behind
/// each step what happens and what is otherwise then. "[a case | name = value]" opens another dialog.
class DialogsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyStepHasItsEffects_data()
    {
        QTest::addColumn<QString>("dialog");
        const QStringList files = QDir(u"" TEST_DATA_DIR "/steps"_s).entryList(QDir::Files);
        for (const QString &file : files)
            QTest::newRow(qPrintable(file)) << file.section(u'.', 0, 0);
    }

    void everyStepHasItsEffects()
    {
        QFETCH(QString, dialog);
        WidgetUser::State first;
        const Steps steps{[&](const Steps::Given &given) {
                              const QString error = open(dialog, given);
                              return error.isEmpty() ? shown(first) : error;
                          },
                          [this](const QString &step) {
                              m_world->take(step);
                              return m_world->user->changes().replace(m_world->data.directory().path(), u"DATA"_s);
                          }};
        QCOMPARE(steps.differenceFrom(u"steps/"_s + dialog + u".txt"_s), QString());
    }

    /// Its controls and their places stand in data/controls.txt, a line each; what a screen reader is told of them in
    /// data/accessible.txt.
    void everyControlIsAsInTheTable()
    {
        for (const double scale : {1.0, 1.5, 2.0}) {
            setFontScale(scale);
            QString all;
            QString spoken;
            for (const char *const name : {"frmImport", "frmExport", "frmRechercher", "frmProprietes", "frmOptions",
                                           "frmSendMail", "frmAuthentification", "frmAbout", "frmExtensions"}) {
                open(QString::fromLatin1(name), {{u"user"_s, u"moi"_s}, {u"tab"_s, u"1"_s}, {u"entry"_s, u"2"_s}});
                all += DialogDump::told(*m_form);
                m_form->show();
                spoken += AccessibleTree::of(m_form.get());
                auto *const tabs = m_form->findChild<QTabWidget *>();
                auto *const pages = m_form->findChild<QStackedLayout *>();
                for (int page = 0; page < 5; ++page) { // none has more
                    tabs ? tabs->setCurrentIndex(page) : pages ? pages->setCurrentIndex(page) : void();
                    QApplication::processEvents();
                    all += cutTexts();
                }
            }
            QCOMPARE(differenceFromGolden(u"controls.txt"_s, all), QString());
            QVERIFY2(AccessibleTree::flaws(spoken).isEmpty(), qPrintable(AccessibleTree::flaws(spoken)));
            QCOMPARE(differenceFromGolden(u"accessible.txt"_s, spoken), QString());
        }
        setFontScale(1);
    }

    void onlyPaintsPassWhileAMailIsSent_data()
    {
        QTest::addColumn<LocalSmtpServer::Step>("slowStep");
        QTest::newRow("until it fails") << LocalSmtpServer::Step::Greeting;
        QTest::newRow("until a second after it is sent") << LocalSmtpServer::Step::Quit;
    }

    void onlyPaintsPassWhileAMailIsSent()
    {
        QFETCH(LocalSmtpServer::Step, slowStep);
        LocalSmtpServer server;
        server.stallAt(slowStep);
        FakeMessages messages;
        AppSettings settings;
        settings.smtpServer = u"127.0.0.1"_s;
        settings.fromMail = u"moi@example.org"_s;
        Wait onWait;
        frmSendMail form(
            nullptr, settings, messages, QString(), [&onWait](int milliseconds) { onWait(milliseconds); },
            [&server](std::function<void()> keepAlive) {
                auto mail = std::make_unique<SmtpMail>([keepAlive = std::move(keepAlive)] {
                    keepAlive();
                    return true;
                });
                mail->setPort(server.port());
                mail->setLimits({.idleMs = 300});
                return mail;
            });
        form.show();
        QVERIFY(QTest::qWaitForWindowExposed(&form));
        QCoreApplication::processEvents();
        form.findChild<QLineEdit *>(u"txtDestMail"_s)->setText(u"toi@example.org"_s);

        // What an update or a page does in the middle of a mail, by each of the roads of the event loop.
        QStringList passed;
        QTimer::singleShot(0, this, [&] { passed.append(u"a timer"_s); });
        QMetaObject::invokeMethod(
            this, [&] { passed.append(u"a queued call"_s); }, Qt::QueuedConnection);
        QTcpServer network;
        QVERIFY(network.listen(QHostAddress::LocalHost));
        connect(&network, &QTcpServer::newConnection, this, [&] { passed.append(u"the network"_s); });
        QTcpSocket client;
        client.connectToHost(QHostAddress::LocalHost, network.serverPort());
        PaintCount paints;
        form.findChild<QLabel *>(u"lblEtat"_s)->installEventFilter(&paints);
        QStringList passedMeanwhile = {u"never looked"_s};
        messages.onShow = [&](const Message &) { passedMeanwhile = passed; };
        onWait = [&](int) {
            Waiting::repaintingWait()(50);
            passedMeanwhile = passed;
        };
        form.findChild<QPushButton *>(u"cmdEnvoyer"_s)->click();
        QCOMPARE(passedMeanwhile, QStringList());
        QVERIFY(paints.count > 0);
        QTRY_COMPARE(passed.size(), 3);
    }

private:
    /// What is raised by opening it, if anything.
    QString open(const QString &dialog, const Steps::Given &given)
    {
        m_form.reset();
        m_world = worldOf(dialog);
        m_world->given = given;
        m_world->given[u"kind"_s] = dialog;
        try {
            m_form = m_world->open();
        } catch (const RunTimeError &error) {
            return u"error %1"_s.arg(error.number());
        }
        m_world->form = m_form.get();
        return {};
    }

    QString shown(WidgetUser::State &first)
    {
        m_form->show();
        m_form->activateWindow();
        [[maybe_unused]] const bool active = QTest::qWaitForWindowActive(m_form.get());
        m_world->user.emplace(*m_form, [this] { return m_world->outside(); });
        return m_world->user->differenceFrom(first);
    }

    static void setFontScale(double scale)
    {
        static const QFont usual = QApplication::font();
        QFont font = usual;
        font.setPointSizeF(usual.pointSizeF() * scale);
        QApplication::setFont(font);
    }

    /// Of the labels and buttons on show those that lack the room that they ask for, or lie outside of their dialog.
    QString cutTexts() const
    {
        QString cut;
        for (const QWidget *const widget : m_form->findChildren<QWidget *>()) {
            const auto *const button = qobject_cast<const QAbstractButton *>(widget);
            const auto *const label = qobject_cast<const QLabel *>(widget);
            const bool isArrow = button && button->text().isEmpty() && button->icon().isNull();
            const bool bearsText = (button && !isArrow) || label || widget->inherits("QComboBox") ||
                                   widget->inherits("QGroupBox") || widget->inherits("QTabBar") ||
                                   widget->inherits("QLineEdit");
            if (!bearsText || !widget->isVisible() || widget->objectName().startsWith(u"qt_"_s))
                continue;
            const QSize wanted = label && label->wordWrap()
                                     ? QSize(0, label->heightForWidth(label->width()))
                                     : widget->minimumSizeHint().expandedTo(button ? widget->sizeHint() : QSize());
            const QRect place(widget->mapTo(m_form.get(), QPoint()), widget->size());
            if (widget->size().expandedTo(wanted) != widget->size() || !m_form->rect().contains(place))
                cut += u"CUT: "_s + DialogDump::nameOf(*widget) + u'\n';
        }
        return cut;
    }

    std::unique_ptr<World> m_world;
    std::unique_ptr<QDialog> m_form; ///< in that world; null where it couldn't be opened
};

QTEST_MAIN(DialogsTest)
#include "tst_Dialogs.moc"
