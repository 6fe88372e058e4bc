// SPDX-License-Identifier: GPL-3.0-or-later

#include "core/SettingsFile.h"
#include "platform/Literals.h"
#include "tests/fixtures/FakeMessages.h"
#include "tests/fixtures/Golden.h"
#include "tests/fixtures/RunTimeErrors.h"
#include "tests/fixtures/TemporaryDataDirectory.h"

#include <QRegularExpression>
#include <QTest>
#include <QVariant>

namespace {

QByteArray templateBytes()
{
    return Files::read(u":/data/params.xml"_s).bytes;
}

/// Every setting has a value of its own.
QByteArray full()
{
    return Files::read(QStringLiteral(TEST_DATA_DIR "/settings-full.xml")).bytes;
}

const QString failureText = u"Erreur lors du chargement du fichier de configuration"_s;

/// A setting a line.
QString told(const AppSettings &settings)
{
    QList<QPair<QString, QVariant>> fields = {{u"startMode"_s, settings.startMode},
                                              {u"updateAtStart"_s, settings.updateAtStart},
                                              {u"smtpServer"_s, settings.smtpServer},
                                              {u"smtpPort"_s, settings.smtpPort},
                                              {u"fromName"_s, settings.fromName},
                                              {u"fromMail"_s, settings.fromMail},
                                              {u"officeStyle"_s, settings.officeStyle},
                                              {u"smallToolbars"_s, settings.smallToolbars},
                                              {u"windowWidth"_s, settings.windowWidth},
                                              {u"windowHeight"_s, settings.windowHeight},
                                              {u"windowX"_s, settings.windowX},
                                              {u"windowY"_s, settings.windowY},
                                              {u"splitHorizontal"_s, settings.splitHorizontal},
                                              {u"splitVertical"_s, settings.splitVertical},
                                              {u"readDelay"_s, settings.readDelay},
                                              {u"notifyNew"_s, settings.notifyNew},
                                              {u"soundPath"_s, settings.soundPath},
                                              {u"rebarLayout"_s, settings.rebarLayout}};
    const QString widths = u"%1, in whole twips %2, by default %3"_s;
    for (std::size_t i = 0; i < settings.columnWidth.size(); ++i)
        fields.append(
            {u"column %1"_s.arg(i),
             widths.arg(settings.columnWidth[i]).arg(settings.columnWidthInt[i]).arg(settings.columnDefaultWidth[i])});
    QString lines;
    for (const auto &[name, value] : fields)
        lines += name + u": "_s + value.toString() + u'\n';
    return lines;
}

/// `text` with one element or attribute left out, or an attribute given an odd value, and what that is called.
QList<QPair<QString, QString>> alterations(const QString &text)
{
    static const QRegularExpression tag(u"<(\\w+)[^>]*>"_s);
    static const QRegularExpression attribute(u" (\\w+)=\"[^\"]*\""_s);
    QList<QPair<QString, QString>> altered;
    for (const QRegularExpressionMatch &element : tag.globalMatch(text)) {
        const QString name = element.captured(1);
        const QString close = element.captured().endsWith("/>"_L1) ? u"/>"_s : u"</"_s + name + u'>';
        const qsizetype end = text.indexOf(close, element.capturedStart()) + close.size();
        altered.append({name, text.left(element.capturedStart()) + text.mid(end)});
        for (const QRegularExpressionMatch &inner : attribute.globalMatch(element.captured())) {
            const QString called = inner.captured(1);
            const auto with = [&](const QString &other) {
                QString whole = text;
                return whole.replace(element.capturedStart() + inner.capturedStart(), inner.capturedLength(), other);
            };
            altered.append({name + u' ' + called, with({})});
            for (const QString &value : {u"True"_s, u"2.5"_s, u"40000"_s})
                altered.append({u"%1 %2=%3"_s.arg(name, called, value), with(u" %1=\"%2\""_s.arg(called, value))});
        }
    }
    return altered;
}

} // namespace

class SettingsFileTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<TemporaryDataDirectory>();
        m_messages = std::make_unique<FakeMessages>();
    }

    void eachFileGivesItsSettings()
    {
        const QByteArray least = "<Quillwire><params><items><read time='3000'/><new notify='true'><sound path='s.wav'/>"
                                 "</new></items></params></Quillwire>";
        const QList<std::tuple<QString, QByteArray, double, double>> rows = {
            {u"untouched"_s, least, 15, 15}, // the widths by default, scaled twice, overflow: the load fails
            {u"least"_s, least, 7.5, 7},
            {u"template"_s, templateBytes(), 15, 15},
            {u"full"_s, full(), 10, 12}};
        for (const auto &[name, content, x, y] : rows) {
            AppSettings settings;
            QCOMPARE(load(content, settings, x, y), name != u"untouched");
            QCOMPARE(differenceFromGolden(u"settings-%1.expected"_s.arg(name), told(settings)), QString());
        }
    }

    /// Which settings a missing or odd piece of the file changes, and whether the file can be saved then.
    void eachPieceOfTheFileMayBeMissingOrOdd()
    {
        AppSettings settings;
        QVERIFY(load(full(), settings, 10, 12));
        const QStringList whole = told(settings).split(u'\n');
        QString table;
        for (const auto &[name, text] : alterations(QString::fromUtf8(full()))) {
            QStringList outcome;
            AppSettings others;
            const bool loads = load(text.toUtf8(), others, 10, 12);
            for (const QString &line : loads ? told(others).split(u'\n') : QStringList{u"fails"_s})
                if (!whole.contains(line))
                    outcome.append(line);
            if (const int error = errorOf([&] { file(10, 12).saveSettings(settings, {}, [] {}); })) {
                outcome.append(u"no save, error %1"_s.arg(error));
                QCOMPARE(m_folder->read(u"params.xml"_s), text.toUtf8());
            }
            table += name + u": "_s + outcome.join(u"; "_s) + u'\n';
        }
        QCOMPARE(differenceFromGolden(u"settings-pieces.expected"_s, table), QString());
    }

    void aFirstRunStartsFromTheTemplateAndGainsStartAndMails()
    {
        AppSettings settings;
        QVERIFY(file().loadSettings(settings));
        QVERIFY(m_messages->shown.empty());
        QCOMPARE(m_folder->read(u"params.xml"_s), templateBytes());
        file().saveSettings(settings, {}, [] {});
        QCOMPARE(differenceFromGolden(u"settings-first-run.xml"_s, saved()), QString());
        const SettingsFile away(m_folder->file(u"none/params.xml"_s), templateBytes(), {}, *m_messages);
        QVERIFY(!away.loadSettings(settings));
    }

    void brokenFilesEndTheLoadWithTheFailureBox()
    {
        const auto with = [](const char *before, const char *after) { return full().replace(before, after); };
        for (const QByteArray &content :
             {QByteArray("<Quillwire><params>"), QByteArray("<Other><params/></Other>"),
              with("\"-5000\"", "\"2147483648\""), with("\"205\"", "\"3277\""), // this one overflows in twips
              with("\"11\"", "\"1e300\"")}) {
            m_messages->shown.clear();
            AppSettings settings;
            QVERIFY2(!load(content, settings, 10, 12), content.constData());
            QCOMPARE(m_messages->shown.size(), std::size_t(1));
            const Message &box = m_messages->shown.front();
            QCOMPARE(box.text, QString(failureText + u"\n\nLe programme va maintenant se terminer"_s));
            QCOMPARE(box.title, u"Erreur"_s);
            QVERIFY(box.icon == Message::Icon::Critical && box.buttons == Message::Buttons::Ok);
            QCOMPARE(m_folder->read(u"params.xml"_s), content);
        }
    }

    void aSaveWritesEachSettingWhereItWasRead()
    {
        AppSettings settings;
        QVERIFY(load(full(), settings, 15, 12));
        const WindowGeometry geometry{-45, 48, 12007.5, 7224, {0, 165, 0, 195, 210, 0, 240}};
        file(15, 12).saveSettings(settings, geometry, [] {});
        QCOMPARE(saved(), QString::fromUtf8(full().replace("801", "800.5")));
        for (bool *turned :
             {&settings.updateAtStart, &settings.officeStyle, &settings.smallToolbars, &settings.notifyNew})
            *turned = !*turned;
        settings.splitHorizontal = 1001;
        file(15, 12).saveSettings(settings, {}, [] {});
        QCOMPARE(differenceFromGolden(u"settings-turned.xml"_s, saved()), QString());
    }

    void theBoxOfAnUnreadableFileComesBackUntilTheFileIsRepaired()
    {
        AppSettings settings;
        QVERIFY(load(full(), settings));
        m_folder->write(u"params.xml"_s, "<Quillwire>");
        m_messages->onShow = [this](const Message &) {
            if (m_messages->shown.size() == 3)
                m_folder->write(u"params.xml"_s, full());
        };
        settings.soundPath = u"new.wav"_s;
        int calls = 0;
        std::function<void()> saveAndClose = [&] {
            ++calls;
            file().saveSettings(settings, {}, saveAndClose);
        };
        saveAndClose();
        QCOMPARE(calls, 4);
        QCOMPARE(m_messages->shown.size(), std::size_t(3));
        QCOMPARE(m_messages->shown.back().text, failureText);
        QVERIFY(saved().contains("<sound path=\"new.wav\"/>"_L1));
    }

private:
    SettingsFile file(double x = 15, double y = 15) const
    {
        return {m_folder->file(u"params.xml"_s), templateBytes(), {x, y}, *m_messages};
    }
    bool load(const QByteArray &content, AppSettings &settings, double x = 15, double y = 15) const
    {
        m_folder->write(u"params.xml"_s, content);
        return file(x, y).loadSettings(settings);
    }
    QString saved() const { return QString::fromUtf8(m_folder->read(u"params.xml"_s)); }

    std::unique_ptr<TemporaryDataDirectory> m_folder;
    std::unique_ptr<FakeMessages> m_messages;
};

QTEST_GUILESS_MAIN(SettingsFileTest)
#include "tst_SettingsFile.moc"
