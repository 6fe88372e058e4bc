// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "core/DataDirectory.h"
#include "engine/DateReader.h"
#include "engine/feed/FeedRules.h"
#include "platform/AddressForms.h"
#include "platform/Choice.h"
#include "reading/PageText.h"

class ExtensionsFile;
class FeedCatalogue;
class FeedOpener;
class FeedTree;
class FeedTreeState;
class UpdateScheduler;
class clsDES;
struct AppSettings;
struct CurrentFeed;

/// What lives from the start of the program to its end without a widget, handed to the main window. Nothing is owned:
/// all of it outlives the window.
struct LongLived
{
    DataDirectory directory;
    AppSettings &settings;      ///< loaded already
    ExtensionsFile &extensions; ///< likewise
    Choice<AddressForms> addresses;
    Choice<DateReader> dates;
    FeedRules rules;
    Choice<PageText> pageText;
    FeedTree &tree;
    FeedTreeState &treeState;
    FeedCatalogue &catalogue;
    clsDES &cipher;
    CurrentFeed &current;
    FeedOpener &opener;
    UpdateScheduler &scheduler;
};
