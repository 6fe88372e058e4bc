// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/Literals.h"
#include "platform/RunTimeError.h"
#include "window/frmSysTray.h"

#include <QPixmap>
#include <QSignalSpy>
#include <QTest>

namespace {

constexpr quint32 nt4 = 0x00000004;
constexpr quint32 windows98 = 0x80000A04;
constexpr quint32 windowsMe = 0x80005A04;

struct Call
{
    QString name;
    TrayRecord record;
};

class FakeShell final : public TrayShell
{
public:
    explicit FakeShell(std::vector<Call> &calls) : m_calls(calls) {}
    void setNotify(Notify taker) override { notify = std::move(taker); }
    void setMenu(QMenu *) override {}
    void add(const TrayRecord &record) override { m_calls.push_back({u"add"_s, record}); }
    void modify(const TrayRecord &record) override { m_calls.push_back({u"modify"_s, record}); }
    void remove(const TrayRecord &record) override { m_calls.push_back({u"delete"_s, record}); }
    void setVersion(const TrayRecord &record) override { m_calls.push_back({u"version"_s, record}); }
    bool isAvailable() const override { return true; }

    Notify notify;

private:
    std::vector<Call> &m_calls;
};

QIcon icon(Qt::GlobalColor colour)
{
    QPixmap pixmap(16, 16);
    pixmap.fill(colour);
    return pixmap;
}

struct Fixture
{
    explicit Fixture(quint32 version = frmSysTray::defaultVersion)
    {
        auto fake = std::make_unique<FakeShell>(calls);
        shell = fake.get();
        tray = std::make_unique<frmSysTray>(std::move(fake), icon(Qt::red), u"Quillwire"_s, version);
    }
    const TrayRecord &last() const { return calls.back().record; }

    std::vector<Call> calls;
    FakeShell *shell;
    std::unique_ptr<frmSysTray> tray;
};

} // namespace

