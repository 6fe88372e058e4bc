// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

#include <exception>

/// A run-time error: the one exception type of the program.
///
/// It is thrown where an operation of the system would stop the program (a conversion that fails, a node that is
/// missing, a file that can't be replaced) and travels through every room to the application's `notify` (ErrorTrap),
/// which shows the system's message and ends the process with nothing further saved. The entry (basMain) does the same
/// for what is thrown before and after the loop.
///
/// A few have an answer of their own, and go no further:
/// - `SettingsFile::loadSettings`: the box that the settings can't be read, and the program doesn't start;
/// - `RunAtStartup`: a step that fails is passed over, and the next one is taken;
/// - `clsDES`, the operations on files: false, and the file stays as it was;
/// - `FeedReading`: a document that could not be saved is none;
/// - `frmExtensions`: a choice that can't be written is told in a box, and doesn't hold;
/// - `FileRegistryStore` and `AutostartRegistryStore`: a file that can't be written is a result of the call.
/// `cRegistry::EnumerateSections` raises what it meets anew, under a number of its own.
class RunTimeError final : public std::exception
{
public:
    /// `number` is the system's number of the error, `text` its French description.
    RunTimeError(qint32 number, QString text);

    qint32 number() const { return m_number; }
    QString text() const { return m_text; }

    /// What the system's message box says: "Erreur d'exécution '6':", two line breaks, the text.
    QString message() const;

    const char *what() const noexcept override { return m_what.constData(); }

    static RunTimeError invalidCall();      ///< 5: an argument that has no meaning, such as a negative position.
    static RunTimeError overflow();         ///< 6: a number that its type can't hold.
    static RunTimeError typeMismatch();     ///< 13: a text that is no number or no date.
    static RunTimeError fileNotFound();     ///< 53.
    static RunTimeError deviceError();      ///< 57: reading or writing failed.
    static RunTimeError diskFull();         ///< 61.
    static RunTimeError permissionDenied(); ///< 70.
    static RunTimeError pathNotFound();     ///< 76.
    static RunTimeError objectNotSet();     ///< 91: an operation on a node that isn't there.
    static RunTimeError invalidProperty();  ///< 380: a property's value that the control doesn't know.
    static RunTimeError keyInUse();         ///< 457: a key that a collection holds already.
    static RunTimeError elementNotFound();  ///< 35601: a key that a collection doesn't hold.
    static RunTimeError keyNotUnique();     ///< 35602: a second tree node with one key.

private:
    qint32 m_number;
    QString m_text;
    QByteArray m_what;
};
