// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "engine/feed/CachedFeed.h"

#include <QString>

#include <memory>

/// What is on show: the long-lived feed document and how it came there. Shared by the opener, the scheduler, the list
/// and the window.
struct CurrentFeed
{
    std::shared_ptr<CachedFeed> document = std::make_shared<CachedFeed>(); ///< never null

    /// The document on show came from the address box: true after a download that loaded, false once another begins or
    /// a feed of the tree was opened.
    bool addressFeedShown = false;

    QString strUsername; ///< credentials of the next download from the address box
    QString strPassword;
};
