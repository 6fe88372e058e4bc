// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/Files.h"
#include "platform/Literals.h"
#include "platform/RunTimeError.h"
#include "platform/xml/XmlDocument.h"

#include <QTemporaryDir>
#include <QTest>

using LoadResult = XmlDocument::LoadResult;

class tst_XmlDocument : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void absentUnreadableAndMalformedAreToldApart();
    void aSaveKeepsWhatWasThere();
    void aDocumentKeepsItsEncoding();
    void nodesMoveBetweenPlaces();
    void aMissingNodeRaisesTheErrorOfAMissingObject();
    void charactersThatXmlCannotHoldAreLeftOut();
    void whatDoesNotReadBackTakesNoPlace();
};

void tst_XmlDocument::absentUnreadableAndMalformedAreToldApart()
{
    QTemporaryDir folder;
    XmlDocument document;
    QCOMPARE(document.load(folder.filePath(u"none.xml"_s)), LoadResult::Absent);
    QCOMPARE(document.load(folder.path()), LoadResult::Unreadable);
    QCOMPARE(document.loadXml(QByteArray("<a><b></a>")), LoadResult::Malformed);
    QVERIFY(document.documentElement().isNull());
    QCOMPARE(document.loadXml(QByteArray()), LoadResult::Malformed);
    QCOMPARE(document.loadXml(u"<a é='1'/>"_s), LoadResult::Loaded);
    QCOMPARE(document.documentElement().attribute(u"é"_s), u"1"_s);
}

void tst_XmlDocument::aSaveKeepsWhatWasThere()
{
    const QByteArray before = "<?xml version=\"1.0\"?>\n<!-- kept -->\n<favoris other=\"1\">\n\t<dir name=\"é\"/>"
                              "<?pi x?><odd:feed xmlns:odd=\"urn:o\">a<![CDATA[<b>]]></odd:feed>\n</favoris>\n";
    XmlDocument document;
    QCOMPARE(document.loadXml(before), LoadResult::Loaded);
    XmlNode root = document.selectSingleNode(u"favoris"_s);
    QCOMPARE(root.childNodes().size(), std::size_t(3)); // white space isn't a child
    QCOMPARE(root.selectSingleNode(u"odd:feed"_s).text(), u"a<b>");
    root.setAttribute(u"other"_s, u"2"_s);
    root.setAttribute(u"new"_s, u"a\r\nb"_s);
    QByteArray expected = before;
    expected.replace("other=\"1\"", "other=\"2\" new=\"a&#13;&#10;b\"");
    QCOMPARE(document.toBytes(), expected);
}

void tst_XmlDocument::aDocumentKeepsItsEncoding()
{
    XmlDocument document;
    QCOMPARE(document.loadXml(QByteArray("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><a t=\"\xE9\"/>")),
             LoadResult::Loaded);
    document.documentElement().setAttribute(u"u"_s, u"è€"_s);
    QCOMPARE(document.toBytes(),
             QByteArray("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n<a t=\"\xE9\" u=\"\xE8&#8364;\"/>\n"));
}

void tst_XmlDocument::nodesMoveBetweenPlaces()
{
    XmlDocument document;
    QCOMPARE(document.loadXml(QByteArray("<r><a/><b/><c><d/></c></r>")), LoadResult::Loaded);
    XmlNode root = document.documentElement();
    const XmlNode c = root.selectSingleNode(u"c"_s);
    const XmlNode d = document.selectSingleNode(u"r/c/d"_s);
    QCOMPARE(d.parentNode().nodeName(), u"c");
    root.insertBefore(d, root.selectSingleNode(u"a"_s));
    XmlNode made = document.createElement(u"e"_s);
    made.setAttribute(u"k"_s, u"\"<&"_s);
    root.replaceChild(made, c);
    root.removeChild(root.selectSingleNode(u"b"_s));
    XmlDocument other;
    QCOMPARE(other.loadXml(u"<Bands count='1'><Band/></Bands>"_s), LoadResult::Loaded);
    root.appendChild(document.importNode(other.documentElement()));
    QCOMPARE(root.xml(), u"<r><d/><a/><e k=\"&quot;&lt;&amp;\"/><Bands count=\"1\"><Band/></Bands></r>");
    QVERIFY_EXCEPTION_THROWN(root.removeChild(c), RunTimeError); // it isn't there any more
}

void tst_XmlDocument::aMissingNodeRaisesTheErrorOfAMissingObject()
{
    XmlDocument document;
    QCOMPARE(document.loadXml(QByteArray("<a/>")), LoadResult::Loaded);
    XmlNode nothing = document.selectSingleNode(u"a/b"_s);
    QVERIFY(nothing.isNull());
    QVERIFY(document.selectSingleNode(u"b"_s).isNull());
    QVERIFY_EXCEPTION_THROWN(nothing.text(), RunTimeError);
    QVERIFY_EXCEPTION_THROWN(nothing.setAttribute(u"x"_s, QString()), RunTimeError);
    QVERIFY_EXCEPTION_THROWN(document.documentElement().requiredAttribute(u"x"_s), RunTimeError);
}

void tst_XmlDocument::charactersThatXmlCannotHoldAreLeftOut()
{
    XmlDocument document;
    QCOMPARE(document.loadXml(QByteArray("<a/>")), LoadResult::Loaded);
    document.documentElement().setAttribute(u"x"_s, u"a\x01\uFFFE b"_s);
    XmlDocument again;
    QCOMPARE(again.loadXml(document.toBytes()), LoadResult::Loaded);
    QCOMPARE(again.documentElement().attribute(u"x"_s), u"a b"_s);
}

void tst_XmlDocument::whatDoesNotReadBackTakesNoPlace()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"state.xml"_s);
    Files::write(path, "<old/>");
    for (const char *encoding : {"UTF-8", "ISO-8859-1"}) {
        XmlDocument document;
        QCOMPARE(document.loadXml("<?xml version=\"1.0\" encoding=\"" + QByteArray(encoding) + "\"?><a/>"),
                 LoadResult::Loaded);
        document.documentElement().setAttribute(u"x"_s, QString(11000000, u'x'));
        QVERIFY_EXCEPTION_THROWN(document.save(path), RunTimeError);
        QCOMPARE(Files::read(path).bytes, QByteArray("<old/>"));
    }
}

QTEST_GUILESS_MAIN(tst_XmlDocument)
#include "tst_XmlDocument.moc"
