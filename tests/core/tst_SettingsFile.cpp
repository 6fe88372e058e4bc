#include "core/SettingsFile.h"
#include "platform/RunTimeError.h"
#include "platform/XmlDocument.h"
#include "tests/fixtures/FakeMessages.h"
#include "tests/fixtures/TemporaryDataDirectory.h"

#include <QTest>

namespace {

const QByteArray leastItems = "<items><read time='3000'/><new notify='true'><sound path='s.wav'/></new></items>";

QByteArray templateBytes()
{
    return Files::read(QStringLiteral(":/data/params.xml")).bytes;
}

QByteArray params(const QByteArray &inner)
{
    return "<?xml version='1.0'?><Quillwire><params>" + inner + "</params></Quillwire>";
}

QString failureText()
{
    return QStringLiteral("Erreur lors du chargement du fichier de configuration");
}

} // namespace

class SettingsFileTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aFirstRunStartsFromTheTemplateAndGainsStartAndMails();
    void whatIsMissingTakesItsDefault();
    void elementsWithoutAttributesTakeTheirOwnDefaults();
    void onlyExactWordsCount();
    void columnsAreTakenByName();
    void aFileWithoutColumnsOverflowsAtTheUsualResolution();
    void brokenFilesEndTheLoadWithTheFailureBox_data();
    void brokenFilesEndTheLoadWithTheFailureBox();
    void aFileThatCannotBeMadeEndsTheLoad();
    void aSaveRoundTripsAndKeepsWhatItDoesNotKnow();
    void aSaveWithAMissingNodeRaisesAnErrorAndLeavesTheFile_data();
    void aSaveWithAMissingNodeRaisesAnErrorAndLeavesTheFile();
    void theBoxOfAnUnreadableFileComesBackUntilTheFileIsRepaired();

private:
    SettingsFile file(double twips = 15) const
    {
        return {m_folder->file(QStringLiteral("params.xml")), templateBytes(), {twips, twips}, *m_messages};
    }
    bool load(const QByteArray &content, AppSettings &settings, double twips = 15) const
    {
        m_folder->write(QStringLiteral("params.xml"), content);
        return file(twips).loadSettings(settings);
    }
    XmlNode saved(const QString &path)
    {
        m_saved.load(m_folder->file(QStringLiteral("params.xml")));
        return m_saved.selectSingleNode(QStringLiteral("Quillwire/params") + path);
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
};

void SettingsFileTest::aFirstRunStartsFromTheTemplateAndGainsStartAndMails()
{
    AppSettings settings;
    QVERIFY(file().loadSettings(settings));
    QVERIFY(m_messages->shown.empty());
    QCOMPARE(m_folder->read(QStringLiteral("params.xml")), templateBytes());
    QCOMPARE(settings.startMode, QStringLiteral("Plein écran"));
    QCOMPARE(settings.updateAtStart, false);
    QCOMPARE(settings.smtpServer, QStringLiteral("localhost"));
    QCOMPARE(settings.smtpPort, qint16(25));
    QCOMPARE(settings.fromMail, QStringLiteral("admin@localhost"));
    QCOMPARE(settings.windowWidth, qint16(816));
    QCOMPARE(settings.windowY, qint16(113));
    QCOMPARE(settings.splitHorizontal, qint16(230 * 15));
    QCOMPARE(settings.splitVertical, qint16(161 * 15));
    QVERIFY(settings.rebarLayout.startsWith(
        u"<Bands count=\"3\" rowCount=\"2\"><Band id=\"1\" data=\"MenuBar\" left=\"2\""));
    QCOMPARE(settings.columnWidth[1], 252.0F * 15);
    QCOMPARE(settings.readDelay, 3000);
    QCOMPARE(settings.notifyNew, true);

    settings.smtpServer = QStringLiteral("mail.example.org");
    file().saveSettings(settings, {}, [] {});
    const std::vector<XmlNode> children = saved({}).childNodes();
    QCOMPARE(children.at(children.size() - 2).nodeName(), QStringLiteral("start"));
    QCOMPARE(children.back().nodeName(), QStringLiteral("mails"));
    QCOMPARE(saved(QStringLiteral("/start")).attribute(QStringLiteral("mode")), QStringLiteral("Plein écran"));
    QCOMPARE(saved(QStringLiteral("/mails")).attribute(QStringLiteral("smtpserver")),
             QStringLiteral("mail.example.org"));
}

