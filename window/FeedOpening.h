// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "engine/FeedOpener.h"

#include <QObject>
#include <QString>

#include <functional>
#include <memory>

class AddressBox;
class BusySign;
class MainFrame;
class Messages;
class ReadingPane;

/// Opening a feed as the user does and sees it: what the address box, a link or the command line asks for goes to the
/// opener, and what that tells becomes buttons, progress bar, list and message boxes.
class FeedOpening : public QObject
{
    Q_OBJECT

public:
    /// What it works with. Nothing is owned.
    struct Parts
    {
        FeedOpener &opener;
        MainFrame &frame;
        ReadingPane &reading;
        Messages &messages;
        std::function<void()> showAuthentication; ///< the prompt for user name and password
        std::function<QString()> askFeedFile;     ///< "" when the user cancels
    };

    explicit FeedOpening(Parts parts, QObject *parent = nullptr);
    ~FeedOpening() override;

    /// The text of the address box.
    QString addressText() const;
    void setAddressText(const QString &text);

    /// Opens what the address box holds, as Enter in it does.
    void openEntered();

    /// Puts `address` into the address box and opens it.
    void openAddress(const QString &address);

    /// Opens a text of the command line. Throws as FeedOpener::enteredByCommandLine().
    void openCommandLine(const QString &text);

    /// Opens what the address box holds through the network, with the credentials of the feed on show.
    void LoadFile();

private:
    AddressBox &txtURL() const;
    void handleImageClick();
    void handleOpened(FeedOpener::Source source);
    void handleRefused(const FeedOpener::Refusal &refusal);
    void handlePageOffered();

    Parts m_parts;
    std::unique_ptr<BusySign> m_busySign; ///< while a large feed is read and listed
};
