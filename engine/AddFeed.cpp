// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/AddFeed.h"

#include "core/FeedCatalogue.h"
#include "engine/CurrentFeed.h"

void AddFeed(const std::shared_ptr<CachedFeed> &document, const QString &address, CurrentFeed &current,
             FeedCatalogue &catalogue)
{
    if (!document && !current.addressFeedShown)
        return;
    if (document) {
        current.document->Save();
        current.document = document;
    }
    catalogue.addFeed(
        {current.document->Title(), current.document->Ttl(), address, current.strUsername, current.strPassword});
}
