#pragma once

#include <QString>

/// What the engine asks of the window while feeds are opened and updated. The window implements it; tests do without
/// one.
class OpeningWindow
{
public:
    OpeningWindow() = default;
    OpeningWindow(const OpeningWindow &) = delete;
    OpeningWindow &operator=(const OpeningWindow &) = delete;
    virtual ~OpeningWindow() = default;

    /// The text of the address box.
    virtual QString addressText() const = 0;
    virtual void setAddressText(const QString &text) = 0;

    /// Rebuilds the item list from the feed on show, and shows the channel's page unless an update runs.
    virtual void FillItemList() = 0;

    /// Empties the item list.
    virtual void emptyItemList() = 0;

    /// The position of the selected row of the item list, counted from 0; -1 when none is selected.
    virtual int selectedRow() const = 0;

    /// Selects the row at that position and brings it into view; a position past the rows selects none.
    virtual void selectRow(int position) = 0;

    /// Enables the button `ajouter`, `actualiser` or `send_mail`.
    virtual void enableAddButton(bool enabled) = 0;
    virtual void enableUpdateButton(bool enabled) = 0;
    virtual void enableSendMailButton(bool enabled) = 0;

    /// Shows or hides the progress bar `prbChargement`, and sets its value in percent.
    virtual void showProgress(bool visible) = 0;
    virtual void setProgress(int percent) = 0;

    /// The text of the status panel "state".
    virtual void setStatusText(const QString &text) = 0;

    /// Opens the prompt for user name and password.
    virtual void askForCredentials() = 0;

    /// Shows an address in the browser pane.
    virtual void navigate(const QString &url) = 0;

    /// Announces new items of a feed in the popup.
    virtual void addMessageToQueue(const QString &title, qint16 count) = 0;
};
