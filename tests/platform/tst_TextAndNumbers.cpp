// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/AddressForms.h"
#include "platform/AnsiText.h"
#include "platform/DateText.h"
#include "platform/Dictionary.h"
#include "platform/Literals.h"
#include "platform/Numbers.h"
#include "platform/Waiting.h"
#include "tests/fixtures/RunTimeErrors.h"
#include "tests/fixtures/Steps.h"

#include <QElapsedTimer>
#include <QLocale>
#include <QTest>
#include <QTimer>

#include <cmath>

namespace {

/// What a conversion gives, or the number of its error.
template <class Convert>
QString told(Convert convert)
{
    try {
        return QString::number(convert(), 'g', 17);
    } catch (const RunTimeError &error) {
        return u"error %1"_s.arg(error.number());
    }
}

} // namespace

class TextAndNumbersTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyByteSurvivesTheCodePage()
    {
        QByteArray all;
        for (int byte = 0; byte < 256; ++byte)
            all.append(static_cast<char>(byte));
        QCOMPARE(AnsiText::toBytes(AnsiText::fromBytes(all)), all);
        QCOMPARE(AnsiText::fromBytes("\x80\x9C\xE9"), u"€œé");
    }

    /// Also what the code page lacks: a question mark for each half of a pair.
    void textsBecomeBytes()
    {
        QCOMPARE(AnsiText::toBytes(u"Łódź €\U0001F600\u0080\u009F\u0100"_s), QByteArray("?\xF3"
                                                                                        "d? \x80?????"));
        QCOMPARE(AnsiText::toBytes(AnsiText::widenBytes(u"é€\u9F80"_s)), QByteArray("\xE9\x00\xAC\x20\x80\x9F", 6));
        QCOMPARE(AnsiText::widenBytes(QString()), QString());
    }

    void addressesAreToldFromPaths()
    {
        const auto take = [](const QString &step) {
            const QString text = step.mid(1).chopped(1);
            QStringList told;
            for (const AddressForms *forms : {&AddressForms::usual, &AddressForms::secure})
                told += QString(forms->isWebAddress(text)    ? u"web "_s
                                : forms->isFeedAddress(text) ? u"feed "_s
                                                             : u"path "_s) +
                        u"| "_s + forms->addressToFetch(text) + u" ("_s + forms->withoutFeedScheme(text) + u") | "_s +
                        forms->addressToUpdate(text);
            return told.join(u" || "_s);
        };
        QCOMPARE((Steps{{}, take}.differenceFrom(u"addresses.steps"_s)), QString());
    }

    void textsConvertToNumbers()
    {
        const auto take = [](const QString &step, const QString &) {
            const QString text = step.mid(1).chopped(1);
            return QStringList{QString::number(Numbers::isNumeric(text)),
                               told([&] { return Numbers::toDouble(text); }),
                               told([&] { return Numbers::toInt16(text); }),
                               told([&] { return Numbers::toInt32(text); }),
                               told([&] { return Numbers::numericPrefix(text); }),
                               told([&] { return Numbers::roundToInt16(Numbers::numericPrefix(text)); }),
                               told([&] { return Numbers::roundToInt32(Numbers::numericPrefix(text)); }),
                               Numbers::singleText(Numbers::numericPrefix(text))}
                .join(u" | "_s);
        };
        QCOMPARE((Steps{{}, take}.differenceFrom(u"numbers.steps"_s)), QString());
        QCOMPARE(told([] { return Numbers::roundToInt16(std::nan("")); }), u"error 6"_s);
        QCOMPARE(Numbers::numericPrefix(u" 1\t2\n3\r4\v5"_s), 1234.0);
    }

    void errorsSayTheirNumberAndText()
    {
        QString texts;
        for (const RunTimeError &error :
             {RunTimeError::invalidCall(), RunTimeError::overflow(), RunTimeError::typeMismatch(),
              RunTimeError::fileNotFound(), RunTimeError::deviceError(), RunTimeError::diskFull(),
              RunTimeError::permissionDenied(), RunTimeError::pathNotFound(), RunTimeError::objectNotSet(),
              RunTimeError::invalidProperty(), RunTimeError::keyInUse(), RunTimeError::elementNotFound(),
              RunTimeError::keyNotUnique()}) {
            QCOMPARE(QString::fromUtf8(error.what()), error.message());
            texts += u"%1 %2\n%3\n\n"_s.arg(error.number()).arg(error.text(), error.message());
        }
        QCOMPARE(differenceFromGolden(u"errors.expected"_s, texts), QString());
    }

    /// Runs under French, American and Swedish dates, whose years stand first.
    void datesOfAllLocalesAreRead()
    {
        const QLocale::Language language = QLocale::system().language();
        const QString steps = language == QLocale::English   ? u"dates-american.steps"_s
                              : language == QLocale::Swedish ? u"dates-swedish.steps"_s
                                                             : u"dates.steps"_s;
        const auto take = [](const QString &step, const QString &) {
            QDateTime when;
            const int error = errorOf([&] { when = DateText::fromText(step.mid(1).chopped(1)); });
            if (DateText::isDate(step.mid(1).chopped(1)) != (error == 0))
                return u"the two don't agree"_s;
            return error == 0 ? QString(when.toString(Qt::ISODate) + u" | " + DateText::toText(when))
                              : u"error %1"_s.arg(error);
        };
        QCOMPARE((Steps{{}, take}.differenceFrom(steps)), QString());
        const QDateTime july({2004, 7, 31}, {14, 5, 9});
        for (const QLocale &locale :
             QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyCountry)) {
            QString format = locale.dateFormat(QLocale::ShortFormat);
            if (!format.contains(u"yyyy"_s))
                format.replace(u"yy"_s, u"yyyy"_s);
            if (!format.contains(u"MMM"_s)) // of the locale that stands for none
                QCOMPARE(DateText::fromText(locale.toString(july, format + u" HH:mm:ss"_s)), july);
        }
    }

    void aDictionaryKeepsTheOrderInWhichItsEntriesCame()
    {
        Dictionary<QString> table;
        const auto take = [&table](const QString &step, const QString &) {
            const QString verb = step.section(u' ', 0, 0), key = step.section(u' ', 1, 1),
                          value = step.section(u' ', 2);
            const int error = errorOf([&] {
                if (verb == u"add")
                    table.Add(key, value);
                else if (verb == u"replace")
                    table.Replace(key, value);
                else if (verb == u"remove")
                    table.Remove(key);
            });
            QStringList entries;
            for (const QString &each : table.Keys())
                entries.append(each + u'=' + table.Item(each));
            return QStringList{QString::number(error), entries.join(u' '), QString::number(table.Count()),
                               QString::number(table.Exists(key)), table.Item(key)}
                .join(u" | "_s);
        };
        QCOMPARE((Steps{{}, take}.differenceFrom(u"dictionary.steps"_s)), QString());
    }

    void waitsLastAsLongAsTheySay()
    {
        bool timerRan = false;
        QTimer::singleShot(0, this, [&timerRan] { timerRan = true; });
        const QDateTime before = QDateTime::currentDateTime();
        QVERIFY(before.secsTo(Waiting::systemClock()()) < 5);
        for (const bool loop : {false, true}) {
            QElapsedTimer timer;
            timer.start();
            (loop ? Waiting::eventLoopWait() : Waiting::repaintingWait())(60);
            QVERIFY(timer.elapsed() >= 59);
            QCOMPARE(timerRan, loop); // no event but repaints while only these are waited for
        }
    }
};

QTEST_GUILESS_MAIN(TextAndNumbersTest)
#include "tst_TextAndNumbers.moc"
