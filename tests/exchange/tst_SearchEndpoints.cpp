// SPDX-License-Identifier: GPL-3.0-or-later

#include "exchange/SearchEndpoints.h"

#include "platform/Literals.h"
#include "tests/fixtures/TemporaryDataDirectory.h"

#include <QTest>

class SearchEndpointsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void endpointsComeFromEnvironmentFileOrPlaceholder()
    {
        const TemporaryDataDirectory data;
        const QString file = data.file(u"search-endpoints.ini"_s);
        QCOMPARE(SearchEndpoints::configured(file).newsisfree, u"http://newsisfree.example/"_s);
        data.write(u"search-endpoints.ini"_s, "[services]\r\n# daypop=http://no/\r\n"
                                              "DayPop = http://h/a?b=c,d;e/ \r\nfeedster=http://file/\r\n");
        qputenv("QUILLWIRE_SEARCH_FEEDSTER", "http://environment");
        const SearchEndpoints endpoints = SearchEndpoints::configured(file);
        qunsetenv("QUILLWIRE_SEARCH_FEEDSTER");
        QCOMPARE(endpoints.feedster, u"http://environment/"_s);
        QCOMPARE(endpoints.dayPop, u"http://h/a?b=c,d;e/"_s);
        QCOMPARE(endpoints.blogStreet, u"http://blogstreet.example/"_s);
    }
};

QTEST_APPLESS_MAIN(SearchEndpointsTest)
#include "tst_SearchEndpoints.moc"
