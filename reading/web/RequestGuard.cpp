// SPDX-License-Identifier: GPL-3.0-or-later

#include "reading/web/RequestGuard.h"

#include "reading/web/Addresses.h"

void RequestGuard::interceptRequest(QWebEngineUrlRequestInfo &info)
{
    const bool isMainFrame = info.resourceType() == QWebEngineUrlRequestInfo::ResourceTypeMainFrame;
    if (!Addresses::mayRequest(info.requestUrl(), isMainFrame))
        info.block(true);
}
