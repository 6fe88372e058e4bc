// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "core/DataDirectory.h"

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
    AppSettings &settings; ///< loaded already
    FeedTree &tree;
    FeedTreeState &treeState;
    FeedCatalogue &catalogue;
    clsDES &cipher;
    CurrentFeed &current;
    FeedOpener &opener;
    UpdateScheduler &scheduler;
};
