#include "platform/Files.h"
#include "platform/RunTimeError.h"
#include "platform/xml/XmlDocument.h"

#include <QElapsedTimer>
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
    void hostileDocumentsAreRefusedQuickly_data();
    void hostileDocumentsAreRefusedQuickly();
    void anExternalEntityIsNeverRead();
};

void tst_XmlDocument::absentUnreadableAndMalformedAreToldApart()
{
    QTemporaryDir folder;
    XmlDocument document;
    QCOMPARE(document.load(folder.filePath(QStringLiteral("none.xml"))), LoadResult::Absent);
    QCOMPARE(document.load(folder.path()), LoadResult::Unreadable);
    QCOMPARE(document.loadXml(QByteArray("<a><b></a>")), LoadResult::Malformed);
    QVERIFY(document.documentElement().isNull());
    QCOMPARE(document.loadXml(QByteArray()), LoadResult::Malformed);
    QCOMPARE(document.loadXml(QStringLiteral("<a é='1'/>")), LoadResult::Loaded);
    QCOMPARE(document.documentElement().attribute(QStringLiteral("é")), QStringLiteral("1"));
}

void tst_XmlDocument::aSaveKeepsWhatWasThere()
{
    const QByteArray before = "<?xml version=\"1.0\"?>\n<!-- kept -->\n<favoris other=\"1\">\n\t<dir name=\"é\"/>"
                              "<?pi x?><odd:feed xmlns:odd=\"urn:o\">a<![CDATA[<b>]]></odd:feed>\n</favoris>\n";
    XmlDocument document;
    QCOMPARE(document.loadXml(before), LoadResult::Loaded);
    XmlNode root = document.selectSingleNode(QStringLiteral("favoris"));
    QCOMPARE(root.childNodes().size(), std::size_t(3)); // white space isn't a child
    QCOMPARE(root.selectSingleNode(QStringLiteral("odd:feed")).text(), u"a<b>");
    root.setAttribute(QStringLiteral("other"), QStringLiteral("2"));
    root.setAttribute(QStringLiteral("new"), QStringLiteral("a\r\nb"));
    QByteArray expected = before;
    expected.replace("other=\"1\"", "other=\"2\" new=\"a&#13;&#10;b\"");
    QCOMPARE(document.toBytes(), expected);
}

void tst_XmlDocument::aDocumentKeepsItsEncoding()
{
    XmlDocument document;
    QCOMPARE(document.loadXml(QByteArray("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><a t=\"\xE9\"/>")),
             LoadResult::Loaded);
    document.documentElement().setAttribute(QStringLiteral("u"), QStringLiteral("è€"));
    QCOMPARE(document.toBytes(),
             QByteArray("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n<a t=\"\xE9\" u=\"\xE8&#8364;\"/>\n"));
}

void tst_XmlDocument::nodesMoveBetweenPlaces()
{
    XmlDocument document;
    QCOMPARE(document.loadXml(QByteArray("<r><a/><b/><c><d/></c></r>")), LoadResult::Loaded);
    XmlNode root = document.documentElement();
    const XmlNode c = root.selectSingleNode(QStringLiteral("c"));
    const XmlNode d = document.selectSingleNode(QStringLiteral("r/c/d"));
    QCOMPARE(d.parentNode().nodeName(), u"c");
    root.insertBefore(d, root.selectSingleNode(QStringLiteral("a")));
    XmlNode made = document.createElement(QStringLiteral("e"));
    made.setAttribute(QStringLiteral("k"), QStringLiteral("\"<&"));
    root.replaceChild(made, c);
    root.removeChild(root.selectSingleNode(QStringLiteral("b")));
    XmlDocument other;
    QCOMPARE(other.loadXml(QStringLiteral("<Bands count='1'><Band/></Bands>")), LoadResult::Loaded);
    root.appendChild(document.importNode(other.documentElement()));
    QCOMPARE(root.xml(), u"<r><d/><a/><e k=\"&quot;&lt;&amp;\"/><Bands count=\"1\"><Band/></Bands></r>");
    QVERIFY_EXCEPTION_THROWN(root.removeChild(c), RunTimeError); // it isn't there any more
}

