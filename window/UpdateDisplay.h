// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "core/FeedTree.h"

#include <QObject>
#include <QString>

#include <memory>

class MainFrame;
class QWidget;
class ReadingPane;
class UpdateScheduler;
class frmUpdate;
struct AppSettings;

/// What the user sees of the updates: the button, the status text, the progress bar, the list that is filled anew, the
/// popup, and what screen readers say at the end.
class UpdateDisplay : public QObject
{
    Q_OBJECT

public:
    /// What it works with. Nothing is owned.
    struct Parts
    {
        QWidget &form; ///< the popup rises on its screen
        const UpdateScheduler &scheduler;
        const AppSettings &settings;
        MainFrame &frame;
        ReadingPane &reading;
    };

    explicit UpdateDisplay(Parts parts, QObject *parent = nullptr);
    ~UpdateDisplay() override;

    void dismissPopup();

private:
    void enableUpdateButton(bool enabled);
    void handleBegan(const FeedNodePtr &node);
    void handleEnded(const FeedNodePtr &node, qint16 newItems);
    void handleNewItems(const QString &title, qint16 count);
    void handleReloaded(qint16 newItems);
    void handleWalkEnded(bool asked);

    Parts m_parts;
    bool m_walks = false;                   ///< several feeds are updated one after the other
    int m_newInWalk = 0;                    ///< new items so far
    std::unique_ptr<frmUpdate> m_frmUpdate; ///< made for the first announcement
    bool m_isRepaired = false;              ///< the feed whose update runs
};
