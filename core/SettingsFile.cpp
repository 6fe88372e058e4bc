#include "core/SettingsFile.h"

#include "platform/Files.h"
#include "platform/Messages.h"
#include "platform/Numbers.h"
#include "platform/RunTimeError.h"
#include "platform/xml/XmlDocument.h"

namespace {

using Attribute = std::optional<QString>;

constexpr int titleColumn = 1;
constexpr int readMarkColumn = 2;
constexpr int authorColumn = 5;
constexpr int categoryColumn = 6;

/// The layout of the bars for a file that has none; its numbers differ from those of the template.
QString defaultBands()
{
    return QStringLiteral(
        R"(<Bands count="3" rowCount="2">)"
        R"(<Band id="1" data="MenuBar" left="0" top="0" right="804" bottom="19" bandChildMinWidth="191" )"
        R"(bandChildIdealWidth="191" chevron="n" text="" fixedBand="n"/>)"
        R"(<Band id="2" data="ToolBar" left="0" top="21" right="200" bottom="54" bandChildMinWidth="94" )"
        R"(bandChildIdealWidth="94" chevron="y" text="" fixedBand="n"/>)"
        R"(<Band id="3" data="StyleBar" left="202" top="21" right="804" bottom="54" bandChildMinWidth="313" )"
        R"(bandChildIdealWidth="313" chevron="n" text="" fixedBand="n"/></Bands>)");
}

/// The attribute of an element that may be missing itself.
Attribute attributeOf(const XmlNode &element, const QString &name)
{
    return element ? element.attribute(name) : std::nullopt;
}

qint16 number(const Attribute &text, qint16 whenMissing)
{
    return text ? Numbers::toInt16(*text) : whenMissing;
}

bool flag(const Attribute &text, QLatin1String meansTrue)
{
    return !text || *text == meansTrue;
}

QString digit(bool value)
{
    return value ? QStringLiteral("1") : QStringLiteral("0");
}

/// The column that an `hcolumn` of that name stands for; 0 for another name. The read mark has none.
std::size_t columnOf(const QString &name)
{
    if (name == u"Title")
        return titleColumn;
    if (name == u"Date")
        return 3;
    if (name == u"Downloaded")
        return 4;
    if (name == u"Author")
        return authorColumn;
    if (name == u"Category")
        return categoryColumn;
    return 0;
}

Message failureBox(const QString &secondLine = {})
{
    return {QStringLiteral("Erreur lors du chargement du fichier de configuration") + secondLine,
            QStringLiteral("Erreur"), Message::Icon::Critical, Message::Buttons::Ok};
}

void readStart(const XmlNode &start, AppSettings &settings)
{
    // A missing element and a missing attribute give different modes: files of both kinds are about, and each keeps the
    // start that its user knows (the settings tests hold both).
    settings.startMode = start ? start.attribute(QStringLiteral("mode")).value_or(QStringLiteral("Minimisé"))
                               : QStringLiteral("Plein écran");
    settings.updateAtStart = attributeOf(start, QStringLiteral("update")) == QStringLiteral("1");
}

void readMails(const XmlNode &mails, AppSettings &settings)
{
    settings.smtpServer = attributeOf(mails, QStringLiteral("smtpserver")).value_or(QStringLiteral("localhost"));
    settings.smtpPort = number(attributeOf(mails, QStringLiteral("smtpport")), 25);
    settings.fromMail = attributeOf(mails, QStringLiteral("frommail")).value_or(QStringLiteral("admin@localhost"));
    settings.fromName = attributeOf(mails, QStringLiteral("fromname")).value_or(QString());
}

XmlNode childOf(const XmlNode &element, const QString &name)
{
    return element ? element.selectSingleNode(name) : XmlNode();
}

void readWindow(const XmlNode &window, AppSettings &settings, const ScreenScale &scale)
{
    settings.officeStyle = flag(attributeOf(window, QStringLiteral("officestyle")), QLatin1String("1"));
    settings.smallToolbars = flag(attributeOf(window, QStringLiteral("toolbars")), QLatin1String("small"));

    const XmlNode dimension = childOf(window, QStringLiteral("dimension"));
    settings.windowWidth = number(attributeOf(dimension, QStringLiteral("width")), 800);
    settings.windowHeight = number(attributeOf(dimension, QStringLiteral("height")), 600);

    const XmlNode corner = childOf(window, QStringLiteral("screencoord"));
    settings.windowX = number(attributeOf(corner, QStringLiteral("x")), 0);
    settings.windowY = number(attributeOf(corner, QStringLiteral("y")), 0);

    const XmlNode split = childOf(window, QStringLiteral("split"));
    const auto twips = [&split](const QString &name, double pixelsWhenMissing, double twipsPerPixel) {
        const Attribute text = attributeOf(split, name);
        return Numbers::roundToInt16((text ? Numbers::toDouble(*text) : pixelsWhenMissing) * twipsPerPixel);
    };
    settings.splitHorizontal = twips(QStringLiteral("horizontal"), 250, scale.twipsPerPixelX);
    settings.splitVertical = twips(QStringLiteral("vertical"), 150, scale.twipsPerPixelY);

    const XmlNode bands = childOf(childOf(window, QStringLiteral("rebar")), QStringLiteral("Bands"));
    settings.rebarLayout = bands ? bands.xml() : defaultBands();
}

void setColumnWidth(AppSettings &settings, std::size_t column, double twips)
{
    settings.columnWidth[column] = static_cast<float>(twips);
    settings.columnWidthInt[column] = Numbers::roundToInt16(static_cast<double>(settings.columnWidth[column]));
}

void readColumns(const XmlNode &lview, AppSettings &settings, double twipsPerPixel)
{
    settings.columnDefaultWidth[titleColumn] = Numbers::roundToInt16(250 * twipsPerPixel);
    settings.columnDefaultWidth[readMarkColumn] = Numbers::roundToInt16(16 * twipsPerPixel);
    // The last column gets no default and stays 0: a category column that was hidden stays so when it is asked for.
    for (std::size_t column = 3; column <= authorColumn; ++column)
        settings.columnDefaultWidth[column] = Numbers::roundToInt16(100 * twipsPerPixel);
    setColumnWidth(settings, readMarkColumn, 16 * twipsPerPixel);

    if (!lview) {
        // The defaults are in twips already and are scaled once more. At 15 twips a pixel the first column then
        // overflows: a file without `lview` is refused there, with the message of a damaged file.
        for (std::size_t column = titleColumn; column <= categoryColumn; ++column)
            if (column != readMarkColumn)
                setColumnWidth(settings, column, settings.columnDefaultWidth[column] * twipsPerPixel);
        return;
    }
    for (const XmlNode &entry : lview.selectNodes(QStringLiteral("hcolumn"))) {
        const std::size_t column = columnOf(entry.requiredAttribute(QStringLiteral("name")));
        const QString width = entry.requiredAttribute(QStringLiteral("width"));
        if (column != 0)
            setColumnWidth(settings, column, Numbers::toDouble(width) * twipsPerPixel);
    }
}

void readItems(const XmlNode &items, AppSettings &settings)
{
    const XmlNode read = items.selectSingleNode(QStringLiteral("read"));
    settings.readDelay = Numbers::toInt32(read.requiredAttribute(QStringLiteral("time")));
    const XmlNode announce = items.selectSingleNode(QStringLiteral("new"));
    settings.notifyNew = announce.requiredAttribute(QStringLiteral("notify")) == u"true";
    const XmlNode sound = announce.selectSingleNode(QStringLiteral("sound"));
    settings.soundPath = sound.requiredAttribute(QStringLiteral("path"));
}

XmlNode childMadeIfMissing(XmlDocument &document, XmlNode &parent, const QString &name)
{
    XmlNode child = parent.selectSingleNode(name);
    if (!child) {
        child = document.createElement(name);
        parent.appendChild(child);
    }
    return child;
}

/// Sets an attribute that has to be there.
void replaceAttribute(XmlNode element, const QString &name, const QString &value)
{
    element.requiredAttribute(name);
    element.setAttribute(name, value);
}

void replaceNumber(const XmlNode &element, const QString &name, double value)
{
    replaceAttribute(element, name, Numbers::singleText(value));
}

void writeStartAndMails(XmlDocument &document, XmlNode &params, const AppSettings &settings)
{
    XmlNode start = childMadeIfMissing(document, params, QStringLiteral("start"));
    start.setAttribute(QStringLiteral("mode"), settings.startMode);
    start.setAttribute(QStringLiteral("update"), digit(settings.updateAtStart));

    XmlNode mails = childMadeIfMissing(document, params, QStringLiteral("mails"));
    mails.setAttribute(QStringLiteral("smtpserver"), settings.smtpServer);
    mails.setAttribute(QStringLiteral("smtpport"), QString::number(settings.smtpPort));
    mails.setAttribute(QStringLiteral("frommail"), settings.fromMail);
    mails.setAttribute(QStringLiteral("fromname"), settings.fromName);
}

void writeWindow(XmlDocument &document, XmlNode window, const AppSettings &settings, const WindowGeometry &geometry,
                 const ScreenScale &scale)
{
    window.setAttribute(QStringLiteral("officestyle"), digit(settings.officeStyle));
    window.setAttribute(QStringLiteral("toolbars"),
                        settings.smallToolbars ? QStringLiteral("small") : QStringLiteral("big"));

    const XmlNode dimension = window.selectSingleNode(QStringLiteral("dimension"));
    replaceNumber(dimension, QStringLiteral("width"), geometry.width / scale.twipsPerPixelX);
    replaceNumber(dimension, QStringLiteral("height"), geometry.height / scale.twipsPerPixelY);
    const XmlNode corner = window.selectSingleNode(QStringLiteral("screencoord"));
    replaceNumber(corner, QStringLiteral("x"), geometry.left / scale.twipsPerPixelX);
    replaceNumber(corner, QStringLiteral("y"), geometry.top / scale.twipsPerPixelY);
    const XmlNode split = window.selectSingleNode(QStringLiteral("split"));
    replaceNumber(split, QStringLiteral("horizontal"), settings.splitHorizontal / scale.twipsPerPixelX);
    replaceNumber(split, QStringLiteral("vertical"), settings.splitVertical / scale.twipsPerPixelY);

    XmlDocument layout;
    layout.loadXml(settings.rebarLayout);
    XmlNode rebar = window.selectSingleNode(QStringLiteral("rebar"));
    const XmlNode oldBands = rebar.selectSingleNode(QStringLiteral("Bands"));
    rebar.replaceChild(document.importNode(layout.selectSingleNode(QStringLiteral("Bands"))), oldBands);
}

void writeColumns(const XmlNode &lview, const WindowGeometry &geometry, double twipsPerPixel)
{
    for (const XmlNode &entry : lview.selectNodes(QStringLiteral("hcolumn"))) {
        const std::size_t column = columnOf(entry.requiredAttribute(QStringLiteral("name")));
        if (column != 0)
            replaceNumber(entry, QStringLiteral("width"), geometry.columnWidth[column] / twipsPerPixel);
    }
}

void writeItems(const XmlNode &items, const AppSettings &settings)
{
    replaceAttribute(items.selectSingleNode(QStringLiteral("read")), QStringLiteral("time"),
                     QString::number(settings.readDelay));
    const XmlNode announce = items.selectSingleNode(QStringLiteral("new"));
    replaceAttribute(announce, QStringLiteral("notify"),
                     settings.notifyNew ? QStringLiteral("true") : QStringLiteral("false"));
    replaceAttribute(announce.selectSingleNode(QStringLiteral("sound")), QStringLiteral("path"), settings.soundPath);
}

} // namespace

