// SPDX-License-Identifier: GPL-3.0-or-later

#include "dialogs/HelpViewer.h"

#include "controls/ScreenReader.h"
#include "dialogs/DialogParts.h"
#include "dialogs/HelpBrowser.h"
#include "platform/Literals.h"

#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>
#include <QHelpContentWidget>
#include <QHelpEngine>
#include <QHelpIndexWidget>
#include <QHelpLink>
#include <QHelpSearchEngine>
#include <QIcon>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QScreen>
#include <QSplitter>
#include <QStandardPaths>
#include <QTabWidget>
#include <QToolBar>
#include <QToolButton>
#include <QVBoxLayout>
#include <QWindow>

#include <utility>

using DialogParts::named;

namespace {

constexpr int urlRole = Qt::UserRole;
constexpr int maxResults = 500;

enum Tab { ContentsTab, IndexTab, SearchTab };

/// The help file of a path that may name a window type behind ">".
QString fileOfPath(const QString &path)
{
    return path.section(QLatin1Char('>'), 0, 0);
}

} // namespace

HelpViewer::HelpViewer(QStringList candidates, QString cacheFolder, std::function<void(const QString &)> openExternal,
                       QWidget *parent)
    : QMainWindow(parent), m_candidates(std::move(candidates)), m_cacheFolder(std::move(cacheFolder)),
      m_openExternal(std::move(openExternal))
{
    setWindowTitle(u"Aide de Quillwire"_s);
    m_page = named(new HelpBrowser, u"page"_s);
    m_page->setAccessibleName(u"Page de l'aide"_s);
    m_tabs = named(new QTabWidget, u"tabs"_s);
    ScreenReader::setRole(*m_tabs, QAccessible::Pane);
    m_tabs->setAccessibleName(u"Onglets"_s);
    auto *splitter = new QSplitter;
    splitter->addWidget(m_tabs);
    splitter->addWidget(m_page);
    splitter->setStretchFactor(1, 1);
    splitter->setChildrenCollapsible(false);
    setCentralWidget(splitter);
    buildToolBar();
    const int unit = fontMetrics().averageCharWidth();
    splitter->setSizes({40 * unit, 90 * unit});
    resize(QSize(130 * unit, 80 * unit).boundedTo(screen()->availableSize()));
    setContextMenuPolicy(Qt::PreventContextMenu); // its menu would hide the buttons for good
    connect(m_page, &HelpBrowser::anchorClicked, this, &HelpViewer::handleAnchor);
}

HelpViewer::~HelpViewer()
{
    m_page->setEngine(nullptr);
}

QString HelpViewer::defaultCacheFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::CacheLocation) + u"/help"_s;
}

void HelpViewer::buildToolBar()
{
    QToolBar *const bar = addToolBar(u"Navigation"_s);
    bar->setMovable(false);
    bar->findChild<QToolButton *>(u"qt_toolbar_ext_button"_s)->setAccessibleName(u"Autres boutons"_s);
    bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    const auto icon = [](const char *name) { return QIcon(u":/icons/"_s + QLatin1String(name) + u".svg"_s); };
    QAction *const back = bar->addAction(icon("precedent"), u"Précédent"_s, m_page, &HelpBrowser::backward);
    QAction *const forward = bar->addAction(icon("suivant"), u"Suivant"_s, m_page, &HelpBrowser::forward);
    QAction *const home = bar->addAction(u"Accueil"_s, this, &HelpViewer::showHome);
    back->setObjectName(u"back"_s);
    forward->setObjectName(u"forward"_s);
    home->setObjectName(u"home"_s);
    back->setShortcut(QKeySequence::Back);
    forward->setShortcut(QKeySequence::Forward);
    home->setShortcut(Qt::ALT | Qt::Key_Home);
    back->setEnabled(false);
    forward->setEnabled(false);
    connect(m_page, &HelpBrowser::backwardAvailable, back, &QAction::setEnabled);
    connect(m_page, &HelpBrowser::forwardAvailable, forward, &QAction::setEnabled);
}

