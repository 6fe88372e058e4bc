// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

#include <array>

/// Twips in a pixel of the screen, on each axis: 1440 divided by the logical dots per inch.
struct ScreenScale
{
    double twipsPerPixelX = 15.0;
    double twipsPerPixelY = 15.0;
};

/// Everything the user can set for the program as a whole, and the window's geometry. Read once by loadSettings(), used
/// and changed directly by the forms, written once by saveSettings(). There is no notification of a change.
///
/// Arrays by column have 7 places; index 1 to 6 stand for title, read mark, date of publication, date of download,
/// author, category, and index 0 isn't used.
struct AppSettings
{
    QString startMode;          ///< "Plein écran", "Minimisé" (starts hidden), or any other text
    bool updateAtStart = false; ///< update all feeds right after the start
    QString smtpServer;         ///< host of the mail server
    qint16 smtpPort = 0;        ///< kept and edited, but never handed to the mail object
    QString fromName;           ///< sender's name
    QString fromMail;           ///< sender's mail address
    bool officeStyle = false;   ///< Office XP drawing
    bool smallToolbars = false;
    qint16 windowWidth = 0;                     ///< pixels; read only by the start
    qint16 windowHeight = 0;                    ///< pixels; read only by the start
    qint16 windowX = 0;                         ///< pixels; read only by the start
    qint16 windowY = 0;                         ///< pixels; read only by the start
    qint16 splitHorizontal = 0;                 ///< twips; width of the tree pane
    qint16 splitVertical = 0;                   ///< twips; height of the list pane
    QString rebarLayout;                        ///< the `Bands` element as XML text
    std::array<float, 7> columnWidth{};         ///< twips
    std::array<qint16, 7> columnWidthInt{};     ///< twips; given back to a column that is shown again
    std::array<qint16, 7> columnDefaultWidth{}; ///< twips; given back instead when columnWidthInt is 0
    qint32 readDelay = 0;                       ///< milliseconds until an item counts as read; negative: never
    bool notifyNew = false;                     ///< announce new items
    QString soundPath;                          ///< sound file of the announcement
};
