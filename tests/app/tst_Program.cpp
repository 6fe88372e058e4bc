// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/DesktopSurroundings.h"
#include "app/GraphicsChoice.h"
#include "app/Program.h"
#include "app/ProgramWait.h"
#include "app/StartPlace.h"
#include "platform/Literals.h"
#include "tests/fixtures/FakeDownloader.h"
#include "tests/fixtures/FakeMessages.h"
#include "tests/fixtures/FeedTexts.h"
#include "tests/fixtures/Golden.h"
#include "tests/fixtures/RunTimeErrors.h"
#include "tests/fixtures/TemporaryDataDirectory.h"
#include "window/ProgramWindow.h"

#include <QStyle>
#include <QTemporaryDir>
#include <QTest>

namespace {

/// A window without widgets that tells the verbs.
class FakeWindow final : public ProgramWindow
{
public:
    explicit FakeWindow(std::function<void(const QString &verb)> note) : m_note(std::move(note)) {}

    void place(const QRect &pixels) override
    {
        m_note(u"place %1,%2 %3x%4"_s.arg(pixels.x()).arg(pixels.y()).arg(pixels.width()).arg(pixels.height()));
    }
    void build() override { m_note(u"build"_s); }
    void showStartPage() override { m_note(u"start page"_s); }
    void showTrayIcon(bool shown) override { m_note(shown ? u"icon"_s : u"no icon"_s); }
    void openCommandLine(const QString &text) override { m_note(u"open "_s + text); }
    void present() override { m_note(u"present"_s); }
    void hideToTray() override { m_note(u"hide"_s); }
    void comeForward(const QByteArray &) override { m_note(u"forward"_s); }
    void takeHandOver(const QString &text, const QByteArray &) override { m_note(u"hand-over "_s + text); }
    void tell(const QString &text) override { m_note(u"tell "_s + text); }
    void dismissPopup() override { m_note(u"no popup"_s); }
    QString takeBandLayout() override
    {
        m_note(u"bands"_s);
        return u"<Bands taken=\"1\"/>"_s;
    }
    WindowGeometry geometryInTwips() const override { return {150, 300, 12000, 9000, {0, 15, 30, 45, 60, 75, 90}}; }

private:
    std::function<void(const QString &verb)> m_note;
};

} // namespace

