// SPDX-License-Identifier: GPL-3.0-or-later

#include "dialogs/frmRechercher.h"
#include "platform/Literals.h"

#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>

class SearchTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        m_form.reset();
        m_log.clear();
    }

    void choicesBecomeAnAddress_data()
    {
        QTest::addColumn<int>("tab");
        QTest::addColumn<QStringList>("settings"); // names of options to set, "name=text" of boxes to fill
        QTest::addColumn<QString>("expected");
        const auto row = [](const char *name, int tab, const char *settings, const char *expected) {
            QTest::newRow(name) << tab << QString::fromUtf8(settings).split(u'|', Qt::SkipEmptyParts)
                                << QString::fromUtf8(expected);
        };
        row("Feedster, defaults", 1, "txtRecherche_0=a b",
            "http://f/search.php?hl=en&ie=UTF-8&q=a+b&sort=date&content=full&type=rss&limit=15");
        row("Feedster, nothing is escaped", 1, "txtRecherche_0=é&x=%20|txtNbResult_0=4 2|optTri_1|optCategory_1",
            "http://f/"
            "search.php?hl=en&ie=UTF-8&q=é&x=%20&sort=relevance&category=blog&content=full&type=rss&limit=4+2");
        row("no words", 1, "", "http://f/search.php?hl=en&ie=UTF-8&q=&sort=date&content=full&type=rss&limit=15");
        row("DayPop, defaults", 2, "txtRecherche_1=a b", "http://d/search?q=a+b&sort=date&t=a&o=rss&c=15");
        row("DayPop, its own sort has no effect", 2, "optTriDayPop_1", "http://d/search?q=&sort=date&t=a&o=rss&c=15");
        row("DayPop, the other page's sort has", 2,
            "optTri_1|optSearchText_1|cboWhere=Blogs|cboLangue=Français|txtNbResult_1=20",
            "http://d/search?q=&ts=true&t=w&ln=fr&o=rss&c=20");
        row("DayPop, feeds only", 2, "cboWhere=Flux RSS", "http://d/search?q=&sort=date&t=n&o=rss&c=15");
        row("Syndic8", 3, "txtRecherche_2=a b", "http://s/feedlist.php?ShowStatus=all&ShowMatch=a+b");
        row("Newsisfree", 3, "optWebSearch_1|txtRecherche_2=a", "http://n/siets/?type=search&search=Search&query=a");
        row("BlogStreet", 3, "optWebSearch_2|txtRecherche_2=a", "http://b/bin/rsssearch.cgi?x=0&y=0&period=0&q=a");
    }

    void choicesBecomeAnAddress()
    {
        QFETCH(int, tab);
        QFETCH(QStringList, settings);
        QFETCH(QString, expected);
        make(tab);
        for (const QString &setting : settings) {
            const QString name = setting.section(u'=', 0, 0);
            const QString text = setting.section(u'=', 1);
            if (auto *const option = find<QRadioButton>(name))
                option->setChecked(true);
            else if (auto *const combo = find<QComboBox>(name))
                combo->setCurrentText(text);
            else
                find<QLineEdit>(name)->setText(text);
        }
        QCOMPARE(m_form->searchUrl(), expected);
    }

    void everyLanguageHasItsCode()
    {
        make(2);
        auto *const languages = find<QComboBox>(u"cboLangue"_s);
        QStringList table;
        for (int i = 0; i < languages->count(); ++i) {
            languages->setCurrentIndex(i);
            table.append(languages->currentText() + u':' +
                         m_form->searchUrl().section(u"&t=a"_s, 1).section(u"&o="_s, 0, 0));
        }
        QCOMPARE(table.join(u' '), u"Toutes les langues: English:&ln=en Français:&ln=fr Deutsch:&ln=de "
                                   "Nederlands:&ln=nl Svenska:&ln=sv Español:&ln=es Suomi:&ln=fi "
                                   "Norsk:&ln=no Português:&ln=pt Italiano:&ln=it"_s);
    }

    void feedsOpenThroughTheAddressBoxWithoutCredentialsAndWebPagesInTheBrowserPane()
    {
        make(1);
        auto *const words = find<QLineEdit>(u"txtRecherche_0"_s);
        words->setText(u"x"_s);
        QTest::keyClick(words, Qt::Key_Return);
        QVERIFY(!m_form->isVisible());
        make(3);
        find<QPushButton>(u"cmdRechercher"_s)->click();
        QVERIFY(!m_form->isVisible());
        QCOMPARE(m_log.join(u'\n'),
                 u"address http://f/search.php?hl=en&ie=UTF-8&q=x&sort=date&content=full&type=rss&limit=15\n"
                 "[:]\nLoadFile\nnavigate http://s/feedlist.php?ShowStatus=all&ShowMatch="_s);
    }

private:
    void make(int tab)
    {
        const SearchEndpoints endpoints{u"http://f/"_s, u"http://d/"_s, u"http://s/"_s, u"http://n/"_s, u"http://b/"_s};
        const auto note = [this](const char *verb) {
            return [this, verb](const QString &text) { m_log += QLatin1String(verb) + u' ' + text; };
        };
        const frmRechercher::Port port{
            note("navigate"), note("address"),
            [this](const QString &name, const QString &secret) { m_log += u"[%1:%2]"_s.arg(name, secret); },
            [this] { m_log += u"LoadFile"_s; }};
        m_form = std::make_unique<frmRechercher>(&m_window, port, endpoints, tab);
        m_form->show();
    }
    template <class Widget>
    Widget *find(const QString &name) const
    {
        return m_form->findChild<Widget *>(name);
    }

    QWidget m_window;
    QStringList m_log;
    std::unique_ptr<frmRechercher> m_form;
};

QTEST_MAIN(SearchTest)
#include "tst_frmRechercher.moc"
