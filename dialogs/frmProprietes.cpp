// SPDX-License-Identifier: GPL-3.0-or-later

#include "dialogs/frmProprietes.h"

#include "controls/TabControl.h"
#include "controls/UpDown.h"
#include "core/FeedCatalogue.h"
#include "core/FeedTables.h"
#include "dialogs/DialogParts.h"
#include "engine/feed/CachedFeed.h"
#include "platform/Literals.h"
#include "platform/Numbers.h"
#include "platform/RunTimeError.h"
#include "support/clsDES.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>

#include <cmath>
#include <limits>

using namespace DialogParts;

namespace {

QLineEdit *readOnlyLine(const QString &name)
{
    auto *box = lineEdit(name);
    box->setReadOnly(true);
    return box;
}

void put(QLineEdit *box, const QString &text)
{
    box->setText(text);
    box->setCursorPosition(0);
}

/// A row of the grid: the label, the box and its arrows.
QLabel *addNumberRow(QGridLayout &grid, const QString &caption, QLineEdit *box, UpDown *arrows)
{
    const int row = grid.rowCount();
    QLabel *const shown = label(caption, box);
    auto *pair = new QHBoxLayout;
    pair->setSpacing(0);
    pair->addWidget(box);
    pair->addWidget(arrows);
    pair->addStretch();
    grid.addWidget(shown, row, 0);
    grid.addLayout(pair, row, 1);
    return shown;
}

QString versionName(const CachedFeed &feed)
{
    switch (feed.Version()) {
    case Rss091:
        return u"RSS 0.91"_s;
    case Rss092:
        return u"RSS 0.92"_s;
    case Rdf10:
        return u"RDF 1.0"_s;
    case Rss20:
        return u"RSS 2.0"_s;
    case Atom03:
        return u"Atom 0.3"_s;
    case Atom10:
        return u"Atom 1.0"_s;
    case Rss090:
        return u"RSS 0.90"_s;
    case OtherRss:
        return QString(u"RSS "_s + feed.WrittenVersion()).trimmed();
    }
    return {};
}

QString extensionNames(const CachedFeed &feed)
{
    QString names;
    if (feed.HasContent())
        names += u"content\n"_s;
    if (feed.HasWfw())
        names += u"wfw\n"_s;
    if (feed.HasDc())
        names += u"dc\n"_s;
    if (feed.HasItunes())
        names += u"itunes\n"_s;
    return names;
}

/// What the updates can read as a period; any other text would end the program within a minute of each start.
bool isPeriod(const QString &minutes)
{
    if (!Numbers::isNumeric(minutes))
        return false;
    const double number = Numbers::toDouble(minutes);
    using Limits = std::numeric_limits<qint16>;
    return number == std::floor(number) && number >= Limits::min() && number <= Limits::max();
}

} // namespace

frmProprietes::frmProprietes(QWidget *owner, Port port) : DialogBase(u"Propriétés"_s, owner), m_port(std::move(port))
{
    m_tstrProp = named(new TabControl, u"tstrProp"_s);
    m_tstrProp->addTab(u"general"_s, u"Général"_s, buildGeneralPage());
    m_tstrProp->addTab(u"infos"_s, u"Informations sur le canal"_s, buildInfosPage());
    m_tstrProp->addTab(u"synchronisation"_s, u"Synchronisation"_s, buildSynchroPage());
    m_tstrProp->addTab(u"advanced"_s, u"Avancé"_s, buildAdvancedPage());
    m_picAuthentication = buildAuthenticationPage();
    m_picAuthentication->setParent(this);
    m_picAuthentication->hide();
    m_tstrProp->setUsesScrollButtons(false);

    m_cmdAppliquer = button(u"cmdAppliquer"_s, u"Appliquer"_s);
    auto *cmdFermer = button(u"cmdFermer"_s, u"&Fermer"_s);
    layOut(*this, m_tstrProp, buttonRow({m_cmdAppliquer, cmdFermer}));
    cmdFermer->setDefault(true);
    m_cmdAppliquer->setEnabled(false);

    for (QLineEdit *const box : {m_txtMaj, m_txtCache, m_txtUsername, m_txtPassword})
        connect(box, &QLineEdit::textChanged, this, [this] { m_cmdAppliquer->setEnabled(true); });
    // A stray click changes no retention: "Appliquer" waits for a change of a box. The steps of frmProprietes hold it.
    connect(m_chkNoDel, &QCheckBox::toggled, this, [this](bool checked) { enableCache(!checked); });
    connect(m_cmdAppliquer, &QPushButton::clicked, this, &frmProprietes::handleApply);
    connect(cmdFermer, &QPushButton::clicked, this, &frmProprietes::accept);
}

