// SPDX-License-Identifier: GPL-3.0-or-later

#include "dialogs/CHelp.h"
#include "dialogs/HelpBrowser.h"
#include "dialogs/HelpViewer.h"
#include "platform/Files.h"
#include "platform/Literals.h"
#include "tests/dialogs/DialogDump.h"
#include "tests/fixtures/AccessibleTree.h"
#include "tests/fixtures/Eventually.h"
#include "tests/fixtures/Steps.h"
#include "tests/fixtures/WidgetUser.h"

#include <QAction>
#include <QDir>
#include <QFileInfo>
#include <QHelpContentWidget>
#include <QHelpIndexWidget>
#include <QListWidget>
#include <QScreen>
#include <QSplitter>
#include <QTemporaryDir>
#include <QWindow>

namespace {

/// Keeps what was asked of it, as text.
class FakeSystem final : public HelpSystem
{
public:
    void htmlHelp(const QString &path, HelpCommand command, const HelpData &argument) override
    {
        QString data = u"nothing"_s;
        if (const auto *const number = std::get_if<qint32>(&argument))
            data = QString::number(*number);
        if (const auto *const query = std::get_if<HelpQuery>(&argument))
            data = u"%1 %2 %3 %4 %5 %6 %7 [%8]"_s.arg(query->size)
                       .arg(query->unicode)
                       .arg(query->text)
                       .arg(query->proximity)
                       .arg(query->stemmedSearch)
                       .arg(query->titlesOnly)
                       .arg(query->execute)
                       .arg(query->window);
        asked += u"[%1] %2 %3"_s.arg(path, QString::number(int(command)), data);
    }

    QStringList asked;
};

} // namespace

class HelpViewerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_external.clear();
        make({m_folder->filePath(u"none/Quillwire.qch"_s), QString::fromUtf8(HELP_FILE)});
    }

    void cleanup() { m_viewer.reset(); }

    void requestsReachTheHelpSystemInItsForm()
    {
        FakeSystem system;
        CHelp help(system);
        help.Show(u" a.chm "_s, QString());
        help.Show(u" a.chm "_s, u" W1 "_s, 7);
        help.Show(u"a.chm"_s, u" "_s);
        help.ShowIndex(u"a.chm"_s, u"W1"_s);
        help.ShowSearch(u"a.chm"_s, u"W1"_s);
        QCOMPARE(system.asked, QStringList({u"[ a.chm ] 1 nothing"_s, u"[a.chm>W1] 15 7"_s, u"[a.chm>] 1 nothing"_s,
                                            u"[a.chm>W1] 2 0"_s, u"[a.chm>W1] 3 32 0 TEST 0 0 0 1 []"_s}));
    }

    void everyStepHasItsEffects()
    {
        std::optional<WidgetUser> user;
        const Steps steps{
            [&](const Steps::Given &given) {
                if (!given[u"file"_s].isEmpty())
                    Files::write(m_folder->filePath(u"Quillwire.qch"_s), given[u"file"_s].toUtf8());
                make({given.isEmpty() ? QString::fromUtf8(HELP_FILE) : m_folder->filePath(u"Quillwire.qch"_s)});
                CHelp(*m_viewer).Show(asked(), u"W1"_s);
                user.emplace(*m_viewer, [this] { return outside(); });
                if (!given.isEmpty())
                    return find<HelpBrowser>("page")->toPlainText();
                (void)eventually([this] { return find<QHelpContentWidget>("contents")->model()->rowCount() > 0; });
                (void)user->changes();
                return QString();
            },
            [&](const QString &step) {
                take(step, *user);
                return user->changes();
            }};
        QCOMPARE(steps.differenceFrom(u"help-steps.txt"_s), QString());
    }

    void theWindowIsAsInTheTable()
    {
        CHelp(*m_viewer).Show(asked(), u"W1"_s);
        QTRY_VERIFY(find<QHelpContentWidget>("contents")->model()->rowCount() > 0);
        const QString spoken = AccessibleTree::of(m_viewer.get());
        QVERIFY2(AccessibleTree::flaws(spoken).isEmpty(), qPrintable(AccessibleTree::flaws(spoken)));
        QCOMPARE(differenceFromGolden(u"help.txt"_s, DialogDump::told(*m_viewer) + spoken), QString());
        const auto *splitter = m_viewer->findChild<QSplitter *>();
        QVERIFY(splitter->sizes()[0] < splitter->sizes()[1] && !splitter->childrenCollapsible());
        const QSize room = m_viewer->screen()->availableSize();
        QVERIFY(m_viewer->width() > room.width() / 2 && m_viewer->height() > room.height() / 2);
    }

    void itCanBeReadWhileDialogsAreOpen()
    {
        const auto isUsable = [this] {
            CHelp(*m_viewer).Show(asked(), QString(), 2);
            m_viewer->activateWindow();
            QTest::keyClick(m_viewer->windowHandle(), Qt::Key_Home, Qt::AltModifier);
            return page() == u"index.html"_s;
        };
        QDialog dialog;
        dialog.setModal(true);
        dialog.show();
        QVERIFY(isUsable()); // asked for from within the dialog
        {
            QDialog box(&dialog);
            box.setModal(true);
            box.show();
            QVERIFY(isUsable());
        }
        QVERIFY(isUsable());
        dialog.close();
        QVERIFY(isUsable());
        dialog.show();
        QVERIFY(isUsable()); // open already
    }

    void theCollectionLiesInTheCacheAndIsMadeAnewWhenDamaged()
    {
        const QString collection = m_folder->filePath(u"cache/Quillwire.qhc"_s);
        const QDir beside(QFileInfo(QString::fromUtf8(HELP_FILE)).path());
        const QStringList before = beside.entryList(QDir::AllEntries | QDir::Hidden);
        CHelp(*m_viewer).Show(asked(), QString());
        QVERIFY(Files::exists(collection));
        QCOMPARE(beside.entryList(QDir::AllEntries | QDir::Hidden), before);
        m_viewer.reset();
        Files::write(collection, "damaged");
        make({QString::fromUtf8(HELP_FILE)});
        CHelp(*m_viewer).Show(asked(), QString());
        QCOMPARE(page(), u"index.html"_s);
        QVERIFY(Files::read(collection).bytes.startsWith("SQLite"));
    }

