#include "controls/TabControl.h"
#include "core/FeedCatalogue.h"
#include "core/FeedTables.h"
#include "dialogs/frmProprietes.h"
#include "engine/feed/CachedFeed.h"
#include "platform/RunTimeError.h"
#include "support/clsDES.h"
#include "tests/fixtures/TemporaryDataDirectory.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>

namespace {

const QByteArray Feed =
    "<rss version=\"2.0\" xmlns:dc=\"http://purl.org/dc/elements/1.1/\" "
    "xmlns:content=\"http://purl.org/rss/1.0/modules/content/\"><channel><title>Titre</title><link>http://site/</link>"
    "<description>Deux\nlignes</description><language>fr</language><copyright>c</copyright>"
    "<managingEditor>ed</managingEditor><webMaster>wm</webMaster><ttl>45</ttl>"
    "<item><title>a</title><dc:creator>x</dc:creator><content:encoded>y</content:encoded></item></channel></rss>";

/// Feeds of the catalogue, with their table entries.
struct Feeds
{
    /// Adds a feed below the root and selects it.
    void subscribe(const QString &key, const QString &url)
    {
        if (!tree.root())
            tree.addRoot(QStringLiteral("root"), QStringLiteral("Favoris"), NodeImage::Root);
        selected = tree.addChild(tree.root(), key, QStringLiteral("Feed ") + key, NodeImage::Feed);
        selected->tag = url;
        tables.updatettl.Add(key, QStringLiteral("60"));
        tables.updatecache.Add(key, QStringLiteral("7"));
        tables.havecache.Add(key, QStringLiteral("1"));
    }

    FeedTree tree;
    FeedNodePtr selected;
    FeedTables tables;
    clsDES cipher;
};

} // namespace

class PropertiesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_feeds = std::make_unique<Feeds>();
        m_feeds->subscribe(QStringLiteral("3"), QStringLiteral("http://feed/3"));
        m_data.write(QStringLiteral("f.xml"), Feed);
        m_feed = std::make_shared<CachedFeed>();
        QCOMPARE(m_feed->Load(m_data.file(QStringLiteral("f.xml"))), LoadOk);
        make();
    }

    void cleanup() { m_form.reset(); }

    void whatIsKnownOfTheFeedIsShown()
    {
        QVERIFY(m_form->fillFrom());
        QStringList texts;
        for (const char *const name : {"txtTitle", "txtURL", "txtSite", "txtVersion", "txtLangue", "txtEditeur",
                                       "txtWebmaster", "txtCopyright", "txtMaj", "txtCache"})
            texts.append(text(name));
        QCOMPARE(texts.join(u'|'), QStringLiteral("Titre|http://feed/3|http://site/|RSS 2.0|fr|ed|wm|c|60|7"));
        QCOMPARE(longText("txtDescription"), QStringLiteral("Deux\nlignes"));
        QCOMPARE(longText("txtExtensions"), QStringLiteral("content\ndc\n"));
        QCOMPARE(m_form->findChild<TabControl *>(QStringLiteral("tstrProp"))->count(), 4);
        QVERIFY(!apply()->isEnabled());
    }

    void anUnsubscribedFeedShowsItsOwnPeriod()
    {
        m_feeds->selected = nullptr;
        make(true);
        QVERIFY(m_form->fillFrom());
        QCOMPARE(text("txtURL"), QStringLiteral("feed:http://typed/"));
        QCOMPARE(text("txtMaj"), QStringLiteral("45"));
        QVERIFY(!box("txtCache")->isEnabled() && !widget("UpDown2")->isEnabled());
        QVERIFY(noDel()->isHidden() && widget("lblCache")->isHidden());
        QVERIFY_EXCEPTION_THROWN(m_form->handleApply(), RunTimeError);
    }

    void retentionOpensAsAMagnitudeAndABox_data()
    {
        QTest::addColumn<QString>("stored");
        QTest::addColumn<QString>("shown"); // "": fails
        QTest::addColumn<bool>("never");
        QTest::newRow("days") << QStringLiteral("30") << QStringLiteral("30") << false;
        QTest::newRow("never") << QStringLiteral("-30") << QStringLiteral("30") << true;
        QTest::newRow("never is lost at zero") << QStringLiteral("-0") << QStringLiteral("0") << false;
        QTest::newRow("rounded") << QStringLiteral("-2.5") << QStringLiteral("2") << true;
        QTest::newRow("no number") << QStringLiteral("dix") << QString() << false;
        QTest::newRow("too large") << QStringLiteral("40000") << QString() << false;
        QTest::newRow("no magnitude") << QStringLiteral("-32768") << QString() << false;
    }

    void retentionOpensAsAMagnitudeAndABox()
    {
        QFETCH(QString, stored);
        QFETCH(QString, shown);
        QFETCH(bool, never);
        setRetention(stored);
        if (shown.isEmpty()) {
            QVERIFY_EXCEPTION_THROWN(m_form->fillFrom(), RunTimeError);
            return;
        }
        m_form->fillFrom();
        QCOMPARE(text("txtCache"), shown);
        QCOMPARE(noDel()->isChecked(), never);
        QCOMPARE(box("txtCache")->isEnabled(), !never);
        QCOMPARE(widget("UpDown2")->isEnabled(), !never);
    }

    void applyingWritesTheTables_data()
    {
        QTest::addColumn<QString>("days");
        QTest::addColumn<bool>("never");
        QTest::addColumn<QString>("stored");
        QTest::newRow("days") << QStringLiteral("12") << false << QStringLiteral("12");
        QTest::newRow("never") << QStringLiteral("12") << true << QStringLiteral("-12");
        QTest::newRow("never is lost at zero") << QStringLiteral("0") << true << QStringLiteral("0");
        QTest::newRow("any text stands") << QStringLiteral("douze") << false << QStringLiteral("douze");
        QTest::newRow("twice negative") << QStringLiteral("-3") << true << QStringLiteral("3");
        QTest::newRow("no number to negate") << QStringLiteral("sept") << true << QString();
    }

    void applyingWritesTheTables()
    {
        QFETCH(QString, days);
        QFETCH(bool, never);
        QFETCH(QString, stored);
        m_form->fillFrom();
        if (never)
            noDel()->click();
        QVERIFY(!apply()->isEnabled()); // the tick alone enables nothing
        box("txtCache")->setText(days);
        box("txtMaj")->setText(QStringLiteral("quatre"));
        box("txtUsername")->setText(QStringLiteral("x")); // credentials are never created
        if (stored.isEmpty()) {
            QVERIFY_EXCEPTION_THROWN(m_form->handleApply(), RunTimeError);
            return;
        }
        apply()->click();
        const QString key = QStringLiteral("3");
        QCOMPARE(m_feeds->tables.updatecache.Item(key), stored);
        QCOMPARE(m_feeds->tables.updatettl.Item(key), QStringLiteral("quatre"));
        QCOMPARE(m_feeds->tables.havecache.Item(key), QStringLiteral("0"));
        QCOMPARE(m_feeds->tables.usernames.Count() + m_feeds->tables.passwords.Count(), 0);
    }

    void credentialsAreShownAndStored()
    {
        setCredentials();
        m_form->fillFrom();
        auto *const tabs = m_form->findChild<TabControl *>(QStringLiteral("tstrProp"));
        QCOMPARE(tabs->count(), 5);
        QCOMPARE(tabs->tabKey(5), QStringLiteral("authentication"));
        QCOMPARE(text("txtUsername"), QStringLiteral("moi"));
        QCOMPARE(text("txtPassword"), QStringLiteral("secret"));
        QCOMPARE(box("txtPassword")->echoMode(), QLineEdit::Password);
        QVERIFY(!apply()->isEnabled());
        box("txtUsername")->setText(QStringLiteral("toi"));
        box("txtPassword")->setText(QStringLiteral("é€"));
        apply()->click();
        QCOMPARE(m_feeds->tables.usernames.Item(QStringLiteral("3")), QStringLiteral("toi"));
        QString stored = m_feeds->tables.passwords.Item(QStringLiteral("3"));
        QCOMPARE(m_feeds->cipher.DecryptString(stored, QStringLiteral("%%K9:Tm43"), true), QStringLiteral("é€"));
    }

    void applyingActsOnTheSelectedNodeWhateverItIs()
    {
        m_feeds->subscribe(QStringLiteral("9"), QStringLiteral("http://feed/9"));
        make(true);
        m_form->fillFrom();
        box("txtMaj")->setText(QStringLiteral("5"));
        m_form->handleApply();
        QCOMPARE(m_feeds->tables.updatettl.Item(QStringLiteral("9")), QStringLiteral("5"));
        QCOMPARE(m_feeds->tables.updatettl.Item(QStringLiteral("3")), QStringLiteral("60"));
        m_feeds->selected = m_feeds->tree.root(); // a key that no table knows
        QVERIFY_EXCEPTION_THROWN(m_form->handleApply(), RunTimeError);
    }

    void enterClosesAndEscapeDoesNot()
    {
        m_form->fillFrom();
        m_form->show();
        QTest::keyClick(m_form.get(), Qt::Key_Escape);
        QVERIFY(m_form->isVisible());
        box("txtMaj")->setText(QStringLiteral("5"));
        QTest::keyClick(box("txtMaj"), Qt::Key_Return);
        QVERIFY(!m_form->isVisible());
        QCOMPARE(m_feeds->tables.updatettl.Item(QStringLiteral("3")), QStringLiteral("60"));
    }