class tst_frmSysTray : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theVersionChoosesTheRecord_data()
    {
        QTest::addColumn<quint32>("version");
        QTest::addColumn<bool>("isUnicode");
        QTest::addColumn<bool>("hasBalloons");
        QTest::addColumn<int>("size");
        QTest::newRow("default") << frmSysTray::defaultVersion << true << true << 936;
        QTest::newRow("nt 4") << nt4 << true << false << 152;
        QTest::newRow("other 4.90") << windowsMe << false << true << 488;
        QTest::newRow("other 4.10") << windows98 << false << false << 88;
        QTest::newRow("other 5.90") << quint32(0x80005A05) << false << false << 88;
    }

    void theVersionChoosesTheRecord()
    {
        QFETCH(quint32, version);
        QFETCH(bool, isUnicode);
        QFETCH(bool, hasBalloons);
        QFETCH(int, size);
        Fixture f(version);
        QCOMPARE(f.tray->isUnicodeShell(), isUnicode);
        QCOMPARE(f.tray->hasBalloons(), hasBalloons);
        const TrayRecord &added = f.calls.front().record;
        QCOMPARE(f.calls.front().name, u"add"_s);
        QCOMPARE(added.cbSize, size);
        QCOMPARE(added.uFlags, 7);
        QCOMPARE(added.uCallbackMessage, 512);
        QCOMPARE(added.uID, added.hIcon);
        QCOMPARE(added.uVersion, hasBalloons ? 3 : 0);
        QCOMPARE(TrayRecord::textOf(added.szTip), u"Quillwire"_s);
        QCOMPARE(f.calls.size(), hasBalloons ? 2U : 1U);
        if (hasBalloons)
            QCOMPARE(f.calls.back().name, u"version"_s);
        f.tray.reset();
        QCOMPARE(f.calls.back().name, u"delete"_s);
        QCOMPARE(f.last().cbSize, size);
    }

    void wideTipsAreWrittenButNotReadBack()
    {
        Fixture f;
        f.tray->setToolTip(u"Quillwire 3.1"_s);
        QCOMPARE(f.calls.back().name, u"modify"_s);
        QCOMPARE(f.last().uFlags, 4);
        QCOMPARE(f.last().szTip.size(), 128);
        QCOMPARE(TrayRecord::textOf(f.last().szTip), u"Quillwire 3.1"_s);
        QCOMPARE(f.tray->ToolTip(), QString());
        f.tray->setToolTip(QString()); // leaves the old text in place, and is sent all the same
        QCOMPARE(f.calls.size(), 4U);
        QCOMPARE(TrayRecord::textOf(f.last().szTip), u"Quillwire 3.1"_s);
        f.tray->setToolTip(QString(500, u'x'));
        QCOMPARE(TrayRecord::textOf(f.last().szTip), QString(127, u'x'));
        f.tray->setToolTip(u"court"_s);
        QCOMPARE(TrayRecord::textOf(f.last().szTip), u"court"_s);
    }

    void thePictureIsSentWhenItDiffers()
    {
        for (const quint32 version : {frmSysTray::defaultVersion, windows98}) {
            Fixture f(version);
            const qint32 blue = f.tray->handleOf(icon(Qt::blue));
            f.tray->setIconHandle(f.calls.front().record.hIcon);
            const std::size_t before = f.calls.size();
            f.tray->setIconHandle(blue);
            f.tray->setIconHandle(blue);
            QCOMPARE(f.calls.size(), before + 1);
            QCOMPARE(f.last().uFlags, 2);
            QCOMPARE(f.last().picture.pixmap(16).toImage().pixelColor(3, 3), QColor(Qt::blue));
            QCOMPARE(f.tray->IconHandle(), version == windows98 ? blue : 0);
        }
    }

    void balloonsAreShownWhereTheShellHasThem()
    {
        Fixture f;
        f.tray->ShowBalloonTip(u"Texte"_s, u"Titre"_s, 1, u"2500.5"_s);
        QCOMPARE(f.last().uFlags, 16);
        QCOMPARE(f.last().uTimeout, 2500); // halves go to the even neighbour
        QCOMPARE(f.last().dwInfoFlags, 1);
        QCOMPARE(TrayRecord::textOf(f.last().szInfo), u"Texte"_s);
        QCOMPARE(TrayRecord::textOf(f.last().szInfoTitle), u"Titre"_s);
        const std::size_t before = f.calls.size();
        QVERIFY_EXCEPTION_THROWN(f.tray->ShowBalloonTip({}, {}, 0, u"bientôt"_s), RunTimeError);
        QVERIFY_EXCEPTION_THROWN(f.tray->ShowBalloonTip({}, {}, 0, 1e12), RunTimeError);
        QCOMPARE(f.calls.size(), before);
        Fixture old(nt4);
        old.tray->ShowBalloonTip(u"Texte"_s, u"Titre"_s, 1, u"bientôt"_s);
        QCOMPARE(old.calls.size(), 1U);
    }

    void notificationsRaiseTheirEvents()
    {
        Fixture f;
        QStringList events;
        const auto note = [&events](const char *what) {
            return [&events, what](int button = 0) {
                events.append(QString::fromLatin1(what) + (button ? QString::number(button) : QString()));
            };
        };
        const frmSysTray *tray = f.tray.get();
        connect(tray, &frmSysTray::SysTrayMouseMove, this, [&] { note("move")(); });
        connect(tray, &frmSysTray::SysTrayMouseDown, this, note("down "));
        connect(tray, &frmSysTray::SysTrayMouseUp, this, note("up "));
        connect(tray, &frmSysTray::SysTrayDoubleClick, this, note("double "));
        connect(tray, &frmSysTray::BalloonShow, this, [&] { note("shown")(); });
        connect(tray, &frmSysTray::BalloonHide, this, [&] { note("hidden")(); });
        connect(tray, &frmSysTray::BalloonTimeOut, this, [&] { note("timed out")(); });
        connect(tray, &frmSysTray::BalloonClicked, this, [&] { note("clicked")(); });
        for (const int value : {512, 513, 514, 515, 516, 517, 518, 519, 1025, 1026, 1027, 1028, 1029}) {
            events += QString::number(value);
            f.shell->notify(value);
        }
        QCOMPARE(events.join(u' '), u"512 move 513 514 down 1 515 double 1 516 down 2 517 up 2 518 double 2 519 1025 "
                                    "1026 shown 1027 hidden 1028 timed out 1029 clicked"_s);
    }

    void theMenuReportsIndexAndKey()
    {
        Fixture f;
        QCOMPARE(f.tray->DefaultMenuIndex(), -1);
        QCOMPARE(f.tray->AddMenuItem(u"&Ouvrir"_s, u"ouvrir"_s, true), 0);
        QCOMPARE(f.tray->AddMenuItem(u"-"_s, QString(), false), 1);
        QCOMPARE(f.tray->AddMenuItem(u"&Quitter"_s, u"quitter"_s, false), 2);
        const QList<QAction *> actions = f.tray->menu()->actions();
        QCOMPARE(f.tray->menu()->defaultAction(), actions.at(0));
        QVERIFY(actions.at(1)->isSeparator() && actions.at(1)->text().isEmpty()); // a text would make it a heading

        QSignalSpy clicks(f.tray.get(), &frmSysTray::MenuClick);
        actions.at(2)->trigger();
        QCOMPARE(clicks.takeFirst(), QVariantList({2, u"quitter"_s}));
        f.tray->EnableMenuItem(2, false);
        f.tray->EnableMenuItem(3, false);
        actions.at(2)->trigger();
        QVERIFY(clicks.isEmpty());
        for (const qint32 bad : {3, -1}) {
            f.tray->setDefaultMenuIndex(2);
            f.tray->setDefaultMenuIndex(bad);
            QCOMPARE(f.tray->DefaultMenuIndex(), 0);
        }
    }

    void removingMovesTheLaterEntriesDown()
    {
        Fixture f;
        for (const QString &name : {u"a"_s, u"b"_s, u"c"_s, u"d"_s})
            f.tray->AddMenuItem(name.toUpper(), name, false);
        f.tray->EnableMenuItem(1, false);
        f.tray->RemoveMenuItem(9);
        f.tray->RemoveMenuItem(1);
        const QList<QAction *> actions = f.tray->menu()->actions();
        QCOMPARE(actions.size(), 3);
        QCOMPARE(actions.at(1)->text(), u"C"_s);
        QVERIFY(!actions.at(1)->isEnabled()); // caption and key move, the state stays with the place
        QSignalSpy clicks(f.tray.get(), &frmSysTray::MenuClick);
        actions.at(2)->trigger();
        QCOMPARE(clicks.takeFirst(), QVariantList({2, u"d"_s}));

        f.tray->RemoveMenuItem(0);
        QCOMPARE(f.tray->menu()->actions().size(), 3);
        QCOMPARE(f.tray->menu()->actions().at(0)->text(), QString());
        QCOMPARE(f.tray->AddMenuItem(u"E"_s, u"e"_s, false), 3); // place 0 isn't used anew
    }
};

QTEST_MAIN(tst_frmSysTray)
#include "tst_frmSysTray.moc"
