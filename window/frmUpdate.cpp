// SPDX-License-Identifier: GPL-3.0-or-later

#include "window/frmUpdate.h"

#include "controls/Twips.h"
#include "platform/Literals.h"

#include <QLabel>
#include <QPainter>
#include <QTextLayout>
#include <QToolButton>

#include <cmath>
#include <limits>

namespace {

// Twips.
constexpr int fromRight = 2700;
constexpr int fromBottom = 600;
constexpr int fullWidth = 2500;
constexpr int firstHeight = 400;
constexpr int lastHeight = 2000;
constexpr int step = 10;
constexpr QRect labelPlace(120, 120, 2415, 1455);

constexpr int titleBarHeight = 18; // pixels
const QColor background(0xFF, 0xFF, 0xC0);
const QColor titleColour(0xF0, 0xE0, 0x90);
const QColor textColour(0x20, 0x20, 0x20);

/// Draws its text by lines, each wrapped. A long title gives way, with an ellipsis, so that the count below it stays in
/// sight.
class InfoLabel final : public QLabel
{
public:
    explicit InfoLabel(QWidget *parent) : QLabel(parent) { setTextFormat(Qt::PlainText); }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.setPen(textColour);
        QStringList paragraphs = text().split(u"\r\n"_s);
        const int lineHeight = fontMetrics().lineSpacing();
        // What the window leaves uncovered, which is less than the label itself.
        const int room = std::min(width(), parentWidget()->width() - 2 * x());
        const auto lines = static_cast<int>(height() / std::max(1, lineHeight));
        const int forTitle = std::max(1, lines - static_cast<int>(paragraphs.size()) + 1);
        int y = 0;
        for (qsizetype i = 0; i < paragraphs.size(); ++i) {
            const bool isTitle = i > 0 && i + 2 < paragraphs.size();
            y = drawParagraph(painter, paragraphs.at(i), y, room, isTitle ? forTitle : 1);
        }
    }

private:
    int drawParagraph(QPainter &painter, const QString &paragraph, int top, int room, int maxLines) const
    {
        const int lineHeight = fontMetrics().lineSpacing();
        const QString shown = paragraph.left(1000); // more doesn't fit, and a title may be of any length
        QTextLayout layout(shown, font());
        QTextOption option;
        option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
        layout.setTextOption(option);
        layout.beginLayout();
        int y = top;
        for (int i = 0; i < maxLines; ++i, y += lineHeight) {
            QTextLine line = layout.createLine();
            if (!line.isValid())
                break;
            line.setLineWidth(room);
            const int start = line.textStart();
            QString part = shown.mid(start, line.textLength());
            if (i + 1 == maxLines)
                part = fontMetrics().elidedText(shown.mid(start), Qt::ElideRight, room);
            painter.drawText(QRect(0, y, room, lineHeight), Qt::AlignLeft | Qt::AlignTop | Qt::TextSingleLine, part);
        }
        layout.endLayout();
        return std::max(y, top + lineHeight);
    }
};

} // namespace

frmUpdate::frmUpdate(FindWorkArea findWorkArea, const AppSettings &settings, std::unique_ptr<SoundPlayer> player)
    : QWidget(nullptr, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::WindowDoesNotAcceptFocus),
      m_findWorkArea(std::move(findWorkArea)), m_settings(settings), m_player(std::move(player)),
      m_titleBar(new QLabel(u"Informations"_s, this)), lblInfos(new InfoLabel(this))
{
    // The title bar is the window's own: a frame of the desktop would add to the sizes, which count the whole window.
    setWindowTitle(u"Informations"_s);
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_QuitOnClose, false);
    QPalette colours;
    colours.setColor(QPalette::Window, background);
    colours.setColor(QPalette::WindowText,
                     textColour); // the yellow stays on a dark desktop, so the text is dark always
    colours.setColor(QPalette::ButtonText, textColour);
    setPalette(colours);
    lblInfos->setObjectName(u"lblInfos"_s);
    m_titleBar->setIndent(6);

    auto *close = new QToolButton(this);
    close->setText(u"×"_s);
    close->setAutoRaise(true);
    close->setFocusPolicy(Qt::NoFocus);
    close->setAccessibleName(u"Fermer"_s);
    connect(close, &QToolButton::clicked, this, &QWidget::close);
    m_closeButton = close;

    timShow.setInterval(1);
    timShow.setTimerType(Qt::PreciseTimer);
    timHide.setInterval(5000);
    timHide.setTimerType(Qt::PreciseTimer);
    connect(&timShow, &QTimer::timeout, this, &frmUpdate::handleShowTick);
    connect(&timHide, &QTimer::timeout, this, &frmUpdate::handleHideTick);
}