private:
    /// What the user does, or asks of the help; it waits for what comes of it.
    void take(const QString &step, WidgetUser &user)
    {
        CHelp help(*m_viewer);
        const QString verb = step.section(u' ', 0, 0);
        const QString rest = step.section(u' ', 1);
        auto *const contents = find<QHelpContentWidget>("contents");
        auto *const results = find<QListWidget>("results");
        const QString before = page();
        if (verb == u"topics") // the first and the last are none
            for (int topic = 0; topic <= rest.toInt(); ++topic) {
                help.Show(asked(), QString(), topic);
                user.note(page().section(u'.', 0, 0));
            }
        else if (verb == u"index")
            help.ShowIndex(asked(), QString());
        else if (verb == u"search")
            help.ShowSearch(asked(), QString());
        else if (verb == u"link")
            Q_EMIT find<HelpBrowser>("page")->anchorClicked(QUrl(rest));
        else if (verb == u"go")
            find<QAction>(qPrintable(rest))->trigger();
        else if (verb == u"book") {
            const QModelIndex book = contents->model()->index(0, 0);
            user.note(contents->isExpanded(book) ? u"open"_s : u"closed"_s);
            QTest::mouseClick(contents->viewport(), Qt::LeftButton, {}, contents->visualRect(book).center());
        } else if (verb == u"contents")
            Q_EMIT contents->linkActivated(QUrl(rest));
        else if (verb == u"result") {
            find<HelpBrowser>("page")->setSource(QUrl());
            rest == u"click" ? Q_EMIT results->itemClicked(results->item(0))
                             : Q_EMIT results->itemActivated(results->item(0));
            const QString text = find<HelpBrowser>("page")->toPlainText();
            user.note(text.contains(find<QLineEdit>("query")->text().trimmed(), Qt::CaseInsensitive) ? u"found"_s
                                                                                                     : text);
        } else if (!user.act(step))
            user.note(u"NO SUCH STEP"_s);
        if (step == u"key filter Return") // the page comes when its place is looked up
            (void)eventually([&] { return page() != before; });
        if (state() == u"Recherche en cours..."_s)
            user.note(state());
        (void)eventually([this] { return state() != u"Recherche en cours..."_s; }, 20000);
    }

    WidgetUser::State outside() const
    {
        return {{u"on show"_s, page()},
                {u"rows"_s, QString::number(find<QListWidget>("results")->count())},
                {u"outside"_s, m_external.join(u' ')}};
    }

    QString state() const { return find<QLabel>("state")->text(); }

    template <class Widget>
    Widget *find(const char *name) const
    {
        return m_viewer->findChild<Widget *>(QString::fromLatin1(name));
    }
    void make(const QStringList &candidates)
    {
        m_viewer.reset();
        m_viewer = std::make_unique<HelpViewer>(candidates, m_folder->filePath(u"cache"_s),
                                                [this](const QString &url) { m_external.append(url); });
    }

    QString page() const { return find<HelpBrowser>("page")->source().fileName(); }
    QString asked() const { return u"/data/Quillwire.chm"_s; }

    std::unique_ptr<QTemporaryDir> m_folder;
    QStringList m_external;
    std::unique_ptr<HelpViewer> m_viewer;
};

QTEST_MAIN(HelpViewerTest)
#include "tst_HelpViewer.moc"
