#include "dialogs/frmProprietes.h"

#include "controls/TabControl.h"
#include "controls/UpDown.h"
#include "core/FeedCatalogue.h"
#include "core/FeedTables.h"
#include "dialogs/DialogParts.h"
#include "engine/feed/CachedFeed.h"
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

QString versionName(FeedVersion version)
{
    switch (version) {
    case Rss091:
        return QStringLiteral("RSS 0.91");
    case Rss092:
        return QStringLiteral("RSS 0.92");
    case Rdf10:
        return QStringLiteral("RDF 1.0");
    case Rss20:
        return QStringLiteral("RSS 2.0");
    case Atom03:
        return QStringLiteral("Atom 0.3");
    }
    return {};
}

QString extensionNames(const CachedFeed &feed)
{
    QString names;
    if (feed.HasContent())
        names += QStringLiteral("content\n");
    if (feed.HasWfw())
        names += QStringLiteral("wfw\n");
    if (feed.HasDc())
        names += QStringLiteral("dc\n");
    if (feed.HasItunes())
        names += QStringLiteral("itunes\n");
    return names;
}

} // namespace

frmProprietes::frmProprietes(QWidget *owner, Port port)
    : DialogBase(QStringLiteral("Propriétés"), owner), m_port(std::move(port))
{
    m_tstrProp = named(new TabControl, QStringLiteral("tstrProp"));
    m_tstrProp->addTab(QStringLiteral("general"), QStringLiteral("Général"), buildGeneralPage());
    m_tstrProp->addTab(QStringLiteral("infos"), QStringLiteral("Informations sur le canal"), buildInfosPage());
    m_tstrProp->addTab(QStringLiteral("synchronisation"), QStringLiteral("Synchronisation"), buildSynchroPage());
    m_tstrProp->addTab(QStringLiteral("advanced"), QStringLiteral("Avancé"), buildAdvancedPage());
    m_picAuthentication = buildAuthenticationPage();
    m_picAuthentication->setParent(this);
    m_picAuthentication->hide();
    m_tstrProp->setUsesScrollButtons(false);

    m_cmdAppliquer = button(QStringLiteral("cmdAppliquer"), QStringLiteral("Appliquer"));
    auto *cmdFermer = button(QStringLiteral("cmdFermer"), QStringLiteral("&Fermer"));
    layOut(*this, m_tstrProp, buttonRow({m_cmdAppliquer, cmdFermer}));
    cmdFermer->setDefault(true);
    m_cmdAppliquer->setEnabled(false);

    for (QLineEdit *const box : {m_txtMaj, m_txtCache, m_txtUsername, m_txtPassword})
        connect(box, &QLineEdit::textChanged, this, [this] { m_cmdAppliquer->setEnabled(true); });
    // A stray click changes no retention: "Appliquer" waits for a change of a box. applyingWritesTheTables holds it.
    connect(m_chkNoDel, &QCheckBox::toggled, this, [this](bool checked) { enableCache(!checked); });
    connect(m_cmdAppliquer, &QPushButton::clicked, this, &frmProprietes::handleApply);
    connect(cmdFermer, &QPushButton::clicked, this, &frmProprietes::accept);
}

QWidget *frmProprietes::buildGeneralPage()
{
    auto *page = named(new QWidget, QStringLiteral("picGeneral"));
    auto *grid = new QGridLayout(page);
    addRow(*grid, QStringLiteral("Titre du canal :"), m_txtTitle = readOnlyLine(QStringLiteral("txtTitle")));
    addRow(*grid, QStringLiteral("URL du canal :"), m_txtURL = readOnlyLine(QStringLiteral("txtURL")));
    addRow(*grid, QStringLiteral("Site web :"), m_txtSite = readOnlyLine(QStringLiteral("txtSite")));
    m_txtDescription = textBox(QStringLiteral("txtDescription"));
    m_txtDescription->setReadOnly(true);
    addRow(*grid, QStringLiteral("Description :"), m_txtDescription);
    return page;
}

