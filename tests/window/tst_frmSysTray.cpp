// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/Literals.h"
#include "tests/fixtures/Golden.h"
#include "tests/fixtures/RunTimeErrors.h"
#include "window/frmSysTray.h"

#include <QPixmap>
#include <QTest>

namespace {

class LoggingShell final : public TrayShell
{
public:
    LoggingShell(QStringList &log, Notify &notify) : m_log(log), m_notify(notify) {}
    void setNotify(Notify taker) override { m_notify = std::move(taker); }
    void setMenu(QMenu *) override {}
    void add(const TrayRecord &record) override { note(u"add"_s, record); }
    void modify(const TrayRecord &record) override { note(u"modify"_s, record); }
    void remove(const TrayRecord &record) override { note(u"remove"_s, record); }
    void setVersion(const TrayRecord &record) override { note(u"version"_s, record); }
    bool isAvailable() const override { return true; }

private:
    static QString field(const QString &text)
    {
        return u"\"%1\" of %2"_s.arg(TrayRecord::textOf(text).left(5)).arg(text.size());
    }

    void note(const QString &verb, const TrayRecord &record) const
    {
        m_log +=
            verb +
            u": size %1, flags %2, calls back %3, icon %4 of %5, tip %6, info %7 titled %8, %9 ms"_s.arg(record.cbSize)
                .arg(record.uFlags)
                .arg(record.uCallbackMessage)
                .arg(record.hIcon)
                .arg(record.uID)
                .arg(field(record.szTip), field(record.szInfo), field(record.szInfoTitle))
                .arg(record.uTimeout) +
            u", version %1, info flags %2, %3, of a form: %4"_s.arg(record.uVersion)
                .arg(record.dwInfoFlags)
                .arg(record.picture.pixmap(16).toImage().pixelColor(3, 3).name())
                .arg(record.hWnd != 0);
    }

    QStringList &m_log;
    Notify &m_notify;
};

QIcon icon(Qt::GlobalColor colour)
{
    QPixmap pixmap(16, 16);
    pixmap.fill(colour);
    return pixmap;
}

} // namespace

class tst_frmSysTray : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theIconTheMenuAndTheEventsOfEachShell()
    {
        QStringList log;
        for (const auto &[name, version] : std::initializer_list<std::pair<const char *, quint32>>{
                 {"wide texts and balloons", frmSysTray::defaultVersion},
                 {"wide texts", 0x00000004},
                 {"narrow texts and balloons", 0x80005A04},
                 {"narrow texts", 0x80000A04},
                 {"narrow, later", 0x80005A05}}) {
            log += u"= "_s + QString::fromLatin1(name);
            TrayShell::Notify notify;
            frmSysTray tray(std::make_unique<LoggingShell>(log, notify), icon(Qt::red), u"Quillwire"_s, version);
            log += u"unicode %1, balloons %2"_s.arg(tray.isUnicodeShell()).arg(tray.hasBalloons());
            for (const QString &tip : {u"court"_s, u"court"_s, QString(), QString(500, u'x')})
                tray.setToolTip(tip);
            const qint32 blue = tray.handleOf(icon(Qt::blue));
            for (int twice = 0; twice < 2; ++twice)
                tray.setIconHandle(blue);
            const QIcon green = icon(Qt::green);
            log += u"handles %1, %2, %3"_s.arg(blue).arg(tray.handleOf(green)).arg(tray.handleOf(green));
            tray.ShowBalloonTip(QString(300, u'i'), QString(100, u't'), 2, u"5000"_s);
            tray.ShowBalloonTip(u"i"_s, u"t"_s, 1, 12.5);
            for (const QVariant &timeOut : {QVariant(u"x"_s), QVariant(QByteArray("x")), QVariant(1e12)})
                log += u"error %1"_s.arg(errorOf([&] { tray.ShowBalloonTip(u"i"_s, u"t"_s, 1, timeOut); }));
            log += u"told: "_s + tray.ToolTip().left(5) + u", icon %1"_s.arg(tray.IconHandle());
        }
        log += u"= menu"_s;
        TrayShell::Notify notify;
        frmSysTray tray(std::make_unique<LoggingShell>(log, notify), icon(Qt::red), u"Quillwire"_s);
        connect(&tray, &frmSysTray::MenuClick, this,
                [&log](int index, const QString &key) { log += u"click %1 %2"_s.arg(index).arg(key); });
        const auto noteMenu = [&](const QString &act) {
            QStringList entries;
            for (const QAction *entry : tray.menu()->actions())
                entries += (entry->isSeparator() ? u"-"_s : entry->text()) +
                           (entry->isVisible() ? u""_s : u" hidden"_s) + (entry->isEnabled() ? u""_s : u" disabled"_s) +
                           (tray.menu()->defaultAction() == entry ? u" default"_s : u""_s);
            log += act + u": "_s + entries.join(u" | "_s) + u" (default %1)"_s.arg(tray.DefaultMenuIndex());
            for (QAction *entry : tray.menu()->actions())
                entry->trigger();
        };
        noteMenu(tray.menu()->title() + u", "_s + tray.menu()->accessibleName());
        for (const auto &[caption, key] : {std::pair(u"&Ouvrir"_s, u"ouvrir"_s), std::pair(u"-"_s, QString()),
                                           std::pair(u"&Un"_s, u"un"_s), std::pair(u"&Deux"_s, u"deux"_s)}) {
            const qint32 index = tray.AddMenuItem(caption, key, caption == u"&Un");
            log += u"added %1"_s.arg(index);
        }
        noteMenu(u"all"_s);
        for (const qint32 index : {-1, 0, 3, 4})
            tray.EnableMenuItem(index, false);
        noteMenu(u"0 and 3 disabled"_s);
        for (const qint32 index : {3, 4, -1}) {
            tray.setDefaultMenuIndex(index);
            noteMenu(u"default %1"_s.arg(index));
        }
        for (const qint32 index : {-1, 4, 2, 0}) {
            tray.RemoveMenuItem(index);
            noteMenu(u"removed %1"_s.arg(index));
        }
        log += u"= events"_s;
        const auto told = [&log](const char *what) {
            return [&log, what](int button = 0) {
                log.last() += u' ' + QString::fromLatin1(what) + QString::number(button);
            };
        };
        connect(&tray, &frmSysTray::SysTrayMouseMove, this, [&] { told("move")(); });
        connect(&tray, &frmSysTray::SysTrayMouseDown, this, told("down "));
        connect(&tray, &frmSysTray::SysTrayMouseUp, this, told("up "));
        connect(&tray, &frmSysTray::SysTrayDoubleClick, this, told("double "));
        connect(&tray, &frmSysTray::BalloonShow, this, [&] { told("shown")(); });
        connect(&tray, &frmSysTray::BalloonHide, this, [&] { told("hidden")(); });
        connect(&tray, &frmSysTray::BalloonTimeOut, this, [&] { told("timed out")(); });
        connect(&tray, &frmSysTray::BalloonClicked, this, [&] { told("clicked")(); });
        for (const int value : {511, 512, 513, 514, 515, 516, 517, 518, 519, 1025, 1026, 1027, 1028, 1029, 1030}) {
            log += QString::number(value);
            notify(value);
        }
        QCOMPARE(differenceFromGolden(u"tray.txt"_s, log.join(u'\n') + u'\n'), QString());
    }
};

QTEST_MAIN(tst_frmSysTray)
#include "tst_frmSysTray.moc"
