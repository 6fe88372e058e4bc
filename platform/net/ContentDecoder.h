// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>

#include <functional>
#include <memory>

/// Undoes one content coding of HTTP (RFC 9110, 8.4.1) portion by portion: gzip, deflate, br. Any other coding passes
/// as it stands, since many a server calls something a coding that is none.
class ContentDecoder
{
public:
    /// What a request says it takes.
    static constexpr char accepted[] = "gzip, deflate, br";

    /// Takes decoded bytes, never more than 64 KiB at once. False when it wants no more.
    using Sink = std::function<bool(const char *bytes, qsizetype size)>;

    /// `coding` is the value of Content-Encoding, "" for none.
    explicit ContentDecoder(const QByteArray &coding);
    ~ContentDecoder();

    /// False when the bytes can't be decoded or the sink wants no more: nothing must follow then.
    bool decode(const char *bytes, qsizetype size, const Sink &sink);

    /// False as long as a coded text has begun and not come to its end, which the coding itself tells.
    bool isComplete() const;

    class Coding;

private:
    std::unique_ptr<Coding> m_coding; ///< null when there is nothing to undo
};