QWidget *frmProprietes::buildGeneralPage()
{
    auto *page = named(new QWidget, u"picGeneral"_s);
    auto *grid = new QGridLayout(page);
    addRow(*grid, u"Titre du canal :"_s, m_txtTitle = readOnlyLine(u"txtTitle"_s));
    addRow(*grid, u"URL du canal :"_s, m_txtURL = readOnlyLine(u"txtURL"_s));
    addRow(*grid, u"Site web :"_s, m_txtSite = readOnlyLine(u"txtSite"_s));
    m_txtDescription = textBox(u"txtDescription"_s);
    m_txtDescription->setReadOnly(true);
    addRow(*grid, u"Description :"_s, m_txtDescription);
    return page;
}

QWidget *frmProprietes::buildInfosPage()
{
    auto *page = named(new QWidget, u"picInfos"_s);
    auto *grid = new QGridLayout(page);
    addRow(*grid, u"Version :"_s, m_txtVersion = readOnlyLine(u"txtVersion"_s));
    addRow(*grid, u"Langue :"_s, m_txtLangue = readOnlyLine(u"txtLangue"_s));
    addRow(*grid, u"Editeur :"_s, m_txtEditeur = readOnlyLine(u"txtEditeur"_s));
    addRow(*grid, u"Webmaster :"_s, m_txtWebmaster = readOnlyLine(u"txtWebmaster"_s));
    addRow(*grid, u"Copyright :"_s, m_txtCopyright = readOnlyLine(u"txtCopyright"_s));
    grid->setRowStretch(grid->rowCount(), 1);
    return page;
}

QWidget *frmProprietes::buildSynchroPage()
{
    auto *page = named(new QWidget, u"picSynchro"_s);
    auto *grid = new QGridLayout(page);
    m_txtMaj = numberBox(u"txtMaj"_s);
    auto *upDown1 = named(new UpDown(m_txtMaj, 1, 60, 1, 5), u"UpDown1"_s);
    addNumberRow(*grid, u"Mise à jour toutes les (min) :"_s, m_txtMaj, upDown1);
    m_txtCache = numberBox(u"txtCache"_s);
    m_upDown2 = named(new UpDown(m_txtCache, 1, 60, 1, 5), u"UpDown2"_s);
    m_lblCache = named(addNumberRow(*grid, u"Garder en cache pour (jour) :"_s, m_txtCache, m_upDown2), u"lblCache"_s);
    m_chkNoDel = named(new QCheckBox(u"Ne jamais effacer"_s), u"chkNoDel"_s);
    grid->addWidget(m_chkNoDel, grid->rowCount(), 1);
    grid->setRowStretch(grid->rowCount(), 1);
    return page;
}

QWidget *frmProprietes::buildAdvancedPage()
{
    auto *page = named(new QWidget, u"picAdvanced"_s);
    auto *grid = new QGridLayout(page);
    m_txtExtensions = textBox(u"txtExtensions"_s);
    m_txtExtensions->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    addRow(*grid, u"Extensions :"_s, m_txtExtensions);
    return page;
}

QWidget *frmProprietes::buildAuthenticationPage()
{
    auto *page = named(new QWidget, u"picAuthentication"_s);
    auto *grid = new QGridLayout(page);
    addRow(*grid, u"Nom d'utilisateur :"_s, m_txtUsername = lineEdit(u"txtUsername"_s));
    addRow(*grid, u"Mot de passe :"_s, m_txtPassword = passwordBox(u"txtPassword"_s));
    grid->setRowStretch(grid->rowCount(), 1);
    return page;
}