void SettingsFileTest::whatIsMissingTakesItsDefault()
{
    AppSettings settings;
    QVERIFY(load(params("<lview/>" + leastItems), settings));
    QVERIFY(settings.officeStyle && settings.smallToolbars);
    QCOMPARE(settings.windowWidth, qint16(800));
    QCOMPARE(settings.windowHeight, qint16(600));
    QCOMPARE(settings.windowX, qint16(0));
    QCOMPARE(settings.splitHorizontal, qint16(3750));
    QCOMPARE(settings.splitVertical, qint16(2250));
    QVERIFY(settings.rebarLayout.contains(u"data=\"ToolBar\" left=\"0\" top=\"21\" right=\"200\" bottom=\"54\""));
    const std::array<qint16, 7> defaults = {0, 3750, 240, 1500, 1500, 1500, 0};
    QCOMPARE(settings.columnDefaultWidth, defaults);
    const std::array<qint16, 7> widths = {0, 0, 240, 0, 0, 0, 0};
    QCOMPARE(settings.columnWidthInt, widths);
}

void SettingsFileTest::elementsWithoutAttributesTakeTheirOwnDefaults()
{
    AppSettings settings;
    QVERIFY(load(params("<start/><mails smtpport='26'/><window toolbars='big'><dimension height='500'/><screencoord/>"
                        "<split vertical='10.5'/><rebar/></window><lview/>" +
                        leastItems),
                 settings, 10));
    QCOMPARE(settings.startMode, QStringLiteral("Minimisé")); // not the mode of a missing element
    QCOMPARE(settings.smtpPort, qint16(26));
    QCOMPARE(settings.fromMail, QStringLiteral("admin@localhost"));
    QVERIFY(settings.officeStyle && !settings.smallToolbars);
    QCOMPARE(settings.windowWidth, qint16(800));
    QCOMPARE(settings.windowHeight, qint16(500));
    QCOMPARE(settings.splitHorizontal, qint16(2500));
    QCOMPARE(settings.splitVertical, qint16(105));
    QVERIFY(settings.rebarLayout.contains(u"right=\"804\""));
}

void SettingsFileTest::onlyExactWordsCount()
{
    AppSettings settings;
    QVERIFY(load(params("<start mode='minimisé' update='true'/><window officestyle='yes' toolbars='Small'><dimension "
                        "width='800.5' height='801.5'/></window><lview/><items><read time='-1'/><new notify='True'>"
                        "<sound path=''/></new></items>"),
                 settings));
    QCOMPARE(settings.startMode, QStringLiteral("minimisé"));
    QVERIFY(!settings.updateAtStart && !settings.officeStyle && !settings.smallToolbars && !settings.notifyNew);
    QCOMPARE(settings.windowWidth, qint16(800)); // halves go to the even neighbour
    QCOMPARE(settings.windowHeight, qint16(802));
    QCOMPARE(settings.readDelay, -1);
}

void SettingsFileTest::columnsAreTakenByName()
{
    AppSettings settings;
    QVERIFY(load(params("<lview><hcolumn name='Category' width='0'/><hcolumn name='Other' width='x'/><hcolumn "
                        "name='Date' width='60.1'/><hcolumn name='Title' width='252'/></lview>" +
                        leastItems),
                 settings));
    const std::array<qint16, 7> widths = {0, 3780, 240, 902, 0, 0, 0};
    QCOMPARE(settings.columnWidthInt, widths);
    QCOMPARE(settings.columnWidth[3], 901.5F);
}

void SettingsFileTest::aFileWithoutColumnsOverflowsAtTheUsualResolution()
{
    AppSettings settings;
    QVERIFY(!load(params(leastItems), settings, 15));
    QVERIFY(load(params(leastItems), settings, 7.5)); // 192 dots per inch
    const std::array<qint16, 7> widths = {0, 14062, 120, 5625, 5625, 5625, 0};
    QCOMPARE(settings.columnWidthInt, widths);
}

