// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/feed/FeedDump.h"
#include "tests/feed/FeedFiles.h"
#include "tests/fixtures/Golden.h"

#include <QHash>
#include <QRegularExpression>
#include <QSet>
#include <QTest>

#include <algorithm>

namespace {

/// Where a text stands in a document, as data/fields.txt says it.
struct Place
{
    QString scope; ///< "ROOT", "CHANNEL", "ITEM", or "ATTRIBUTES" for those of the channel's own
    QString element;
    QString child;
    QString attribute;

    Place(QString text, bool ofItem) : scope(ofItem ? u"ITEM"_s : u"CHANNEL"_s)
    {
        text.remove(u'+'); // what is joined shows in what is told
        if (text.startsWith(u'/')) {
            scope = u"ROOT"_s;
            text.remove(0, 1);
        }
        attribute = text.section(u'@', 1);
        element = text.section(u'@', 0, 0).section(u'/', 0, 0);
        child = text.section(u'@', 0, 0).section(u'/', 1);
        if (element.isEmpty())
            scope = u"ATTRIBUTES"_s;
    }

    QString elementName() const { return scope + u' ' + element.section(u'[', 0, 0); }
    QString name() const { return scope + u' ' + element + u'/' + child + u'@' + attribute; }
};

struct Field
{
    QString name;
    QList<Place> places; ///< in order of preference
};

struct Format
{
    QString name;
    QString version;
    QString document;
    QList<Field> fields = {};

    QList<Place> places() const
    {
        QList<Place> all;
        for (const Field &field : fields)
            all += field.places;
        return all;
    }
};

QList<Format> readTable(const QByteArray &file)
{
    QList<Format> formats;
    const QByteArray table = Files::read(QStringLiteral(TEST_DATA_DIR "/") + QLatin1String(file)).bytes;
    for (const QString &line : QString::fromUtf8(table).split(u'\n')) {
        QStringList words = line.split(u' ');
        const QString name = words.takeFirst();
        if (name == "format"_L1) {
            formats.append({words[0], words[1], words.mid(2).join(u' ')});
        } else if (!name.isEmpty() && name != "#"_L1) {
            Field field{name, {}};
            for (const QString &word : words)
                field.places.append(Place(word, name.startsWith("Item"_L1)));
            formats.last().fields.append(field);
        }
    }
    return formats;
}

/// A document in which places hold a text each, their own name where it isn't to be a number.
class Filled
{
public:
    /// The first `empty` places hold nothing. With two copies every element is followed by one of its kind.
    Filled(const Format &format, const QList<Place> &places, qsizetype empty = 0, int copies = 1)
        : m_format(format), m_places(places), m_copies(copies)
    {
        for (const Place &place : places) {
            const bool isNumber =
                place.child == "width"_L1 || place.child == "height"_L1 || place.attribute == "length"_L1;
            const QString name = (place.scope + u'/' + place.element + place.child + place.attribute).toLower();
            const QString text = isNumber ? QString::number(100 + m_texts.size()) : u"http://"_s + name;
            m_texts.insert(place.name(), m_texts.size() < empty
                                             ? QString()
                                             : QString(text).remove(QRegularExpression(u"[[\\]'=]"_s)));
        }
    }

    QByteArray document() const
    {
        QHash<QString, QString> parts{{u"NAMESPACES"_s,
                                       u"xmlns:r='http://www.w3.org/1999/02/22-rdf-syntax-ns#'"
                                       " xmlns:dc='http://purl.org/dc/elements/1.1/'"
                                       " xmlns:content='http://purl.org/rss/1.0/modules/content/'"
                                       " xmlns:m='http://search.yahoo.com/mrss/'"
                                       " xmlns:itunes='http://www.itunes.com/dtds/podcast-1.0.dtd'"_s}};
        QStringList done;
        for (const Place &place : m_places) {
            const QString element = place.scope + place.element;
            if (place.element.isEmpty())
                parts[place.scope] += attributeTag(place, 0);
            else if (!done.contains(element))
                for (int copy = 0; copy < m_copies; ++copy)
                    parts[place.scope] += elementTags(place, copy);
            done.append(element);
        }
        QString text = m_format.document;
        for (const char *part : {"NAMESPACES", "ATTRIBUTES", "ROOT", "CHANNEL", "ITEM"})
            text.replace(QLatin1String(part), parts.value(QLatin1String(part)));
        return text.toUtf8();
    }

private:
    QString copyOf(const Place &place, int copy) const
    {
        const QString text = m_texts.value(place.name());
        return text.isEmpty() ? text : text + QString(copy, u'9');
    }