SettingsFile::SettingsFile(QString path, QByteArray templateBytes, ScreenScale scale, Messages &messages)
    : m_path(std::move(path)), m_template(std::move(templateBytes)), m_scale(scale), m_messages(messages)
{}

bool SettingsFile::loadSettings(AppSettings &settings) const
{
    try {
        if (!Files::exists(m_path))
            Files::write(m_path, m_template);
        XmlDocument document;
        document.load(m_path);
        const XmlNode params = document.selectSingleNode(QStringLiteral("Quillwire/params"));
        AppSettings loaded;
        readStart(params.selectSingleNode(QStringLiteral("start")), loaded);
        readMails(params.selectSingleNode(QStringLiteral("mails")), loaded);
        readWindow(params.selectSingleNode(QStringLiteral("window")), loaded, m_scale);
        readColumns(params.selectSingleNode(QStringLiteral("lview")), loaded, m_scale.twipsPerPixelX);
        readItems(params.selectSingleNode(QStringLiteral("items")), loaded);
        settings = loaded;
        return true;
    } catch (const RunTimeError &) {
        m_messages.show(failureBox(QStringLiteral("\n\nLe programme va maintenant se terminer")));
        return false;
    }
}

void SettingsFile::saveSettings(const AppSettings &settings, const WindowGeometry &geometry,
                                const std::function<void()> &saveAndClose) const
{
    XmlDocument document;
    if (document.load(m_path) != XmlDocument::LoadResult::Loaded) {
        m_messages.show(failureBox());
        saveAndClose(); // comes back here: the box returns with each OK for as long as the file stays unreadable
        return;
    }
    XmlNode params = document.selectSingleNode(QStringLiteral("Quillwire/params"));
    writeStartAndMails(document, params, settings);
    writeWindow(document, params.selectSingleNode(QStringLiteral("window")), settings, geometry, m_scale);
    writeColumns(params.selectSingleNode(QStringLiteral("lview")), geometry, m_scale.twipsPerPixelX);
    writeItems(params.selectSingleNode(QStringLiteral("items")), settings);
    document.save(m_path);
}