void HelpViewer::buildPanes()
{
    QHelpContentWidget *const contents = m_engine->contentWidget();
    contents->setAccessibleName(u"Sommaire"_s);
    m_tabs->addTab(named(contents, u"contents"_s), u"Sommaire"_s);
    m_tabs->addTab(buildIndexPane(), u"Index"_s);
    m_tabs->addTab(buildSearchPane(), u"Rechercher"_s);
    connect(contents, &QHelpContentWidget::linkActivated, this, &HelpViewer::showUrl);
    connect(contents, &QHelpContentWidget::clicked, this, [this, contents](const QModelIndex &index) {
        if (const QHelpContentItem *const item = m_engine->contentModel()->contentItemAt(index))
            showUrl(item->url());
        contents->setFocus();
    });
    connect(m_engine->contentModel(), &QHelpContentModel::contentsCreated, contents,
            [contents] { contents->expandToDepth(0); });
}

QWidget *HelpViewer::buildIndexPane()
{
    auto *pane = new QWidget;
    auto *filter = named(new QLineEdit, u"filter"_s);
    filter->setPlaceholderText(u"Mot cherché"_s);
    filter->setAccessibleName(u"Mot cherché"_s);
    filter->setClearButtonEnabled(true);
    filter->findChild<QToolButton *>()->setAccessibleName(u"Effacer"_s);
    QHelpIndexWidget *const index = named(m_engine->indexWidget(), u"index"_s);
    index->setAccessibleName(u"Index"_s);
    auto *column = new QVBoxLayout(pane);
    column->addWidget(filter);
    column->addWidget(index);
    connect(filter, &QLineEdit::textChanged, index, [index](const QString &text) { index->filterIndices(text); });
    connect(filter, &QLineEdit::returnPressed, index, &QHelpIndexWidget::activateCurrentItem);
    connect(index, &QHelpIndexWidget::documentActivated, this,
            [this](const QHelpLink &document) { showUrl(document.url); });
    connect(index, &QHelpIndexWidget::documentsActivated, this, [this](const QList<QHelpLink> &documents) {
        if (!documents.isEmpty())
            showUrl(documents.constFirst().url);
    });
    connect(index, &QHelpIndexWidget::clicked, index, &QHelpIndexWidget::activateCurrentItem);
    return pane;
}

QWidget *HelpViewer::buildSearchPane()
{
    auto *pane = new QWidget;
    m_query = named(new QLineEdit, u"query"_s);
    m_query->setAccessibleName(u"Texte à rechercher"_s);
    auto *start = DialogParts::button(u"search"_s, u"Rechercher"_s);
    m_state = named(new QLabel, u"state"_s);
    m_state->setWordWrap(true);
    m_results = named(new QListWidget, u"results"_s);
    m_results->setAccessibleName(u"Pages trouvées"_s);
    auto *column = new QVBoxLayout(pane);
    auto *row = new QHBoxLayout;
    row->addWidget(m_query);
    row->addWidget(start);
    column->addLayout(row);
    column->addWidget(m_state);
    column->addWidget(m_results);
    connect(m_query, &QLineEdit::returnPressed, this, &HelpViewer::startSearch);
    connect(start, &QPushButton::clicked, this, &HelpViewer::startSearch);
    const auto open = [this](const QListWidgetItem *item) { showUrl(item->data(urlRole).toUrl()); };
    connect(m_results, &QListWidget::itemClicked, this, open);
    connect(m_results, &QListWidget::itemActivated, this, open);
    return pane;
}

bool HelpViewer::openHelpFile(const QString &path)
{
    if (m_engine)
        return true;
    const QString wanted = QFileInfo(fileOfPath(path)).completeBaseName();
    QString helpFile;
    for (const QString &candidate : std::as_const(m_candidates)) {
        const QFileInfo file(candidate);
        if (helpFile.isEmpty() && file.isFile() && file.completeBaseName() == wanted)
            helpFile = file.absoluteFilePath();
    }
    // What can't be opened here isn't a help file; the engine would only say so on the console.
    if (helpFile.isEmpty() || QHelpEngineCore::namespaceName(helpFile).isEmpty())
        return false;

    const QString collection = u"/Quillwire.qhc"_s;
    if (QDir().mkpath(m_cacheFolder)) {
        if (openCollection(m_cacheFolder + collection, helpFile))
            return true;
        QFile::remove(m_cacheFolder + collection); // damaged, or of another version
        if (openCollection(m_cacheFolder + collection, helpFile))
            return true;
    }
    m_temporaryFolder.emplace();
    return m_temporaryFolder->isValid() && openCollection(m_temporaryFolder->path() + collection, helpFile);
}

