// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "core/AppSettings.h"

#include <QByteArray>
#include <QString>

#include <array>
#include <functional>

class Messages;

/// The window's present geometry, as it goes into the settings file.
struct WindowGeometry
{
    double left = 0;                     ///< twips
    double top = 0;                      ///< twips
    double width = 0;                    ///< twips
    double height = 0;                   ///< twips
    std::array<double, 7> columnWidth{}; ///< twips, index 1 to 6; 0 for a column that the user hid
};

/// The file params.xml.
class SettingsFile
{
public:
    /// `path` is the file's path, `templateBytes` what a missing file is made of.
    SettingsFile(QString path, QByteArray templateBytes, ScreenScale scale, Messages &messages);

    /// Fills `settings`, creating the file from the template when it is missing. When anything fails (a file that can't
    /// be made or isn't well-formed, a missing required node, a number that doesn't convert) it shows "Erreur lors du
    /// chargement du fichier de configuration" with "Le programme va maintenant se terminer", title "Erreur", critical
    /// icon, and returns false: the process then ends with nothing saved. Raises nothing.
    bool loadSettings(AppSettings &settings) const;

    /// Writes `settings` and `geometry` into the file, keeping what it doesn't know. While the file can't be loaded it
    /// shows the message without its second line, calls `saveAndClose` again and stops: the box comes back with each
    /// OK. A node that is missing, or a file that can't be replaced, raises a RunTimeError; the file is then unchanged.
    void saveSettings(const AppSettings &settings, const WindowGeometry &geometry,
                      const std::function<void()> &saveAndClose) const;

private:
    QString m_path;
    QByteArray m_template;
    ScreenScale m_scale;
    Messages &m_messages;
};
