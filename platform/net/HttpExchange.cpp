// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/net/HttpExchange.h"

#include "platform/Build.h"
#include "platform/Literals.h"

#include <QLocale>
#include <QNetworkProxy>

#include <utility>

namespace {

/// As much of a body that nobody wants is taken, so that the connection can serve again.
constexpr qint64 unwantedLimit = 64LL * 1024;
constexpr long receiveBuffer = 64L * 1024;

QByteArray userAgent()
{
    return QString(u"Quillwire/" + Build::shortVersion).toUtf8();
}

QByteArray acceptLanguage()
{
    const QByteArray language = QLocale::system().name().replace(u'_', u'-').toLatin1();
    if (language == "C")
        return "en,*";
    return language + (language.startsWith("en-") ? ",*" : ",en,*");
}

/// The proxy that the desktop or the environment names for `url`, as an address; "" for none.
QByteArray proxyFor(const QUrl &url)
{
    const QNetworkProxy proxy = QNetworkProxyFactory::proxyForQuery(QNetworkProxyQuery(url)).value(0);
    QUrl address;
    switch (proxy.type()) {
    case QNetworkProxy::HttpProxy:
    case QNetworkProxy::HttpCachingProxy:
        address.setScheme(u"http"_s);
        break;
    case QNetworkProxy::Socks5Proxy:
        address.setScheme(u"socks5h"_s);
        break;
    default:
        return {};
    }
    address.setHost(proxy.hostName());
    address.setPort(proxy.port());
    address.setUserName(proxy.user());
    address.setPassword(proxy.password());
    return address.toEncoded();
}

DownloadStatus statusOfError(CURLcode error)
{
    switch (error) {
    case CURLE_COULDNT_RESOLVE_HOST:
        return HostNotFound;
    case CURLE_COULDNT_CONNECT:
        return ConnectionRefused;
    case CURLE_OPERATION_TIMEDOUT:
        return TimedOut;
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_SSL_CERTPROBLEM:
    case CURLE_SSL_CIPHER:
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_CACERT_BADFILE:
    case CURLE_SSL_ISSUER_ERROR:
        return SecureConnectionFailed;
    case CURLE_OK: // closed in the middle of the head, which the library takes for an end
    case CURLE_PARTIAL_FILE:
    case CURLE_GOT_NOTHING:
    case CURLE_SEND_ERROR:
    case CURLE_RECV_ERROR: // also chunks without form
        return ConnectionLost;
    case CURLE_OUT_OF_MEMORY: // a line of the head that passes the library's own bound
#if LIBCURL_VERSION_NUM >= 0x080600
    case CURLE_TOO_LARGE: // the same, as it is called since
#endif
        return TooLarge;
    default:
        return OtherFailure;
    }
}

} // namespace

HttpExchange::HttpExchange(const Request &request, const DownloadLimits &limits, Listener listener)
    : m_limits(limits), m_listener(std::move(listener))
{
    Curl::initialise();
    m_easy.reset(curl_easy_init());
    setUp(request);
}

