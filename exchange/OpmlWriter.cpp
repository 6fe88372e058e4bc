// SPDX-License-Identifier: GPL-3.0-or-later

#include "exchange/OpmlWriter.h"

#include "platform/Files.h"
#include "platform/Literals.h"
#include "platform/xml/XmlDocument.h"

#include <QList>

namespace {

void writeLine(QString &stream, const QString &line)
{
    stream += line;
    stream += u"\r\n"_s;
}

// Nothing is escaped in any line: names and addresses reach other programs letter for letter as the catalogue holds
// them. A text with "&" makes a file that readers refuse; tst_Opml holds both.
void exportNode(const XmlNode &node, bool structured, QString &stream)
{
    for (const XmlNode &child : node.childNodes()) {
        const QString kind = child.nodeName();
        if (kind == u"dir"_s) {
            if (structured)
                writeLine(stream, u"<outline text=\""_s + child.requiredAttribute(u"name"_s) + u"\" >"_s);
            exportNode(child, structured, stream);
            if (structured)
                writeLine(stream, u"</outline>"_s);
        } else if (kind == u"feed"_s) {
            writeLine(stream, u"<outline text=\""_s + child.requiredAttribute(u"name"_s) + u"\" xmlUrl=\""_s +
                                  child.requiredAttribute(u"url"_s) + u"\" />"_s);
        }
    }
}

/// The text as the file's declaration says, which every reader goes by. What the encoding lacks stands as its number.
QByteArray inLatin1(const QString &text)
{
    constexpr uint lastOfLatin1 = 0xFF;
    QByteArray bytes;
    const QList<uint> characters = text.toUcs4();
    bytes.reserve(characters.size());
    for (const uint character : characters) {
        if (character <= lastOfLatin1)
            bytes += static_cast<char>(character);
        else
            bytes += "&#" + QByteArray::number(character) + ';';
    }
    return bytes;
}

} // namespace

bool writeOpml(const OpmlExport &what, const QString &path)
{
    XmlDocument catalogue;
    if (catalogue.load(what.catalogue) != XmlDocument::LoadResult::Loaded)
        return false;

    QString stream;
    writeLine(stream, u"<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>"_s);
    writeLine(stream, u"<opml version=\"1.1\">"_s);
    writeLine(stream, u"<head>"_s);
    writeLine(stream, u"<title>"_s + what.title + u"</title>"_s);
    writeLine(stream, u"<ownerName>"_s + what.ownerName + u"</ownerName>"_s);
    writeLine(stream, u"<ownerEmail>"_s + what.ownerEmail + u"</ownerEmail>"_s);
    writeLine(stream, u"</head>"_s);
    writeLine(stream, u"<body>"_s);
    exportNode(catalogue.selectSingleNode(u"favoris"_s), what.structured, stream);
    writeLine(stream, u"</body>"_s);
    writeLine(stream, u"</opml>"_s);

    Files::write(path, inLatin1(stream));
    return true;
}
