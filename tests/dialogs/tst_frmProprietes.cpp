// SPDX-License-Identifier: GPL-3.0-or-later

#include "controls/TabControl.h"
#include "core/FeedCatalogue.h"
#include "core/FeedTables.h"
#include "dialogs/frmProprietes.h"
#include "engine/feed/CachedFeed.h"
#include "platform/Literals.h"
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
            tree.addRoot(u"root"_s, u"Favoris"_s, NodeImage::Root);
        selected = tree.addChild(tree.root(), key, u"Feed "_s + key, NodeImage::Feed);
        selected->tag = url;
        tables.updatettl.Add(key, u"60"_s);
        tables.updatecache.Add(key, u"7"_s);
        tables.havecache.Add(key, u"1"_s);
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
        m_feeds->subscribe(u"3"_s, u"http://feed/3"_s);
        m_data.write(u"f.xml"_s, Feed);
        m_feed = std::make_shared<CachedFeed>();
        QCOMPARE(m_feed->Load(m_data.file(u"f.xml"_s)), LoadOk);
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
        QCOMPARE(texts.join(u'|'), u"Titre|http://feed/3|http://site/|RSS 2.0|fr|ed|wm|c|60|7"_s);
        QCOMPARE(longText("txtDescription"), u"Deux\nlignes"_s);
        QCOMPARE(longText("txtExtensions"), u"content\ndc\n"_s);
        QCOMPARE(m_form->findChild<TabControl *>(u"tstrProp"_s)->count(), 4);
        QVERIFY(!apply()->isEnabled());
    }

    void anUnsubscribedFeedShowsItsOwnPeriod()
    {
        m_feeds->selected = nullptr;
        make(true);
        QVERIFY(m_form->fillFrom());
        QCOMPARE(text("txtURL"), u"feed:http://typed/"_s);
        QCOMPARE(text("txtMaj"), u"45"_s);
        QVERIFY(!box("txtCache")->isEnabled() && !widget("UpDown2")->isEnabled());
        QVERIFY(noDel()->isHidden() && widget("lblCache")->isHidden());
        QVERIFY_EXCEPTION_THROWN(m_form->handleApply(), RunTimeError);
    }

    void retentionOpensAsAMagnitudeAndABox_data()
    {
        QTest::addColumn<QString>("stored");
        QTest::addColumn<QString>("shown"); // "": fails
        QTest::addColumn<bool>("never");
        QTest::newRow("days") << u"30"_s << u"30"_s << false;
        QTest::newRow("never") << u"-30"_s << u"30"_s << true;
        QTest::newRow("never is lost at zero") << u"-0"_s << u"0"_s << false;
        QTest::newRow("rounded") << u"-2.5"_s << u"2"_s << true;
        QTest::newRow("no number") << u"dix"_s << QString() << false;
        QTest::newRow("too large") << u"40000"_s << QString() << false;
        QTest::newRow("no magnitude") << u"-32768"_s << QString() << false;
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
        QTest::newRow("days") << u"12"_s << false << u"12"_s;
        QTest::newRow("never") << u"12"_s << true << u"-12"_s;
        QTest::newRow("never is lost at zero") << u"0"_s << true << u"0"_s;
        QTest::newRow("any text stands") << u"douze"_s << false << u"douze"_s;
        QTest::newRow("twice negative") << u"-3"_s << true << u"3"_s;
        QTest::newRow("no number to negate") << u"sept"_s << true << QString();
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
        box("txtMaj")->setText(u"4"_s);
        box("txtUsername")->setText(u"x"_s); // credentials are never created
        if (stored.isEmpty()) {
            QVERIFY_EXCEPTION_THROWN(m_form->handleApply(), RunTimeError);
            return;
        }
        apply()->click();
        const QString key = u"3"_s;
        QCOMPARE(m_feeds->tables.updatecache.Item(key), stored);
        QCOMPARE(m_feeds->tables.updatettl.Item(key), u"4"_s);
        QCOMPARE(m_feeds->tables.havecache.Item(key), u"0"_s);
        QCOMPARE(m_feeds->tables.usernames.Count() + m_feeds->tables.passwords.Count(), 0);
    }

    void aPeriodThatIsNoWholeNumberOf16BitsIsNotStored_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<bool>("stored");
        for (const char *const stored : {"4", "-32768", "32767", "0", " 90 ", "6e1"})
            QTest::newRow(stored) << QString::fromLatin1(stored) << true;
        for (const char *const refused : {"quatre", "", "4,5", "4.5", "32768", "-32769", "1e400", "60 min"})
            QTest::newRow(refused) << QString::fromLatin1(refused) << false;
    }

    void aPeriodThatIsNoWholeNumberOf16BitsIsNotStored()
    {
        QFETCH(QString, typed);
        QFETCH(bool, stored);
        m_form->fillFrom();
        for (const char *const first : {"", "30"}) { // what an earlier "Appliquer" stored is the old value then
            if (*first) {
                box("txtMaj")->setText(QString::fromLatin1(first));
                apply()->click();
            }
            const QString old = text("txtMaj");
            box("txtMaj")->setText(typed);
            box("txtCache")->setText(u"12"_s);
            apply()->click();
            QCOMPARE(m_feeds->tables.updatettl.Item(u"3"_s), stored ? typed : old);
            QCOMPARE(text("txtMaj"), stored ? typed : old);
            QVERIFY(!apply()->isEnabled());
            QCOMPARE(m_feeds->tables.updatecache.Item(u"3"_s), u"12"_s); // the rest is applied
        }
    }

    void credentialsAreShownAndStored()
    {
        setCredentials();
        m_form->fillFrom();
        auto *const tabs = m_form->findChild<TabControl *>(u"tstrProp"_s);
        QCOMPARE(tabs->count(), 5);
        QCOMPARE(tabs->tabKey(5), u"authentication"_s);
        QCOMPARE(text("txtUsername"), u"moi"_s);
        QCOMPARE(text("txtPassword"), u"secret"_s);
        QCOMPARE(box("txtPassword")->echoMode(), QLineEdit::Password);
        QVERIFY(!apply()->isEnabled());
        box("txtUsername")->setText(u"toi"_s);
        box("txtPassword")->setText(u"é€"_s);
        apply()->click();
        QCOMPARE(m_feeds->tables.usernames.Item(u"3"_s), u"toi"_s);
        QString stored = m_feeds->tables.passwords.Item(u"3"_s);
        QCOMPARE(m_feeds->cipher.DecryptString(stored, u"%%K9:Tm43"_s, true), u"é€"_s);
    }

    void applyingActsOnTheSelectedNodeWhateverItIs()
    {
        m_feeds->subscribe(u"9"_s, u"http://feed/9"_s);
        make(true);
        m_form->fillFrom();
        box("txtMaj")->setText(u"5"_s);
        m_form->handleApply();
        QCOMPARE(m_feeds->tables.updatettl.Item(u"9"_s), u"5"_s);
        QCOMPARE(m_feeds->tables.updatettl.Item(u"3"_s), u"60"_s);
        m_feeds->selected = m_feeds->tree.root(); // a key that no table knows
        QVERIFY_EXCEPTION_THROWN(m_form->handleApply(), RunTimeError);
    }

    void enterClosesAndEscapeDoesNot()
    {
        m_form->fillFrom();
        m_form->show();
        QTest::keyClick(m_form.get(), Qt::Key_Escape);
        QVERIFY(m_form->isVisible());
        box("txtMaj")->setText(u"5"_s);
        QTest::keyClick(box("txtMaj"), Qt::Key_Return);
        QVERIFY(!m_form->isVisible());
        QCOMPARE(m_feeds->tables.updatettl.Item(u"3"_s), u"60"_s);
    }