void SettingsFileTest::brokenFilesEndTheLoadWithTheFailureBox_data()
{
    QTest::addColumn<QByteArray>("content");
    const auto items = [](const char *inner) { return params("<lview/><items>" + QByteArray(inner) + "</items>"); };
    QTest::newRow("not well-formed") << QByteArray("<Quillwire><params>");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("another root") << QByteArray("<Other><params/></Other>");
    QTest::newRow("no params") << QByteArray("<Quillwire/>");
    QTest::newRow("no items") << params("<lview/>");
    QTest::newRow("no read") << items("<new notify='true'><sound path=''/></new>");
    QTest::newRow("no time") << items("<read/><new notify='true'><sound path=''/></new>");
    QTest::newRow("time is no number") << items("<read time='3s'/><new notify='true'><sound path=''/></new>");
    QTest::newRow("time overflows") << items("<read time='2147483648'/><new notify='true'><sound path=''/></new>");
    QTest::newRow("no notify") << items("<read time='1'/><new><sound path=''/></new>");
    QTest::newRow("no sound") << items("<read time='1'/><new notify='true'/>");
    QTest::newRow("no path") << items("<read time='1'/><new notify='true'><sound/></new>");
    QTest::newRow("port is empty") << params("<mails smtpport=''/><lview/>" + leastItems);
    QTest::newRow("width overflows") << params("<window><dimension width='32768'/></window><lview/>" + leastItems);
    QTest::newRow("splitter overflows in twips")
        << params("<window><split horizontal='2200'/></window><lview/>" + leastItems);
    QTest::newRow("column without name") << params("<lview><hcolumn width='1'/></lview>" + leastItems);
    QTest::newRow("column without width") << params("<lview><hcolumn name='Title'/></lview>" + leastItems);
    QTest::newRow("column overflows") << params("<lview><hcolumn name='Title' width='1e300'/></lview>" + leastItems);
}

void SettingsFileTest::brokenFilesEndTheLoadWithTheFailureBox()
{
    QFETCH(QByteArray, content);
    AppSettings settings;
    QVERIFY(!load(content, settings));
    QCOMPARE(m_messages->shown.size(), std::size_t(1));
    const Message &box = m_messages->shown.front();
    QCOMPARE(box.text, QString(failureText() + QStringLiteral("\n\nLe programme va maintenant se terminer")));
    QCOMPARE(box.title, QStringLiteral("Erreur"));
    QCOMPARE(box.icon, Message::Icon::Critical);
    QCOMPARE(box.buttons, Message::Buttons::Ok);
    QCOMPARE(m_folder->read(QStringLiteral("params.xml")), content);
}

void SettingsFileTest::aFileThatCannotBeMadeEndsTheLoad()
{
    AppSettings settings;
    const SettingsFile away(m_folder->file(QStringLiteral("none/params.xml")), templateBytes(), {}, *m_messages);
    QVERIFY(!away.loadSettings(settings));
    QCOMPARE(m_messages->shown.size(), std::size_t(1));
}

