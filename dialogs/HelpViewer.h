// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "dialogs/HelpSystem.h"

#include <QMainWindow>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <functional>
#include <memory>
#include <optional>

class HelpBrowser;
class QHelpEngine;
class QLabel;
class QLineEdit;
class QListWidget;
class QTabWidget;
class QUrl;

/// The help window: contents, index and full-text search beside the page. It can be used while a dialog or a box is
/// open.
///
/// The help file that the program asks for is known by its base name alone ("Quillwire" of "Quillwire.chm"): what is
/// opened is the first of the candidate files that exists. What Qt keeps beside an opened help file (its collection and
/// the search index) lies in a folder of the user's, never beside the help file itself.
class HelpViewer final : public QMainWindow, public HelpSystem
{
    Q_OBJECT

public:
    /// `candidates`: paths where the compiled help file may lie, the best first. `cacheFolder`: where the collection is
    /// kept; it is made when missing, and when it can't be used a temporary one serves. `openExternal` gets addresses
    /// that lead out of the help. Nothing is read before the first request.
    HelpViewer(QStringList candidates, QString cacheFolder, std::function<void(const QString &url)> openExternal,
               QWidget *parent = nullptr);
    ~HelpViewer() override;

    /// The user's folder for the collection.
    static QString defaultCacheFolder();

    /// Shows what is asked. When the help file is missing or broken the page says so; a topic that the help doesn't
    /// have shows the start page.
    void htmlHelp(const QString &path, HelpCommand command, const HelpData &argument) override;

protected:
    bool event(QEvent *event) override;

private:
    void standAboveModalWindow();
    bool openHelpFile(const QString &path);
    bool openCollection(const QString &collection, const QString &helpFile);
    void buildToolBar();
    void buildPanes();
    QWidget *buildIndexPane();
    QWidget *buildSearchPane();
    void showProblem(const QString &path);
    void showTopic(qint32 number);
    void showHome();
    void showUrl(const QUrl &url);
    void startSearch();
    void handleSearchFinished();
    void handleAnchor(const QUrl &url);

    QStringList m_candidates;
    QString m_cacheFolder;
    std::function<void(const QString &)> m_openExternal;
    std::optional<QTemporaryDir> m_temporaryFolder;
    std::unique_ptr<QHelpEngine> m_engine;
    QString m_namespace;
    QString m_pendingQuery;
    bool m_searchable = false;
    QTabWidget *m_tabs = nullptr;
    HelpBrowser *m_page = nullptr;
    QLineEdit *m_query = nullptr;
    QLabel *m_state = nullptr;
    QListWidget *m_results = nullptr;
};
