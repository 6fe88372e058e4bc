// SPDX-License-Identifier: GPL-3.0-or-later

#include "window/frmPrinc.h"

#include "controls/ScreenReader.h"
#include "engine/AddFeed.h"
#include "engine/CurrentFeed.h"
#include "platform/Literals.h"
#include "reading/BrowserPane.h"

#include <QApplication>
#include <QCloseEvent>
#include <QTimer>

namespace {
constexpr const char *tokenVariable = "XDG_ACTIVATION_TOKEN";

/// The path in a text of the command line that names an OPML file, as a desktop hands it over: between double quotes.
/// "" for every other text.
QString opmlFileOf(const QString &text)
{
    const bool named = text.startsWith(u'"') && text.endsWith(".opml\""_L1, Qt::CaseInsensitive);
    return named ? text.sliced(1, text.size() - 2) : QString();
}

} // namespace

frmPrinc::frmPrinc(const LongLived &longLived, Desktop desktop, Dialogs::Outside outside)
    : m_longLived(longLived), m_desktop(std::move(desktop)), m_dialogs(dialogParts(), std::move(outside)),
      m_frame({*this, m_longLived, m_desktop.scale, m_desktop.messages}),
      m_reading({m_longLived, m_frame, [this](const QString &text) { m_dialogs.showMailDialog(text); },
                 [this](const QString &url) { openInSystemBrowser(url); }, [this] { m_dialogs.showExtensions(); }}),
      m_opening(openingParts()),
      m_updateDisplay({*this, m_longLived.scheduler, m_longLived.settings, m_frame, m_reading.pane()}),
      m_treeCommands(treeCommandParts()), m_keys(*this, m_frame.panes())
{
    ScreenReader::setRole(*this, QAccessible::Window);
    setWindowTitle(u"Quillwire"_s);
    setWindowIcon(QIcon(u":/icons/quillwire.svg"_s));
}

frmPrinc::~frmPrinc() = default;

Dialogs::Parts frmPrinc::dialogParts()
{
    return {*this,
            m_longLived,
            m_desktop.messages,
            m_opening,
            m_reading,
            [this](const QString &url) { openInSystemBrowser(url); },
            [this](const std::shared_ptr<CachedFeed> &document, const QString &url) { AddFeed(document, url); },
            [this](const QString &text) { m_frame.setStatusText(text); }};
}

FeedOpening::Parts frmPrinc::openingParts()
{
    const auto askFeedFile = [this] {
        return m_desktop.askFeedFile(this, u"Ouvrir un fichier RSS"_s,
                                     u"Fichiers XML (*.xml);;Fichiers RSS (*.rss);;"
                                     "Fichiers RDF (*.rdf);;Tous les fichiers (*)"_s);
    };
    return {
        m_longLived.opener, m_frame, m_reading.pane(), m_desktop.messages, [this] { m_dialogs.showAuthentication(); },
        askFeedFile};
}

TreeCommands::Parts frmPrinc::treeCommandParts()
{
    const auto inputBox = [this](const QString &prompt, const QString &title) {
        return m_desktop.inputBox(this, prompt, title);
    };
    return {m_longLived.tree,
            m_longLived.treeState,
            m_longLived.catalogue,
            m_longLived.opener,
            m_frame,
            m_desktop.messages,
            inputBox,
            homePage()};
}

QString frmPrinc::homePage() const
{
    return m_longLived.directory.file(u"home.htm"_s);
}

// --- The start

void frmPrinc::place(const QRect &pixels)
{
    move(pixels.topLeft());
    resize(pixels.size());
}

void frmPrinc::build()
{
    m_frame.build();
    m_commands = std::make_unique<MainCommands>(
        MainCommands::Parts{m_frame, m_dialogs, m_reading.pane(), m_treeCommands, m_longLived.treeState,
                            m_longLived.scheduler, [this] { postClose(); }, [this] { AddFeed(nullptr, QString()); },
                            [this](const QString &url) { openInSystemBrowser(url); }});
}

void frmPrinc::showStartPage()
{
    m_reading.navigate(homePage());
}

void frmPrinc::showTrayIcon(bool shown)
{
    if (!shown) {
        m_trayIcon.reset();
        return;
    }
    m_trayIcon = std::make_unique<TrayIcon>(m_desktop.makeTrayShell, windowIcon());
    connect(m_trayIcon.get(), &TrayIcon::openAsked, this, [this] { comeForward({}); });
    connect(m_trayIcon.get(), &TrayIcon::quitAsked, this, &frmPrinc::postClose);
    connect(m_trayIcon.get(), &TrayIcon::doubleClicked, this, &frmPrinc::handleTrayDoubleClick);
}

