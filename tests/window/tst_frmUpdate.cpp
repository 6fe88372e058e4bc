// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/Literals.h"
#include "tests/fixtures/Golden.h"
#include "tests/fixtures/PaintLog.h"
#include "window/frmUpdate.h"

#include <QAccessible>
#include <QLabel>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QToolButton>
#include <QWindow>

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
        (void)owner.winId();
    }

    void slideToTheEnd()
    {
        while (popup.timShow.isActive())
            popup.handleShowTick();
    }

    /// What that brings about: what is heard, and all that there is of the popup.
    QStringList done(const QStringList &words)
    {
        const auto is = [&words](int index) { return words.value(index).toInt(); };
        log.clear();
        if (words[0] == u"message")
            popup.addMessageToQueue(words.mid(2).join(u' '), qint16(is(1)));
        else if (words[0] == u"area") // asked for with the next message
            area = {QRect(is(1), is(2), is(3), is(4)),
                    {1440.0 / is(5), 1440.0 / is(6)},
                    words.contains(u"still"_s),
                    words.contains(u"bound"_s) ? &owner : nullptr};
        else if (words[0] == u"tick")
            popup.handleShowTick();
        else if (words[0] == u"slide")
            slideToTheEnd();
        else if (words[0] == u"over")
            popup.handleHideTick();
        else if (words[0] == u"click")
            QTest::mouseClick(popup.findChild<QLabel *>(u"lblInfos"_s), Qt::LeftButton);
        else if (words[0] == u"close")
            popup.findChild<QToolButton *>()->click();
        else if (words[0] == u"look")
            return PaintLog::of(popup).split(u'\n', Qt::SkipEmptyParts);
        const bool isBound = popup.windowHandle() && popup.windowHandle()->transientParent() == owner.windowHandle();
        log += u"%1, twips %2, pixels %3"_s.arg(popup.isVisible() ? u"shown"_s : u"hidden"_s,
                                                text(popup.placeInTwips()), text(popup.geometry()));
        if (isBound && popup.windowType() == Qt::ToolTip)
            log.last() += u", bound"_s;
        for (const auto *part : popup.findChildren<QWidget *>())
            log.last() +=
                u", "_s + QString::fromLatin1(part->metaObject()->className()) + u' ' + text(part->geometry());
        log += u"\"%1\", running %2, slide %3, hide %4, shows %5 of %6, queue %7"_s
                   .arg(popup.caption().replace(u"\r\n"_s, u"|"_s))
                   .arg(popup.popupRunning)
                   .arg(popup.timShow.isActive())
                   .arg(popup.timHide.isActive())
                   .arg(popup.shownKey)
                   .arg(popup.lastQueued)
                   .arg(popup.popupQueue.Keys().join(u' '));
        return log;
    }

    QWidget owner;
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
        std::unique_ptr<Fixture> f;
        const QString played = playedAgain(
            u"popup.txt"_s, [&f] { f = std::make_unique<Fixture>(); },
            [&f](const QStringList &words) { return f->done(words); });
        QCOMPARE(differenceFromGolden(u"popup.txt"_s, played), QString());
        const frmUpdate popup({}, f->settings, nullptr);
        QCOMPARE(popup.timShow.interval(), 1);
        QCOMPARE(popup.timHide.interval(), 5000);
        QVERIFY(popup.testAttribute(Qt::WA_ShowWithoutActivating) && !popup.testAttribute(Qt::WA_QuitOnClose));
        QCOMPARE(popup.windowFlags() &
                     (Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::WindowDoesNotAcceptFocus),
                 Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::WindowDoesNotAcceptFocus);
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

    void anyTextIsShown()
    {
        Fixture f;
        for (const QString &title : {QString(), QString(200000, u'W'), u"a\r\n\r\n\nb"_s, QString(QChar(0))}) {
            f.popup.addMessageToQueue(title, -5);
            f.slideToTheEnd();
            QCOMPARE(f.popup.grab().toImage().pixelColor(f.popup.width() - 2, 60), QColor(0xff, 0xff, 0xc0));
            f.popup.handleHideTick();
        }
    }

    void itsLinesAndItsTitleFitWhateverTheFont_data()
    {
        QTest::addColumn<QString>("family");
        QTest::addColumn<int>("pixels");
        for (const int pixels : {5, 11, 30, 80})
            QTest::addRow("sans %d", pixels) << u"DejaVu Sans"_s << pixels;
        QTest::newRow("mono") << u"DejaVu Sans Mono"_s << 20;
    }

    void itsLinesAndItsTitleFitWhateverTheFont()
    {
        QFETCH(QString, family);
        QFETCH(int, pixels);
        Fixture f;
        QFont font(family);
        font.setPixelSize(pixels);
        f.popup.setFont(font);
        f.popup.addMessageToQueue(QString(300, u'W'), 32767);
        const auto *title = f.popup.findChild<QLabel *>(QString(), Qt::FindDirectChildrenOnly);
        const auto fits = [&](int size) {
            font.setPixelSize(size);
            const QFontMetrics metrics(font);
            return metrics.lineSpacing() <= title->height() &&
                   metrics.horizontalAdvance(title->text()) <= title->width();
        };
        const int size = title->font().pixelSize(); // the largest that fits, and not above what is asked for
        QVERIFY2(fits(size) && size <= pixels && (size == pixels || !fits(size + 1)), QByteArray::number(size));
        QCOMPARE(f.popup.findChild<QToolButton *>()->font().pixelSize(), size);
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
        QVERIFY_THROWS_EXCEPTION(RunTimeError, f.popup.addMessageToQueue(u"t"_s, 1));
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
