#include "dialogs/frmImport.h"

#include "controls/PictureButton.h"
#include "controls/ProgressBar.h"
#include "dialogs/DialogParts.h"
#include "exchange/ImportRun.h"
#include "exchange/OpmlDownload.h"
#include "platform/Messages.h"
#include "platform/Numbers.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QIcon>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalBlocker>
#include <QStackedLayout>
#include <QStyledItemDelegate>
#include <QTreeWidget>

using namespace DialogParts;

namespace {

constexpr int maxShownName = 500;

enum Role { KeyRole = Qt::UserRole, TagRole };

/// Paints names that are longer than any screen only as far as they can be seen: laying out megabytes takes seconds.
class NameDelegate final : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

protected:
    void initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const override
    {
        QStyledItemDelegate::initStyleOption(option, index);
        option->text.truncate(maxShownName);
    }
};

QGroupBox *page(int index, const QString &caption)
{
    return named(new QGroupBox(caption), arrayName(QStringLiteral("fraWizard"), index));
}

} // namespace

frmImport::frmImport(QWidget *owner, Messages &messages, OpmlDownload &download, ImportRun &run, AskFile askPath)
    : DialogBase(QStringLiteral("Importer des flux RSS"), owner), m_messages(messages), m_download(download),
      m_run(run), m_askPath(std::move(askPath))
{
    if (!m_askPath)
        m_askPath = [this] {
            return FileDialogs::askOpenFile(this, QStringLiteral("Ouvrir"), QStringLiteral("Fichier OPML (*.opml)"));
        };
    // No close box: the wizard is left through its buttons.
    setWindowFlags(Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint);

    auto *content = new QWidget;
    m_pages = new QStackedLayout(content);
    m_pages->addWidget(buildSourcePage());
    m_pages->addWidget(buildFilePage());
    m_pages->addWidget(buildWebPage());
    m_pages->addWidget(buildListPage());
    m_pages->addWidget(buildRunPanel());
    layOut(*this, content, buildButtons());
    m_cmdPrecedent->setEnabled(false);
    m_cmdTerminer->hide();
    m_cmdCanceller->hide();
    connectImport();
}

frmImport::~frmImport()
{
    m_run.stop();
}

void frmImport::connectImport()
{
    connect(&m_download, &OpmlDownload::fetched, this, &frmImport::handleFetched);
    connect(&m_download, &OpmlDownload::failed, this, &frmImport::handleDownloadFailed);
    connect(&m_run, &ImportRun::began, this, [this](const QString &name) {
        m_lblTitre->setText(QStringLiteral("Téléchargement de ") + name.left(maxShownName));
    });
    connect(&m_run, &ImportRun::passed, this, &frmImport::handlePassed);
    connect(&m_run, &ImportRun::ended, this, [this] { done(Accepted); });
}

QWidget *frmImport::buildSourcePage()
{
    auto *frame = page(0, QStringLiteral("Sélectionner une source"));
    m_optFromFile = named(new QRadioButton(QStringLiteral("À partir d'un fichier")), QStringLiteral("optSource_0"));
    auto *fromWeb = named(new QRadioButton(QStringLiteral("À partir d'un site web")), QStringLiteral("optSource_1"));
    m_optFromFile->setChecked(true);
    auto *picture = new QLabel;
    const int side = fontMetrics().height() * 4;
    picture->setPixmap(QIcon(QStringLiteral(":/icons/wizard.svg")).pixmap(QSize(side, side), devicePixelRatio()));

    auto *grid = new QGridLayout(frame);
    grid->setHorizontalSpacing(2 * edge);
    grid->addWidget(picture, 0, 0, 2, 1, Qt::AlignTop);
    grid->addWidget(m_optFromFile, 0, 1);
    grid->addWidget(fromWeb, 1, 1);
    grid->setColumnStretch(1, 1);
    grid->setRowStretch(2, 1);
    return frame;
}