void SettingsFileTest::aSaveRoundTripsAndKeepsWhatItDoesNotKnow()
{
    QByteArray content = templateBytes();
    content.replace("<params>", "<params other=\"kept\"><!-- mine --><extra/><start update=\"0\" mode=\"x\" z=\"1\"/>");
    content.replace("<hcolumn name=\"Date\"", "<hcolumn name=\"Extra\" width=\"7\"/><hcolumn name=\"Date\"");
    AppSettings settings;
    QVERIFY(load(content, settings));
    settings.startMode = QStringLiteral("Minimisé");
    settings.updateAtStart = true;
    settings.smtpPort = 2525;
    settings.fromName = QStringLiteral("Ö \"<&>\"");
    settings.officeStyle = false;
    settings.splitHorizontal = 1001;
    settings.readDelay = -5000;
    settings.notifyNew = false;
    settings.soundPath = QStringLiteral("C:\\été.wav");
    settings.rebarLayout = QStringLiteral("<Bands count=\"1\"><Band id=\"1\" data=\"MenuBar\"/></Bands>");
    WindowGeometry geometry;
    geometry.width = 12007.5;
    geometry.left = -150;
    geometry.columnWidth[1] = 3780;
    file().saveSettings(settings, geometry, [] {});

    const auto attribute = [this](const char *path, const char *name) {
        return saved(QString::fromLatin1(path)).attribute(QString::fromLatin1(name)).value();
    };
    QCOMPARE(attribute("", "other"), QStringLiteral("kept"));
    QCOMPARE(attribute("/start", "z"), QStringLiteral("1"));
    QVERIFY(m_folder->read(QStringLiteral("params.xml")).contains("<!-- mine --><extra/>"));
    QCOMPARE(attribute("/window/dimension", "width"), QStringLiteral("800.5"));
    QCOMPARE(attribute("/window/screencoord", "x"), QStringLiteral("-10"));
    QCOMPARE(attribute("/window/split", "horizontal"), QStringLiteral("66.73333"));
    const std::vector<XmlNode> columns = saved(QStringLiteral("/lview")).childNodes();
    QCOMPARE(columns.at(0).attribute(QStringLiteral("width")), QStringLiteral("252"));
    QCOMPARE(columns.at(1).attribute(QStringLiteral("width")), QStringLiteral("7"));
    QCOMPARE(columns.at(2).attribute(QStringLiteral("width")), QStringLiteral("0")); // a hidden column

    AppSettings again;
    QVERIFY(file().loadSettings(again));
    QCOMPARE(again.startMode, settings.startMode);
    QCOMPARE(again.updateAtStart, true);
    QCOMPARE(again.smtpPort, settings.smtpPort);
    QCOMPARE(again.fromName, settings.fromName);
    QCOMPARE(again.splitHorizontal, settings.splitHorizontal);
    QCOMPARE(again.readDelay, settings.readDelay);
    QCOMPARE(again.soundPath, settings.soundPath);
    QCOMPARE(again.rebarLayout, settings.rebarLayout);
    QVERIFY(!again.officeStyle && !again.notifyNew);
}

void SettingsFileTest::aSaveWithAMissingNodeRaisesAnErrorAndLeavesTheFile_data()
{
    QTest::addColumn<QByteArray>("taken");
    QTest::newRow("element") << QByteArray("<dimension width=\"816\" height=\"604\" />");
    QTest::newRow("attribute") << QByteArray(" y=\"113\"");
    QTest::newRow("last element") << QByteArray("<sound path=\"C:/WINDOWS/MEDIA/notify.wav\" />");
}

void SettingsFileTest::aSaveWithAMissingNodeRaisesAnErrorAndLeavesTheFile()
{
    QFETCH(QByteArray, taken);
    AppSettings settings;
    QVERIFY(file().loadSettings(settings));
    QByteArray content = templateBytes();
    QVERIFY(content.contains(taken));
    content.replace(taken, "");
    m_folder->write(QStringLiteral("params.xml"), content);
    QVERIFY_EXCEPTION_THROWN(file().saveSettings(settings, {}, [] {}), RunTimeError);
    QCOMPARE(m_folder->read(QStringLiteral("params.xml")), content);
}

void SettingsFileTest::theBoxOfAnUnreadableFileComesBackUntilTheFileIsRepaired()
{
    AppSettings settings;
    QVERIFY(file().loadSettings(settings));
    m_folder->write(QStringLiteral("params.xml"), "<Quillwire>");
    m_messages->onShow = [this](const Message &) {
        if (m_messages->shown.size() == 3)
            m_folder->write(QStringLiteral("params.xml"), templateBytes());
    };
    settings.soundPath = QStringLiteral("new.wav");
    int calls = 0;
    std::function<void()> saveAndClose = [&] {
        ++calls;
        file().saveSettings(settings, {}, saveAndClose);
    };
    saveAndClose();
    QCOMPARE(calls, 4);
    QCOMPARE(m_messages->shown.size(), std::size_t(3));
    QCOMPARE(m_messages->shown.back().text, failureText());
    QCOMPARE(saved(QStringLiteral("/items/new/sound")).attribute(QStringLiteral("path")), QStringLiteral("new.wav"));
}

QTEST_GUILESS_MAIN(SettingsFileTest)
#include "tst_SettingsFile.moc"
