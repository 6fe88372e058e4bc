// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/Literals.h"
#include "tests/fixtures/Golden.h"
#include "window/frmUpdate.h"

#include <QAccessible>
#include <QLabel>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QToolButton>

#include <limits>

namespace {

class RecordingPlayer final : public SoundPlayer
{
public:
    explicit RecordingPlayer(QStringList &log) : m_log(log) {}
    void play(const QString &file) override { m_log += u"plays "_s + file; }

private:
    QStringList &m_log;
};

QString text(const QRect &rect)
{
    return u"%1,%2 %3x%4"_s.arg(rect.x()).arg(rect.y()).arg(rect.width()).arg(rect.height());
}

struct Fixture
{
    Fixture()
    {
        settings.soundPath = u"/notify.wav"_s;
        popup.timShow.setInterval(60000); // the test makes the ticks
    }

    void slideToTheEnd()
    {
        while (popup.timShow.isActive())
            popup.handleShowTick();
    }

    /// All that there is of the popup, behind what was done.
    void note(const QString &act)
    {
        log += act;
        log += u"  %1, twips %2, pixels %3"_s.arg(popup.isVisible() ? u"shown"_s : u"hidden"_s,
                                                  text(popup.placeInTwips()), text(popup.geometry()));
        for (const auto *part : popup.findChildren<QWidget *>())
            log.last() +=
                u", "_s + QString::fromLatin1(part->metaObject()->className()) + u' ' + text(part->geometry());
        log += u"  \"%1\", running %2, slide %3, hide %4, shows %5 of %6, queue %7"_s
                   .arg(popup.caption().replace(u"\r\n"_s, u"|"_s))
                   .arg(popup.popupRunning)
                   .arg(popup.timShow.isActive())
                   .arg(popup.timHide.isActive())
                   .arg(popup.shownKey)
                   .arg(popup.lastQueued)
                   .arg(popup.popupQueue.Keys().join(u' '));
    }

    AppSettings settings;
    QStringList log;
    frmUpdate::WorkArea area{QRect(0, 0, 800, 570), {}};
    frmUpdate popup{[this] { return area; }, settings, std::make_unique<RecordingPlayer>(log)};
};

} // namespace

