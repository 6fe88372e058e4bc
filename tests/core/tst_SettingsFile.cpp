// SPDX-License-Identifier: GPL-3.0-or-later

#include "core/SettingsFile.h"
#include "platform/Literals.h"
#include "platform/RunTimeError.h"
#include "platform/xml/XmlDocument.h"
#include "tests/fixtures/FakeMessages.h"
#include "tests/fixtures/TemporaryDataDirectory.h"

#include <QTest>

#include <tuple>

namespace {

const QByteArray leastItems = "<items><read time='3000'/><new notify='true'><sound path='s.wav'/></new></items>";

/// Every setting has a value of its own, in the form in which files are written.
const QByteArray full =
    "<?xml version=\"1.0\"?>\n<Quillwire><params other=\"kept\"><!-- mine --><extra/><start mode=\"Minimisé\" "
    "update=\"1\" z=\"1\"/><mails smtpserver=\"s\" smtpport=\"2525\" frommail=\"a@b\" fromname=\"Ö &quot;&lt;&amp;&gt;"
    "&quot;\"/><window officestyle=\"0\" toolbars=\"big\"><dimension width=\"801\" height=\"602\"/><screencoord "
    "x=\"-3\" "
    "y=\"4\"/><split horizontal=\"205\" vertical=\"106.5\"/><rebar><Bands count=\"1\"><Band id=\"1\" data=\"ToolBar\" "
    "left=\"7\" right=\"8\"/></Bands></rebar></window><lview><hcolumn name=\"Category\" width=\"16\"/><hcolumn "
    "name=\"Extra\" width=\"9\"/><hcolumn name=\"Title\" width=\"11\"/><hcolumn name=\"Author\" width=\"0\"/><hcolumn "
    "name=\"Date\" width=\"13\"/><hcolumn name=\"Downloaded\" width=\"14\"/></lview><items><read time=\"-5000\"/><new "
    "notify=\"false\"><sound path=\"C:\\été.wav\"/></new></items></params></Quillwire>\n";

QByteArray templateBytes()
{
    return Files::read(u":/data/params.xml"_s).bytes;
}

QByteArray params(const QByteArray &inner)
{
    return "<?xml version='1.0'?><Quillwire><params>" + inner + "</params></Quillwire>";
}

/// All settings in a line; of the bars' layout the place of the tool bar.
QString told(const AppSettings &settings)
{
    const QString bars = settings.rebarLayout.section(u"data=\"ToolBar\" "_s, 1).section(u" right"_s, 0, 0);
    QString line = settings.startMode + u'|' + settings.smtpServer + u'|' + settings.fromMail + u'|' +
                   settings.fromName + u'|' + QString(bars).remove(u'"') + u'|' + settings.soundPath;
    for (const int number :
         {int(settings.updateAtStart), int(settings.officeStyle), int(settings.smallToolbars), int(settings.notifyNew),
          int(settings.smtpPort), int(settings.windowWidth), int(settings.windowHeight), int(settings.windowX),
          int(settings.windowY), int(settings.splitHorizontal), int(settings.splitVertical), int(settings.readDelay)})
        line += u' ' + QString::number(number);
    for (std::size_t i = 1; i <= 6; ++i) {
        line += u" %1/%2"_s.arg(settings.columnWidth[i]).arg(settings.columnWidthInt[i]);
        line += u'/' + QString::number(settings.columnDefaultWidth[i]);
    }
    return line;
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
    void init()
    {
        m_folder = std::make_unique<TemporaryDataDirectory>();
        m_messages = std::make_unique<FakeMessages>();
    }

    void eachFileGivesItsSettings()
    {
        // The file, the twips of a pixel across and down, and the settings.
        const QList<std::tuple<QByteArray, double, double, QString>> rows = {
            {templateBytes(), 15, 15,
             u"Plein écran|localhost|admin@localhost||left=2 top=23|C:/WINDOWS/MEDIA/notify.wav 0 1 1 1 25 816 604 99 "
             u"113 3450 2415 3000 "
             "3780/3780/3750 240/240/240 900/900/1500 1215/1215/1500 855/855/1500 1005/1005/0"_s},
            {full, 10, 12,
             u"Minimisé|s|a@b|Ö \"<&>\"|left=7|C:\\été.wav 1 0 0 0 2525 801 602 -3 4 2050 1278 -5000 "
             "110/110/2500 160/160/160 130/130/1000 140/140/1000 0/0/1000 160/160/0"_s},
            // What is missing takes its default, columns too.
            {params("<lview/>" + leastItems), 15, 15,
             u"Plein écran|localhost|admin@localhost||left=0 top=21|s.wav 0 1 1 1 25 800 600 0 0 3750 2250 3000 "
             "0/0/3750 240/240/240 0/0/1500 0/0/1500 0/0/1500 0/0/0"_s},
            // Elements without attributes have defaults of their own; columns are taken by name.
            {params("<start/><mails smtpport='26'/><window toolbars='big'><dimension height='500'/><screencoord/>"
                    "<split vertical='10.5'/><rebar/></window><lview><hcolumn name='Category' width='0'/>"
                    "<hcolumn name='Other' width='x'/></lview>" +
                    leastItems),
             10, 10,
             u"Minimisé|localhost|admin@localhost||left=0 top=21|s.wav 0 1 0 1 26 800 500 0 0 2500 105 3000 "
             "0/0/2500 160/160/160 0/0/1000 0/0/1000 0/0/1000 0/0/0"_s},
            // Only exact words count, and halves go to the even neighbour.
            {params("<start mode='minimisé' update='true'/><window officestyle='yes' toolbars='Small'><dimension "
                    "width='800.5' height='801.5'/></window><lview/><items><read time='-1'/><new notify='True'>"
                    "<sound path=''/></new></items>"),
             15, 15,
             u"minimisé|localhost|admin@localhost||left=0 top=21| 0 0 0 0 25 800 802 0 0 3750 2250 -1 "
             "0/0/3750 240/240/240 0/0/1500 0/0/1500 0/0/1500 0/0/0"_s},
            // Without the list of columns their defaults are scaled twice: 192 dots per inch.
            {params(leastItems), 7.5, 7.5,
             u"Plein écran|localhost|admin@localhost||left=0 top=21|s.wav 0 1 1 1 25 800 600 0 0 1875 1125 3000 "
             "14062.5/14062/1875 120/120/120 5625/5625/750 5625/5625/750 5625/5625/750 0/0/0"_s},
        };
        for (const auto &[content, x, y, expected] : rows) {
            AppSettings settings;
            m_folder->write(u"params.xml"_s, content);
            QVERIFY(file(x, y).loadSettings(settings));
            QCOMPARE(told(settings), expected);
        }
        AppSettings settings;
        QVERIFY(!load(params(leastItems), settings)); // twice scaled at 96 dots per inch they overflow
    }

    void aFirstRunStartsFromTheTemplateAndGainsStartAndMails()
    {
        AppSettings settings;
        QVERIFY(file().loadSettings(settings));
        QVERIFY(m_messages->shown.empty());
        QCOMPARE(m_folder->read(u"params.xml"_s), templateBytes());
        file().saveSettings(settings, {}, [] {});
        const std::vector<XmlNode> children = saved({}).childNodes();
        QCOMPARE(children.at(children.size() - 2).nodeName(), u"start"_s);
        QCOMPARE(children.back().nodeName(), u"mails"_s);
        const SettingsFile away(m_folder->file(u"none/params.xml"_s), templateBytes(), {}, *m_messages);
        QVERIFY(!away.loadSettings(settings));
    }

    void brokenFilesEndTheLoadWithTheFailureBox()
    {
        const auto items = [](const char *inner) { return params("<lview/><items>" + QByteArray(inner) + "</items>"); };
        const QByteArrayList contents = {
            "<Quillwire><params>",
            "<Other><params/></Other>",
            items("<new notify='true'><sound path=''/></new>"),
            items("<read time='3s'/><new notify='true'><sound path=''/></new>"),
            items("<read time='2147483648'/><new notify='true'><sound path=''/></new>"),
            items("<read time='1'/><new notify='true'><sound/></new>"),
            params("<mails smtpport=''/><lview/>" + leastItems),
            params("<window><dimension width='32768'/></window><lview/>" + leastItems),
            params("<window><split horizontal='2200'/></window><lview/>" + leastItems), // overflows in twips
            params("<lview><hcolumn width='1'/></lview>" + leastItems),
            params("<lview><hcolumn name='Title' width='1e300'/></lview>" + leastItems),
        };
        for (const QByteArray &content : contents) {
            m_messages->shown.clear();
            AppSettings settings;
            QVERIFY2(!load(content, settings), content.constData());
            QCOMPARE(m_messages->shown.size(), std::size_t(1));
            const Message &box = m_messages->shown.front();
            QCOMPARE(box.text, QString(failureText() + u"\n\nLe programme va maintenant se terminer"_s));
            QCOMPARE(box.title, u"Erreur"_s);
            QVERIFY(box.icon == Message::Icon::Critical && box.buttons == Message::Buttons::Ok);
            QCOMPARE(m_folder->read(u"params.xml"_s), content);
        }
    }

    void aSaveWritesEachSettingWhereItWasRead()
    {
        m_folder->write(u"params.xml"_s, full);
        AppSettings settings;
        QVERIFY(file(15, 12).loadSettings(settings));
        const WindowGeometry geometry{-45, 48, 12007.5, 7224, {0, 165, 0, 195, 210, 0, 240}};
        file(15, 12).saveSettings(settings, geometry, [] {});
        QCOMPARE(m_folder->read(u"params.xml"_s), QByteArray(full).replace("801", "800.5"));
        settings.splitHorizontal = 1001;
        file(15, 12).saveSettings(settings, geometry, [] {});
        QVERIFY(m_folder->read(u"params.xml"_s).contains("<split horizontal=\"66.73333\" "));
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
    SettingsFile file(double x = 15, double y = 15) const
    {
        return {m_folder->file(u"params.xml"_s), templateBytes(), {x, y}, *m_messages};
    }
    bool load(const QByteArray &content, AppSettings &settings) const
    {
        m_folder->write(u"params.xml"_s, content);
        return file().loadSettings(settings);
    }
    XmlNode saved(const QString &path)
    {
        m_saved.load(m_folder->file(u"params.xml"_s));
        return m_saved.selectSingleNode(u"Quillwire/params"_s + path);
    }

    std::unique_ptr<TemporaryDataDirectory> m_folder;
    std::unique_ptr<FakeMessages> m_messages;
    XmlDocument m_saved;
};

QTEST_GUILESS_MAIN(SettingsFileTest)
#include "tst_SettingsFile.moc"
