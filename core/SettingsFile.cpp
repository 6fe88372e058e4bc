// SPDX-License-Identifier: GPL-3.0-or-later

#include "core/SettingsFile.h"

#include "platform/Files.h"
#include "platform/Literals.h"
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
    return u""
           R"(<Bands count="3" rowCount="2">)"
           R"(<Band id="1" data="MenuBar" left="0" top="0" right="804" bottom="19" bandChildMinWidth="191" )"
           R"(bandChildIdealWidth="191" chevron="n" text="" fixedBand="n"/>)"
           R"(<Band id="2" data="ToolBar" left="0" top="21" right="200" bottom="54" bandChildMinWidth="94" )"
           R"(bandChildIdealWidth="94" chevron="y" text="" fixedBand="n"/>)"
           R"(<Band id="3" data="StyleBar" left="202" top="21" right="804" bottom="54" bandChildMinWidth="313" )"
           R"(bandChildIdealWidth="313" chevron="n" text="" fixedBand="n"/></Bands>)"_s;
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
    return value ? u"1"_s : u"0"_s;
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
    return {u"Erreur lors du chargement du fichier de configuration"_s + secondLine, u"Erreur"_s,
            Message::Icon::Critical, Message::Buttons::Ok};
}

void readStart(const XmlNode &start, AppSettings &settings)
{
    // A missing element and a missing attribute give different modes: files of both kinds are about, and each keeps the
    // start that its user knows (the settings tests hold both).
    settings.startMode = start ? start.attribute(u"mode"_s).value_or(u"Minimisé"_s) : u"Plein écran"_s;
    settings.updateAtStart = attributeOf(start, u"update"_s) == u"1"_s;
}

void readMails(const XmlNode &mails, AppSettings &settings)
{
    settings.smtpServer = attributeOf(mails, u"smtpserver"_s).value_or(u"localhost"_s);
    settings.smtpPort = number(attributeOf(mails, u"smtpport"_s), 25);
    settings.fromMail = attributeOf(mails, u"frommail"_s).value_or(u"admin@localhost"_s);
    settings.fromName = attributeOf(mails, u"fromname"_s).value_or(QString());
}

XmlNode childOf(const XmlNode &element, const QString &name)
{
    return element ? element.selectSingleNode(name) : XmlNode();
}

void readWindow(const XmlNode &window, AppSettings &settings, const ScreenScale &scale)
{
    settings.officeStyle = flag(attributeOf(window, u"officestyle"_s), "1"_L1);
    settings.smallToolbars = flag(attributeOf(window, u"toolbars"_s), "small"_L1);

    const XmlNode dimension = childOf(window, u"dimension"_s);
    settings.windowWidth = number(attributeOf(dimension, u"width"_s), 800);
    settings.windowHeight = number(attributeOf(dimension, u"height"_s), 600);

    const XmlNode corner = childOf(window, u"screencoord"_s);
    settings.windowX = number(attributeOf(corner, u"x"_s), 0);
    settings.windowY = number(attributeOf(corner, u"y"_s), 0);

    const XmlNode split = childOf(window, u"split"_s);
    const auto twips = [&split](const QString &name, double pixelsWhenMissing, double twipsPerPixel) {
        const Attribute text = attributeOf(split, name);
        return Numbers::roundToInt16((text ? Numbers::toDouble(*text) : pixelsWhenMissing) * twipsPerPixel);
    };
    settings.splitHorizontal = twips(u"horizontal"_s, 250, scale.twipsPerPixelX);
    settings.splitVertical = twips(u"vertical"_s, 150, scale.twipsPerPixelY);

    const XmlNode bands = childOf(childOf(window, u"rebar"_s), u"Bands"_s);
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
    for (const XmlNode &entry : lview.selectNodes(u"hcolumn"_s)) {
        const std::size_t column = columnOf(entry.requiredAttribute(u"name"_s));
        const QString width = entry.requiredAttribute(u"width"_s);
        if (column != 0)
            setColumnWidth(settings, column, Numbers::toDouble(width) * twipsPerPixel);
    }
}

