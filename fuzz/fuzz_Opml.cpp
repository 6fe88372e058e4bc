// SPDX-License-Identifier: GPL-3.0-or-later

#include "exchange/OpmlDocument.h"

#include <QByteArray>

/// Whatever the bytes are, the reader gives a list or none, and each of the list's feeds has a description.
extern "C" int LLVMFuzzerTestOneInput(const quint8 *data, std::size_t size)
{
    OpmlDocument document;
    if (!document.loadXml(QByteArray(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size))))
        return 0;
    const std::optional<OpmlDocument::List> list = document.list();
    if (!list)
        return 0;
    for (const OpmlDocument::Feed &feed : list->feeds)
        document.description(feed.position);
    return 0;
}
