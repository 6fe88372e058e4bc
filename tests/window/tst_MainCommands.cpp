// SPDX-License-Identifier: GPL-3.0-or-later

#include "controls/ImageList.h"
#include "platform/Literals.h"
#include "tests/fixtures/Eventually.h"
#include "tests/fixtures/FakeDownloader.h"
#include "tests/fixtures/FeedTexts.h"
#include "tests/fixtures/LocalHttpServer.h"
#include "tests/window/PrincFixture.h"
#include "window/MainToolbar.h"

#include <QDialog>
#include <QInputDialog>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QTabWidget>
#include <QTimer>
#include <QToolButton>

#include <algorithm>

/// Every entry of the menus and every button of the toolbars in the real window: how it looks, and what it does.
class tst_MainCommands : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<PrincFixture> m_fixture;
    std::vector<FakeDownloader *> m_downloaders;
    QStringList m_log; ///< what went out of the window
    int m_entries = 0; ///< of the table

    /// Two feeds, the first of them in a folder. Its second item has all that an item may have.
    void writeFeeds(const QByteArray &comments = "http://h/c")
    {
        m_fixture->writeCatalogue("<favoris><dir name='D' key='1' visible='1'><feed name='A' url='http://h/2' key='2' "
                                  "ttl='60' cache='-7'/></dir><feed name='B' url='http://h/3' key='3' ttl='60' "
                                  "cache='-7'/></favoris>");
        const QByteArray parts = "<title>b</title><comments>" + comments +
                                 "</comments><enclosure url='http://h/b.mp3' length='9' type='a/b'/>";
        m_fixture->data.write(u"feeds/2.xml"_s,
                              FeedTexts::rss(u"A"_s, {u"a"_s, u"b"_s, u"c"_s}).replace("<title>b</title>", parts));
        m_fixture->data.write(u"feeds/3.xml"_s, FeedTexts::rss(u"B"_s, {u"d"_s}));
    }

    std::unique_ptr<Downloader> answeringDownloader()
    {
        auto downloader = std::make_unique<FakeDownloader>();
        m_downloaders.push_back(downloader.get());
        auto *answers = new QTimer(downloader.get());
        connect(answers, &QTimer::timeout, downloader.get(), &FakeDownloader::answer);
        answers->start(1);
        return downloader;
    }

    void start()
    {
        m_fixture->start();
        m_fixture->settings().readDelay = -1;
    }

    void selectItem() const
    {
        m_fixture->click(m_fixture->node("2"));
        m_fixture->clickRow(1, 1);
    }

    /// The entries by their way from the menu's root; those of the menus without a bar begin with the owner's name.
    QMap<QString, QAction *> entries() const
    {
        QMap<QString, QAction *> found;
        const std::function<void(const QString &, const QList<QAction *> &)> walk =
            [&](const QString &way, const QList<QAction *> &actions) {
                for (QAction *action : actions) {
                    if (action->menu())
                        walk(way + action->text() + u'/', action->menu()->actions());
                    else if (!action->isSeparator())
                        found.insert(way + action->text(), action);
                }
            };
        walk({}, m_fixture->window->findChild<QMenuBar *>()->actions());
        for (const QMenu *menu : m_fixture->window->findChildren<QMenu *>()) {
            const QString first = menu->actions().isEmpty() ? QString() : menu->actions().first()->text();
            for (const auto &[entry, name] :
                 {std::pair(u"Supprimer"_s, u"item: "_s), std::pair(u"Titre"_s, u"column: "_s),
                  std::pair(u"Rafraichir"_s, u"tree: "_s)})
                if (first == entry)
                    walk(name, menu->actions());
        }
        if (m_fixture->trayMenu)
            walk(u"icon: "_s, m_fixture->trayMenu->actions());
        return found;
    }

    static QStringList namesOf(const FeedNodePtr &node)
    {
        QStringList names = {u"node "_s + node->text()};
        for (const FeedNodePtr &child : node->children())
            names += namesOf(child);
        return names;
    }

    /// What a command can change, as a list of what there is.
    QStringList state() const
    {
        QStringList state = namesOf(m_fixture->feedTree().root());
        const QMap<QString, QAction *> all = entries();
        for (auto entry = all.begin(); entry != all.end(); ++entry)
            if (entry.value()->isChecked())
                state += u"check "_s + entry.value()->text();
        state += m_fixture->settings().officeStyle ? u"office"_s : u"standard"_s;
        state += m_fixture->settings().smallToolbars ? u"small"_s : u"big"_s;
        for (int place = 1; place <= itemColumnCount; ++place)
            if (m_fixture->list()->columnWidthTwips(place) > 0)
                state += u"column %1"_s.arg(place);
        for (int row = 0; row < m_fixture->list()->items().rowCount(); ++row)
            state += (m_fixture->list()->items().isShownRead(row) ? u"read "_s : u"unread "_s) +
                     m_fixture->list()->items().index(row, 0).data().toString();
        for (const FakeDownloader *downloader : m_downloaders)
            for (const FakeDownloader::Request &request : downloader->requests)
                state += u"asks "_s + request.url;
        if (m_fixture->window->isVisible())
            state += u"on show"_s;
        if (m_fixture->releases > 0)
            state += u"ended"_s;
        return state;
    }

    /// What `act` says, changes (- and +) and shows: a dialog with its page of the help.
    QString effectOf(const std::function<void()> &act)
    {
        m_log.clear();
        const QStringList before = state();
        QTimer::singleShot(0, m_fixture->window.get(), [this] {
            if (auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget())) {
                QTest::keyClick(dialog->focusWidget() ? dialog->focusWidget() : dialog, Qt::Key_F1);
                const auto *tabs = dialog->findChild<QTabWidget *>();
                m_log += QString::fromLatin1(dialog->metaObject()->className()) + u' ' +
                         (tabs ? QString::number(tabs->currentIndex() + 1) : QString());
                dialog->reject();
                dialog->hide();
            }
        });
        act();
        QTest::qWait(10);
        QStringList after = state();
        for (const QString &one : before)
            if (!after.removeOne(one))
                m_log += u'-' + one;
        for (const QString &one : after)
            m_log += u'+' + one;
        for (const qint32 topic : m_fixture->helpTopics)
            m_log += u"help %1"_s.arg(topic);
        return m_log.join(u", "_s);
    }

    static QImage imageOf(const QIcon &icon) { return icon.pixmap(16).toImage(); }

