// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

#include <functional>
#include <utility>

/// HTML, as far as texts of feeds are made of it.
namespace HtmlText {

/// What markup says to who reads it in a list: without tags and comments, references resolved, runs of blanks as one.
QString bare(const QString &markup);

/// The markup with each address in it as `whole` gives it: of links, pictures and what else a page loads by itself.
QString withAddresses(const QString &markup, const std::function<QString(const QString &address)> &whole);

/// What the reference at `place` of the markup says, and how long it is; a length of 0 for an "&" that begins none that
/// HTML knows.
std::pair<QString, qsizetype> reference(QStringView markup, qsizetype place);

/// A text as markup that says it.
QString escaped(const QString &text);

} // namespace HtmlText
