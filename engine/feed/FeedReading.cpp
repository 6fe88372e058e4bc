// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/feed/FeedReading.h"

#include "engine/feed/FeedBounds.h"
#include "engine/feed/FeedDocument.h"
#include "engine/feed/FeedFormats.h"
#include "engine/feed/ItemMarks.h"
#include "platform/RunTimeError.h"

/// Saves a document for trial: refusing it is better than showing it and then failing at its first save.
static bool canBeSaved(XmlDocPtr tree)
{
    const Recognised recognised = recognise(tree.get());
    if (recognised.result != LoadOk)
        return true; // it will be told what it is, and never saved
    FeedDocument document(std::move(tree), *recognised.reader, QDateTime::fromSecsSinceEpoch(0));
    for (qsizetype i = 0; i < document.itemCount(); ++i) {
        ItemMarks::setRead(document.item(i), true);
        ItemMarks::setDeleted(document.item(i));
    }
    try {
        document.prepareForSaving();
    } catch (const RunTimeError &) {
        return false;
    }
    return true;
}

XmlDocPtr FeedReading::read(const QByteArray &bytes)
{
    XmlDocPtr tree = XmlGate::parse(bytes, feedBounds);
    if (tree && XmlGate::mustBeTried(tree.get()) && !canBeSaved(XmlGate::parse(bytes, feedBounds)))
        tree.reset();
    return tree;
}
