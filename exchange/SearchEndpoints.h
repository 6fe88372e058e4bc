// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

/// The addresses of the five search services, each with a slash at its end. Where they come from:
/// docs/search-endpoints.md.
struct SearchEndpoints
{
    QString feedster;
    QString dayPop;
    QString syndic8;
    QString newsisfree;
    QString blogStreet;

    /// Each endpoint from its environment variable (QUILLWIRE_SEARCH_FEEDSTER, _DAYPOP, _SYNDIC8, _NEWSISFREE,
    /// _BLOGSTREET), else from the file at `iniPath` ("feedster=http://..." a line), else a placeholder that leads
    /// nowhere. A file that is missing or can't be read counts as empty.
    static SearchEndpoints configured(const QString &iniPath);
};