QWidget *frmImport::buildFilePage()
{
    auto *frame = page(1, QStringLiteral("À partir d'un fichier"));
    m_txtOPMLPath = lineEdit(QStringLiteral("txtOPMLPath"));
    auto *image = named(new PictureButton(QStringLiteral("ouvrir-fichier"), QStringLiteral("Choisir le fichier OPML")),
                        QStringLiteral("Image1"));
    auto *grid = new QGridLayout(frame);
    addRow(*grid, QStringLiteral("Chemin :"), m_txtOPMLPath);
    grid->addWidget(image, grid->rowCount() - 1, 2);
    grid->setRowStretch(grid->rowCount(), 1);
    connect(image, &PictureButton::clicked, this, [this] {
        if (const QString path = m_askPath(); !path.isEmpty())
            m_txtOPMLPath->setText(path);
    });
    return frame;
}

QWidget *frmImport::buildWebPage()
{
    auto *frame = page(2, QStringLiteral("À partir d'un site web"));
    m_txtURL = lineEdit(QStringLiteral("txtURL"));
    m_txtURL->setText(QStringLiteral("http://"));
    auto *grid = new QGridLayout(frame);
    addRow(*grid, QStringLiteral("Adresse :"), m_txtURL);
    grid->setRowStretch(grid->rowCount(), 1);
    return frame;
}

QWidget *frmImport::buildListPage()
{
    m_tvwListeFlux = named(new QTreeWidget, QStringLiteral("tvwListeFlux"));
    m_tvwListeFlux->setAccessibleName(QStringLiteral("Flux à importer"));
    m_tvwListeFlux->setHeaderHidden(true);
    m_tvwListeFlux->setRootIsDecorated(false);
    m_tvwListeFlux->setUniformRowHeights(true);
    m_tvwListeFlux->setExpandsOnDoubleClick(false);
    m_tvwListeFlux->setItemDelegate(new NameDelegate(m_tvwListeFlux));
    m_tvwListeFlux->setMinimumSize(fontMetrics().averageCharWidth() * 34, fontMetrics().lineSpacing() * 10);
    m_tvwListeFlux->installEventFilter(this);
    m_chkCkeckAll = named(new QCheckBox(QStringLiteral("&Tout cocher")), QStringLiteral("chkCkeckAll"));

    auto *picDetails = named(new QWidget, QStringLiteral("picDetails"));
    m_txtTitre = lineEdit(QStringLiteral("txtTitre"));
    m_txtTitre->setReadOnly(true);
    m_txtTitre->setFocusPolicy(Qt::ClickFocus);
    m_txtDescription = textBox(QStringLiteral("txtDescription"));
    m_txtDescription->setReadOnly(true);
    m_txtDescription->setFocusPolicy(Qt::ClickFocus);
    auto *details = new QVBoxLayout(picDetails);
    details->setContentsMargins(0, 0, 0, 0);
    details->addWidget(label(QStringLiteral("Titre :"), m_txtTitre));
    details->addWidget(m_txtTitre);
    details->addWidget(label(QStringLiteral("Description :"), m_txtDescription));
    details->addWidget(m_txtDescription, 1);

    auto *frame = page(3, QStringLiteral("Sélectionner les flux à importer"));
    auto *grid = new QGridLayout(frame);
    grid->addWidget(m_tvwListeFlux, 0, 0);
    grid->addWidget(picDetails, 0, 1);
    grid->addWidget(m_chkCkeckAll, 1, 0);
    grid->setColumnStretch(0, 1);
    grid->setColumnStretch(1, 1);

    connect(m_tvwListeFlux, &QTreeWidget::itemClicked, this, [this](QTreeWidgetItem *item) {
        m_tvwListeFlux->setCurrentItem(item);
        showOutlineDescription(*item);
    });
    connect(m_tvwListeFlux, &QTreeWidget::itemChanged, this, &frmImport::handleItemChanged);
    connect(m_tvwListeFlux, &QTreeWidget::itemDoubleClicked, this, &frmImport::handleItemDoubleClicked);
    connect(m_chkCkeckAll, &QCheckBox::toggled, this, &frmImport::handleCheckAll);
    return frame;
}