void frmProprietes::addAuthentication()
{
    m_tstrProp->addTab(u"authentication"_s, u"Authentification"_s, m_picAuthentication);
    setTabOrder(m_txtExtensions, m_txtUsername);
    setTabOrder(m_txtUsername, m_txtPassword);
}

bool frmProprietes::fillFrom()
{
    const std::shared_ptr<CachedFeed> feed = m_port.feed;
    if (!feed->IsLoaded())
        return false;
    const bool subscribed = !m_port.openedByAddress;
    const FeedNodePtr node = m_port.selectedNode();
    if (subscribed && !node)
        throw RunTimeError::objectNotSet();

    put(m_txtTitle, feed->Title());
    put(m_txtURL, subscribed ? node->tag : m_port.address);
    put(m_txtSite, feed->Link());
    showText(*m_txtDescription, feed->Description());
    put(m_txtVersion, versionName(*feed));
    put(m_txtLangue, feed->Language());
    put(m_txtEditeur, feed->ManagingEditor());
    put(m_txtWebmaster, feed->WebMaster());
    put(m_txtCopyright, feed->Copyright());
    m_txtExtensions->setPlainText(extensionNames(*feed));

    if (subscribed)
        fillSynchro(node->key());
    else {
        m_txtMaj->setText(feed->Ttl());
        enableCache(false);
        m_chkNoDel->hide();
        m_lblCache->hide();
    }
    m_period = m_txtMaj->text();
    if (node)
        fillAuthentication(node->key());
    // Last: filling the boxes has enabled it.
    m_cmdAppliquer->setEnabled(false);
    return true;
}

void frmProprietes::fillSynchro(const QString &key)
{
    const FeedTables &tables = m_port.tables;
    m_txtMaj->setText(tables.updatettl.Item(key));
    const qint16 days = Numbers::toInt16(tables.updatecache.Item(key));
    m_txtCache->setText(QString::number(Numbers::roundToInt16(std::abs(static_cast<double>(days)))));
    enableCache(days >= 0);
    m_chkNoDel->setChecked(days < 0);
}

void frmProprietes::fillAuthentication(const QString &key)
{
    const FeedTables &tables = m_port.tables;
    if (!tables.usernames.Exists(key))
        return;
    addAuthentication();
    m_txtUsername->setText(tables.usernames.Item(key));
    QString password = tables.passwords.Item(key);
    m_txtPassword->setText(m_port.cipher.DecryptString(password, FeedCatalogue::cipherKey(key), true));
}

void frmProprietes::enableCache(bool enabled)
{
    m_txtCache->setEnabled(enabled);
    m_upDown2->setEnabled(enabled);
}

void frmProprietes::handleApply()
{
    if (!isPeriod(m_txtMaj->text()))
        m_txtMaj->setText(m_period);
    m_cmdAppliquer->setEnabled(false);
    const FeedNodePtr node = m_port.selectedNode();
    if (!node)
        throw RunTimeError::objectNotSet();
    const QString key = node->key();
    FeedTables &tables = m_port.tables;

    const auto replace = [&key](Dictionary<QString> &table, const QString &value) {
        table.Remove(key);
        table.Add(key, value);
    };
    if (isPeriod(m_txtMaj->text())) {
        m_period = m_txtMaj->text();
        replace(tables.updatettl, m_period);
    }
    // What the user typed is kept as typed, even where the next opening can't read it, and "never" is lost at zero
    // days, which has no sign; the steps of frmProprietes hold both.
    replace(tables.updatecache, m_chkNoDel->isChecked()
                                    ? QString::number(Numbers::toDouble(m_txtCache->text()) * -1, 'g', 15)
                                    : m_txtCache->text());
    replace(tables.havecache, u"0"_s);
    if (tables.usernames.Exists(key))
        replace(tables.usernames, m_txtUsername->text());
    if (tables.passwords.Exists(key))
        replace(tables.passwords,
                m_port.cipher.EncryptString(m_txtPassword->text(), FeedCatalogue::cipherKey(key), true));
}

void frmProprietes::keyPressEvent(QKeyEvent *event)
{
    // There is no cancel button.
    if (event->key() != Qt::Key_Escape)
        DialogBase::keyPressEvent(event);
}
