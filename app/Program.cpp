// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/Program.h"

#include "app/StartPlace.h"
#include "platform/Literals.h"
#include "platform/net/Downloader.h"
#include "window/ProgramWindow.h"

#include <utility>

Program::Program(Surroundings surroundings)
    : m_surroundings(std::move(surroundings)),
      m_settingsFile(m_surroundings.directory.file(u"params.xml"_s), m_surroundings.settingsTemplate,
                     m_surroundings.scale, m_surroundings.messages),
      m_extensions(m_surroundings.directory.file(u"extensions.ini"_s)), m_standardDates(m_dates),
      m_addresses(AddressForms::usual, AddressForms::secure, m_extensions.extensions().https),
      m_rules{Choice<FormatSet>(usualFormats(), allFormats(), m_extensions.extensions().formats),
              Choice<FeedReading>(exactReading(), mendingReading(), m_extensions.extensions().repair),
              Choice<ItemAddresses>(writtenAddresses(), wholeAddresses(), m_extensions.extensions().pages)},
      m_treeState(m_tree), m_catalogue(m_surroundings.directory, m_tree, m_treeState, m_DESCrypt, m_surroundings.clock),
      m_dwlFeed(m_surroundings.makeDownloader()), m_dwlUpdate(m_surroundings.makeDownloader()),
      m_opener(m_surroundings.directory, m_current, *m_dwlFeed, m_addresses),
      m_scheduler({m_surroundings.directory, m_tree, m_treeState, m_catalogue.tables, m_current, m_DESCrypt,
                   *m_dwlUpdate, m_surroundings.isConnected, m_surroundings.clock, m_surroundings.wait, m_addresses,
                   m_rules}),
      m_server(m_surroundings.runtimeDirectory)
{
    m_current.document = std::make_shared<CachedFeed>(Waiting::systemClock(), m_rules);
}

Program::~Program() = default;

bool Program::loadSettings()
{
    m_surroundings.directory.sweepLeftovers();
    m_brokenExtensions = m_extensions.load();
    if (m_settingsFile.loadSettings(m_settings))
        return true;
    m_surroundings.releaseInstance();
    return false;
}

LongLived Program::longLived()
{
    return {m_surroundings.directory,
            m_settings,
            m_extensions,
            m_addresses,
            Choice<DateReader>(m_dates, m_standardDates, m_extensions.extensions().dates),
            m_rules,
            Choice<PageText>(PageText::ansi, PageText::utf8, m_extensions.extensions().pages),
            m_tree,
            m_treeState,
            m_catalogue,
            m_DESCrypt,
            m_current,
            m_opener,
            m_scheduler};
}

void Program::start(ProgramWindow &window, const QList<QRect> &screens, const QString &commandLine)
{
    m_window = &window;
    window.place(startPlace(m_settings, screens));
    window.build();
    window.showStartPage();
    m_catalogue.loadCatalogue();
    if (!m_brokenExtensions.isEmpty())
        window.tell(u"extensions.ini, valeur illisible : "_s + m_brokenExtensions.join(u", "_s));
    window.showTrayIcon(true);
    connect(&m_server, &InstanceServer::textReceived, this,
            [&window](const QString &text, const QByteArray &token) { window.takeHandOver(text, token); });
    connect(&m_server, &InstanceServer::activationAsked, this,
            [&window](const QByteArray &token) { window.comeForward(token); });
    m_server.listen();
    if (!commandLine.isEmpty())
        window.openCommandLine(commandLine);
    m_scheduler.start(m_settings.updateAtStart);
    if (m_ended)
        return;
    if (m_settings.startMode == u"Minimisé"_s)
        window.hideToTray();
    else
        window.present();
}

void Program::silence()
{
    m_scheduler.stop();
    m_dwlFeed->blockSignals(true);
    m_dwlUpdate->blockSignals(true);
}

void Program::end()
{
    if (std::exchange(m_ended, true))
        return;
    silence();
    m_window->dismissPopup();
    m_current.document->Save();
    m_settings.rebarLayout = m_window->takeBandLayout();
    m_window->showTrayIcon(false);
    m_server.close();
    saveAndClose();
    Q_EMIT ended();
}

void Program::saveAndClose()
{
    m_catalogue.saveCatalogueState();
    m_settingsFile.saveSettings(m_settings, m_window->geometryInTwips(), [this] { saveAndClose(); });
    m_surroundings.releaseInstance();
}

void Program::abandon()
{
    m_ended = true;
    silence();
    m_server.close();
}
