// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/feed/FeedReading.h"

#include "engine/feed/FeedBounds.h"
#include "engine/feed/FeedDocument.h"
#include "engine/feed/FeedFormats.h"
#include "engine/feed/FeedRepair.h"
#include "engine/feed/ItemMarks.h"
#include "platform/RunTimeError.h"

/// Saves a document for trial: refusing it is better than showing it and then failing at its first save.
static bool canBeSaved(XmlDocPtr tree, const FormatSet &formats)
{
    const Recognised recognised = formats.recognise(tree.get());
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

/// As it stands.
static XmlDocPtr readExactly(const QByteArray &bytes, const FormatSet &formats)
{
    XmlDocPtr tree = XmlGate::parse(bytes, feedBounds);
    if (tree && XmlGate::mustBeTried(tree.get()) && !canBeSaved(XmlGate::parse(bytes, feedBounds), formats))
        tree.reset();
    return tree;
}

/// What is no feed, not even with faults, stays what it was: a web page is none that was mended.
static FeedReading::Outcome readMended(const QByteArray &bytes, const FormatSet &formats)
{
    XmlDocPtr exact = readExactly(bytes, formats);
    if (exact && !FeedRepair::isMislabelled(bytes))
        return {std::move(exact), false};
    const QByteArray text = FeedRepair::mended(bytes);
    XmlDocPtr mended = text.isEmpty() ? nullptr : readExactly(text, formats);
    if (mended && formats.recognise(mended.get()).result != LoadUnknownFormat)
        return {std::move(mended), true};
    return {std::move(exact), false};
}

const FeedReading &exactReading()
{
    static constexpr FeedReading reading([](const QByteArray &bytes, const FormatSet &formats) -> FeedReading::Outcome {
        return {readExactly(bytes, formats), false};
    });
    return reading;
}

const FeedReading &mendingReading()
{
    static constexpr FeedReading reading(readMended);
    return reading;
}
