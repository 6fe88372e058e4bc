// SPDX-License-Identifier: GPL-3.0-or-later

#include "exchange/SearchAddress.h"

#include "platform/Literals.h"
#include "tests/fixtures/TemporaryDataDirectory.h"

#include <QTest>

using namespace SearchAddress;

class SearchEndpointsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void endpointsComeFromEnvironmentFileOrPlaceholder()
    {
        const TemporaryDataDirectory data;
        const QString file = data.file(u"search-endpoints.ini"_s);
        const auto told = [&file] {
            const SearchEndpoints found = SearchEndpoints::configured(file);
            return QStringList{found.feedster, found.dayPop, found.syndic8, found.newsisfree, found.blogStreet}.join(
                u' ');
        };
        QCOMPARE(told(), u"http://feedster.example/ http://daypop.example/ http://syndic8.example/ "
                         "http://newsisfree.example/ http://blogstreet.example/"_s);
        data.write(u"search-endpoints.ini"_s,
                   "[services]\r\n#daypop=http://no/\n;syndic8=http://no/\n=x\nblogstreet=\n"
                   "DayPop = http://h/a?b=c,d;e/ \r\nfeedster=http://file/\r\nsyndic8=http://s");
        qputenv("QUILLWIRE_SEARCH_FEEDSTER", " http://environment");
        const QString found = told();
        qunsetenv("QUILLWIRE_SEARCH_FEEDSTER");
        QCOMPARE(found, u"http://environment/ http://h/a?b=c,d;e/ http://s/ http://newsisfree.example/ "
                        "http://blogstreet.example/"_s);
    }

    void addressesAreJoinedAsTheyAre()
    {
        const SearchEndpoints at{u"f/"_s, u"d/"_s, u"s/"_s, u"n/"_s, u"b/"_s};
        const QList<QPair<QString, QString>> rows = {
            {feedster(at, {.words = u"a b&c"_s, .count = u"5"_s}),
             u"f/search.php?hl=en&ie=UTF-8&q=a+b&c&sort=date&content=full&type=rss&limit=5"_s},
            {feedster(at, {u"é"_s, false, true, u" x"_s}),
             u"f/search.php?hl=en&ie=UTF-8&q=é&sort=relevance&category=blog&content=full&type=rss&limit=+x"_s},
            {dayPop(at, {.words = u"a b"_s, .kind = u"n"_s, .language = {}, .count = u"9"_s}),
             u"d/search?q=a+b&sort=date&t=n&o=rss&c=9"_s},
            {dayPop(at, {u"a"_s, false, true, u"w"_s, u"fr"_s, u"1"_s}), u"d/search?q=a&ts=true&t=w&ln=fr&o=rss&c=1"_s},
            {web(at, WebService::Syndic8, u"a b"_s), u"s/feedlist.php?ShowStatus=all&ShowMatch=a+b"_s},
            {web(at, WebService::Newsisfree, u"a b"_s), u"n/siets/?type=search&search=Search&query=a+b"_s},
            {web(at, WebService::BlogStreet, u"a b"_s), u"b/bin/rsssearch.cgi?x=0&y=0&period=0&q=a+b"_s}};
        for (const auto &[address, expected] : rows)
            QCOMPARE(address, expected);
    }
};

QTEST_APPLESS_MAIN(SearchEndpointsTest)
#include "tst_SearchEndpoints.moc"