void frmPrinc::openCommandLine(const QString &text)
{
    const QString path = opmlFileOf(text);
    if (path.isEmpty())
        m_opening.openCommandLine(text);
    else // from the event loop: the start, or a second start that waits, isn't held up by a wizard
        QTimer::singleShot(0, this, [this, path] { importFile(path); });
}

void frmPrinc::importFile(const QString &path)
{
    if (QApplication::activeModalWidget())
        m_frame.setStatusText(u"Fermez la fenêtre ouverte, puis ouvrez à nouveau : "_s + path);
    else
        m_dialogs.showImport(path);
}

/// Once more when the start page is there: it clears the bar while it comes.
void frmPrinc::tell(const QString &text)
{
    m_frame.setStatusText(text);
    connect(
        m_frame.WebBrowser1, &BrowserPane::DocumentComplete, this, [this, text] { m_frame.setStatusText(text); },
        static_cast<Qt::ConnectionType>(Qt::QueuedConnection | Qt::SingleShotConnection));
}

// --- The end

void frmPrinc::postClose()
{
    QMetaObject::invokeMethod(
        this,
        [this] {
            close();
            Q_EMIT closeAsked(); // a window that was never shown gets no close event
        },
        Qt::QueuedConnection);
}

void frmPrinc::closeEvent(QCloseEvent *event)
{
    Q_EMIT closeAsked();
    event->accept();
}

// --- The keyboard

bool frmPrinc::focusNextPrevChild(bool next)
{
    // The engine of the page makes its widgets late, and others with each process: they would come last.
    m_frame.setPaneOrder();
    return QWidget::focusNextPrevChild(next);
}

// --- Minimising and coming back

void frmPrinc::resizeEvent(QResizeEvent *)
{
    if (!isMinimized())
        m_frame.recalcLayout();
}

void frmPrinc::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    // Without an icon that leads back to it the window stays minimised, as other windows do. So it does under a dialog:
    // that would go with it, and while it is open the icon can't bring either back.
    if (event->type() == QEvent::WindowStateChange && isMinimized() && m_trayIcon && m_trayIcon->isAvailable() &&
        !QApplication::activeModalWidget())
        QMetaObject::invokeMethod(
            this,
            [this] {
                m_iconic = true;
                hide();
            },
            Qt::QueuedConnection);
}

/// A double click restores what was minimised; a window that was never shown comes by the menu's entry alone, so that
/// who starts the program hidden isn't met by it at a slip of the hand.
void frmPrinc::handleTrayDoubleClick()
{
    openIcon();
    raise();
    activateWindow();
}

void frmPrinc::openIcon()
{
    if (!m_iconic && !isMinimized())
        return;
    m_iconic = false;
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
}

void frmPrinc::comeForward(const QByteArray &activationToken)
{
    openIcon();
    show();
    raise();
    // Under Wayland Qt takes the token from the environment, where it isn't left for the programs that we start.
    if (!activationToken.isEmpty())
        qputenv(tokenVariable, activationToken);
    activateWindow();
    qunsetenv(tokenVariable);
}

void frmPrinc::hideToTray()
{
    if (m_trayIcon && m_trayIcon->isAvailable())
        hide();
    else
        showMinimized();
}

void frmPrinc::takeHandOver(const QString &text, const QByteArray &activationToken)
{
    const bool wasHidden = !isVisible();
    if (wasHidden)
        comeForward(activationToken);
    openCommandLine(text);
    comeForward(wasHidden ? QByteArray() : activationToken); // a token is good for once
}

// --- What dialogs and commands ask for

/// An empty address stands for the text of the address box.
void frmPrinc::AddFeed(const std::shared_ptr<CachedFeed> &document, const QString &strURL)
{
    ::AddFeed(document, strURL.isEmpty() ? m_opening.addressText() : strURL, m_longLived.current,
              m_longLived.catalogue);
}

void frmPrinc::openInSystemBrowser(const QString &url)
{
    if (!m_desktop.openInSystemBrowser(url))
        m_frame.setStatusText(u"Impossible d'ouvrir : "_s + url);
}