private Q_SLOTS:
    void init()
    {
        m_downloaders.clear();
        m_fixture = std::make_unique<PrincFixture>();
        m_fixture->openInSystemBrowser = [this](const QString &url) { m_log += u"opens "_s + url; };
        m_fixture->inputAnswer = u"N"_s;
    }
    void cleanup() { m_fixture.reset(); }

    void everyEntryHasItsLookAndItsEffect_data()
    {
        QTest::addColumn<QString>("keys");
        QTest::addColumn<int>("picture");
        QTest::addColumn<QString>("effect");
        m_entries = 0;
        const auto row = [this](const char *way, const char *effect, const char *keys = "", int picture = -1) {
            QTest::newRow(way) << QString::fromLatin1(keys) << picture << QString::fromUtf8(effect);
            ++m_entries;
        };
        row("&Fichier/&Importer des flux RSS...", "frmImport , help 13", "Ctrl+I");
        row("&Fichier/&Exporter mes flux RSS...", "frmExport , help 14", "Ctrl+E");
        row("&Fichier/&Quitter", "-on show, +ended", "Ctrl+Q");
        row("&Affichage/&Style/Standard", "-check Office XP, -office, +check Standard, +standard");
        row("&Affichage/&Style/Office XP", "-check Standard, -standard, +check Office XP, +office");
        row("&Affichage/&Barre d'outils/Grandes", "-check Petites, -small, +check Grandes, +big");
        row("&Affichage/&Barre d'outils/Petites", "-check Grandes, -big, +check Petites, +small");
        row("&Outils/Tout mettre à jour", "+asks http://h/2, +asks http://h/3");
        row("&Outils/Rechercher/Avec Feedster", "frmRechercher 1, help 15", "Ctrl+F");
        row("&Outils/Rechercher/Avec DayPop", "frmRechercher 2, help 15");
        row("&Outils/Rechercher/Via le web", "frmRechercher 3, help 15");
        row("&Outils/Op&tions", "frmOptions 1, help 17");
        row("&Aide/&Sommaire", "help -1");
        row("&Aide/&Tovik sur le web/&Accueil", "opens http://tovik.example/");
        row("&Aide/&Tovik sur le web/&Informations sur le produit", "opens http://tovik.example/prog/Quillwire/");
        row("&Aide/&Tovik sur le web/FAQ", "opens http://tovik.example/prog/Quillwire/faq.php");
        row("&Aide/À &propos...", "frmAbout , help 20");
        row("item: Supprimer", "-unread b", "", 1);
        row("item: Marquer/Comme lu", "-unread b, +read b");
        row("item: Marquer/Comme non lu", "-read b, +unread b");
        row("icon: &Ouvrir", "+on show");
        row("icon: &Quitter", "-on show, +ended");
        row("column: Titre", "-check Titre, -column 1");
        row("column: Lu/Non-Lu", "-check Lu/Non-Lu, -column 2");
        row("column: Date de publication", "-check Date de publication, -column 3");
        row("column: Date de téléchargement", "-check Date de téléchargement, -column 4");
        row("column: Auteur", "-check Auteur, -column 5");
        row("column: Catégorie", "-check Catégorie, -column 6");
        row("tree: Rafraichir", "+asks http://h/2", "", 0);
        row("tree: Supprimer", "-node A, -unread a, -unread b, -unread c", "", 1);
        row("tree: Propriétés", "frmProprietes 1, help 16", "", 2);
        row("tree: Nouveau dossier", "+node N", "", 3);
    }

    void everyEntryHasItsLookAndItsEffect()
    {
        QFETCH(QString, keys);
        QFETCH(int, picture);
        writeFeeds();
        m_fixture->makeDownloader = [this] { return answeringDownloader(); };
        const QString way = QString::fromUtf8(QTest::currentDataTag());
        m_fixture->adjustSettings = [&way](AppSettings &settings) {
            settings.officeStyle = !way.endsWith(u"Office XP"_s);
            settings.smallToolbars = !way.endsWith(u"Petites"_s);
            std::fill(settings.columnWidth.begin() + 1, settings.columnWidth.end(), 300);
        };
        start();
        selectItem();
        if (way.endsWith(u"non lu"_s))
            m_fixture->list()->items().setRead(1, true);
        m_fixture->window->setVisible(!way.endsWith(u"Ouvrir"_s));
        QCOMPARE(entries().size(), m_entries);
        QAction *action = entries().value(way);
        QVERIFY2(action, qPrintable(entries().keys().join(u'\n')));
        QCOMPARE(action->shortcut().toString(QKeySequence::PortableText), keys);
        QCOMPARE(imageOf(action->icon()), imageOf(ImageLists::vbalImageList3().icon(picture)));
        QTEST(effectOf([action] { action->trigger(); }), "effect");
    }

    void questionsHaveTheirPagesOfTheHelp()
    {
        start();
        QMessageBox question;
        QCOMPARE(effectOf([&] { question.exec(); }), u"QMessageBox , help 21"_s);
        QInputDialog input;
        QCOMPARE(effectOf([&] { input.exec(); }), u"QInputDialog , help 21, help 6"_s);
    }

    void everyButtonHasItsLookItsTimeAndItsEffect_data()
    {
        QTest::addColumn<int>("bar");
        QTest::addColumn<int>("index");
        QTest::addColumn<QString>("caption");
        QTest::addColumn<QString>("tip");
        QTest::addColumn<int>("picture");
        QTest::addColumn<QString>("times");  ///< enabled: at the start, with a folder, a feed, an item with everything
        QTest::addColumn<QString>("effect"); ///< of the page's buttons without a page
        const auto row = [](int bar, int index, const char *caption, const char *tip, int picture, const char *times,
                            const char *effect = "") {
            QTest::addRow("%d %s", bar, tip) << bar << index << QString::fromUtf8(caption) << QString::fromUtf8(tip)
                                             << picture << QString::fromLatin1(times) << QString::fromUtf8(effect);
        };
        row(1, 0, "Actualiser", "Actualiser", 0, "0011", "+asks http://h/2");
        row(1, 1, "Supprimer", "Supprimer", 1, "0111", "-node A, -unread a, -unread b, -unread c");
        row(1, 2, "Propriétés", "Propriétés", 2, "0011", "frmProprietes 1, help 16");
        row(1, 3, "Ajouter", "Ajouter", 3, "0000");
        row(2, 0, "Précédent", "Précédent", 4, "1111");
        row(2, 1, "Suivant", "Suivant", 5, "1111");
        row(2, 2, "Actualiser", "Actualiser", 0, "1111");
        row(2, 3, "Arrêter", "Arrêter", 6, "1111");
        row(2, 5, "Ouvrir", "Ouvrir dans le navigateur du système", 7, "1111", "opens ");
        row(2, 6, "Envoyer", "Envoyer la new par mail", 10, "0001", "frmSendMail , help 18");
        row(2, 8, "Commentaires", "Ajouter un commentaire", 8, "0001");
        row(2, 9, "Pièce jointe", "Pièce jointe", 9, "0001");
    }

    void everyButtonHasItsLookItsTimeAndItsEffect()
    {
        QFETCH(int, bar);
        QFETCH(int, index);
        QFETCH(int, picture);
        writeFeeds();
        m_fixture->makeDownloader = [this] { return answeringDownloader(); };
        start();
        const cToolbar *toolbar = bar == 1 ? m_fixture->toolbar() : m_fixture->browserToolbar();
        QCOMPARE(toolbar->buttonCount(), bar == 1 ? 4 : 10);
        QToolButton *button = toolbar->button(index);
        QTEST(button->text(), "caption");
        QTEST(button->toolTip(), "tip");
        QCOMPARE(imageOf(button->icon()), imageOf(ImageLists::vbalImageList4().icon(picture)));
        QString times = button->isEnabled() ? u"1"_s : u"0"_s;
        for (const auto &step : std::initializer_list<std::function<void()>>{
                 [this] { m_fixture->click(m_fixture->node("1")); }, [this] { m_fixture->click(m_fixture->node("2")); },
                 [this] { selectItem(); }}) {
            step();
            times += button->isEnabled() ? u'1' : u'0';
        }
        QTEST(times, "times");
        QTEST(effectOf([button] { button->click(); }), "effect");
    }

    void theMenuOfAnItemOffersTheOtherMark()
    {
        writeFeeds();
        start();
        selectItem();
        for (const bool read : {false, true}) {
            m_fixture->list()->items().setRead(1, read);
            m_fixture->program->longLived().current.document->SetItemRead(1, read);
            QTimer::singleShot(0, qApp, [] { QApplication::activePopupWidget()->close(); });
            m_fixture->clickRow(1, 1, Qt::RightButton);
            QCOMPARE(entries().value(u"item: Marquer/Comme lu"_s)->isEnabled(), !read);
            QCOMPARE(entries().value(u"item: Marquer/Comme non lu"_s)->isEnabled(), read);
        }
    }

    void theButtonsOfThePageActOnTheLivePage()
    {
        LocalHttpServer server;
        for (const QString &path : {u"/a"_s, u"/b"_s, u"/c"_s})
            server.setBody(path, "<html><body>page</body></html>", "text/html");
        server.setAnswer(u"/silent"_s, {.body = {}, .headers = {}, .silent = true});
        writeFeeds(server.url(u"/c"_s).toUtf8());
        start();
        selectItem();
        cToolbar *bar = m_fixture->browserToolbar();
        auto *page = m_fixture->control<BrowserPane>("WebBrowser1");
        page->show();
        const auto isAt = [&](const QString &path) {
            return eventually(
                [&] { return page->LocationURL() == server.url(path) && !bar->isButtonEnabled(u"browser_arreter"_s); });
        };
        for (const QString &path : {u"/a"_s, u"/b"_s}) {
            page->Navigate(server.url(path));
            QVERIFY(isAt(path));
        }
        QVERIFY(eventually([&] { return bar->isButtonEnabled(0) && !bar->isButtonEnabled(1); }));
        bar->button(0)->click();
        QVERIFY(isAt(u"/a"_s));
        QVERIFY(eventually([&] { return bar->isButtonEnabled(1); }));
        bar->button(1)->click();
        QVERIFY(isAt(u"/b"_s));
        const int hits = server.hits(u"/b"_s);
        bar->button(2)->click();
        QVERIFY(eventually([&] { return server.hits(u"/b"_s) == hits + 1; }));
        QVERIFY(isAt(u"/b"_s));
        page->Navigate(server.url(u"/silent"_s));
        QVERIFY(eventually([&] { return server.hits(u"/silent"_s) == 1 && bar->isButtonEnabled(3); }));
        QSignalSpy complete(page, &BrowserPane::DocumentComplete);
        bar->button(3)->click();
        QVERIFY(isAt(u"/b"_s));
        QVERIFY(eventually([&] { return !complete.isEmpty(); }));
        QCOMPARE(effectOf([&] { bar->button(5)->click(); }), u"opens "_s + server.url(u"/b"_s));
        QTimer::singleShot(0, qApp, [] {
            auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
            menu->close();
            menu->actions().constFirst()->trigger();
        });
        m_log.clear();
        Q_EMIT bar->DropDownPress(9);
        QCOMPARE(m_log, QStringList(u"opens http://h/b.mp3"_s));
        bar->button(8)->click();
        QVERIFY(isAt(u"/c"_s));
    }
};

QTEST_MAIN(tst_MainCommands)
#include "tst_MainCommands.moc"