    QString attributeTag(const Place &place, int copy) const
    {
        return u' ' + place.attribute + u"='"_s + copyOf(place, copy) + u'\'';
    }

    /// The element of the place, with all that other places put into it.
    QString elementTags(const Place &first, int copy) const
    {
        const QString local = first.element.section(u'[', 0, 0);
        QString attributes = first.element.mid(local.size());
        attributes.replace(u'[', u' ').remove(u']');
        QString content;
        for (const Place &place : m_places)
            if (place.scope != first.scope || place.element != first.element)
                continue;
            else if (!place.attribute.isEmpty())
                attributes += attributeTag(place, copy);
            else if (place.child.isEmpty())
                content += copyOf(place, copy);
            else
                content += u'<' + place.child + u'>' + copyOf(place, copy) + u"</"_s + place.child + u'>';
        return u'<' + local + attributes + u'>' + content + u"</"_s + local + u'>';
    }

    const Format &m_format;
    QList<Place> m_places;
    int m_copies;
    QHash<QString, QString> m_texts;
};

} // namespace

/// That every field of every format is read from the places that data/fields.txt names, in their order, and from no
/// other: data/fields.expected says what each of the documents that are made of it tells.
class tst_FeedFields : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyFieldComesFromItsPlaces_data()
    {
        QTest::addColumn<QByteArray>("table");
        QTest::addColumn<FeedRules>("rules");
        QTest::newRow("usual formats") << QByteArray("fields") << FeedRules();
        QTest::newRow("all formats") << QByteArray("fields-all") << FeedRules{allFormats()};
    }

    void everyFieldComesFromItsPlaces()
    {
        QFETCH(const QByteArray, table);
        QFETCH(const FeedRules, rules);
        const FeedFiles files;
        const QList<Format> formats = readTable(table + ".txt");
        QCOMPARE(formats.size(), 5);
        QString told;
        for (const Format &format : formats) {
            const auto row = [&](const QString &name, const Filled &filled) {
                CachedFeed feed({}, rules), feedOfAll({}, {allFormats()});
                QCOMPARE(feed.Load(files.write("feed.xml", filled.document())), LoadOk);
                QCOMPARE(feedOfAll.Load(feed.Path()), LoadOk);
                QCOMPARE(FeedDump::all(feedOfAll), FeedDump::all(feed));
                told += format.name + u", "_s + name + u": "_s + FeedDump::all(feed).join(u" | "_s) + u'\n';
            };
            for (const Field &field : format.fields) {
                QList<Place> reversed = field.places;
                std::ranges::reverse(reversed);
                for (qsizetype i = 0; i < field.places.size(); ++i)
                    row(u"%1 of place %2"_s.arg(field.name).arg(i), Filled(format, {field.places[i]}));
                for (qsizetype i = 0; reversed.size() > 1 && i < reversed.size(); ++i)
                    row(u"%1 of all places, %2 of them empty"_s.arg(field.name).arg(i),
                        Filled(format, field.places, i));
                if (reversed.size() > 1)
                    row(field.name + u" of all places, the last first"_s, Filled(format, reversed));
            }
            QList<Place> all = format.places();
            row(u"all fields"_s, Filled(format, all));
            row(u"all fields, each element twice"_s, Filled(format, all, 0, 2));
            std::ranges::reverse(all);
            row(u"all fields, the last first"_s, Filled(format, all));
            QList<Place> foreign;
            QSet<QString> names;
            for (const Place &known : all)
                names.insert(known.elementName());
            for (const Format &other : formats)
                for (const Place &place : other.places())
                    if (!names.contains(place.elementName()) && !names.contains(place.name())) {
                        foreign.append(place);
                        names.insert(place.name());
                    }
            row(u"the places of other formats"_s, Filled(format, foreign));
        }
        QCOMPARE(differenceFromGolden(QLatin1String(table) + ".expected"_L1, told), QString());
    }
};

QTEST_GUILESS_MAIN(tst_FeedFields)
#include "tst_FeedFields.moc"