private:
    void make(bool openedByAddress = false)
    {
        m_form = std::make_unique<frmProprietes>(
            &m_window, frmProprietes::Port{m_feed, openedByAddress, QStringLiteral("feed:http://typed/"),
                                           [this] { return m_feeds->selected; }, m_feeds->tables, m_feeds->cipher});
    }
    QLineEdit *box(const char *name) const { return m_form->findChild<QLineEdit *>(QString::fromLatin1(name)); }
    QString text(const char *name) const { return box(name)->text(); }
    QString longText(const char *name) const
    {
        return m_form->findChild<QPlainTextEdit *>(QString::fromLatin1(name))->toPlainText();
    }
    QCheckBox *noDel() const { return m_form->findChild<QCheckBox *>(QStringLiteral("chkNoDel")); }
    QPushButton *apply() const { return m_form->findChild<QPushButton *>(QStringLiteral("cmdAppliquer")); }
    QWidget *widget(const char *name) const { return m_form->findChild<QWidget *>(QString::fromLatin1(name)); }
    void setRetention(const QString &days) const { m_feeds->tables.updatecache.Replace(QStringLiteral("3"), days); }
    void setCredentials() const
    {
        m_feeds->tables.usernames.Add(QStringLiteral("3"), QStringLiteral("moi"));
        m_feeds->tables.passwords.Add(
            QStringLiteral("3"), m_feeds->cipher.EncryptString(QStringLiteral("secret"),
                                                               FeedCatalogue::cipherKey(QStringLiteral("3")), true));
    }

    TemporaryDataDirectory m_data;
    QWidget m_window;
    std::unique_ptr<Feeds> m_feeds;
    std::shared_ptr<CachedFeed> m_feed;
    std::unique_ptr<frmProprietes> m_form;
};

QTEST_MAIN(PropertiesTest)
#include "tst_frmProprietes.moc"