QWidget *frmProprietes::buildInfosPage()
{
    auto *page = named(new QWidget, QStringLiteral("picInfos"));
    auto *grid = new QGridLayout(page);
    addRow(*grid, QStringLiteral("Version :"), m_txtVersion = readOnlyLine(QStringLiteral("txtVersion")));
    addRow(*grid, QStringLiteral("Langue :"), m_txtLangue = readOnlyLine(QStringLiteral("txtLangue")));
    addRow(*grid, QStringLiteral("Editeur :"), m_txtEditeur = readOnlyLine(QStringLiteral("txtEditeur")));
    addRow(*grid, QStringLiteral("Webmaster :"), m_txtWebmaster = readOnlyLine(QStringLiteral("txtWebmaster")));
    addRow(*grid, QStringLiteral("Copyright :"), m_txtCopyright = readOnlyLine(QStringLiteral("txtCopyright")));
    grid->setRowStretch(grid->rowCount(), 1);
    return page;
}

QWidget *frmProprietes::buildSynchroPage()
{
    auto *page = named(new QWidget, QStringLiteral("picSynchro"));
    auto *grid = new QGridLayout(page);
    m_txtMaj = numberBox(QStringLiteral("txtMaj"));
    auto *upDown1 = named(new UpDown(m_txtMaj, 1, 60, 1, 5), QStringLiteral("UpDown1"));
    addNumberRow(*grid, QStringLiteral("Mise à jour toutes les (min) :"), m_txtMaj, upDown1);
    m_txtCache = numberBox(QStringLiteral("txtCache"));
    m_upDown2 = named(new UpDown(m_txtCache, 1, 60, 1, 5), QStringLiteral("UpDown2"));
    m_lblCache = named(addNumberRow(*grid, QStringLiteral("Garder en cache pour (jour) :"), m_txtCache, m_upDown2),
                       QStringLiteral("lblCache"));
    m_chkNoDel = named(new QCheckBox(QStringLiteral("Ne jamais effacer")), QStringLiteral("chkNoDel"));
    grid->addWidget(m_chkNoDel, grid->rowCount(), 1);
    grid->setRowStretch(grid->rowCount(), 1);
    return page;
}

QWidget *frmProprietes::buildAdvancedPage()
{
    auto *page = named(new QWidget, QStringLiteral("picAdvanced"));
    auto *grid = new QGridLayout(page);
    m_txtExtensions = textBox(QStringLiteral("txtExtensions"));
    m_txtExtensions->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    addRow(*grid, QStringLiteral("Extensions :"), m_txtExtensions);
    return page;
}

QWidget *frmProprietes::buildAuthenticationPage()
{
    auto *page = named(new QWidget, QStringLiteral("picAuthentication"));
    auto *grid = new QGridLayout(page);
    addRow(*grid, QStringLiteral("Nom d'utilisateur :"), m_txtUsername = lineEdit(QStringLiteral("txtUsername")));
    addRow(*grid, QStringLiteral("Mot de passe :"), m_txtPassword = passwordBox(QStringLiteral("txtPassword")));
    grid->setRowStretch(grid->rowCount(), 1);
    return page;
}

void frmProprietes::addAuthentication()
{
    m_tstrProp->addTab(QStringLiteral("authentication"), QStringLiteral("Authentification"), m_picAuthentication);
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
    put(m_txtVersion, versionName(feed->Version()));
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
    replace(tables.updatettl, m_txtMaj->text());
    // What the user typed is kept as typed, even where the next opening can't read it, and "never" is lost at zero
    // days, which has no sign; applyingWritesTheTables holds both.
    replace(tables.updatecache, m_chkNoDel->isChecked()
                                    ? QString::number(Numbers::toDouble(m_txtCache->text()) * -1, 'g', 15)
                                    : m_txtCache->text());
    replace(tables.havecache, QStringLiteral("0"));
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
