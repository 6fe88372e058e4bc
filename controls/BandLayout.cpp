// SPDX-License-Identifier: GPL-3.0-or-later

#include "controls/BandLayout.h"

#include "platform/Literals.h"

#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <algorithm>
#include <numeric>

namespace {

constexpr int largest = 32767;

/// Shares `room` out among the bands of a row, which want `widths` and shouldn't go below `minima`.
void shareOut(std::vector<int> &widths, const std::vector<int> &minima, int room)
{
    int excess = std::accumulate(widths.begin(), widths.end(), 0) - room;
    for (std::size_t i = widths.size(); excess > 0 && i-- > 0;) {
        const int cut = std::min(excess, std::max(0, widths[i] - minima[i]));
        widths[i] -= cut;
        excess -= cut;
    }
    if (excess > 0) { // not even the minima fit: each band gets its part
        const int total = std::accumulate(widths.begin(), widths.end(), 0);
        for (int &width : widths)
            width = static_cast<int>(static_cast<qint64>(width) * std::max(0, room) / std::max(1, total));
    }
    widths.back() += room - std::accumulate(widths.begin(), widths.end(), 0);
}

/// A whole number of any length, brought into range; nothing when the attribute is missing or no number.
std::optional<int> number(const QXmlStreamAttributes &attributes, const QString &name)
{
    const QString text = attributes.value(name).trimmed().toString();
    const bool negative = text.startsWith(u'-');
    const QString digits = negative ? text.mid(1) : text;
    const bool isNumber = !digits.isEmpty() && std::all_of(digits.begin(), digits.end(),
                                                           [](QChar digit) { return digit >= u'0' && digit <= u'9'; });
    if (!isNumber)
        return std::nullopt;
    if (negative)
        return 0;
    bool fits = false;
    const int value = digits.toInt(&fits);
    return fits ? std::min(value, largest) : largest;
}

std::optional<BandLayout::Band> readBand(const QXmlStreamAttributes &attributes)
{
    const auto left = number(attributes, u"left"_s);
    const auto top = number(attributes, u"top"_s);
    const auto right = number(attributes, u"right"_s);
    const auto bottom = number(attributes, u"bottom"_s);
    const auto minWidth = number(attributes, u"bandChildMinWidth"_s);
    if (!left || !top || !right || !bottom || !minWidth || !attributes.hasAttribute(u"data"_s))
        return std::nullopt;
    BandLayout::Band band;
    band.id = number(attributes, u"id"_s).value_or(0);
    band.data = attributes.value(u"data"_s).toString();
    band.rect = QRect(*left, *top, std::max(0, *right - *left), std::max(0, *bottom - *top));
    band.minWidth = *minWidth;
    band.idealWidth = number(attributes, u"bandChildIdealWidth"_s).value_or(*minWidth);
    band.chevron = attributes.value(u"chevron"_s) == u"y";
    band.text = attributes.value(u"text"_s).toString();
    band.fixed = attributes.value(u"fixedBand"_s) == u"y";
    return band;
}

QString yesNo(bool value)
{
    return value ? u"y"_s : u"n"_s;
}

} // namespace

std::vector<QRect> BandLayout::place(const Rows &rows, const std::vector<Wish> &wishes, int width, int rowGap,
                                     int columnGap)
{
    std::vector<QRect> places(wishes.size());
    int y = 0;
    for (const std::vector<int> &row : rows) {
        if (row.empty())
            continue;
        std::vector<int> widths;
        std::vector<int> minima;
        int height = 0;
        for (const int band : row) {
            const Wish &wish = wishes[static_cast<std::size_t>(band)];
            widths.push_back(std::clamp(wish.width, wish.minWidth, std::max(largest, wish.minWidth)));
            minima.push_back(wish.minWidth);
            height = std::max(height, wish.height);
        }
        shareOut(widths, minima, width - columnGap * (static_cast<int>(row.size()) - 1));
        int x = 0;
        for (std::size_t i = 0; i < row.size(); ++i) {
            places[static_cast<std::size_t>(row[i])] = QRect(x, y, std::max(0, widths[i]), height);
            x += widths[i] + columnGap;
        }
        y += height + rowGap;
    }
    return places;
}

QString BandLayout::toText(const std::vector<Band> &bands, int rowCount)
{
    QString text;
    QXmlStreamWriter writer(&text);
    writer.writeStartElement(u"Bands"_s);
    writer.writeAttribute(u"count"_s, QString::number(bands.size()));
    writer.writeAttribute(u"rowCount"_s, QString::number(rowCount));
    for (const Band &band : bands) {
        const auto write = [&writer](const QString &name, int value) {
            writer.writeAttribute(name, QString::number(value));
        };
        writer.writeEmptyElement(u"Band"_s);
        write(u"id"_s, band.id);
        writer.writeAttribute(u"data"_s, band.data);
        write(u"left"_s, band.rect.left());
        write(u"top"_s, band.rect.top());
        write(u"right"_s, band.rect.left() + band.rect.width());
        write(u"bottom"_s, band.rect.top() + band.rect.height());
        write(u"bandChildMinWidth"_s, band.minWidth);
        write(u"bandChildIdealWidth"_s, band.idealWidth);
        writer.writeAttribute(u"chevron"_s, yesNo(band.chevron));
        writer.writeAttribute(u"text"_s, band.text);
        writer.writeAttribute(u"fixedBand"_s, yesNo(band.fixed));
    }
    writer.writeEndElement();
    return text;
}

std::optional<std::vector<BandLayout::Band>> BandLayout::fromText(const QString &text)
{
    QXmlStreamReader reader(text);
    if (!reader.readNextStartElement() || reader.name() != u"Bands")
        return std::nullopt;
    std::vector<Band> bands;
    while (reader.readNextStartElement()) {
        const std::optional<Band> band = reader.name() == u"Band" ? readBand(reader.attributes()) : std::nullopt;
        if (!band)
            return std::nullopt;
        bands.push_back(*band);
        reader.skipCurrentElement();
    }
    while (!reader.atEnd()) // a text that breaks off behind its last band is damaged as well
        reader.readNext();
    if (reader.hasError())
        return std::nullopt;
    return bands;
}

BandLayout::Rows BandLayout::rowsOf(const std::vector<Band> &bands)
{
    std::vector<int> order(bands.size());
    std::iota(order.begin(), order.end(), 0);
    const auto rectOf = [&bands](int band) { return bands[static_cast<std::size_t>(band)].rect; };
    std::stable_sort(order.begin(), order.end(), [&rectOf](int one, int other) {
        const QRect a = rectOf(one);
        const QRect b = rectOf(other);
        return a.top() != b.top() ? a.top() < b.top() : a.left() < b.left();
    });
    Rows rows;
    for (const int band : order) {
        if (rows.empty() || rectOf(rows.back().front()).top() != rectOf(band).top())
            rows.emplace_back();
        rows.back().push_back(band);
    }
    return rows;
}