class tst_frmUpdate : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theMessagesComeOneAfterTheOther()
    {
        Fixture f;
        const int slideMs =
            frmUpdate([&f] { return f.area; }, f.settings, std::make_unique<RecordingPlayer>(f.log)).timShow.interval();
        f.log += u"slides each %1 ms, hides after %2 ms"_s.arg(slideMs).arg(f.popup.timHide.interval());
        const auto add = [&f](const QString &title, qint16 count) {
            f.popup.addMessageToQueue(title, count);
            f.note(u"message of "_s + title);
        };
        f.note(u"new"_s);
        add(u"Le Monde <b>"_s, 1); // no singular
        add(u"deux"_s, 2);
        add(u"trois"_s, 3);
        f.popup.handleShowTick();
        f.note(u"a tick of the slide"_s);
        f.slideToTheEnd();
        f.note(u"its end"_s);
        QTest::mouseClick(f.popup.findChild<QLabel *>(u"lblInfos"_s), Qt::LeftButton);
        f.note(u"a click"_s);
        f.popup.findChild<QToolButton *>()->click();
        f.note(u"closed"_s);
        f.area.pixels = QRect(80, 30, 620, 570); // asked for anew
        f.popup.handleHideTick();
        f.note(u"a tick of the end"_s);
        f.popup.handleHideTick(); // this slide is cut short
        f.note(u"a tick of the end, in the slide"_s);
        f.slideToTheEnd();
        f.popup.handleHideTick();
        f.note(u"the last"_s);
        for (const auto &[pixels, perPixel] :
             {std::pair(QRect(-1024, 0, 1024, 768), 15.0), std::pair(QRect(0, 0, 1600, 1140), 7.5)}) {
            f.area = {pixels, {perPixel, perPixel}};
            add(u"neuf"_s, 9);
            f.popup.handleShowTick();
            f.slideToTheEnd();
            f.note(u"at full height"_s);
            f.popup.handleHideTick();
        }
        QCOMPARE(differenceFromGolden(u"popup.txt"_s, f.log.join(u'\n') + u'\n'), QString());
        QVERIFY(f.popup.testAttribute(Qt::WA_ShowWithoutActivating) && !f.popup.testAttribute(Qt::WA_QuitOnClose));
        QCOMPARE(int(f.popup.windowFlags() &
                     (Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::WindowDoesNotAcceptFocus)),
                 int(Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::WindowDoesNotAcceptFocus));
    }

    void theClockOfHidingIsNotRestartedByLaterMessages()
    {
        Fixture f;
        f.popup.timHide.setInterval(60000);
        f.popup.addMessageToQueue(u"un"_s, 1);
        f.popup.addMessageToQueue(u"deux"_s, 2);
        f.slideToTheEnd();
        f.popup.handleHideTick();
        QTRY_VERIFY(f.popup.timHide.remainingTime() < 60000);
        const int before = f.popup.timHide.remainingTime();
        f.slideToTheEnd();
        QVERIFY(f.popup.timHide.isActive() && f.popup.timHide.remainingTime() <= before);
    }

    void theTimersMakeTheTicks()
    {
        Fixture f;
        f.popup.timShow.setInterval(0);
        f.popup.timHide.setInterval(1);
        QSignalSpy slides(&f.popup.timShow, &QTimer::timeout);
        f.popup.addMessageToQueue(u"un"_s, 1);
        QTRY_VERIFY(!f.popup.popupRunning);
        QCOMPARE(slides.size(), 161);
    }

    void itsColoursAreItsOwnWhateverTheText()
    {
        Fixture f;
        for (const QString &title : {QString(), QString(200000, u'W'), u"a\r\n\r\n\nb"_s, QString(QChar(0))}) {
            f.popup.addMessageToQueue(title, -5);
            f.slideToTheEnd();
            const QImage image = f.popup.grab().toImage();
            QStringList colours;
            for (const QPoint &place : {QPoint(0, 0), QPoint(100, 0), QPoint(0, 60), QPoint(image.width() - 1, 60),
                                        QPoint(100, image.height() - 1), QPoint(1, 1), QPoint(1, 17), QPoint(1, 18),
                                        QPoint(image.width() - 2, image.height() - 2)})
                colours += image.pixelColor(place).name();
            QCOMPARE(colours.join(u' '), u"#202020 #202020 #202020 #202020 #202020 #f0e090 #f0e090 #ffffc0 #ffffc0"_s);
            f.popup.handleHideTick();
        }
    }

    void itsLinesFitWhateverTheFont_data()
    {
        QTest::addColumn<QString>("family");
        QTest::addColumn<int>("pixels");
        for (const int pixels : {5, 11, 30, 80})
            QTest::addRow("sans %d", pixels) << u"DejaVu Sans"_s << pixels;
        QTest::newRow("mono") << u"DejaVu Sans Mono"_s << 20;
    }

    void itsLinesFitWhateverTheFont()
    {
        QFETCH(QString, family);
        QFETCH(int, pixels);
        Fixture f;
        QFont font(family);
        font.setPixelSize(pixels);
        f.popup.setFont(font);
        f.popup.addMessageToQueue(QString(300, u'W'), 32767);
        f.slideToTheEnd();
        auto *label = f.popup.findChild<QLabel *>(u"lblInfos"_s);
        const QImage image = label->grab(QRect(0, 0, f.popup.width() - label->x() - 1, label->height())).toImage();
        const auto isInk = [&](int x, int y) { return image.pixelColor(x, y).lightness() < 160; };
        QList<QPair<int, int>> lines; // where they begin and end: rows of ink with free rows between them
        bool inLine = false;
        for (int y = 0; y < image.height(); ++y) {
            bool ink = false;
            for (int x = 0; x < image.width(); ++x)
                ink = ink || isInk(x, y);
            if (ink && !inLine)
                lines.append({y, y});
            if (ink)
                lines.last().second = y;
            inLine = ink;
            QVERIFY2(!isInk(image.width() - 1, y), "a line is cut at its end");
        }
        QVERIFY2(!inLine, "the last line is cut");
        QVERIFY2(lines.size() >= 3, qPrintable(QString::number(lines.size())));
        const int height = lines[1].second - lines[1].first + 1; // of capitals
        const qsizetype count = lines.size();
        QVERIFY2(lines[count - 1].first - lines[count - 2].second > height, "an empty line stands before the last one");
    }

    void tooManyMessagesOverflow()
    {
        Fixture f;
        f.popup.addMessageToQueue(u"t"_s, 1);
        f.popup.lastQueued = std::numeric_limits<qint16>::max() - 1;
        f.popup.addMessageToQueue(u"t"_s, 1);
        QVERIFY_EXCEPTION_THROWN(f.popup.addMessageToQueue(u"t"_s, 1), RunTimeError);
    }

    void aSoundThatCannotBePlayedIsSilence()
    {
        QTemporaryDir folder;
        const QString empty = folder.filePath(u"vide.wav"_s);
        QVERIFY(QFile(empty).open(QIODevice::WriteOnly));
        QTest::failOnWarning(QRegularExpression(u"."_s));
        WaveSoundPlayer player;
        for (const QString &file : {QString(), folder.filePath(u"absent.wav"_s), folder.path(), empty})
            player.play(file);
    }
};

QTEST_MAIN(tst_frmUpdate)
#include "tst_frmUpdate.moc"
