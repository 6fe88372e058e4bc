// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/Literals.h"
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
    explicit RecordingPlayer(QStringList &played) : m_played(played) {}
    void play(const QString &file) override { m_played.append(file); }

private:
    QStringList &m_played;
};

struct Fixture
{
    Fixture() { settings.soundPath = u"C:/WINDOWS/MEDIA/notify.wav"_s; }

    void slideToTheEnd()
    {
        while (popup.timShow.isActive())
            popup.handleShowTick();
    }

    AppSettings settings;
    QStringList played;
    frmUpdate::WorkArea area{QRect(0, 0, 800, 570), {}};
    frmUpdate popup{[this] { return area; }, settings, std::make_unique<RecordingPlayer>(played)};
};

QString message(const QString &title, int count)
{
    return u"Mise à jour du flux\r\n%1\r\n\r\n%2 nouveaux messages"_s.arg(title).arg(count);
}

} // namespace

class tst_frmUpdate : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theFirstMessageOpensTheCycle()
    {
        Fixture f;
        f.popup.addMessageToQueue(u"Le Monde <b>"_s, 1);
        QCOMPARE(f.popup.caption(), message(u"Le Monde <b>"_s, 1)); // no singular
        QVERIFY(f.popup.isVisible() && f.popup.popupRunning);
        QVERIFY(f.popup.timShow.isActive() && !f.popup.timHide.isActive());
        QCOMPARE(f.popup.timShow.interval(), 1);
        QCOMPARE(f.popup.timHide.interval(), 5000);
        QCOMPARE(f.popup.popupQueue.Keys(), QStringList(u"0"_s));
        QCOMPARE(f.played, QStringList(f.settings.soundPath));
        QVERIFY(f.popup.testAttribute(Qt::WA_ShowWithoutActivating));
        QCOMPARE(QAccessible::queryAccessibleInterface(&f.popup)->role(), QAccessible::AlertMessage);
        QCOMPARE(QAccessible::queryAccessibleInterface(&f.popup)->text(QAccessible::Name), f.popup.caption());
    }

    void itGrowsUpwardFromTheCornerOfTheWorkArea_data()
    {
        QTest::addColumn<QRect>("area");
        QTest::addColumn<double>("perPixel");
        QTest::newRow("bar at the left and top") << QRect(80, 30, 720, 570) << 15.0;
        QTest::newRow("second screen") << QRect(-1024, 0, 1024, 768) << 15.0;
        QTest::newRow("dense screen") << QRect(0, 0, 1600, 1140) << 7.5;
    }

    void itGrowsUpwardFromTheCornerOfTheWorkArea()
    {
        QFETCH(QRect, area);
        QFETCH(double, perPixel);
        Fixture f;
        f.area = {area, {perPixel, perPixel}};
        f.popup.addMessageToQueue(u"t"_s, 2);
        const int right = int((area.left() + area.width()) * perPixel);
        const int bottom = int((area.top() + area.height()) * perPixel);
        QCOMPARE(f.popup.placeInTwips(), QRect(right - 2700, bottom - 600, 2500, 400));

        const int lowerEdge = f.popup.geometry().bottom();
        int steps = 0;
        for (; f.popup.placeInTwips().height() < 2000; ++steps) {
            f.popup.handleShowTick();
            QCOMPARE(f.popup.placeInTwips().top() + f.popup.placeInTwips().height(), bottom - 200);
            QCOMPARE(f.popup.geometry().bottom(), lowerEdge);
        }
        QCOMPARE(steps, 160);
        QVERIFY(f.popup.timShow.isActive());
        f.popup.handleShowTick();
        QVERIFY(!f.popup.timShow.isActive() && f.popup.timHide.isActive());
        QVERIFY(area.contains(f.popup.geometry()));
    }

    void laterMessagesWaitTheirTurnInSilence()
    {
        Fixture f;
        f.popup.addMessageToQueue(u"un"_s, 1);
        f.popup.addMessageToQueue(u"deux"_s, 2);
        f.popup.addMessageToQueue(u"trois"_s, 3);
        QCOMPARE(f.popup.caption(), message(u"un"_s, 1));
        QCOMPARE(f.popup.lastQueued, qint16(2));
        f.slideToTheEnd();
        f.area.pixels.setWidth(700); // the work area is asked for anew
        f.popup.handleHideTick();
        QCOMPARE(f.popup.caption(), message(u"deux"_s, 2));
        QCOMPARE(f.popup.shownKey, qint16(1));
        QCOMPARE(f.popup.placeInTwips().left(), 700 * 15 - 2700);
        QVERIFY(f.popup.isVisible() && f.popup.timShow.isActive() && f.popup.timHide.isActive());
        f.popup.handleHideTick(); // this slide is cut short
        QCOMPARE(f.popup.placeInTwips().height(), 400);
        QCOMPARE(f.popup.caption(), message(u"trois"_s, 3));
        f.popup.handleHideTick();
        QVERIFY(!f.popup.isVisible() && !f.popup.popupRunning && !f.popup.timHide.isActive());
        QCOMPARE(f.popup.popupQueue.Count(), 0);
        QCOMPARE(f.played.size(), 1);

        f.popup.addMessageToQueue(u"neuf"_s, 9);
        QCOMPARE(f.popup.shownKey, qint16(0));
        QCOMPARE(f.popup.lastQueued, qint16(0));
        QCOMPARE(f.played.size(), 2);
    }

    void theClockOfHidingIsNotRestartedByLaterMessages()
    {
        Fixture f;
        f.popup.timHide.setInterval(60000);
        f.popup.addMessageToQueue(u"un"_s, 1);
        f.popup.addMessageToQueue(u"deux"_s, 2);
        f.slideToTheEnd();
        f.popup.handleHideTick();
        QTest::qWait(40);
        const int before = f.popup.timHide.remainingTime();
        QVERIFY(before < 60000);
        f.slideToTheEnd();
        QVERIFY(f.popup.timHide.isActive());
        QVERIFY(f.popup.timHide.remainingTime() <= before);
    }

    void aClickDoesNothingAndClosingTheWindowLeavesTheCycleRunning()
    {
        Fixture f;
        f.popup.addMessageToQueue(u"un"_s, 1);
        f.popup.addMessageToQueue(u"deux"_s, 2);
        QTRY_COMPARE(f.popup.placeInTwips().height(), 2000);
        f.slideToTheEnd();
        const QRect place = f.popup.placeInTwips();
        QTest::mouseClick(f.popup.findChild<QLabel *>(u"lblInfos"_s), Qt::LeftButton);
        QVERIFY(f.popup.isVisible() && f.popup.timHide.isActive());
        QCOMPARE(f.popup.placeInTwips(), place);

        f.popup.findChild<QToolButton *>()->click();
        QVERIFY(!f.popup.isVisible() && f.popup.popupRunning);
        f.popup.handleHideTick();
        QVERIFY(f.popup.isVisible());
        QCOMPARE(f.popup.caption(), message(u"deux"_s, 2));
    }

    void textsOfAnyLengthAndKindAreDrawn()
    {
        Fixture f;
        for (const QString &title : {QString(), QString(200000, u'W'), u"a\r\n\r\n\nb"_s, QString(QChar(0))}) {
            f.popup.addMessageToQueue(title, -5);
            f.slideToTheEnd();
            const QImage image = f.popup.grab().toImage();
            QCOMPARE(image.pixelColor(image.width() - 4, image.height() - 4), QColor(0xFF, 0xFF, 0xC0));
            f.popup.handleHideTick();
        }
    }

    void itsLinesFitWhateverTheFont_data()
    {
        QTest::addColumn<QString>("family");
        QTest::addColumn<int>("pixels");
        for (const int pixels : {5, 11, 16, 30, 80})
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
        int lines = 0; // rows of ink with free rows between them
        bool inLine = false;
        for (int y = 0; y < image.height(); ++y) {
            bool ink = false;
            for (int x = 0; x < image.width(); ++x)
                ink = ink || isInk(x, y);
            lines += ink && !inLine;
            inLine = ink;
        }
        QVERIFY2(!inLine, "the last line is cut");
        QVERIFY2(lines >= 3, qPrintable(QString::number(lines)));
        for (int y = 0; y < image.height(); ++y)
            QVERIFY2(!isInk(image.width() - 1, y), "a line is cut at its end");
    }

    void tooManyMessagesOverflow()
    {
        Fixture f;
        f.popup.addMessageToQueue(u"t"_s, 1);
        f.popup.lastQueued = std::numeric_limits<qint16>::max();
        QVERIFY_EXCEPTION_THROWN(f.popup.addMessageToQueue(u"t"_s, 1), RunTimeError);
    }

    void aSoundThatCannotBePlayedIsSilence()
    {
        QTemporaryDir folder;
        const QString empty = folder.filePath(u"vide.wav"_s);
        QVERIFY(QFile(empty).open(QIODevice::WriteOnly));
        QTest::failOnWarning(QRegularExpression(u"."_s));
        WaveSoundPlayer player;
        player.play(QString());
        player.play(folder.filePath(u"absent.wav"_s));
        player.play(folder.path());
        player.play(empty);
    }
};

QTEST_MAIN(tst_frmUpdate)
#include "tst_frmUpdate.moc"