QWidget *frmImport::buildRunPanel()
{
    auto *panel = named(new QGroupBox(QStringLiteral("Importation en cours")), QStringLiteral("fraImportation"));
    m_lblTitre = named(new QLabel(QStringLiteral("Téléchargement de ")), QStringLiteral("lblTitre"));
    m_lblTitre->setTextFormat(Qt::PlainText); // names come from the OPML file
    m_lblTitre->setWordWrap(true);
    m_lblTitre->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred); // no name widens the window
    m_vbalProgressBar1 = named(new ProgressBar, QStringLiteral("vbalProgressBar1"));
    m_vbalProgressBar1->setAccessibleName(QStringLiteral("Importation en cours"));
    m_cmdCanceller = button(QStringLiteral("cmdCanceller"), QStringLiteral("Annuler"));
    auto *column = new QVBoxLayout(panel);
    column->addWidget(m_lblTitre);
    column->addWidget(m_vbalProgressBar1);
    column->addWidget(m_cmdCanceller, 0, Qt::AlignRight);
    column->addStretch();
    connect(m_cmdCanceller, &QPushButton::clicked, this, &frmImport::handleStop);
    return panel;
}

QLayout *frmImport::buildButtons()
{
    m_cmdPrecedent = button(QStringLiteral("cmdPrecedent"), QStringLiteral("&Précédent"));
    m_cmdSuivant = button(QStringLiteral("cmdSuivant"), QStringLiteral("&Suivant"));
    m_cmdTerminer = button(QStringLiteral("cmdTerminer"), QStringLiteral("Terminer"));
    m_cmdAnnuler = button(QStringLiteral("cmdAnnuler"), QStringLiteral("&Annuler"));
    m_cmdSuivant->setDefault(true);
    // "Terminer" takes the place of "Suivant"; hidden buttons keep theirs.
    auto *grid = new QGridLayout;
    grid->setHorizontalSpacing(edge);
    grid->setColumnStretch(0, 1);
    grid->addWidget(m_cmdPrecedent, 0, 1);
    grid->addWidget(m_cmdSuivant, 0, 2);
    grid->addWidget(m_cmdTerminer, 0, 2);
    grid->addWidget(m_cmdAnnuler, 0, 3);
    for (QPushButton *const shown : {m_cmdPrecedent, m_cmdSuivant, m_cmdTerminer, m_cmdAnnuler}) {
        QSizePolicy policy = shown->sizePolicy();
        policy.setRetainSizeWhenHidden(true);
        shown->setSizePolicy(policy);
    }
    connect(m_cmdPrecedent, &QPushButton::clicked, this, &frmImport::handleBack);
    connect(m_cmdSuivant, &QPushButton::clicked, this, &frmImport::handleNext);
    connect(m_cmdTerminer, &QPushButton::clicked, this, &frmImport::handleFinish);
    connect(m_cmdAnnuler, &QPushButton::clicked, this, [this] { done(Rejected); });
    return grid;
}

void frmImport::showPage(qint16 number)
{
    m_wizardPage = number;
    m_pages->setCurrentIndex(number);
}

void frmImport::handleNext()
{
    m_previousPage = m_wizardPage;
    switch (m_wizardPage) {
    case 0:
        m_cmdPrecedent->setEnabled(true);
        showPage(m_optFromFile->isChecked() ? 1 : 2);
        break;
    case 1:
        takeOpmlFile(m_txtOPMLPath->text());
        break;
    case 2:
        // Nothing is disabled meanwhile: pressing again starts the download again.
        m_download.start(m_txtURL->text());
        break;
    default:
        break;
    }
}

void frmImport::handleBack()
{
    showPage(m_previousPage);
    switch (m_wizardPage) {
    case 0:
        m_cmdPrecedent->setEnabled(false);
        break;
    case 1:
    case 2:
        m_previousPage = 0;
        m_cmdTerminer->hide();
        m_cmdSuivant->show();
        break;
    default:
        m_previousPage = 2;
        break;
    }
}

void frmImport::takeOpmlFile(const QString &path)
{
    if (!m_opmlDocument.load(path)) {
        m_messages.show({QStringLiteral("Le fichier ") + path + QStringLiteral(" est incorrect"),
                         QStringLiteral("Avertissement"), Message::Icon::Exclamation});
        showPage(m_previousPage);
        return;
    }
    loadOpmlList();
    m_cmdSuivant->hide();
    m_cmdTerminer->show();
    showPage(3);
}

void frmImport::handleFetched(const QString &path)
{
    if (!m_run.hasBegun()) // what comes later comes too late
        takeOpmlFile(path);
}

void frmImport::handleDownloadFailed(qint32 status)
{
    if (m_run.hasBegun())
        return;
    if (status == 404)
        m_messages.show({QStringLiteral("Le fichier n'a pas été trouvé sur le serveur"), QStringLiteral("Erreur 404"),
                         Message::Icon::Exclamation});
    else
        m_messages.show({QString::number(status), QString()});
}

