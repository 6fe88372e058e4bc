// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "core/AppSettings.h"
#include "platform/Dictionary.h"
#include "window/SoundPlayer.h"

#include <QTimer>
#include <QWidget>

#include <functional>
#include <memory>

class QLabel;

/// The small window that grows upward from the lower right corner of the work area to announce new items. Messages wait
/// in a queue and are shown one at a time; it takes no input and goes away by itself.
class frmUpdate : public QWidget
{
    Q_OBJECT

public:
    /// The work area of the screen that the main window is on, in pixels, that screen's scale, and whether the popup is
    /// to stand there at once instead of sliding up. Where a desktop gives windows no place of their own (Wayland), the
    /// area is that of the main window, to which the popup is then bound.
    struct WorkArea
    {
        QRect pixels;
        ScreenScale scale;
        bool withoutMotion = false;
        QWidget *owner = nullptr; ///< the window to which the popup is bound; null for none
    };
    using FindWorkArea = std::function<WorkArea()>;

    /// Asks for the work area anew for every message. `settings` (which must outlive this) names the sound file.
    frmUpdate(FindWorkArea findWorkArea, const AppSettings &settings, std::unique_ptr<SoundPlayer> player);
    ~frmUpdate() override;

    /// The work area around `window`, for the first argument of the constructor.
    static FindWorkArea workAreaOf(QWidget *window);

    /// Announces `count` new items of the feed `title`: at once when nothing is on show, behind the others otherwise.
    /// Returns at once. More than 32768 messages in one cycle are an overflow.
    void addMessageToQueue(const QString &title, qint16 count);

    Dictionary<QString> popupQueue; ///< waiting messages and the one on show, by the decimal text of their number
    qint16 lastQueued = 0;          ///< number of the newest message
    qint16 shownKey = 0;            ///< number of the message on show
    bool popupRunning = false;      ///< the cycle is active

    QTimer timShow; ///< one step of the slide
    QTimer timHide; ///< end of a message

    /// The message on show.
    QString caption() const;

    /// The window's place in twips.
    QRect placeInTwips() const { return m_place; }

    void handleShowTick();
    void handleHideTick();

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void announce();
    int pixelsX(int twips) const;
    int pixelsY(int twips) const;
    void setCaption(const QString &text);
    void placeWindow();
    void bindTo(QWidget *owner);
    void applyPlace();

    FindWorkArea m_findWorkArea;
    const AppSettings &m_settings;
    std::unique_ptr<SoundPlayer> m_player;
    ScreenScale m_scale;
    QRect m_place;
    QLabel *m_titleBar;
    QWidget *m_closeButton;
    QLabel *lblInfos;
};