bool HelpViewer::openCollection(const QString &collection, const QString &helpFile)
{
    auto engine = std::make_unique<QHelpEngine>(collection);
    engine->setReadOnly(false);
    if (!engine->setupData())
        return false;
    m_namespace = QHelpEngineCore::namespaceName(helpFile);
    const QString known = engine->documentationFileName(m_namespace);
    if (known.isEmpty() || QFileInfo(known) != QFileInfo(helpFile)) {
        if (!known.isEmpty())
            engine->unregisterDocumentation(m_namespace);
        if (!engine->registerDocumentation(helpFile) || !engine->setupData())
            return false;
    }
    m_engine = std::move(engine);
    m_page->setEngine(m_engine.get());
    buildPanes();

    QHelpSearchEngine *const search = m_engine->searchEngine();
    connect(search, &QHelpSearchEngine::indexingFinished, this, [this] {
        m_searchable = true;
        if (!m_pendingQuery.isEmpty())
            m_engine->searchEngine()->search(std::exchange(m_pendingQuery, QString()));
    });
    connect(search, &QHelpSearchEngine::searchingFinished, this, &HelpViewer::handleSearchFinished);
    search->scheduleIndexDocumentation();
    return true;
}

bool HelpViewer::event(QEvent *event)
{
    if (event->type() == QEvent::WindowBlocked)
        standAboveModalWindow();
    return QMainWindow::event(event);
}

/// A modal window blocks all others but those that stand above it.
void HelpViewer::standAboveModalWindow()
{
    QWindow *const modal = QGuiApplication::modalWindow();
    if (!windowHandle())
        return;
    windowHandle()->setTransientParent(modal);
    // The one below it blocks then, and nobody says so.
    if (modal)
        connect(modal, &QObject::destroyed, this, &HelpViewer::standAboveModalWindow, Qt::UniqueConnection);
}

void HelpViewer::htmlHelp(const QString &path, HelpCommand command, const HelpData &argument)
{
    show();
    raise();
    activateWindow();
    if (!openHelpFile(path)) {
        showProblem(path);
        return;
    }
    switch (command) {
    case HelpCommand::Contents:
        m_tabs->setCurrentIndex(ContentsTab);
        break;
    case HelpCommand::Index:
        m_tabs->setCurrentIndex(IndexTab);
        break;
    case HelpCommand::Search:
        m_tabs->setCurrentIndex(SearchTab);
        if (const auto *const query = std::get_if<HelpQuery>(&argument)) {
            m_query->setText(query->text);
            if (query->execute)
                startSearch();
        }
        break;
    case HelpCommand::Topic:
        if (const auto *const number = std::get_if<qint32>(&argument)) {
            showTopic(*number);
            return;
        }
        break;
    }
    if (m_page->source().isEmpty())
        showHome();
}

void HelpViewer::showProblem(const QString &path)
{
    m_page->setPlainText(u"Le fichier d'aide "_s + fileOfPath(path) + u" est introuvable ou illisible."_s);
}

void HelpViewer::showTopic(qint32 number)
{
    const QList<QHelpLink> pages = m_engine->documentsForIdentifier(u"topic-"_s + QString::number(number));
    if (pages.isEmpty())
        showHome();
    else
        showUrl(pages.constFirst().url);
}

void HelpViewer::showHome()
{
    if (m_engine)
        showUrl(QUrl(u"qthelp://"_s + m_namespace + u"/doc/index.html"_s));
}

void HelpViewer::showUrl(const QUrl &url)
{
    m_page->setSource(url);
}

void HelpViewer::startSearch()
{
    m_results->clear();
    const QString text = m_query->text().trimmed();
    if (text.isEmpty())
        return;
    m_state->setText(u"Recherche en cours..."_s);
    if (m_searchable)
        m_engine->searchEngine()->search(text);
    else
        m_pendingQuery = text; // until the text of the pages is indexed
}

void HelpViewer::handleSearchFinished()
{
    const QList<QHelpSearchResult> found = m_engine->searchEngine()->searchResults(0, maxResults);
    m_results->clear();
    for (const QHelpSearchResult &result : found) {
        auto *item = new QListWidgetItem(result.title(), m_results);
        item->setData(urlRole, result.url());
    }
    m_state->setText(found.isEmpty() ? u"Aucune page trouvée"_s
                                     : u"Pages trouvées : "_s + QString::number(found.size()));
}

void HelpViewer::handleAnchor(const QUrl &url)
{
    const QUrl target = m_page->source().resolved(url);
    if (target.scheme() == u"qthelp"_s)
        showUrl(target);
    else
        m_openExternal(target.toString());
}
