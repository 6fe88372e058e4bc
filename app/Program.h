// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "core/ExtensionsFile.h"
#include "core/FeedCatalogue.h"
#include "core/FeedTreeState.h"
#include "core/SettingsFile.h"
#include "engine/CurrentFeed.h"
#include "engine/FeedOpener.h"
#include "engine/StandardDates.h"
#include "engine/UpdateScheduler.h"
#include "platform/net/InstanceServer.h"
#include "support/clsDES.h"
#include "window/LongLived.h"

#include <QList>
#include <QObject>
#include <QRect>

#include <functional>
#include <memory>

class Downloader;
class Messages;
class ProgramWindow;

/// The program between its entry and its window: it builds what lives from start to end, brings the window up in the
/// order of the start, and ends both in the order of the road out. It knows no widget.
class Program : public QObject
{
    Q_OBJECT

public:
    /// What the program works with. References aren't owned. All functions must be set.
    struct Surroundings
    {
        DataDirectory directory;
        QByteArray settingsTemplate; ///< what a missing params.xml is made of
        ScreenScale scale;
        Messages &messages;
        Clock clock = {};
        Wait wait = {};
        std::function<bool()> isConnected = {}; ///< whether a network connection exists
        std::function<std::unique_ptr<Downloader>()> makeDownloader = {};
        QString runtimeDirectory = {};              ///< where a second start is listened for
        std::function<void()> releaseInstance = {}; ///< gives the instance lock back
    };

    explicit Program(Surroundings surroundings);
    ~Program() override;

    /// Sweeps what a kill left behind, and reads extensions.ini and params.xml. False when it can't be used: the user
    /// was told then, the instance lock is given back, and nothing else must be called.
    bool loadSettings();

    const AppSettings &settings() const { return m_settings; }

    /// What the window is handed. loadSettings() comes first.
    LongLived longLived();

    /// Brings `window` up: its place on one of `screens`, its parts, the start page, the catalogue, the tray icon; then
    /// listens for a second start, opens `commandLine` unless it is empty, starts one of the update timers, and shows
    /// the window or leaves it in the tray, as the settings say. Throws the RunTimeErrors of all these. The window must
    /// live until the end.
    void start(ProgramWindow &window, const QList<QRect> &screens, const QString &commandLine);

    /// The one road out, once: whatever asks for the end comes here. Stops updates, removes the popup, saves the feed
    /// on show, takes the band layout, removes the tray icon, stops listening, then saveAndClose(). Throws their
    /// RunTimeErrors.
    void end();

    /// For the end by a run-time error: from here on nothing is saved or downloaded any more, and end() does nothing.
    void abandon();

    bool isEnded() const { return m_ended; }

Q_SIGNALS:
    /// Everything is saved; the process can end.
    void ended();

private:
    void silence();
    void saveAndClose();

    Surroundings m_surroundings;
    AppSettings m_settings;
    SettingsFile m_settingsFile;
    ExtensionsFile m_extensions;
    QStringList m_brokenExtensions; ///< keys of the file that told nothing
    Dates m_dates;
    StandardDates m_standardDates;
    Choice<AddressForms> m_addresses;
    FeedRules m_rules;
    clsDES m_DESCrypt;
    FeedTree m_tree;
    FeedTreeState m_treeState;
    FeedCatalogue m_catalogue;
    CurrentFeed m_current;
    std::unique_ptr<Downloader> m_dwlFeed;
    std::unique_ptr<Downloader> m_dwlUpdate;
    FeedOpener m_opener;
    UpdateScheduler m_scheduler;
    InstanceServer m_server;
    ProgramWindow *m_window = nullptr; ///< null before start()
    bool m_ended = false;
};
