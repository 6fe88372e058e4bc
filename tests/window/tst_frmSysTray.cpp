// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/Literals.h"
#include "window/frmSysTray.h"

#include <QPixmap>
#include <QSignalSpy>
#include <QTest>

namespace {

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
    Fixture()
    {
        auto fake = std::make_unique<FakeShell>(calls);
        shell = fake.get();
        tray = std::make_unique<frmSysTray>(std::move(fake), icon(Qt::red), u"Quillwire"_s);
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
    void theIconComesWithItsTipAndGoes()
    {
        Fixture f;
        QCOMPARE(f.calls.front().name, u"add"_s);
        const TrayRecord added = f.calls.front().record;
        QCOMPARE((QList<qint64>{added.cbSize, added.uFlags, added.uCallbackMessage, added.uVersion}),
                 (QList<qint64>{936, 7, 512, 3}));
        QCOMPARE(TrayRecord::textOf(added.szTip), u"Quillwire"_s);
        QCOMPARE(f.calls.back().name, u"version"_s);
        f.tray->setToolTip(QString(500, u'x'));
        QCOMPARE(f.calls.back().name, u"modify"_s);
        QCOMPARE(f.last().uFlags, 4);
        QCOMPARE(TrayRecord::textOf(f.last().szTip), QString(127, u'x'));
        f.tray->setToolTip(u"court"_s);
        f.tray->setToolTip(QString()); // leaves the old text in place
        QCOMPARE(TrayRecord::textOf(f.last().szTip), u"court"_s);

        const qint32 blue = f.tray->handleOf(icon(Qt::blue));
        f.tray->setIconHandle(added.hIcon);
        const std::size_t before = f.calls.size();
        f.tray->setIconHandle(blue);
        f.tray->setIconHandle(blue); // only what differs is sent
        QCOMPARE(f.calls.size(), before + 1);
        QCOMPARE(f.last().uFlags, 2);
        QCOMPARE(f.last().picture.pixmap(16).toImage().pixelColor(3, 3), QColor(Qt::blue));
        f.tray.reset();
        QCOMPARE(f.calls.back().name, u"delete"_s);
    }

    void theMenuReportsIndexAndKey()
    {
        Fixture f;
        QCOMPARE(f.tray->AddMenuItem(u"&Ouvrir"_s, u"ouvrir"_s, true), 0);
        QCOMPARE(f.tray->AddMenuItem(u"-"_s, QString(), false), 1);
        QCOMPARE(f.tray->AddMenuItem(u"&Quitter"_s, u"quitter"_s, false), 2);
        const QList<QAction *> actions = f.tray->menu()->actions();
        QCOMPARE(f.tray->menu()->defaultAction(), actions.at(0));
        QVERIFY(actions.at(1)->isSeparator() && actions.at(1)->text().isEmpty()); // a text would make it a heading
        QSignalSpy clicks(f.tray.get(), &frmSysTray::MenuClick);
        actions.at(2)->trigger();
        QCOMPARE(clicks.takeFirst(), QVariantList({2, u"quitter"_s}));
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
};

QTEST_MAIN(tst_frmSysTray)
#include "tst_frmSysTray.moc"
