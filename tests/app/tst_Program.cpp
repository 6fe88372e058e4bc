// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/DesktopSurroundings.h"
#include "app/GraphicsChoice.h"
#include "app/Program.h"
#include "app/StartPlace.h"
#include "platform/DateText.h"
#include "platform/Literals.h"
#include "tests/fixtures/FakeDownloader.h"
#include "tests/fixtures/FakeMessages.h"
#include "tests/fixtures/FeedTexts.h"
#include "tests/fixtures/TemporaryDataDirectory.h"
#include "window/ProgramWindow.h"

#include <QTemporaryDir>
#include <QTest>

namespace {

/// A window without widgets that keeps a log of the verbs. `look` tells what the world is like at that moment.
class FakeWindow final : public ProgramWindow
{
public:
    explicit FakeWindow(std::function<QString()> look) : m_look(std::move(look)) {}

    void place(const QRect &pixels) override
    {
        note(u"place %1,%2 %3x%4"_s.arg(pixels.x()).arg(pixels.y()).arg(pixels.width()).arg(pixels.height()));
    }
    void build() override { note(u"build"_s); }
    void showStartPage() override { note(u"start page"_s); }
    void showTrayIcon(bool shown) override { note(shown ? u"icon"_s : u"no icon"_s); }
    void openCommandLine(const QString &text) override
    {
        note(u"open "_s + text);
        if (onOpen)
            onOpen();
    }
    void present() override { note(u"present"_s); }
    void hideToTray() override { note(u"hide"_s); }
    void comeForward(const QByteArray &token) override { note(u"forward "_s + QString::fromUtf8(token)); }
    void takeHandOver(const QString &text, const QByteArray &token) override
    {
        note(u"hand-over "_s + text + u' ' + QString::fromUtf8(token));
    }
    void dismissPopup() override { note(u"no popup"_s); }
    QString takeBandLayout() override
    {
        note(u"bands"_s);
        return u"<Bands taken=\"1\"/>"_s;
    }
    WindowGeometry geometryInTwips() const override { return {150, 300, 12000, 9000, {0, 15, 30, 45, 60, 75, 90}}; }

    QStringList log;
    std::function<void()> onOpen;

private:
    void note(const QString &verb) { log.append(verb + m_look()); }

    std::function<QString()> m_look;
};

} // namespace

