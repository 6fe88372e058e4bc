// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

#include <variant>

/// A full-text query as a help system takes it.
struct HelpQuery
{
    qint32 size = 32; ///< of the record in bytes
    bool unicode = false;
    QString text;
    qint32 proximity = 0;
    bool stemmedSearch = false;
    bool titlesOnly = false;
    bool execute = true;
    QString window;
};

/// What a help system is asked to show. The values are those of the calls.
enum class HelpCommand : qint32 { Contents = 1, Index = 2, Search = 3, Topic = 15 };

/// Nothing, a number (a topic's), or a query.
using HelpData = std::variant<std::monostate, qint32, HelpQuery>;

/// Shows a compiled help file.
class HelpSystem
{
public:
    HelpSystem() = default;
    HelpSystem(const HelpSystem &) = delete;
    HelpSystem &operator=(const HelpSystem &) = delete;
    virtual ~HelpSystem() = default;

    /// `path` is the help file, or the help file, ">" and a window type. Contents comes with nothing, Index with 0,
    /// Search with a query, Topic with a number. Returns at once; the help's window stays.
    virtual void htmlHelp(const QString &path, HelpCommand command, const HelpData &argument) = 0;
};
