#include "exchange/SearchEndpoints.h"

#include "tests/fixtures/TemporaryDataDirectory.h"

#include <QTest>

class SearchEndpointsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void endpointsComeFromEnvironmentFileOrPlaceholder()
    {
        const TemporaryDataDirectory data;
        const QString file = data.file(QStringLiteral("search-endpoints.ini"));
        QCOMPARE(SearchEndpoints::configured(file).newsisfree, QStringLiteral("http://newsisfree.example/"));
        data.write(QStringLiteral("search-endpoints.ini"),
                   "[services]\r\n# daypop=http://no/\r\n"
                   "DayPop = http://h/a?b=c,d;e/ \r\nfeedster=http://file/\r\n");
        qputenv("QUILLWIRE_SEARCH_FEEDSTER", "http://environment");
        const SearchEndpoints endpoints = SearchEndpoints::configured(file);
        qunsetenv("QUILLWIRE_SEARCH_FEEDSTER");
        QCOMPARE(endpoints.feedster, QStringLiteral("http://environment/"));
        QCOMPARE(endpoints.dayPop, QStringLiteral("http://h/a?b=c,d;e/"));
        QCOMPARE(endpoints.blogStreet, QStringLiteral("http://blogstreet.example/"));
    }
};

QTEST_APPLESS_MAIN(SearchEndpointsTest)
#include "tst_SearchEndpoints.moc"
