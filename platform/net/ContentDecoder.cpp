// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/net/ContentDecoder.h"

#include <brotli/decode.h>
#include <zlib.h>

#include <array>

class ContentDecoder::Coding
{
public:
    virtual ~Coding() = default;
    virtual bool decode(const char *bytes, qsizetype size, const Sink &sink) = 0;
    virtual bool isComplete() const = 0;
};

namespace {

using Buffer = std::array<char, 65536>;

/// gzip (RFC 1952), of one member or several, and deflate in zlib's frame (RFC 1950), or bare as some servers send it.
class Zlib final : public ContentDecoder::Coding
{
public:
    ~Zlib() override
    {
        if (m_begun)
            inflateEnd(&m_stream);
    }

    bool decode(const char *bytes, qsizetype size, const ContentDecoder::Sink &sink) override
    {
        if (size == 0 || m_padding)
            return true;
        if (!m_begun && !begin(bytes[0]))
            return false;
        m_stream.next_in = const_cast<Bytef *>(reinterpret_cast<const Bytef *>(bytes));
        m_stream.avail_in = static_cast<uInt>(size);
        do {
            if (m_ended && !beginNextMember())
                return true;
            if (!inflatePortion(sink))
                return false;
        } while (m_stream.avail_in > 0 || m_stream.avail_out == 0);
        return true;
    }

    bool isComplete() const override { return !m_begun || m_ended; }

private:
    /// The first byte tells zlib's frame (its method is 8) and gzip's from a bare stream.
    bool begin(char first)
    {
        const bool framed = (first & 0x0f) == Z_DEFLATED || first == gzipMark;
        m_begun = inflateInit2(&m_stream, framed ? MAX_WBITS + 32 : -MAX_WBITS) == Z_OK;
        return m_begun;
    }

    /// What stands behind the end and is no further member is padding.
    bool beginNextMember()
    {
        m_padding = m_stream.avail_in > 0 && *m_stream.next_in != gzipMark;
        if (m_padding || m_stream.avail_in == 0)
            return false;
        m_ended = false;
        return inflateReset2(&m_stream, MAX_WBITS + 16) == Z_OK;
    }

    bool inflatePortion(const ContentDecoder::Sink &sink)
    {
        m_stream.next_out = reinterpret_cast<Bytef *>(m_buffer.data());
        m_stream.avail_out = static_cast<uInt>(m_buffer.size());
        const int result = inflate(&m_stream, Z_NO_FLUSH);
        if (result != Z_OK && result != Z_STREAM_END && result != Z_BUF_ERROR)
            return false;
        m_ended = result == Z_STREAM_END;
        const qsizetype size = static_cast<qsizetype>(m_buffer.size() - m_stream.avail_out);
        return size == 0 || sink(m_buffer.data(), size);
    }

    static constexpr char gzipMark = 0x1f;

    z_stream m_stream = {};
    Buffer m_buffer;
    bool m_begun = false;
    bool m_ended = false;
    bool m_padding = false;
};

/// br (RFC 7932).
class Brotli final : public ContentDecoder::Coding
{
public:
    bool decode(const char *bytes, qsizetype size, const ContentDecoder::Sink &sink) override
    {
        const auto *next = reinterpret_cast<const uint8_t *>(bytes);
        auto left = static_cast<std::size_t>(size);
        BrotliDecoderResult result = m_ended ? BROTLI_DECODER_RESULT_SUCCESS : BROTLI_DECODER_RESULT_NEEDS_MORE_OUTPUT;
        while (result == BROTLI_DECODER_RESULT_NEEDS_MORE_OUTPUT) {
            m_begun = true;
            auto *out = reinterpret_cast<uint8_t *>(m_buffer.data());
            std::size_t room = m_buffer.size();
            result = BrotliDecoderDecompressStream(m_state.get(), &left, &next, &room, &out, nullptr);
            const auto made = static_cast<qsizetype>(m_buffer.size() - room);
            if (made > 0 && !sink(m_buffer.data(), made))
                return false;
        }
        m_ended = result == BROTLI_DECODER_RESULT_SUCCESS;
        return result != BROTLI_DECODER_RESULT_ERROR;
    }

    bool isComplete() const override { return !m_begun || m_ended; }

private:
    struct Deleter
    {
        void operator()(BrotliDecoderState *state) const { BrotliDecoderDestroyInstance(state); }
    };

    std::unique_ptr<BrotliDecoderState, Deleter> m_state{BrotliDecoderCreateInstance(nullptr, nullptr, nullptr)};
    Buffer m_buffer;
    bool m_begun = false;
    bool m_ended = false;
};

std::unique_ptr<ContentDecoder::Coding> codingOf(const QByteArray &name)
{
    if (name == "gzip" || name == "x-gzip" || name == "deflate")
        return std::make_unique<Zlib>();
    if (name == "br")
        return std::make_unique<Brotli>();
    return nullptr;
}

} // namespace

ContentDecoder::ContentDecoder(const QByteArray &coding) : m_coding(codingOf(coding.trimmed().toLower())) {}

ContentDecoder::~ContentDecoder() = default;

bool ContentDecoder::decode(const char *bytes, qsizetype size, const Sink &sink)
{
    return m_coding ? m_coding->decode(bytes, size, sink) : sink(bytes, size);
}

bool ContentDecoder::isComplete() const
{
    return !m_coding || m_coding->isComplete();
}