void readItems(const XmlNode &items, AppSettings &settings)
{
    const XmlNode read = items.selectSingleNode(u"read"_s);
    settings.readDelay = Numbers::toInt32(read.requiredAttribute(u"time"_s));
    const XmlNode announce = items.selectSingleNode(u"new"_s);
    settings.notifyNew = announce.requiredAttribute(u"notify"_s) == u"true";
    const XmlNode sound = announce.selectSingleNode(u"sound"_s);
    settings.soundPath = sound.requiredAttribute(u"path"_s);
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
    XmlNode start = childMadeIfMissing(document, params, u"start"_s);
    start.setAttribute(u"mode"_s, settings.startMode);
    start.setAttribute(u"update"_s, digit(settings.updateAtStart));

    XmlNode mails = childMadeIfMissing(document, params, u"mails"_s);
    mails.setAttribute(u"smtpserver"_s, settings.smtpServer);
    mails.setAttribute(u"smtpport"_s, QString::number(settings.smtpPort));
    mails.setAttribute(u"frommail"_s, settings.fromMail);
    mails.setAttribute(u"fromname"_s, settings.fromName);
}

void writeWindow(XmlDocument &document, XmlNode window, const AppSettings &settings, const WindowGeometry &geometry,
                 const ScreenScale &scale)
{
    window.setAttribute(u"officestyle"_s, digit(settings.officeStyle));
    window.setAttribute(u"toolbars"_s, settings.smallToolbars ? u"small"_s : u"big"_s);

    const XmlNode dimension = window.selectSingleNode(u"dimension"_s);
    replaceNumber(dimension, u"width"_s, geometry.width / scale.twipsPerPixelX);
    replaceNumber(dimension, u"height"_s, geometry.height / scale.twipsPerPixelY);
    const XmlNode corner = window.selectSingleNode(u"screencoord"_s);
    replaceNumber(corner, u"x"_s, geometry.left / scale.twipsPerPixelX);
    replaceNumber(corner, u"y"_s, geometry.top / scale.twipsPerPixelY);
    const XmlNode split = window.selectSingleNode(u"split"_s);
    replaceNumber(split, u"horizontal"_s, settings.splitHorizontal / scale.twipsPerPixelX);
    replaceNumber(split, u"vertical"_s, settings.splitVertical / scale.twipsPerPixelY);

    XmlDocument layout;
    layout.loadXml(settings.rebarLayout);
    XmlNode rebar = window.selectSingleNode(u"rebar"_s);
    const XmlNode oldBands = rebar.selectSingleNode(u"Bands"_s);
    rebar.replaceChild(document.importNode(layout.selectSingleNode(u"Bands"_s)), oldBands);
}

void writeColumns(const XmlNode &lview, const WindowGeometry &geometry, double twipsPerPixel)
{
    for (const XmlNode &entry : lview.selectNodes(u"hcolumn"_s)) {
        const std::size_t column = columnOf(entry.requiredAttribute(u"name"_s));
        if (column != 0)
            replaceNumber(entry, u"width"_s, geometry.columnWidth[column] / twipsPerPixel);
    }
}

void writeItems(const XmlNode &items, const AppSettings &settings)
{
    replaceAttribute(items.selectSingleNode(u"read"_s), u"time"_s, QString::number(settings.readDelay));
    const XmlNode announce = items.selectSingleNode(u"new"_s);
    replaceAttribute(announce, u"notify"_s, settings.notifyNew ? u"true"_s : u"false"_s);
    replaceAttribute(announce.selectSingleNode(u"sound"_s), u"path"_s, settings.soundPath);
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
        const XmlNode params = document.selectSingleNode(u"Quillwire/params"_s);
        AppSettings loaded;
        readStart(params.selectSingleNode(u"start"_s), loaded);
        readMails(params.selectSingleNode(u"mails"_s), loaded);
        readWindow(params.selectSingleNode(u"window"_s), loaded, m_scale);
        readColumns(params.selectSingleNode(u"lview"_s), loaded, m_scale.twipsPerPixelX);
        readItems(params.selectSingleNode(u"items"_s), loaded);
        settings = loaded;
        return true;
    } catch (const RunTimeError &) {
        m_messages.show(failureBox(u"\n\nLe programme va maintenant se terminer"_s));
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
    XmlNode params = document.selectSingleNode(u"Quillwire/params"_s);
    writeStartAndMails(document, params, settings);
    writeWindow(document, params.selectSingleNode(u"window"_s), settings, geometry, m_scale);
    writeColumns(params.selectSingleNode(u"lview"_s), geometry, m_scale.twipsPerPixelX);
    writeItems(params.selectSingleNode(u"items"_s), settings);
    document.save(m_path);
}
