// SPDX-License-Identifier: GPL-3.0-or-later

#include "exchange/OpmlDocument.h"
#include "exchange/OpmlWriter.h"

#include "tests/fixtures/Golden.h"
#include "tests/fixtures/RunTimeErrors.h"
#include "tests/fixtures/TemporaryDataDirectory.h"
#include "tests/fixtures/TextCases.h"

#include <QTest>

class OpmlTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    /// Each catalogue without its folders, as it is unless asked for, and with them, and what is read back of that.
    void theFileHoldsTheLinesThatAreDueAndIsReadBack()
    {
        QString told;
        for (const TextCase &each : readCases(u"catalogues.txt"_s))
            for (const bool structured : {false, true}) {
                m_data.write(u"out.opml"_s, QByteArray(5000, 'x'));
                m_data.write(u"feeds.xml"_s, each.documents.first());
                OpmlExport what{m_data.file(u"feeds.xml"_s), u"R D \U0001F600"_s + QChar(0xD800), u"Camille"_s,
                                u"c@h"_s};
                if (structured)
                    what.structured = true;
                QVERIFY(writeOpml(what, m_data.file(u"out.opml"_s)));
                const QByteArray written = m_data.read(u"out.opml"_s);
                QCOMPARE(written.count('\n'), written.count("\r\n"));
                told +=
                    u"=== "_s + each.name + u'\n' + QString::fromLatin1(written).remove(u'\r') + list(u"out.opml"_s);
            }
        QCOMPARE(differenceFromGolden(u"catalogues.expected"_s, told), QString());
    }

    void anOldFileStandsWhenTheExportFails()
    {
        const auto write = [this](const QString &name) {
            return writeOpml({m_data.file(u"feeds.xml"_s), {}, {}, {}}, m_data.file(name));
        };
        m_data.write(u"out.opml"_s, "old");
        for (const char *catalogue : {"<favoris><feed name=\"A\"/></favoris>", "<feeds/>"}) {
            m_data.write(u"feeds.xml"_s, catalogue);
            QCOMPARE(errorOf([&] { write(u"out.opml"_s); }), 91);
        }
        m_data.write(u"feeds.xml"_s, "<favoris>");
        QVERIFY(!write(u"out.opml"_s));
        QCOMPARE(m_data.read(u"out.opml"_s), QByteArray("old"));
        m_data.write(u"feeds.xml"_s, "<favoris/>");
        QCOMPARE(errorOf([&] { write(u"none/out.opml"_s); }), 76);
    }

    void listsOfOtherReadersAreRead()
    {
        QString told;
        for (const TextCase &each : readCases(u"lists.txt"_s)) {
            m_data.write(u"in.opml"_s, each.documents.first());
            told += u"=== "_s + each.name + u'\n' + list(u"in.opml"_s);
        }
        const QString wide =
            u"\uFEFF<opml><head><title/></head><body><outline text='日本' xmlUrl='u'/></body></opml>"_s;
        m_data.write(u"in.opml"_s, QByteArray(reinterpret_cast<const char *>(wide.utf16()), wide.size() * 2));
        told += list(u"in.opml"_s) + list(u"absent"_s);
        QCOMPARE(differenceFromGolden(u"lists.expected"_s, told), QString());
        OpmlDocument document;
        QVERIFY(!document.loadXml("<opml>") && document.loadXml("<opml><body><outline/></body></opml>"));
        QCOMPARE(document.description(0), u"/"_s);
        for (const int position : {-1, 1})
            QCOMPARE(errorOf([&] { document.description(position); }), 91);
    }

private:
    /// What is read of the file, a line a feed.
    QString list(const QString &name) const
    {
        OpmlDocument document;
        if (!document.load(m_data.file(name)))
            return document.list() ? u"a list of nothing\n"_s : u"not read\n"_s;
        const auto found = document.list();
        if (!found)
            return u"no list\n"_s;
        QString told = u"\""_s + found->title + u"\"\n"_s;
        for (const OpmlDocument::Feed &feed : found->feeds)
            told += u"%1 \"%2\" \"%3\" \"%4\"\n"_s.arg(feed.position)
                        .arg(feed.text, feed.address, document.description(feed.position));
        return told;
    }

    TemporaryDataDirectory m_data;
};

QTEST_APPLESS_MAIN(OpmlTest)
#include "tst_Opml.moc"
