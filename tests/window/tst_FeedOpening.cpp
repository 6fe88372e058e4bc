// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/Literals.h"
#include "tests/fixtures/FakeDownloader.h"
#include "tests/fixtures/FeedTexts.h"
#include "tests/window/PrincFixture.h"

#include <QLabel>
#include <QProgressBar>

/// What the user is told when a feed is opened by its address or its file, in the real window.
class tst_FeedOpening : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<PrincFixture> m_fixture;
    FakeDownloader *m_dwlFeed = nullptr; ///< made first, before that of the updates

    void enter(const QString &text) const
    {
        auto *txtURL = m_fixture->control<AddressBox>("txtURL");
        txtURL->setText(text);
        QTest::keyClick(txtURL, Qt::Key_Return);
    }
    bool barVisible() const { return m_fixture->control<QProgressBar>("prbChargement")->isVisible(); }

private Q_SLOTS:
    void init()
    {
        m_fixture = std::make_unique<PrincFixture>();
        m_dwlFeed = nullptr;
        m_fixture->makeDownloader = [this] {
            auto downloader = std::make_unique<FakeDownloader>();
            if (!m_dwlFeed)
                m_dwlFeed = downloader.get();
            return downloader;
        };
        m_fixture->start();
    }
    void cleanup() { m_fixture.reset(); }

    void everyOutcomeHasItsBox_data()
    {
        QTest::addColumn<QString>("entered");
        QTest::addColumn<int>("status");
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("text");
        const auto row = [](const char *name, const QString &entered, int status, const QByteArray &body,
                            const QString &title,
                            const QString &text) { QTest::newRow(name) << entered << status << body << title << text; };
        const QString address = u"http://a/b"_s;
        const QString error = u"Erreur"_s;
        const QString warning = u"Avertissement"_s;
        row("host", address, 3, {}, error,
            u"L'hôte sur lequel se trouve le fichier n'a pas été trouvé sur le serveur"_s);
        row("404", address, 404, {}, u"Erreur 404"_s, u"Le fichier n'a pas été trouvé sur le serveur"_s);
        row("401", address, 401, {}, {}, u"Cas non géré actuellement : 401"_s);
        row("no feed", address, 200, "<html>", warning,
            u"La ressource spécifiée n'est pas un fichier RSS valide, voulez-vous "
            "essayer d'ouvrir le fichier dans le navigateur ?"_s);
        row("version", address, 200, "<rss version='3.0'><channel/></rss>", warning,
            u"La version du fichier RSS n'est pas supportée"_s);
        row("format", address, 200, "<opml/>", warning, u"Format du fichier RSS inconnu"_s);
        row("scheme", u"feed:ftp://a/b"_s, 0, {}, error, u"Impossible d'ouvrir le flux spécifié :\n\nftp://a/b"_s);
        row("no file", u"/no/such/file"_s, 0, {}, warning, u"Le fichier que vous tentez d'ouvrir n'existe pas"_s);
        row("bad file", u"feeds.xml"_s, 0, {}, warning, u"Erreur lors du chargement du canal RSS"_s);
    }

    void everyOutcomeHasItsBox()
    {
        QFETCH(QString, entered);
        QFETCH(int, status);
        QFETCH(QByteArray, body);
        QFETCH(QString, title);
        if (entered == u"feeds.xml") // a file that is there
            entered = m_fixture->data.file(entered);
        m_fixture->browserToolbar()->setButtonEnabled(u"send_mail"_s, true);
        enter(entered);
        QVERIFY(!m_fixture->browserToolbar()->isButtonEnabled(u"send_mail"_s));
        if (status != 0) {
            QVERIFY(barVisible());
            m_dwlFeed->finish(status, body);
        }
        QCOMPARE(m_fixture->messages.shown.size(), std::size_t(1));
        const Message &box = m_fixture->messages.shown[0];
        QTEST(box.text, "text");
        QCOMPARE(box.title, title);
        QCOMPARE(box.icon, title.isEmpty() ? Message::Icon::None : Message::Icon::Exclamation);
        QCOMPARE(box.buttons, status == 200 && body == "<html>" ? Message::Buttons::YesNo : Message::Buttons::Ok);
        // A refused address leaves the bar on show.
        QCOMPARE(barVisible(), entered.startsWith(u"feed:"));
        QCOMPARE(m_fixture->buttons(), u"0000"_s);
        QCOMPARE(m_fixture->list()->items().rowCount(), 0);
    }

    void aLargeFeedShowsThatItIsRead()
    {
        const QString path = m_fixture->data.file(u"large.rss"_s);
        const auto *count = m_fixture->control<QWidget>("stabPrinc")->findChild<QLabel *>(u"glue"_s);
        QStringList seen;
        connect(&m_fixture->program->longLived().opener, &FeedOpener::loadBegan, this, [&] {
            const QCursor *pointer = QGuiApplication::overrideCursor();
            seen.append(pointer && pointer->shape() == Qt::WaitCursor ? count->text() : u"-"_s);
        });
        const QByteArray padding = "<!--" + QByteArray(4 * 1024 * 1024, 'x') + "-->";
        const QByteArray small = FeedTexts::rss(u"L"_s, {u"a"_s});
        for (const QByteArray &feed : QByteArrayList{small, small + padding, "<no" + padding}) {
            m_fixture->data.write(u"large.rss"_s, feed);
            enter(path);
            QVERIFY(!QGuiApplication::overrideCursor());
            QCOMPARE(count->text(), QString());
        }
        QCOMPARE(seen, (QStringList{u"-"_s, u"Ouverture..."_s, u"Ouverture..."_s}));
        QCOMPARE(m_fixture->messages.shown.size(), std::size_t(1));
    }

    void theButtonFollowsWhereTheFeedCameFrom()
    {
        m_fixture->data.write(u"mine.rss"_s, FeedTexts::rss(u"Mine"_s, {u"m"_s}));
        enter(u"feed:a/b"_s);
        m_dwlFeed->finish(200, FeedTexts::rss(u"T"_s, {u"one"_s, u"two"_s}));
        QCOMPARE(m_fixture->buttons(), u"0001"_s);
        QCOMPARE(m_fixture->list()->items().rowCount(), 2);
        QVERIFY(!barVisible());
        enter(m_fixture->data.file(u"mine.rss"_s)); // as the feed before it had it
        QCOMPARE(m_fixture->buttons(), u"0001"_s);
        QCOMPARE(m_fixture->list()->items().rowCount(), 1);
        enter(u"http://c/"_s);
        QCOMPARE(m_fixture->buttons(), u"0000"_s);
    }
};

QTEST_MAIN(tst_FeedOpening)
#include "tst_FeedOpening.moc"