/// The start and the road out, without a window.
class ProgramTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        qputenv("XDG_CONFIG_HOME", m_runtime.path().toUtf8());
        m_messages.onShow = [this](const Message &box) { note(u"box: "_s + QString(box.text).replace(u'\n', u'|')); };
    }

    void cleanup() { m_program.reset(); }

    void theStartAndTheRoadOutGoByTheirSteps()
    {
        const QString played = playedAgain(
            u"program.txt"_s, [this] { begin(); },
            [this](const QStringList &words) { return done(words[0], words.mid(1).join(u' ')); });
        QCOMPARE(differenceFromGolden(u"program.txt"_s, played), QString());
    }

    void whereNoDeviceDrawsTheProcessorDoesAndTheUserIsHeardFirst()
    {
        QTemporaryDir devices;
        QVERIFY(GraphicsChoice::isSoftware({}, devices.filePath(u"none"_s)));
        QVERIFY(GraphicsChoice::isSoftware("fast", devices.path()));
        QVERIFY(QFile::link(u"/dev/null"_s, devices.filePath(u"renderD128"_s)));
        QVERIFY(!GraphicsChoice::isSoftware({}, devices.path()));
        QByteArray set;
        for (const auto &[asked, users] :
             {std::pair("hardware", ""), std::pair("software", ""), std::pair("software", "own")}) {
            qputenv("QUILLWIRE_GRAPHICS", asked);
            for (const char *name : {"QT_QUICK_BACKEND", "QTWEBENGINE_CHROMIUM_FLAGS", "QT_XCB_GL_INTEGRATION",
                                     "QT_WAYLAND_DISABLE_HW_INTEGRATION"}) {
                *users ? qputenv(name, users) : qunsetenv(name);
                GraphicsChoice::prepare();
                set += qgetenv(name) + ' ';
            }
        }
        QCOMPARE(set, QByteArray("    software --disable-gpu none 1 own own own own "));
    }

    void theApplicationIsNamedAndDressed()
    {
        DesktopSurroundings::dress(*qApp);
        QCOMPARE(QCoreApplication::applicationName() + u' ' + QCoreApplication::applicationVersion() + u' ' +
                     QGuiApplication::desktopFileName() + u' ' +
                     QString::fromLatin1(QApplication::style()->metaObject()->className()) + u' ' +
                     QCoreApplication::translate("QPlatformTheme", "Cancel") + u' ' +
                     QVariant(QGuiApplication::quitOnLastWindowClosed()).toString(),
                 u"quillwire 3.1.0 quillwire DialogStyle Annuler false"_s);
        QVERIFY(!QGuiApplication::windowIcon().isNull());
    }

    void aWaitInWhichTheProgramEndedEndsTheProcess()
    {
        const auto ended = std::make_shared<bool>(false);
        QStringList done;
        bool endsInIt = false;
        const Wait wait = programWait(
            [&](int milliseconds) {
                done += u"waits %1"_s.arg(milliseconds);
                *ended = endsInIt;
            },
            ended, [&] { done += u"leaves"_s; });
        wait(7);
        endsInIt = true;
        wait(8);
        QCOMPARE(done, (QStringList{u"waits 7"_s, u"waits 8"_s, u"leaves"_s}));
    }

    void theStartWithTheDesktopIsAnEntryOfItsOwn()
    {
        const auto atStartup = DesktopSurroundings::dialogs(DataDirectory(m_runtime.path()), [](int) {}).runAtStartup;
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
    static QByteArray fresh() { return Files::read(u":/data/params.xml"_s).bytes; }

    /// A program over a folder with one feed of one item.
    void begin()
    {
        m_program.reset();
        m_folder = std::make_unique<TemporaryDataDirectory>();
        m_folder->write(u"feeds.xml"_s, "<favoris><feed name='F' url='http://127.0.0.1:9/f' key='1'/></favoris>");
        m_folder->write(u"feeds/1.xml"_s, FeedTexts::rss(u"F"_s, {u"a"_s}));
        m_downloaders.clear();
        m_endsInTheOpening = false;
        m_program = std::make_unique<Program>(Program::Surroundings{
            m_folder->directory(), fresh(), ScreenScale(), m_messages,
            [] { return QDateTime(QDate(2004, 7, 1), QTime(12, 0)); }, [](int) {}, [] { return true; },
            [this] {
                auto downloader = std::make_unique<FakeDownloader>();
                m_downloaders.push_back(downloader.get());
                return downloader;
            },
            m_runtime.path(), [this] { note(u"the instance is free"_s); }});
        connect(m_program.get(), &Program::ended, this, [this] { note(u"ended"_s); });
    }

    /// What was told while that was done.
    QStringList done(const QString &verb, const QString &rest)
    {
        m_told.clear();
        const LongLived objects = m_program->longLived();
        if (verb == u"remove")
            QFile::remove(m_folder->file(rest));
        else if (verb == u"write")
            m_folder->write(rest.section(u' ', 0, 0), rest.section(u' ', 1).toUtf8());
        else if (verb == u"read")
            m_told += QString::fromUtf8(m_folder->read(rest)).trimmed();
        else if (verb == u"mode")
            m_folder->write(u"params.xml"_s, fresh().replace("<params>", QByteArray("<params><start mode='" +
                                                                                    rest.toUtf8() + "' update='0'/>")));
        else if (verb == u"load")
            note(m_program->loadSettings() ? u"settings"_s : u"no settings"_s);
        else if (verb == u"start") {
            if (const int error = errorOf([&] { m_program->start(m_window, {}, rest); }))
                note(u"error %1"_s.arg(error));
        } else if (verb == u"change") {
            objects.current.document->Load(m_folder->cacheFile(u"1"_s));
            objects.current.document->SetItemRead(0, true);
            objects.catalogue.tables.updatettl.Replace(u"1"_s, u"17"_s);
        } else if (verb == u"look")
            objects.scheduler.handleUpdateTick();
        else if (verb == u"close")
            m_endsInTheOpening = true;
        else if (verb == u"abandon") {
            m_program->abandon();
            note(u"abandoned"_s);
        } else if (verb == u"end")
            m_program->end();
        return m_told;
    }

    /// Notes what happens, with what the world is like by then.
    void note(const QString &what)
    {
        const LongLived objects = m_program->longLived();
        const QByteArray settings = m_folder->read(u"params.xml"_s);
        const QList<QTimer *> timers = objects.scheduler.findChildren<QTimer *>();
        CachedFeed stored;
        m_told += what;
        for (const auto &[is, word] :
             {std::pair(objects.tree.find(u"1"_s) != nullptr, "feeds"),
              std::pair(QFileInfo::exists(m_runtime.filePath(u"Quillwire3.0_APPLICATION"_s)), "listens"),
              std::pair(std::any_of(timers.begin(), timers.end(), std::mem_fn(&QTimer::isActive)), "timer"),
              std::pair(stored.Load(m_folder->cacheFile(u"1"_s)) == LoadOk && stored.IsItemRead(0), "marks"),
              std::pair(m_folder->read(u"feeds.xml"_s).contains("ttl=\"17\""), "catalogue"),
              std::pair(settings.contains("<Bands taken=") && settings.contains("\"800\" height=\"600\""), "settings"),
              std::pair(std::all_of(m_downloaders.begin(), m_downloaders.end(), std::mem_fn(&QObject::signalsBlocked)),
                        "deaf"),
              std::pair(m_program->isEnded(), "over")})
            if (is)
                m_told.last() += u", "_s + QString::fromLatin1(word);
        if (m_endsInTheOpening && what.startsWith(u"open "_s))
            m_program->end();
    }

    std::unique_ptr<TemporaryDataDirectory> m_folder;
    QTemporaryDir m_runtime;
    FakeMessages m_messages;
    QStringList m_told;
    std::vector<FakeDownloader *> m_downloaders;
    bool m_endsInTheOpening = false;
    FakeWindow m_window{[this](const QString &verb) { note(verb); }};
    std::unique_ptr<Program> m_program;
};

QTEST_MAIN(ProgramTest)
#include "tst_Program.moc"