void HttpExchange::setUp(const Request &request)
{
    const auto set = [handle = m_easy.get()](CURLoption option, auto value) {
        curl_easy_setopt(handle, option, value);
    };
    // Credentials in the address would go to whatever host it names, and a fragment goes nowhere.
    const QByteArray address = request.url.adjusted(QUrl::RemoveUserInfo | QUrl::RemoveFragment).toEncoded();
    set(CURLOPT_URL, address.constData());
    set(CURLOPT_PROTOCOLS_STR, "http,https");
    set(CURLOPT_PATH_AS_IS, 1L);
    set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
    set(CURLOPT_PROXY, proxyFor(request.url).constData());
    set(CURLOPT_NOPROXY, "");
    set(CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
    set(CURLOPT_NOSIGNAL, 1L);
    set(CURLOPT_QUICK_EXIT, 1L); // nobody waits for a name that is still being looked up
    set(CURLOPT_FRESH_CONNECT, request.first ? 1L : 0L);
    set(CURLOPT_BUFFERSIZE, receiveBuffer);

    set(CURLOPT_USERAGENT, userAgent().constData());
    const auto add = [this](const QByteArray &line) {
        m_headers.reset(curl_slist_append(m_headers.release(), line.constData()));
    };
    if (!request.authorization.isEmpty())
        add("Authorization: " + request.authorization);
    add("Connection: Keep-Alive");
    add(QByteArray("Accept-Encoding: ") + ContentDecoder::accepted);
    add("Accept-Language: " + acceptLanguage());
    set(CURLOPT_HTTPHEADER, m_headers.get());

    set(CURLOPT_HEADERFUNCTION, handleHeader);
    set(CURLOPT_HEADERDATA, this);
    set(CURLOPT_WRITEFUNCTION, handleBody);
    set(CURLOPT_WRITEDATA, this);
    // The library bounds neither chunk extensions nor trailers: what it tells of the traffic does.
    set(CURLOPT_VERBOSE, 1L);
    set(CURLOPT_DEBUGFUNCTION, handleTraffic);
    set(CURLOPT_DEBUGDATA, this);
    set(CURLOPT_NOPROGRESS, 0L);
    set(CURLOPT_XFERINFOFUNCTION, handleProgress);
    set(CURLOPT_XFERINFODATA, this);
}

qint32 HttpExchange::status(CURLcode result) const
{
    if (m_headEnded && httpStatus() != 200)
        return httpStatus() == 401 ? static_cast<qint32>(AuthenticationAsked) : httpStatus();
    if (m_failure)
        return *m_failure;
    if (!m_headEnded || result != CURLE_OK)
        return statusOfError(result);
    return m_decoder->isComplete() ? 200 : static_cast<qint32>(ContentNotReadable);
}

QByteArray HttpExchange::header(const char *name) const
{
    curl_header *found = nullptr;
    return curl_easy_header(m_easy.get(), name, 0, CURLH_HEADER, -1, &found) == CURLHE_OK ? QByteArray(found->value)
                                                                                          : QByteArray();
}

qint32 HttpExchange::httpStatus() const
{
    long status = 0;
    curl_easy_getinfo(m_easy.get(), CURLINFO_RESPONSE_CODE, &status);
    return static_cast<qint32>(status);
}

bool HttpExchange::takeHeaderLine(const QByteArray &line)
{
    m_headerBytes += line.size();
    if (++m_headerLines > m_limits.maxHeaderLines || m_headerBytes > m_limits.maxHeaderBytes)
        return fail(TooLarge);
    m_listener.sign();
    // An interim answer, which is no end, has a status below 200; but a change of protocols is one.
    if (m_headEnded || !line.trimmed().isEmpty() || (httpStatus() < 200 && httpStatus() != 101))
        return true;
    m_headEnded = true;
    return httpStatus() != 200 || beginBody();
}

bool HttpExchange::beginBody()
{
    curl_off_t length = -1;
    curl_easy_getinfo(m_easy.get(), CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &length);
    m_length = length;
    m_decoder.emplace(header("content-encoding"));
    return m_length <= m_limits.maxBytes || fail(TooLarge);
}

bool HttpExchange::takeBody(const char *bytes, qsizetype size)
{
    m_listener.sign();
    m_received += size;
    if (!m_decoder)
        return m_received <= unwantedLimit;
    if (m_received > m_limits.maxBytes)
        return fail(TooLarge);
    const auto keep = [this](const char *decoded, qsizetype count) {
        m_decoded += count;
        if (m_decoded > m_limits.maxBytes)
            return fail(TooLarge);
        return m_listener.body(decoded, count) || fail(WriteFailed);
    };
    if (!m_decoder->decode(bytes, size, keep))
        return fail(ContentNotReadable);
    if (m_length > 0)
        m_listener.progress(100.0 * static_cast<double>(m_received) / static_cast<double>(m_length));
    return true;
}

/// The first failure is the one that counts. False, for the library to end the transfer.
bool HttpExchange::fail(DownloadStatus status)
{
    m_failure = m_failure.value_or(status);
    return false;
}

void HttpExchange::countTraffic(curl_infotype type, qsizetype size)
{
    switch (type) {
    case CURLINFO_HEADER_OUT:
        m_listener.sign();
        break;
    case CURLINFO_HEADER_IN:
    case CURLINFO_DATA_IN:
        m_tlsMessages = 0;
        m_bytes += size;
        if (m_bytes > m_limits.maxBytes + m_limits.maxHeaderBytes)
            fail(TooLarge);
        break;
    case CURLINFO_SSL_DATA_IN:
        if (++m_tlsMessages == m_limits.maxHeaderLines) {
            fail(TooLarge);
            m_listener.flood();
        }
        break;
    default:
        break;
    }
}

size_t HttpExchange::handleHeader(char *bytes, size_t, size_t count, void *self)
{
    const QByteArray line = QByteArray::fromRawData(bytes, static_cast<qsizetype>(count));
    return static_cast<HttpExchange *>(self)->takeHeaderLine(line) ? count : 0;
}

size_t HttpExchange::handleBody(char *bytes, size_t, size_t count, void *self)
{
    return static_cast<HttpExchange *>(self)->takeBody(bytes, static_cast<qsizetype>(count)) ? count : 0;
}

int HttpExchange::handleTraffic(CURL *, curl_infotype type, char *, size_t size, void *self)
{
    static_cast<HttpExchange *>(self)->countTraffic(type, static_cast<qsizetype>(size));
    return 0;
}

int HttpExchange::handleProgress(void *self, curl_off_t, curl_off_t, curl_off_t, curl_off_t)
{
    return static_cast<HttpExchange *>(self)->m_failure ? 1 : 0;
}
