// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "engine/feed/FormatReader.h"

/// Tells what a well-formed document is, and with LoadOk the reader of its format, which lives as long as the program.
struct Recognised
{
    FeedLoadResult result;
    const FormatReader *reader = nullptr;
};
Recognised recognise(const xmlDoc *document);