private:
    void make(bool openedByAddress = false)
    {
        m_form = std::make_unique<frmProprietes>(
            &m_window, frmProprietes::Port{m_feed, openedByAddress, u"feed:http://typed/"_s,
                                           [this] { return m_feeds->selected; }, m_feeds->tables, m_feeds->cipher});
    }
    QLineEdit *box(const char *name) const { return m_form->findChild<QLineEdit *>(QString::fromLatin1(name)); }
    QString text(const char *name) const { return box(name)->text(); }
    QString longText(const char *name) const
    {
        return m_form->findChild<QPlainTextEdit *>(QString::fromLatin1(name))->toPlainText();
    }
    QCheckBox *noDel() const { return m_form->findChild<QCheckBox *>(u"chkNoDel"_s); }
    QPushButton *apply() const { return m_form->findChild<QPushButton *>(u"cmdAppliquer"_s); }
    QWidget *widget(const char *name) const { return m_form->findChild<QWidget *>(QString::fromLatin1(name)); }
    void setRetention(const QString &days) const { m_feeds->tables.updatecache.Replace(u"3"_s, days); }
    void setCredentials() const
    {
        m_feeds->tables.usernames.Add(u"3"_s, u"moi"_s);
        m_feeds->tables.passwords.Add(
            u"3"_s, m_feeds->cipher.EncryptString(u"secret"_s, FeedCatalogue::cipherKey(u"3"_s), true));
    }

    TemporaryDataDirectory m_data;
    QWidget m_window;
    std::unique_ptr<Feeds> m_feeds;
    std::shared_ptr<CachedFeed> m_feed;
    std::unique_ptr<frmProprietes> m_form;
};

QTEST_MAIN(PropertiesTest)
#include "tst_frmProprietes.moc"
