#include "dialogs/frmExport.h"

#include "core/MainWindow.h"
#include "dialogs/DialogParts.h"
#include "platform/AnsiText.h"
#include "platform/Files.h"
#include "platform/RunTimeError.h"
#include "platform/XmlDocument.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include <pwd.h>
#include <unistd.h>

namespace {

void writeLine(QString &stream, const QString &line)
{
    stream += line;
    stream += QStringLiteral("\r\n");
}

// Nothing is escaped in any line, so that a name with "&" makes an ill-formed file; that is wanted.
void exportNode(const XmlNode &node, bool structured, QString &stream)
{
    for (const XmlNode &child : node.childNodes()) {
        const QString kind = child.nodeName();
        if (kind == QStringLiteral("dir")) {
            if (structured)
                writeLine(stream, QStringLiteral("<outline text=\"") + child.requiredAttribute(QStringLiteral("name")) +
                                      QStringLiteral("\" >"));
            exportNode(child, structured, stream);
            if (structured)
                writeLine(stream, QStringLiteral("</outline>"));
        } else if (kind == QStringLiteral("feed")) {
            writeLine(stream, QStringLiteral("<outline text=\"") + child.requiredAttribute(QStringLiteral("name")) +
                                  QStringLiteral("\" xmlUrl=\"") + child.requiredAttribute(QStringLiteral("url")) +
                                  QStringLiteral("\" />"));
        }
    }
}

} // namespace

frmExport::frmExport(MainWindow &window, AskFile askPath)
    : DialogBase(QStringLiteral("Exporter mes flux RSS"), window.frame()), m_window(window),
      m_askPath(std::move(askPath)), m_txtTitre(DialogParts::lineEdit(QStringLiteral("txtTitre"))),
      m_txtNom(DialogParts::lineEdit(QStringLiteral("txtNom"))),
      m_txtEmail(DialogParts::lineEdit(QStringLiteral("txtEmail"))),
      m_chkStructure(DialogParts::named(new QCheckBox(QStringLiteral("Exporter avec l'arborescence")),
                                        QStringLiteral("chkStructure")))
{
    if (!m_askPath)
        m_askPath = [this] {
            return FileDialogs::askSaveFile(this, QStringLiteral("Choisir le fichier OPML"),
                                            QStringLiteral("Fichiers OPML (*.opml)"));
        };

    auto *frame =
        DialogParts::named(new QGroupBox(QStringLiteral("Paramètres de la liste de flux")), QStringLiteral("Frame1"));
    auto *grid = new QGridLayout(frame);
    DialogParts::addRow(*grid, QStringLiteral("Titre :"), m_txtTitre);
    DialogParts::addRow(*grid, QStringLiteral("Nom :"), m_txtNom);
    DialogParts::addRow(*grid, QStringLiteral("E-Mail :"), m_txtEmail);
    grid->addWidget(new QLabel(QStringLiteral("(Les paramètres d'exportation sont optionnels)")), grid->rowCount(), 0,
                    1, 2);
    m_txtNom->setText(currentUserName());

    auto *content = new QWidget;
    auto *column = new QVBoxLayout(content);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(frame);
    column->addWidget(m_chkStructure);

    auto *cmdExporter = DialogParts::button(QStringLiteral("cmdExporter"), QStringLiteral("Exporter"));
    auto *cmdAnnuler = DialogParts::button(QStringLiteral("cmdAnnuler"), QStringLiteral("Annuler"));
    DialogParts::layOut(*this, content, DialogParts::buttonRow({cmdExporter, cmdAnnuler}));
    layout()->setSizeConstraint(QLayout::SetFixedSize);
    cmdExporter->setDefault(true);
    m_txtTitre->setFocus();

    connect(cmdExporter, &QPushButton::clicked, this, &frmExport::handleExport);
    connect(cmdAnnuler, &QPushButton::clicked, this, &frmExport::reject);
}

QString frmExport::currentUserName()
{
    if (const passwd *const user = getpwuid(geteuid()))
        return QString::fromLocal8Bit(user->pw_name);
    return qEnvironmentVariable("USER");
}

void frmExport::handleExport()
{
    const QString path = m_askPath();
    if (path.isEmpty())
        return;
    XmlDocument catalogue;
    if (catalogue.load(m_window.dataFile(QStringLiteral("feeds.xml"))) != XmlDocument::LoadResult::Loaded)
        return;

    QString stream;
    // Declared so whatever the code page of the system is.
    writeLine(stream, QStringLiteral("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>"));
    writeLine(stream, QStringLiteral("<opml version=\"1.1\">"));
    writeLine(stream, QStringLiteral("<head>"));
    writeLine(stream, QStringLiteral("<title>") + m_txtTitre->text() + QStringLiteral("</title>"));
    writeLine(stream, QStringLiteral("<ownerName>") + m_txtNom->text() + QStringLiteral("</ownerName>"));
    writeLine(stream, QStringLiteral("<ownerEmail>") + m_txtEmail->text() + QStringLiteral("</ownerEmail>"));
    writeLine(stream, QStringLiteral("</head>"));
    writeLine(stream, QStringLiteral("<body>"));
    exportNode(catalogue.selectSingleNode(QStringLiteral("favoris")), m_chkStructure->isChecked(), stream);
    writeLine(stream, QStringLiteral("</body>"));
    writeLine(stream, QStringLiteral("</opml>"));

    if (!AnsiText::holds(stream))
        throw RunTimeError::invalidCall();
    Files::write(path, AnsiText::toBytes(stream));
    accept();
}