/// The start and the road out, without a window.
class ProgramTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { qputenv("XDG_CONFIG_HOME", m_runtime.path().toUtf8()); }

    void init()
    {
        m_program.reset();
        m_folder = std::make_unique<TemporaryDataDirectory>();
        m_folder->write(u"feeds.xml"_s,
                        "<favoris><feed name='F' url='http://127.0.0.1:9/f' key='1' ttl='60' cache='-7'/></favoris>");
        m_folder->write(u"feeds/1.xml"_s, FeedTexts::rss(u"F"_s, {u"a"_s}));
        m_messages = std::make_unique<FakeMessages>();
        m_releases = 0;
        m_downloaders.clear();
        make();
    }
    void cleanup()
    {
        m_program.reset(); // before the window that it knows
        m_window.reset();
    }

    void theStartGoesByItsSteps()
    {
        QVERIFY(m_program->loadSettings());
        start(u"feed:x"_s);
        QCOMPARE(m_window->log, (QStringList{u"place 99,113 816x604"_s, u"build"_s, u"start page"_s, u"icon, feeds"_s,
                                             u"open feed:x, feeds"_s, u"present, feeds, timer"_s}));
    }

    void theStartModeIsComparedToTheLetter()
    {
        for (const auto &[mode, last] :
             {std::pair("Minimisé", u"hide, feeds, timer"_s), std::pair("minimisé", u"present, feeds, timer"_s),
              std::pair("Plein écran", u"present, feeds, timer"_s)}) {
            make();
            QByteArray params = freshSettings();
            m_folder->write(
                u"params.xml"_s,
                params.replace("<params>", QByteArray("<params><start mode='" + QByteArray(mode) + "' update='0'/>")));
            QVERIFY(m_program->loadSettings());
            start();
            QCOMPARE(m_window->log.back(), last);
            m_program->end();
        }
    }

    void aCatalogueOfAnotherLocaleOutlivesTheFirstMinute()
    {
        QByteArray feeds;
        const QList<QByteArray> dates = {"6/30/2004 13:00:00",
                                         "1.7.2004 11:30:00",
                                         "01. 07. 2004. 11:30:00",
                                         "2004. 7. 1. 11:30:00",
                                         "2004-07-01 11:30:00",
                                         "1.07.2004 г. 11:30:00",
                                         "١‏/٧‏/٢٠٠٤ ١١:٣٠:٠٠"};
        for (const QByteArray &date : dates)
            feeds += "<feed name='F' url='u' key='" + QByteArray::number(feeds.size() + 1) +
                     "' ttl='2000' lastupdate='" + date + "'/>";
        m_folder->write(u"feeds.xml"_s, "<favoris>" + feeds + "</favoris>");
        QVERIFY(m_program->loadSettings());
        start();
        m_program->longLived().scheduler.handleUpdateTick();
        m_program->end();
        QVERIFY(m_folder->read(u"feeds.xml"_s).contains("2004. 7. 1. 11:30:00"));
    }

    void theProcessorDrawsWhereNoDeviceDoes()
    {
        QTemporaryDir devices;
        QVERIFY(GraphicsChoice::isSoftware({}, devices.filePath(u"none"_s)));
        QVERIFY(GraphicsChoice::isSoftware("fast", devices.path()));
        QVERIFY(!GraphicsChoice::isSoftware("hardware", devices.path()));
        QVERIFY(QFile::link(u"/dev/null"_s, devices.filePath(u"renderD128"_s)));
        QVERIFY(!GraphicsChoice::isSoftware({}, devices.path()));
        QVERIFY(GraphicsChoice::isSoftware("software", devices.path()));
    }

    void whereTheProcessorDrawsTheUserIsHeardFirst()
    {
        const QByteArrayList names = {"QT_QUICK_BACKEND", "QTWEBENGINE_CHROMIUM_FLAGS", "QT_XCB_GL_INTEGRATION",
                                      "QT_WAYLAND_DISABLE_HW_INTEGRATION"};
        QByteArrayList set;
        for (const auto &[asked, users] :
             {std::pair("hardware", ""), std::pair("software", ""), std::pair("software", "own")}) {
            qputenv("QUILLWIRE_GRAPHICS", asked);
            for (const QByteArray &name : names)
                *users ? qputenv(name, users) : qunsetenv(name);
            GraphicsChoice::prepare();
            for (const QByteArray &name : names)
                set += qgetenv(name);
        }
        QCOMPARE(set.join(' '), QByteArray("    software --disable-gpu none 1 own own own own"));
    }

    void theStartWithTheDesktopIsAnEntryOfItsOwn()
    {
        const auto atStartup = DesktopSurroundings::dialogs(m_folder->directory(), [](int) {}).runAtStartup;
        const QDir folder(m_runtime.filePath(u"autostart"_s));
        for (const int state : {1, 0, 2}) {
            atStartup.setRunAtStartup(state);
            QCOMPARE(atStartup.isRunAtStartup(), state == 0 ? 0 : 2);
            QByteArray entry;
            for (const QFileInfo &file : folder.entryInfoList({u"*.desktop"_s}))
                entry += Files::read(file.filePath()).bytes;
            QVERIFY2(entry.contains(QCoreApplication::applicationFilePath().toUtf8()) == (state != 0), entry);
        }
    }

    void settingsThatCannotBeUsedEndTheStart()
    {
        m_folder->write(u"params.xml"_s, "<Quillwire/>");
        QVERIFY(!m_program->loadSettings());
        QCOMPARE(m_releases, 1);
        QCOMPARE(m_messages->shown.size(), std::size_t(1));
        QVERIFY(m_messages->shown[0].text.endsWith(u"Le programme va maintenant se terminer"_s));
        QCOMPARE(m_folder->read(u"params.xml"_s), QByteArray("<Quillwire/>"));
    }

    void theRoadOutGoesByItsStepsAndOnce()
    {
        QVERIFY(m_program->loadSettings());
        start();
        const LongLived objects = m_program->longLived();
        QCOMPARE(objects.current.document->Load(m_folder->cacheFile(u"1"_s)), LoadOk);
        objects.current.document->SetItemRead(0, true);
        objects.catalogue.tables.updatettl.Replace(u"1"_s, u"17"_s);
        m_window->log.clear();
        connect(m_program.get(), &Program::ended, this, [this] { m_window->log += u"ended"_s; });
        QVERIFY(isListening());
        for (int twice = 0; twice < 2; ++twice)
            m_program->end();
        QCOMPARE(m_window->log, (QStringList{u"no popup, feeds"_s, u"bands, feeds, marks"_s, u"no icon, feeds, marks"_s,
                                             u"released, catalogue 1, settings 1, deaf 1"_s, u"ended"_s}));
        QVERIFY(m_program->isEnded());
        QCOMPARE(m_downloaders.size(), std::size_t(2));
        for (const FakeDownloader *downloader : m_downloaders)
            QVERIFY(downloader->signalsBlocked());
    }

    void anEndInTheMiddleOfTheStartShowsNoWindow()
    {
        QVERIFY(m_program->loadSettings());
        m_onOpen = [this] { m_program->end(); };
        start(u"x"_s);
        QVERIFY(m_window->log.contains(u"no icon, feeds"_s) && !m_window->log.filter(u"present"_s).size());
        QVERIFY(m_program->isEnded());
    }

    void anAbandonedProgramSavesNothing()
    {
        QVERIFY(m_program->loadSettings());
        start();
        m_program->abandon();
        m_folder->write(u"params.xml"_s, "untouched");
        m_program->end();
        QCOMPARE(m_folder->read(u"params.xml"_s), QByteArray("untouched"));
        QCOMPARE(m_releases, 0);
        QVERIFY(m_program->isEnded() && !isListening());
        for (const FakeDownloader *downloader : m_downloaders)
            QVERIFY(downloader->signalsBlocked());
    }

    void aMissingCatalogueIsARunTimeError()
    {
        QFile::remove(m_folder->file(u"feeds.xml"_s));
        QVERIFY(m_program->loadSettings());
        QVERIFY_EXCEPTION_THROWN(start(), RunTimeError);
    }

    void aWindowThatNobodySeesIsBroughtIntoSight()
    {
        const QList<QRect> screens = {QRect(0, 30, 1280, 770), QRect(-1280, 0, 1280, 800)};
        for (const auto &[name, stored, shown] : std::initializer_list<std::tuple<const char *, QRect, QRect>>{
                 {"inside", {10, 20, 800, 600}, {10, 20, 800, 600}},
                 {"on the second screen", {-900, 0, 800, 600}, {-900, 0, 800, 600}},
                 {"partly outside", {1264, 784, 800, 600}, {1264, 784, 800, 600}},
                 {"small", {10, 40, 16, 16}, {10, 40, 16, 16}},
                 {"outside", {3000, 0, 800, 600}, {0, 30, 800, 600}},
                 {"all but some pixels outside", {1265, 30, 800, 600}, {0, 30, 800, 600}},
                 {"all but some lines outside", {30, 785, 800, 600}, {0, 30, 800, 600}},
                 {"too narrow", {10, 40, 15, 600}, {10, 40, 800, 600}},
                 {"no height", {10, 40, 700, -5}, {10, 40, 700, 600}},
                 {"no size, outside", {-32768, 32767, -32768, 1}, {0, 30, 800, 600}}}) {
            AppSettings settings;
            settings.windowX = static_cast<qint16>(stored.x());
            settings.windowY = static_cast<qint16>(stored.y());
            settings.windowWidth = static_cast<qint16>(stored.width());
            settings.windowHeight = static_cast<qint16>(stored.height());
            QVERIFY2(startPlace(settings, screens) == shown, name);
            QCOMPARE(startPlace(settings, {}).topLeft(), stored.topLeft());
        }
    }

