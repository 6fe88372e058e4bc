// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/AddFeed.h"

#include "core/FeedCatalogue.h"
#include "engine/CurrentFeed.h"
#include "platform/Files.h"

void AddFeed(const std::shared_ptr<CachedFeed> &document, const QString &address, CurrentFeed &current,
             FeedCatalogue &catalogue)
{
    if (!document && !current.addressFeedShown)
        return;
    if (document) {
        current.document->Save();
        current.document = document;
    } else if (current.document->IsStale() && Files::exists(current.document->Path())) {
        current.document->Restore(); // an import has used tmp.xml, which becomes the cache file, for something else
    }
    if (current.document->IsTranslated())
        current.document->Save(); // the cache file is a copy of the file, and shall be in the format of what is held
    catalogue.addFeed(
        {current.document->Title(), current.document->Ttl(), address, current.strUsername, current.strPassword});
}
