// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QTranslator>

class QCoreApplication;

/// The French of what the libraries show by themselves (file dialogs, colours, the menu of a page), whatever language
/// the system speaks: the program has no other.
class FrenchTexts final : public QTranslator
{
    Q_OBJECT

public:
    /// Gives `application` its French texts, for good, and the French ways of writing where the system's aren't French.
    /// Before the browser engine is loaded, which speaks the language that it finds then.
    static void install(QCoreApplication &application);

    using QTranslator::QTranslator;

    bool isEmpty() const override { return false; }

    /// Knows what the library's own French file lacks.
    QString translate(const char *context, const char *sourceText, const char *disambiguation, int n) const override;
};
