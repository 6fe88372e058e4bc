// SPDX-License-Identifier: GPL-3.0-or-later

#include "exchange/OpmlDocument.h"
#include "platform/RunTimeError.h"

#include <QByteArray>

/// Whatever the bytes are, the reader gives a list or a run-time error, and each of the list's feeds has a description.
extern "C" int LLVMFuzzerTestOneInput(const quint8 *data, std::size_t size)
{
    OpmlDocument document;
    if (!document.loadXml(QByteArray(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size))))
        return 0;
    try {
        for (const OpmlDocument::Feed &feed : document.list().feeds)
            document.description(feed.position);
    } catch (const RunTimeError &) {
    }
    return 0;
}
