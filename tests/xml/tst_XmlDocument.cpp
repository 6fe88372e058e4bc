// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/Files.h"
#include "platform/Literals.h"
#include "platform/xml/XmlDocument.h"
#include "tests/fixtures/RunTimeErrors.h"

#include <QTemporaryDir>
#include <QTest>

#include <functional>

using LoadResult = XmlDocument::LoadResult;

class tst_XmlDocument : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void absentUnreadableAndMalformedAreToldApart();
    void aSaveKeepsWhatWasThere();
    void aDocumentKeepsItsEncoding();
    void nodesMoveBetweenPlaces();
    void nodesOfEveryKindTellWhatTheyAre();
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
    QCOMPARE(errorOf([&] { root.removeChild(c); }), 5); // it isn't there any more
    QCOMPARE(errorOf([&] { root.insertBefore(made, c); }), 5);
    QCOMPARE(errorOf([&] { root.replaceChild(c, c); }), 5);
}

void tst_XmlDocument::nodesOfEveryKindTellWhatTheyAre()
{
    XmlDocument document;
    QCOMPARE(document.loadXml(QByteArray(
                 "<a xmlns:n='u' n:k='1' k='2'><!--c--><n:b k='3'>x&amp;<c/>y</n:b> <b/>t<![CDATA[d]]><?p i?>"
                 "<b><d/></b></a>")),
             LoadResult::Loaded);
    const XmlNode root = document.documentElement();
    QStringList told;
    for (const XmlNode &node : root.childNodes())
        told += node.nodeName() + (node.isElement() ? u" element "_s : u" "_s) + node.text();
    QCOMPARE(told.join(u", "_s),
             u"#comment c, n:b element x&y, b element , #text t, #cdata-section d, p i, b element "_s);
    QCOMPARE(root.selectNodes(u"b"_s).size(), std::size_t(2));
    QCOMPARE(root.attribute(u"n:k"_s).value() + root.attribute(u"k"_s).value(), u"12"_s);
    QVERIFY(!root.attribute(u"m:k"_s) && !root.attribute(u":k"_s) && !root.attribute(u"n:j"_s));
    QVERIFY(!root.childNodes()[0].attribute(u"k"_s) && root.childNodes()[1].attribute(u"k"_s) == u"3"_s);
    QVERIFY(root.parentNode().isNull() && document.selectSingleNode(u"a/b/d"_s).isNull());
    QCOMPARE(document.selectSingleNode(u"a/n:b/c"_s).parentNode().nodeName(), u"n:b"_s);
    for (XmlNode &absent : root.childNodes()) {
        absent = absent.selectSingleNode(u"absent"_s);
        QVERIFY(!absent && !absent.isElement());
        for (const auto &use : std::initializer_list<std::function<void()>>{
                 [&] { absent.text(); }, [&] { absent.nodeName(); }, [&] { absent.childNodes(); },
                 [&] { absent.xml(); }, [&] { absent.setAttribute(u"x"_s, {}); }, [&] { absent.attribute(u"x"_s); },
                 [&] { absent.parentNode(); }, [&] { absent.selectNodes(u"x"_s); }, [&] { absent.appendChild(root); },
                 [&] { document.importNode(absent); }, [&] { root.requiredAttribute(u"x"_s); },
                 [&] { root.childNodes()[0].setAttribute(u"x"_s, {}); }})
            QCOMPARE(errorOf(use), 91);
    }
    QCOMPARE(root.requiredAttribute(u"k"_s), u"2"_s);
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
        QCOMPARE(errorOf([&] { document.save(path); }), 57);
        QCOMPARE(Files::read(path).bytes, QByteArray("<old/>"));
    }
}

QTEST_GUILESS_MAIN(tst_XmlDocument)
#include "tst_XmlDocument.moc"
