#include "exchange/OpmlWriter.h"

#include "platform/AnsiText.h"
#include "platform/Files.h"
#include "platform/RunTimeError.h"
#include "platform/xml/XmlDocument.h"

namespace {

void writeLine(QString &stream, const QString &line)
{
    stream += line;
    stream += QStringLiteral("\r\n");
}

// Nothing is escaped in any line: names and addresses reach other programs letter for letter as the catalogue holds
// them. A text with "&" makes a file that readers refuse; nothingIsEscaped of tst_OpmlWriter holds both.
void exportNode(const XmlNode &node, bool structured, QString &stream)
{
    for (const XmlNode &child : node.childNodes()) {
        const QString kind = child.nodeName();
        if (kind == QStringLiteral("dir")) {
            if (structured)
                writeLine(stream, QStringLiteral("<outline text=\"") + child.requiredAttribute(QStringLiteral("name")) +
                                      QStringLiteral("\" >"));
            exportNode(child, structured, stream);
            if (structured)
                writeLine(stream, QStringLiteral("</outline>"));
        } else if (kind == QStringLiteral("feed")) {
            writeLine(stream, QStringLiteral("<outline text=\"") + child.requiredAttribute(QStringLiteral("name")) +
                                  QStringLiteral("\" xmlUrl=\"") + child.requiredAttribute(QStringLiteral("url")) +
                                  QStringLiteral("\" />"));
        }
    }
}

} // namespace

bool writeOpml(const OpmlExport &what, const QString &path)
{
    XmlDocument catalogue;
    if (catalogue.load(what.catalogue) != XmlDocument::LoadResult::Loaded)
        return false;

    QString stream;
    // Declared so whatever the code page of the system is.
    writeLine(stream, QStringLiteral("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>"));
    writeLine(stream, QStringLiteral("<opml version=\"1.1\">"));
    writeLine(stream, QStringLiteral("<head>"));
    writeLine(stream, QStringLiteral("<title>") + what.title + QStringLiteral("</title>"));
    writeLine(stream, QStringLiteral("<ownerName>") + what.ownerName + QStringLiteral("</ownerName>"));
    writeLine(stream, QStringLiteral("<ownerEmail>") + what.ownerEmail + QStringLiteral("</ownerEmail>"));
    writeLine(stream, QStringLiteral("</head>"));
    writeLine(stream, QStringLiteral("<body>"));
    exportNode(catalogue.selectSingleNode(QStringLiteral("favoris")), what.structured, stream);
    writeLine(stream, QStringLiteral("</body>"));
    writeLine(stream, QStringLiteral("</opml>"));

    if (!AnsiText::holds(stream))
        throw RunTimeError::invalidCall();
    Files::write(path, AnsiText::toBytes(stream));
    return true;
}