frmUpdate::~frmUpdate() = default;

frmUpdate::FindWorkArea frmUpdate::workAreaOf(QWidget *window)
{
    return [window] {
        const QScreen *screen = window->screen();
        return WorkArea{screen->availableGeometry(), {Twips::perPixelX(screen), Twips::perPixelY(screen)}};
    };
}

void frmUpdate::addMessageToQueue(const QString &title, qint16 count)
{
    const QString message =
        u"Mise à jour du flux\r\n"_s + title + u"\r\n\r\n"_s + QString::number(count) + u" nouveaux messages"_s;
    if (popupRunning) {
        if (lastQueued == std::numeric_limits<qint16>::max())
            throw RunTimeError::overflow();
        ++lastQueued;
        popupQueue.Add(QString::number(lastQueued), message);
        return;
    }
    lastQueued = 0;
    shownKey = 0;
    for (const QString &key : popupQueue.Keys())
        popupQueue.Remove(key);
    popupQueue.Add(QString::number(shownKey), message);
    setCaption(message);
    placeWindow();
    m_player->play(m_settings.soundPath);
    show();
    timShow.start();
    popupRunning = true;
}

QString frmUpdate::caption() const
{
    return lblInfos->text();
}

void frmUpdate::handleShowTick()
{
    if (m_place.height() < lastHeight) {
        m_place.setRect(m_place.left(), m_place.top() - step, m_place.width(), m_place.height() + step);
        applyPlace();
        return;
    }
    timShow.stop();
    // Enabling a timer that runs doesn't restart it: a later message has 5 seconds from the hide before it, slide
    // included.
    if (!timHide.isActive())
        timHide.start();
}

void frmUpdate::handleHideTick()
{
    hide();
    popupQueue.Remove(QString::number(shownKey));
    if (popupQueue.Count() == 0) {
        popupRunning = false;
        timHide.stop();
        return;
    }
    ++shownKey;
    setCaption(popupQueue.Item(QString::number(shownKey)));
    placeWindow();
    show();
    if (!timShow.isActive())
        timShow.start();
}

void frmUpdate::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), background);
    painter.fillRect(QRect(0, 0, width(), titleBarHeight), titleColour);
    painter.setPen(textColour);
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

void frmUpdate::resizeEvent(QResizeEvent *)
{
    m_titleBar->setGeometry(1, 1, width() - titleBarHeight - 2, titleBarHeight - 1);
    m_closeButton->setGeometry(width() - titleBarHeight - 1, 1, titleBarHeight, titleBarHeight - 1);
    lblInfos->setGeometry(static_cast<int>(std::lround(labelPlace.x() / m_scale.twipsPerPixelX)),
                          titleBarHeight + static_cast<int>(std::lround(labelPlace.y() / m_scale.twipsPerPixelY)),
                          static_cast<int>(std::lround(labelPlace.width() / m_scale.twipsPerPixelX)),
                          static_cast<int>(std::lround(labelPlace.height() / m_scale.twipsPerPixelY)));
}

void frmUpdate::setCaption(const QString &text)
{
    lblInfos->setText(text);
    setAccessibleName(text);
}

void frmUpdate::placeWindow()
{
    const WorkArea area = m_findWorkArea();
    m_scale = area.scale;
    const double right = (area.pixels.left() + area.pixels.width()) * m_scale.twipsPerPixelX;
    const double bottom = (area.pixels.top() + area.pixels.height()) * m_scale.twipsPerPixelY;
    m_place = QRect(static_cast<int>(std::lround(right)) - fromRight,
                    static_cast<int>(std::lround(bottom)) - fromBottom, fullWidth, firstHeight);
    applyPlace();
}

void frmUpdate::applyPlace()
{
    const auto pixels = [](int twips, double perPixel) { return static_cast<int>(std::lround(twips / perPixel)); };
    // The edges are rounded, not the sizes, so that the bottom edge stands still.
    const int left = pixels(m_place.left(), m_scale.twipsPerPixelX);
    const int top = pixels(m_place.top(), m_scale.twipsPerPixelY);
    const int right = pixels(m_place.left() + m_place.width(), m_scale.twipsPerPixelX);
    const int bottom = pixels(m_place.top() + m_place.height(), m_scale.twipsPerPixelY);
    setGeometry(left, top, right - left, bottom - top);
}
