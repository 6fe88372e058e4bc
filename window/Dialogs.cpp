// SPDX-License-Identifier: GPL-3.0-or-later

#include "window/Dialogs.h"

#include "core/ExtensionsFile.h"
#include "core/FeedCatalogue.h"
#include "core/FeedTreeState.h"
#include "dialogs/CHelp.h"
#include "dialogs/frmAbout.h"
#include "dialogs/frmAuthentification.h"
#include "dialogs/frmExport.h"
#include "dialogs/frmExtensions.h"
#include "dialogs/frmImport.h"
#include "dialogs/frmProprietes.h"
#include "dialogs/frmRechercher.h"
#include "dialogs/frmSendMail.h"
#include "engine/CurrentFeed.h"
#include "exchange/OpmlDownload.h"
#include "exchange/SearchEndpoints.h"
#include "platform/Literals.h"
#include "platform/net/Downloader.h"
#include "platform/net/SmtpMail.h"
#include "window/FeedOpening.h"
#include "window/LongLived.h"
#include "window/ReadingSide.h"

#include <QTimer>

namespace {

/// What the status bar says of an import that is over.
QString importSummary(const ImportRun &run)
{
    const ImportRun::Outcome outcome = run.outcome();
    QString text = run.isComplete() ? u"Importation terminée\u00a0: "_s : u"Importation interrompue\u00a0: "_s;
    text += outcome.added == 0   ? u"aucun flux ajouté"_s
            : outcome.added == 1 ? u"1 flux ajouté"_s
                                 : QString::number(outcome.added) + u" flux ajoutés"_s;
    if (outcome.silent > 0)
        text += u", "_s + QString::number(outcome.silent) + u" sans réponse"_s;
    if (outcome.noFeed > 0)
        text += u", "_s + QString::number(outcome.noFeed) + (outcome.noFeed == 1 ? u" illisible"_s : u" illisibles"_s);
    return text;
}

} // namespace

Dialogs::Dialogs(Parts parts, Outside outside)
    : m_parts(std::move(parts)), m_outside(std::move(outside)), m_helpKey([this](qint32 topic) { showHelp(topic); })
{}

QString Dialogs::file(const QString &name) const
{
    return m_parts.longLived.directory.file(name);
}

/// Sets the credentials of the next download from the address box.
std::function<void(const QString &, const QString &)> Dialogs::credentialsSetter()
{
    return [&current = m_parts.longLived.current](const QString &username, const QString &password) {
        current.strUsername = username;
        current.strPassword = password;
    };
}

/// Opens through the network what the address box holds.
std::function<void()> Dialogs::loader()
{
    return [&opening = m_parts.opening] { opening.LoadFile(); };
}

void Dialogs::showOptions()
{
    frmOptions(&m_parts.form, m_parts.longLived.settings, m_outside.runAtStartup).exec();
}

void Dialogs::showSearchDialog(int tab)
{
    const frmRechercher::Port port{[this](const QString &url) { m_parts.reading.navigate(url); },
                                   [this](const QString &text) { m_parts.opening.setAddressText(text); },
                                   credentialsSetter(), loader()};
    frmRechercher(&m_parts.form, port, SearchEndpoints::configured(file(u"search-endpoints.ini"_s)), tab).exec();
}

void Dialogs::showImport(const QString &path)
{
    OpmlDownload download(m_outside.makeDownloader(), file(u"tmp.opml"_s));
    ImportRun run(m_outside.makeDownloader(), file(u"tmp.xml"_s), m_outside.wait, m_parts.AddFeed,
                  m_parts.longLived.rules);
    frmImport form(&m_parts.form, m_parts.messages, download, run);
    if (!path.isEmpty()) // once it is on show: the file may be refused by a box
        QTimer::singleShot(0, &form, [&form, path] { form.openFile(path); });
    form.exec();
    if (run.hasBegun())
        m_parts.setStatusText(importSummary(run));
}

void Dialogs::showExport()
{
    frmExport(&m_parts.form, file(u"feeds.xml"_s)).exec();
}

void Dialogs::showHelp(std::optional<qint32> topic)
{
    if (!m_help)
        m_help = m_outside.makeHelp();
    CHelp(*m_help).Show(file(u"Quillwire.chm"_s), u"W1"_s, topic);
}

void Dialogs::showAbout()
{
    frmAbout(&m_parts.form, m_parts.openInSystemBrowser).exec();
}

void Dialogs::showFeedProperties()
{
    const CurrentFeed &current = m_parts.longLived.current;
    if (!current.addressFeedShown && !m_parts.longLived.treeState.selected())
        return;
    frmProprietes form(&m_parts.form, {current.document, current.addressFeedShown, m_parts.opening.addressText(),
                                       [&state = m_parts.longLived.treeState] { return state.selected(); },
                                       m_parts.longLived.catalogue.tables, m_parts.longLived.cipher});
    if (form.fillFrom())
        form.exec();
}

void Dialogs::showExtensions()
{
    ExtensionsFile &file = m_parts.longLived.extensions;
    frmExtensions(&m_parts.form, m_parts.messages,
                  {file.extensions(), [&file](const ExtensionKey &key, bool on) { file.set(key, on); }})
        .exec();
}

void Dialogs::showMailDialog(const QString &text)
{
    const auto makeMail = [isEndAsked = m_outside.isEndAsked](std::function<void()> keepAlive) {
        return std::make_unique<SmtpMail>([isEndAsked, keepAlive = std::move(keepAlive)] {
            keepAlive();
            return !isEndAsked();
        });
    };
    frmSendMail(&m_parts.form, m_parts.longLived.settings, m_parts.messages, text, Waiting::repaintingWait(), makeMail)
        .exec();
}

void Dialogs::showAuthentication()
{
    frmAuthentification(&m_parts.form, {credentialsSetter(), loader()}).exec();
}
