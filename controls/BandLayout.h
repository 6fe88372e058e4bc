// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QRect>
#include <QString>

#include <optional>
#include <vector>

/// The places of bands in rows, without any widget: what a rebar computes, and the text that its layout is kept as.
namespace BandLayout {

/// What one band asks for, in pixels.
struct Wish
{
    int width = 0;    ///< what it had last
    int minWidth = 0; ///< below which it goes only where a row can't be shared out otherwise
    int height = 0;
};

/// Rows of bands; a band is a number.
using Rows = std::vector<std::vector<int>>;

/// The places of all bands in `width` pixels, rows from the top with `rowGap` pixels between them; the last band of a
/// row takes what is left over. `wishes` and the result are by band number; every band stands in exactly one row.
std::vector<QRect> place(const Rows &rows, const std::vector<Wish> &wishes, int width, int rowGap, int columnGap);

/// One band of a kept layout.
struct Band
{
    int id = 0;
    QString data;
    QRect rect;
    int minWidth = 0;
    int idealWidth = 0;
    bool chevron = false;
    QString text;
    bool fixed = false;
};

/// The element `Bands` on one line; `bands` stand in their present order.
QString toText(const std::vector<Band> &bands, int rowCount);

/// What such a text holds; nothing when it is no such text. Numbers that are too large or negative are brought into 0
/// to 32767.
std::optional<std::vector<Band>> fromText(const QString &text);

/// The bands of a kept layout in rows, by their places; the numbers are positions in `bands`.
Rows rowsOf(const std::vector<Band> &bands);

} // namespace BandLayout
