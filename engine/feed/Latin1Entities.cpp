// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/feed/Latin1Entities.h"

#include <QString>

#include <algorithm>
#include <array>
#include <string_view>

namespace {

/// From U+00A0 to U+00FF.
constexpr std::array<std::string_view, 96> names = {
    "nbsp",   "iexcl",  "cent",   "pound",  "curren", "yen",    "brvbar", "sect",   "uml",    "copy",   "ordf",
    "laquo",  "not",    "shy",    "reg",    "macr",   "deg",    "plusmn", "sup2",   "sup3",   "acute",  "micro",
    "para",   "middot", "cedil",  "sup1",   "ordm",   "raquo",  "frac14", "frac12", "frac34", "iquest", "Agrave",
    "Aacute", "Acirc",  "Atilde", "Auml",   "Aring",  "AElig",  "Ccedil", "Egrave", "Eacute", "Ecirc",  "Euml",
    "Igrave", "Iacute", "Icirc",  "Iuml",   "ETH",    "Ntilde", "Ograve", "Oacute", "Ocirc",  "Otilde", "Ouml",
    "times",  "Oslash", "Ugrave", "Uacute", "Ucirc",  "Uuml",   "Yacute", "THORN",  "szlig",  "agrave", "aacute",
    "acirc",  "atilde", "auml",   "aring",  "aelig",  "ccedil", "egrave", "eacute", "ecirc",  "euml",   "igrave",
    "iacute", "icirc",  "iuml",   "eth",    "ntilde", "ograve", "oacute", "ocirc",  "otilde", "ouml",   "divide",
    "oslash", "ugrave", "uacute", "ucirc",  "uuml",   "yacute", "thorn",  "yuml"};

QByteArrayView view(const xmlChar *text)
{
    return text == nullptr ? QByteArrayView() : QByteArrayView(reinterpret_cast<const char *>(text));
}

bool isRss091DocumentType(const xmlDtd *type)
{
    return type != nullptr && view(type->name) == "rss" &&
           (view(type->ExternalID) == "-//Netscape Communications//DTD RSS 0.91//EN" ||
            view(type->SystemID).endsWith("rss-0.91.dtd"));
}

} // namespace

xmlEntity *Latin1Entities::find(xmlDoc *document, const xmlChar *name)
{
    if (document == nullptr || !isRss091DocumentType(document->intSubset))
        return nullptr;
    const auto found = std::find(names.begin(), names.end(), reinterpret_cast<const char *>(name));
    if (found == names.end())
        return nullptr;
    auto *declared = static_cast<xmlHashTable *>(document->intSubset->entities);
    if (declared != nullptr && xmlHashLookup(declared, name) != nullptr)
        return nullptr;
    // The external subset is a part of the tree that isn't written out.
    if (document->extSubset == nullptr)
        xmlNewDtd(document, document->intSubset->name, document->intSubset->ExternalID, document->intSubset->SystemID);
    if (xmlEntity *known = xmlGetDtdEntity(document, name))
        return known;
    const QString character(QChar(0xA0 + static_cast<int>(found - names.begin())));
    return xmlAddDtdEntity(document, name, XML_INTERNAL_GENERAL_ENTITY, nullptr, nullptr,
                           reinterpret_cast<const xmlChar *>(character.toUtf8().constData()));
}
