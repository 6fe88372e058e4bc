// SPDX-License-Identifier: GPL-3.0-or-later

#include "controls/StatusBar.h"

#include "controls/CutTips.h"
#include "controls/ScreenReader.h"
#include "platform/Literals.h"
#include "platform/RunTimeError.h"

#include <QEvent>
#include <QLabel>
#include <QPainter>
#include <QSizeGrip>

#include <algorithm>

namespace {

constexpr int gap = 2;
constexpr int padding = 4;

/// A label that cuts its text with an ellipsis; QLabel itself knows none.
class PanelLabel final : public QLabel
{
public:
    explicit PanelLabel(QWidget *parent) : QLabel(parent) { setTextFormat(Qt::PlainText); }

    QString shownText() const
    {
        const QString line = text().simplified();
        return fontMetrics().elidedText(line, Qt::ElideRight, std::max(0, width() - 2 * padding));
    }

    void updateTip() { setToolTip(shownText() == text().simplified() ? QString() : CutTips::tip(text())); }

protected:
    void resizeEvent(QResizeEvent *) override { updateTip(); }

    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.setPen(palette().color(QPalette::Mid));
        painter.drawLine(width() - 1, 2, width() - 1, height() - 3);
        painter.setPen(palette().color(QPalette::WindowText));
        painter.drawText(rect().adjusted(padding, 0, -padding, 0), Qt::AlignVCenter | Qt::TextSingleLine, shownText());
    }
};

} // namespace

StatusBar::StatusBar(QWidget *parent) : QWidget(parent), m_grip(new QSizeGrip(this))
{
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    ScreenReader::setRole(*this, QAccessible::StatusBar);
    setAccessibleName(u"Barre d'état"_s);
}

void StatusBar::addPanel(const QString &key, int width, Panel kind)
{
    const bool taken =
        std::any_of(m_panels.begin(), m_panels.end(), [&key](const Entry &panel) { return panel.key == key; });
    if (taken)
        throw RunTimeError::keyInUse();
    auto *label = new PanelLabel(this);
    label->setObjectName(key);
    label->setVisible(true);
    m_panels.push_back({key, std::max(0, width), kind, label});
    m_grip->raise();
    layOut();
}

void StatusBar::setPanelText(const QString &key, const QString &text)
{
    auto *label = static_cast<PanelLabel *>(entry(key).label);
    label->setText(text);
    label->updateTip();
}

QRect StatusBar::panelRect(const QString &key) const
{
    return entry(key).label->geometry();
}

QSize StatusBar::sizeHint() const
{
    int width = m_grip->sizeHint().width();
    for (const Entry &panel : m_panels)
        width += panel.width + gap;
    return {width, std::max(fontMetrics().height() + 8, m_grip->sizeHint().height())};
}

QSize StatusBar::minimumSizeHint() const
{
    return {0, sizeHint().height()};
}

void StatusBar::resizeEvent(QResizeEvent *)
{
    layOut();
}

void StatusBar::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) {
        updateGeometry();
        layOut();
    }
    QWidget::changeEvent(event);
}

const StatusBar::Entry &StatusBar::entry(const QString &key) const
{
    const auto found =
        std::find_if(m_panels.begin(), m_panels.end(), [&key](const Entry &panel) { return panel.key == key; });
    if (found == m_panels.end())
        throw RunTimeError::elementNotFound();
    return *found;
}

void StatusBar::layOut()
{
    const QSize grip = m_grip->sizeHint();
    m_grip->setGeometry(width() - grip.width(), height() - grip.height(), grip.width(), grip.height());

    std::vector<int> widths;
    int left = width() - grip.width() - gap * int(m_panels.size());
    int glues = 0;
    for (const Entry &panel : m_panels) {
        widths.push_back(panel.kind == Panel::Fixed ? panel.width : 0);
        left -= widths.back();
        glues += panel.kind == Panel::Glue;
    }
    for (std::size_t i = 0; i < widths.size() && left > 0 && glues > 0; ++i) {
        if (m_panels[i].kind == Panel::Glue) {
            widths[i] = left / glues--;
            left -= widths[i];
        }
    }
    while (left < 0) {
        const auto widest = std::max_element(widths.begin(), widths.end());
        if (widest == widths.end() || *widest == 0)
            break;
        // Down to the next narrower panel at most, so that no panel vanishes while another is wide.
        int next = 0;
        for (const int width : widths)
            next = width < *widest ? std::max(next, width) : next;
        const int cut = std::min(-left, std::max(1, *widest - next));
        *widest -= cut;
        left += cut;
    }
    int x = 0;
    for (std::size_t i = 0; i < widths.size(); ++i) {
        m_panels[i].label->setGeometry(x, 0, widths[i], height());
        x += widths[i] + gap;
    }
    Q_EMIT panelsMoved();
}
