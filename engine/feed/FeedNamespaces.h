// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <string_view>

/// The names of the namespaces that more than one format reads or writes, and what tells those of the extensions.

namespace NamespaceName {

inline constexpr const char *rdf = "http://www.w3.org/1999/02/22-rdf-syntax-ns#";
inline constexpr const char *rss10 = "http://purl.org/rss/1.0/";
inline constexpr const char *rss11 = "http://purl.org/net/rss1.1"; ///< with anything behind it
inline constexpr const char *dc = "http://purl.org/dc/elements/1.1/";
inline constexpr const char *xml = "http://www.w3.org/XML/1998/namespace"; ///< of xml:lang and xml:base
inline constexpr const char *xhtml = "http://www.w3.org/1999/xhtml";

} // namespace NamespaceName

/// Tells whether a namespace of that name, "" for none, is the one meant.
using NamespaceTest = bool (*)(std::string_view name);

bool isDublinCore(std::string_view name);
bool isContentModule(std::string_view name);
bool isCommentApi(std::string_view name);
bool isItunes(std::string_view name);

/// That of RSS 0.90, an RDF format whose elements RSS documents bear at times.
bool isRss090(std::string_view name);