private:
    static QByteArray freshSettings() { return Files::read(u":/data/params.xml"_s).bytes; }

    void make()
    {
        m_program = std::make_unique<Program>(Program::Surroundings{
            m_folder->directory(), freshSettings(), ScreenScale(), *m_messages,
            [] { return QDateTime(QDate(2004, 7, 1), QTime(12, 0)); }, [](int) {}, [] { return true; },
            [this] {
                auto downloader = std::make_unique<FakeDownloader>();
                m_downloaders.push_back(downloader.get());
                return downloader;
            },
            m_runtime.path(), [this] { noteRelease(); }});
    }

    bool isListening() const { return QFileInfo::exists(m_runtime.filePath(u"Quillwire3.0_APPLICATION"_s)); }

    /// Notes what of the road out is behind when the instance lock is given back.
    void noteRelease()
    {
        ++m_releases;
        const QByteArray params = m_folder->read(u"params.xml"_s);
        if (m_window)
            m_window->log +=
                u"released, catalogue %1, settings %2, deaf %3"_s
                    .arg(m_folder->read(u"feeds.xml"_s).contains("ttl=\"17\""))
                    .arg(params.contains("<Bands taken=\"1\"/>") && params.contains("width=\"800\" height=\"600\""))
                    .arg(!isListening());
    }

    void start(const QString &commandLine = {})
    {
        m_window = std::make_unique<FakeWindow>([this] { return look(); });
        m_window->onOpen = m_onOpen;
        m_onOpen = {};
        m_program->start(*m_window, {}, commandLine);
    }

    QString look() const
    {
        QString seen;
        const LongLived objects = m_program->longLived();
        if (objects.tree.find(u"1"_s))
            seen += u", feeds"_s;
        for (const QTimer *timer : objects.scheduler.findChildren<QTimer *>())
            if (timer->isActive())
                seen += u", timer"_s;
        CachedFeed stored;
        if (stored.Load(m_folder->cacheFile(u"1"_s)) == LoadOk && stored.IsItemRead(0))
            seen += u", marks"_s;
        return seen;
    }

    std::unique_ptr<TemporaryDataDirectory> m_folder;
    QTemporaryDir m_runtime;
    std::unique_ptr<FakeMessages> m_messages;
    int m_releases = 0;
    std::vector<FakeDownloader *> m_downloaders;
    std::function<void()> m_onOpen;
    std::unique_ptr<FakeWindow> m_window;
    std::unique_ptr<Program> m_program;
};

QTEST_MAIN(ProgramTest)
#include "tst_Program.moc"