void frmImport::loadOpmlList()
{
    const QSignalBlocker quiet(m_tvwListeFlux);
    m_tvwListeFlux->clear();
    const OpmlDocument::List list = m_opmlDocument.list();
    m_txtTitre->setText(list.title);
    m_txtTitre->setCursorPosition(0);
    QList<QTreeWidgetItem *> items;
    items.reserve(static_cast<qsizetype>(list.feeds.size()));
    for (const OpmlDocument::Feed &feed : list.feeds) {
        auto *item = new QTreeWidgetItem({feed.text});
        item->setData(0, KeyRole, QString::number(feed.position));
        item->setData(0, TagRole, feed.address);
        item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable | Qt::ItemNeverHasChildren);
        item->setCheckState(0, Qt::Unchecked);
        items.append(item);
    }
    m_tvwListeFlux->addTopLevelItems(items);
    m_checkedCount = 0;
}

void frmImport::showOutlineDescription(const QTreeWidgetItem &item)
{
    const int index = item.data(0, KeyRole).toString().toInt();
    showText(*m_txtDescription, m_opmlDocument.description(index));
}

bool frmImport::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_tvwListeFlux && event->type() == QEvent::KeyPress) {
        // The control moves the selection itself, after this.
        const int key = static_cast<QKeyEvent *>(event)->key();
        const QTreeWidgetItem *const selected = m_tvwListeFlux->currentItem();
        const QTreeWidgetItem *next = nullptr;
        if (selected && key == Qt::Key_Down)
            next = m_tvwListeFlux->itemBelow(selected);
        else if (selected && key == Qt::Key_Up)
            next = m_tvwListeFlux->itemAbove(selected);
        if (next)
            showOutlineDescription(*next);
    }
    return DialogBase::eventFilter(watched, event);
}

void frmImport::countChecked(bool checked)
{
    m_checkedCount = Numbers::roundToInt16(m_checkedCount + (checked ? 1 : -1));
}

void frmImport::handleItemChanged(QTreeWidgetItem *item)
{
    countChecked(item->checkState(0) == Qt::Checked);
}

void frmImport::handleItemDoubleClicked(QTreeWidgetItem *item)
{
    const bool checked = item->checkState(0) != Qt::Checked;
    countChecked(checked);
    const QSignalBlocker quiet(m_tvwListeFlux);
    item->setCheckState(0, checked ? Qt::Checked : Qt::Unchecked);
    m_tvwListeFlux->setCurrentItem(item);
}

void frmImport::handleCheckAll(bool checked)
{
    const QSignalBlocker quiet(m_tvwListeFlux);
    m_checkedCount = 0;
    for (int i = 0; i < m_tvwListeFlux->topLevelItemCount(); ++i) {
        m_tvwListeFlux->topLevelItem(i)->setCheckState(0, checked ? Qt::Checked : Qt::Unchecked);
        if (checked)
            countChecked(true);
    }
}

void frmImport::handleFinish()
{
    m_pages->setCurrentWidget(m_cmdCanceller->parentWidget());
    m_cmdPrecedent->hide();
    m_cmdAnnuler->hide();
    m_cmdTerminer->hide();
    m_cmdCanceller->show();
    m_cmdCanceller->setFocus();

    std::vector<ImportRun::Feed> ticked;
    for (int i = 0; i < m_tvwListeFlux->topLevelItemCount(); ++i) {
        const QTreeWidgetItem *const item = m_tvwListeFlux->topLevelItem(i);
        if (item->checkState(0) == Qt::Checked)
            ticked.push_back({item->text(0), item->data(0, TagRole).toString()});
    }
    m_run.run(ticked); // ends by closing the dialog
}

void frmImport::handlePassed(int count)
{
    m_vbalProgressBar1->setValue(Numbers::roundToInt16(static_cast<double>(count) / m_checkedCount * 100));
}

void frmImport::handleStop()
{
    m_run.stop();
    done(Rejected);
}

void frmImport::reject()
{
    if (!m_run.hasBegun())
        done(Rejected);
}

void frmImport::closeEvent(QCloseEvent *event)
{
    event->ignore();
}
