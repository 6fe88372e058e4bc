#pragma once

#include "engine/OpeningWindow.h"

#include <functional>

class AddressBand;
class BrowserPane;
class ItemListView;
class ProgressBar;
class ReadingPane;
class StatusBar;
class cToolbar;

/// The main window as the engine sees it.
class WindowForEngine final : public OpeningWindow
{
public:
    /// What it speaks to. Nothing is owned.
    struct Parts
    {
        AddressBand &fraToolbar;
        ItemListView &lvwItems;
        ReadingPane &reading;
        cToolbar &cToolbar1;
        cToolbar &tlbBrowser;
        ProgressBar &prbChargement;
        StatusBar &stabPrinc;
        BrowserPane &browser;
        std::function<void()> showAuthentication;
        std::function<void(const QString &title, qint16 count)> announce;
    };

    explicit WindowForEngine(Parts parts) : m_p(std::move(parts)) {}

    QString addressText() const override;
    void setAddressText(const QString &text) override;
    void FillItemList() override;
    void emptyItemList() override;
    int selectedRow() const override;
    void selectRow(int position) override;
    void enableAddButton(bool enabled) override;
    void enableUpdateButton(bool enabled) override;
    void enableSendMailButton(bool enabled) override;
    void showProgress(bool visible) override;
    void setProgress(int percent) override;
    void setStatusText(const QString &text) override;
    void askForCredentials() override;
    void navigate(const QString &url) override;
    void addMessageToQueue(const QString &title, qint16 count) override;

private:
    Parts m_p;
};
