// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <curl/curl.h>

#include <memory>

/// The objects of the library, each with an owner.
namespace Curl {

struct EasyDeleter
{
    void operator()(CURL *handle) const { curl_easy_cleanup(handle); }
};
struct MultiDeleter
{
    void operator()(CURLM *handle) const { curl_multi_cleanup(handle); }
};
struct UrlDeleter
{
    void operator()(CURLU *handle) const { curl_url_cleanup(handle); }
};
struct ListDeleter
{
    void operator()(curl_slist *list) const { curl_slist_free_all(list); }
};
struct TextDeleter
{
    void operator()(char *text) const { curl_free(text); }
};

using Easy = std::unique_ptr<CURL, EasyDeleter>;
using Multi = std::unique_ptr<CURLM, MultiDeleter>;
using Url = std::unique_ptr<CURLU, UrlDeleter>;
using List = std::unique_ptr<curl_slist, ListDeleter>;
using Text = std::unique_ptr<char, TextDeleter>;

/// Makes the library ready, once. To be called on the main thread before anything else of it.
inline void initialise()
{
    [[maybe_unused]] static const CURLcode initialised = curl_global_init(CURL_GLOBAL_DEFAULT);
}

} // namespace Curl
