#pragma once

#include <QString>

#include <memory>

class CachedFeed;
class clsDES;
class FeedTree;
class QWidget;
struct AppSettings;
struct FeedTables;

/// What a dialog may ask of the main window.
class MainWindow
{
public:
    MainWindow() = default;
    MainWindow(const MainWindow &) = delete;
    MainWindow &operator=(const MainWindow &) = delete;
    virtual ~MainWindow() = default;

    /// Subscribes to `document` at the address `strURL`; "" stands for the text of the address box. With no document
    /// the feed on show is meant, if it was opened by address; otherwise nothing happens. The tree's selection decides
    /// the folder. A document given becomes the one on show.
    virtual void AddFeed(const std::shared_ptr<CachedFeed> &document, const QString &strURL) = 0;

    /// Opens through the network what the address box holds, with the credentials.
    virtual void LoadFile() = 0;

    /// Shows `url` in the browser pane.
    virtual void navigate(const QString &url) = 0;

    /// Hands `url` to the system's browser.
    virtual void openInSystemBrowser(const QString &url) = 0;

    /// The text of the address box `txtURL`.
    virtual QString addressText() const = 0;
    virtual void setAddressText(const QString &text) = 0;

    /// Sets `strUsername` and `strPassword`, the credentials of the next download from the address box.
    virtual void setCredentials(const QString &username, const QString &password) = 0;

    /// The feed on show; never null.
    virtual std::shared_ptr<CachedFeed> currentFeed() const = 0;

    /// True when the feed on show came from the address box: it is unsubscribed.
    virtual bool addressFeedShown() const = 0;

    virtual FeedTables &feedTables() = 0;
    virtual FeedTree &feedTree() = 0;
    virtual clsDES &cipher() = 0;
    virtual AppSettings &settings() = 0;

    /// The path of a file of the data directory.
    virtual QString dataFile(const QString &name) const = 0;

    /// The window to centre a dialog on.
    virtual QWidget *frame() = 0;
};
