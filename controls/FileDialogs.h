// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

#include <functional>

class QWidget;

/// Asks the user for the path of a file; "" when the user cancels. Tests answer in its place.
using AskFile = std::function<QString()>;

/// The file dialogs of the system, with French captions.
namespace FileDialogs {

/// Asks for an existing file. `filter` is as Qt writes it ("Fichier OPML (*.opml)"), "" for all files.
QString askOpenFile(QWidget *parent, const QString &title, const QString &filter);

/// Asks where to save; an existing file is only taken after the user has agreed to replace it. No suffix is added.
/// `proposed` is the path to begin with, if any.
QString askSaveFile(QWidget *parent, const QString &title, const QString &filter, const QString &proposed = {});

} // namespace FileDialogs