void tst_XmlDocument::aMissingNodeRaisesTheErrorOfAMissingObject()
{
    XmlDocument document;
    QCOMPARE(document.loadXml(QByteArray("<a/>")), LoadResult::Loaded);
    XmlNode nothing = document.selectSingleNode(QStringLiteral("a/b"));
    QVERIFY(nothing.isNull());
    QVERIFY(document.selectSingleNode(QStringLiteral("b")).isNull());
    QVERIFY_EXCEPTION_THROWN(nothing.text(), RunTimeError);
    QVERIFY_EXCEPTION_THROWN(nothing.setAttribute(QStringLiteral("x"), QString()), RunTimeError);
    QVERIFY_EXCEPTION_THROWN(document.documentElement().requiredAttribute(QStringLiteral("x")), RunTimeError);
}

void tst_XmlDocument::charactersThatXmlCannotHoldAreLeftOut()
{
    XmlDocument document;
    QCOMPARE(document.loadXml(QByteArray("<a/>")), LoadResult::Loaded);
    document.documentElement().setAttribute(QStringLiteral("x"), QStringLiteral("a\x01\uFFFE b"));
    XmlDocument again;
    QCOMPARE(again.loadXml(document.toBytes()), LoadResult::Loaded);
    QCOMPARE(again.documentElement().attribute(QStringLiteral("x")), QStringLiteral("a b"));
}

void tst_XmlDocument::hostileDocumentsAreRefusedQuickly_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QByteArray laughs = "<!DOCTYPE a [<!ENTITY l0 \"lol\">";
    for (int i = 1; i < 12; ++i) {
        const QByteArray inner = "&l" + QByteArray::number(i - 1) + ";";
        laughs += "<!ENTITY l" + QByteArray::number(i) + " \"" + inner.repeated(10) + "\">";
    }
    QTest::newRow("entities that multiply") << laughs + "]><a>&l11;</a>";
    QTest::newRow("entities that multiply in an attribute") << laughs + "]><a x=\"&l11;\"/>";
    QByteArray nested = "<!DOCTYPE a [<!ENTITY % p0 \"<!ENTITY x 'y'>\">";
    for (int i = 1; i < 30; ++i) {
        const QByteArray inner = "&#37;p" + QByteArray::number(i - 1) + ";";
        nested += "<!ENTITY % p" + QByteArray::number(i) + " \"" + inner.repeated(10) + "\">";
    }
    QTest::newRow("parameter entities that multiply") << nested + "%p29;]><a>&x;</a>";
    QTest::newRow("an entity that holds itself") << QByteArray("<!DOCTYPE a [<!ENTITY e \"&e;\">]><a>&e;</a>");
    QTest::newRow("elements 200,000 deep") << QByteArray("<a>").repeated(200000) + QByteArray("</a>").repeated(200000);
    QTest::newRow("a declared encoding that is none") << QByteArray("<?xml version=\"1.0\" encoding=\"X-?\"?><a/>");
    QTest::newRow("bytes that aren't in the encoding") << QByteArray("<a>\xC3\x28</a>");
}

void tst_XmlDocument::hostileDocumentsAreRefusedQuickly()
{
    QFETCH(QByteArray, bytes);
    QElapsedTimer timer;
    timer.start();
    XmlDocument document;
    QCOMPARE(document.loadXml(bytes), LoadResult::Malformed);
    QVERIFY(timer.elapsed() < 5000);
}

void tst_XmlDocument::anExternalEntityIsNeverRead()
{
    QTemporaryDir folder;
    const QString secret = folder.filePath(QStringLiteral("secret.txt"));
    Files::write(secret, "secret");
    const QByteArray bytes = "<!DOCTYPE a [<!ENTITY e SYSTEM \"file://" + secret.toUtf8() +
                             "\"><!ENTITY % p SYSTEM \"file://" + secret.toUtf8() + "\">%p;]><a>[&e;]</a>";
    XmlDocument document;
    if (document.loadXml(bytes) == LoadResult::Loaded)
        QVERIFY(!document.documentElement().text().contains(QStringLiteral("secret")));
}

QTEST_GUILESS_MAIN(tst_XmlDocument)
#include "tst_XmlDocument.moc"
