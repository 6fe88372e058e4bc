// SPDX-License-Identifier: GPL-3.0-or-later

#include "core/SettingsFile.h"
#include "platform/Literals.h"
#include "platform/RunTimeError.h"
#include "platform/xml/XmlDocument.h"
#include "tests/fixtures/FakeMessages.h"
#include "tests/fixtures/TemporaryDataDirectory.h"

#include <QTest>

namespace {

const QByteArray leastItems = "<items><read time='3000'/><new notify='true'><sound path='s.wav'/></new></items>";

QByteArray templateBytes()
{
    return Files::read(u":/data/params.xml"_s).bytes;
}

QByteArray params(const QByteArray &inner)
{
    return "<?xml version='1.0'?><Quillwire><params>" + inner + "</params></Quillwire>";
}

QString failureText()
{
    return u"Erreur lors du chargement du fichier de configuration"_s;
}

} // namespace

class SettingsFileTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aFirstRunStartsFromTheTemplateAndGainsStartAndMails()
    {
        AppSettings settings;
        QVERIFY(file().loadSettings(settings));
        QVERIFY(m_messages->shown.empty());
        QCOMPARE(m_folder->read(u"params.xml"_s), templateBytes());
        QCOMPARE(settings.startMode, u"Plein écran"_s);
        QCOMPARE(settings.smtpServer, u"localhost"_s);
        QCOMPARE(settings.fromMail, u"admin@localhost"_s);
        QCOMPARE(settings.windowWidth, qint16(816));
        QCOMPARE(settings.splitVertical, qint16(161 * 15));
        QVERIFY(settings.rebarLayout.startsWith(
            u"<Bands count=\"3\" rowCount=\"2\"><Band id=\"1\" data=\"MenuBar\" left=\"2\""));
        QCOMPARE(settings.columnWidth[1], 252.0F * 15);
        file().saveSettings(settings, {}, [] {});
        const std::vector<XmlNode> children = saved({}).childNodes();
        QCOMPARE(children.at(children.size() - 2).nodeName(), u"start"_s);
        QCOMPARE(children.back().nodeName(), u"mails"_s);
    }

    void whatIsMissingTakesItsDefault()
    {
        AppSettings settings;
        QVERIFY(load(params("<lview/>" + leastItems), settings));
        QVERIFY(settings.officeStyle && settings.smallToolbars);
        QCOMPARE(settings.windowWidth, qint16(800));
        QCOMPARE(settings.splitHorizontal, qint16(3750));
        QVERIFY(settings.rebarLayout.contains(u"data=\"ToolBar\" left=\"0\" top=\"21\" right=\"200\" bottom=\"54\""));
        const std::array<qint16, 7> defaults = {0, 3750, 240, 1500, 1500, 1500, 0};
        QCOMPARE(settings.columnDefaultWidth, defaults);
        const std::array<qint16, 7> widths = {0, 0, 240, 0, 0, 0, 0};
        QCOMPARE(settings.columnWidthInt, widths);
    }

    void elementsWithoutAttributesTakeTheirOwnDefaults()
    {
        AppSettings settings;
        QVERIFY(load(params("<start/><mails smtpport='26'/><window toolbars='big'><dimension height='500'/>"
                            "<screencoord/><split vertical='10.5'/><rebar/></window><lview><hcolumn name='Category' "
                            "width='0'/><hcolumn name='Other' width='x'/><hcolumn name='Title' width='252'/></lview>" +
                            leastItems),
                     settings, 10));
        QCOMPARE(settings.startMode, u"Minimisé"_s); // not the mode of a missing element
        QCOMPARE(settings.smtpPort, qint16(26));
        QVERIFY(settings.officeStyle && !settings.smallToolbars);
        QCOMPARE(settings.windowHeight, qint16(500));
        QCOMPARE(settings.splitVertical, qint16(105));
        QVERIFY(settings.rebarLayout.contains(u"right=\"804\""));
        const std::array<qint16, 7> widths = {0, 2520, 160, 0, 0, 0, 0}; // columns are taken by name
        QCOMPARE(settings.columnWidthInt, widths);
    }

    void onlyExactWordsCount()
    {
        AppSettings settings;
        QVERIFY(
            load(params("<start mode='minimisé' update='true'/><window officestyle='yes' toolbars='Small'><dimension "
                        "width='800.5' height='801.5'/></window><lview/><items><read time='-1'/><new notify='True'>"
                        "<sound path=''/></new></items>"),
                 settings));
        QCOMPARE(settings.startMode, u"minimisé"_s);
        QVERIFY(!settings.updateAtStart && !settings.officeStyle && !settings.smallToolbars && !settings.notifyNew);
        QCOMPARE(settings.windowWidth, qint16(800)); // halves go to the even neighbour
        QCOMPARE(settings.windowHeight, qint16(802));
        QCOMPARE(settings.readDelay, -1);
    }

    void aFileWithoutColumnsOverflowsAtTheUsualResolution()
    {
        AppSettings settings;
        QVERIFY(!load(params(leastItems), settings, 15));
        QVERIFY(load(params(leastItems), settings, 7.5)); // 192 dots per inch
        const std::array<qint16, 7> widths = {0, 14062, 120, 5625, 5625, 5625, 0};
        QCOMPARE(settings.columnWidthInt, widths);
    }

    void brokenFilesEndTheLoadWithTheFailureBox_data()
    {
        QTest::addColumn<QByteArray>("content");
        const auto items = [](const char *inner) { return params("<lview/><items>" + QByteArray(inner) + "</items>"); };
        QTest::newRow("not well-formed") << QByteArray("<Quillwire><params>");
        QTest::newRow("another root") << QByteArray("<Other><params/></Other>");
        QTest::newRow("no read") << items("<new notify='true'><sound path=''/></new>");
        QTest::newRow("time is no number") << items("<read time='3s'/><new notify='true'><sound path=''/></new>");
        QTest::newRow("time overflows") << items("<read time='2147483648'/><new notify='true'><sound path=''/></new>");
        QTest::newRow("no path") << items("<read time='1'/><new notify='true'><sound/></new>");
        QTest::newRow("port is empty") << params("<mails smtpport=''/><lview/>" + leastItems);
        QTest::newRow("width overflows") << params("<window><dimension width='32768'/></window><lview/>" + leastItems);
        QTest::newRow("splitter overflows in twips")
            << params("<window><split horizontal='2200'/></window><lview/>" + leastItems);
        QTest::newRow("column without name") << params("<lview><hcolumn width='1'/></lview>" + leastItems);
        QTest::newRow("column overflows")
            << params("<lview><hcolumn name='Title' width='1e300'/></lview>" + leastItems);
    }

    void brokenFilesEndTheLoadWithTheFailureBox()
    {
        QFETCH(QByteArray, content);
        AppSettings settings;
        QVERIFY(!load(content, settings));
        QCOMPARE(m_messages->shown.size(), std::size_t(1));
        const Message &box = m_messages->shown.front();
        QCOMPARE(box.text, QString(failureText() + u"\n\nLe programme va maintenant se terminer"_s));
        QCOMPARE(box.title, u"Erreur"_s);
        QCOMPARE(box.icon, Message::Icon::Critical);
        QCOMPARE(box.buttons, Message::Buttons::Ok);
        QCOMPARE(m_folder->read(u"params.xml"_s), content);
    }

    void aSaveRoundTripsAndKeepsWhatItDoesNotKnow()
    {
        QByteArray content = templateBytes();
        content.replace("<params>",
                        "<params other=\"kept\"><!-- mine --><extra/><start update=\"0\" mode=\"x\" z=\"1\"/>");
        content.replace("<hcolumn name=\"Date\"", "<hcolumn name=\"Extra\" width=\"7\"/><hcolumn name=\"Date\"");
        AppSettings settings;
        QVERIFY(load(content, settings));
        settings.startMode = u"Minimisé"_s;
        settings.updateAtStart = true;
        settings.smtpPort = 2525;
        settings.fromName = u"Ö \"<&>\""_s;
        settings.officeStyle = false;
        settings.splitHorizontal = 1001;
        settings.readDelay = -5000;
        settings.notifyNew = false;
        settings.soundPath = u"C:\\été.wav"_s;
        settings.rebarLayout = u"<Bands count=\"1\"><Band id=\"1\" data=\"MenuBar\"/></Bands>"_s;
        WindowGeometry geometry;
        geometry.width = 12007.5;
        geometry.left = -150;
        geometry.columnWidth[1] = 3780;
        file().saveSettings(settings, geometry, [] {});

        const auto attribute = [this](const char *path, const char *name) {
            return saved(QString::fromLatin1(path)).attribute(QString::fromLatin1(name)).value();
        };
        QCOMPARE(attribute("", "other"), u"kept"_s);
        QCOMPARE(attribute("/start", "z"), u"1"_s);
        QVERIFY(m_folder->read(u"params.xml"_s).contains("<!-- mine --><extra/>"));
        QCOMPARE(attribute("/window/dimension", "width"), u"800.5"_s);
        QCOMPARE(attribute("/window/screencoord", "x"), u"-10"_s);
        QCOMPARE(attribute("/window/split", "horizontal"), u"66.73333"_s);
        const std::vector<XmlNode> columns = saved(u"/lview"_s).childNodes();
        QCOMPARE(columns.at(0).attribute(u"width"_s), u"252"_s);
        QCOMPARE(columns.at(1).attribute(u"width"_s), u"7"_s);
        QCOMPARE(columns.at(2).attribute(u"width"_s), u"0"_s); // a hidden column

        AppSettings again;
        QVERIFY(file().loadSettings(again));
        QCOMPARE(again.startMode, settings.startMode);
        QCOMPARE(again.smtpPort, settings.smtpPort);
        QCOMPARE(again.fromName, settings.fromName);
        QCOMPARE(again.splitHorizontal, settings.splitHorizontal);
        QCOMPARE(again.readDelay, settings.readDelay);
        QCOMPARE(again.soundPath, settings.soundPath);
        QCOMPARE(again.rebarLayout, settings.rebarLayout);
        QVERIFY(again.updateAtStart && !again.officeStyle && !again.notifyNew);
    }

    void aSaveWithAMissingNodeRaisesAnErrorAndLeavesTheFile()
    {
        AppSettings settings;
        QVERIFY(file().loadSettings(settings));
        for (const char *taken : {"<dimension width=\"816\" height=\"604\" />", " y=\"113\"",
                                  "<sound path=\"C:/WINDOWS/MEDIA/notify.wav\" />"}) {
            QByteArray content = templateBytes();
            QVERIFY(content.contains(taken));
            content.replace(taken, "");
            m_folder->write(u"params.xml"_s, content);
            QVERIFY_EXCEPTION_THROWN(file().saveSettings(settings, {}, [] {}), RunTimeError);
            QCOMPARE(m_folder->read(u"params.xml"_s), content);
        }
    }

    void theBoxOfAnUnreadableFileComesBackUntilTheFileIsRepaired()
    {
        AppSettings settings;
        QVERIFY(file().loadSettings(settings));
        m_folder->write(u"params.xml"_s, "<Quillwire>");
        m_messages->onShow = [this](const Message &) {
            if (m_messages->shown.size() == 3)
                m_folder->write(u"params.xml"_s, templateBytes());
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
        QCOMPARE(m_messages->shown.back().text, failureText());
        QCOMPARE(saved(u"/items/new/sound"_s).attribute(u"path"_s), u"new.wav"_s);
    }

private:
    SettingsFile file(double twips = 15) const
    {
        return {m_folder->file(u"params.xml"_s), templateBytes(), {twips, twips}, *m_messages};
    }
    bool load(const QByteArray &content, AppSettings &settings, double twips = 15) const
    {
        m_folder->write(u"params.xml"_s, content);
        return file(twips).loadSettings(settings);
    }
    XmlNode saved(const QString &path)
    {
        m_saved.load(m_folder->file(u"params.xml"_s));
        return m_saved.selectSingleNode(u"Quillwire/params"_s + path);
    }

    std::unique_ptr<TemporaryDataDirectory> m_folder;
    std::unique_ptr<FakeMessages> m_messages;
    XmlDocument m_saved;

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<TemporaryDataDirectory>();
        m_messages = std::make_unique<FakeMessages>();
    }

    void aFileThatCannotBeMadeEndsTheLoad()
    {
        AppSettings settings;
        const SettingsFile away(m_folder->file(u"none/params.xml"_s), templateBytes(), {}, *m_messages);
        QVERIFY(!away.loadSettings(settings));
        QCOMPARE(m_messages->shown.size(), std::size_t(1));
    }
};

QTEST_GUILESS_MAIN(SettingsFileTest)
#include "tst_SettingsFile.moc"
