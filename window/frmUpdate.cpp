// SPDX-License-Identifier: GPL-3.0-or-later

#include "window/frmUpdate.h"

#include "controls/ScreenReader.h"
#include "controls/Twips.h"
#include "platform/Literals.h"
#include "window/InfoLabel.h"
#include "window/ReducedMotion.h"
#include "window/TaskBar.h"

#include <QAccessible>
#include <QGuiApplication>
#include <QLabel>
#include <QPainter>
#include <QToolButton>
#include <QWindow>

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
constexpr int titleBarHeight = 270;

const QColor background(0xFF, 0xFF, 0xC0);
const QColor titleColour(0xF0, 0xE0, 0x90);
const QColor textColour(0x20, 0x20, 0x20);

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
    ScreenReader::setRole(*this, QAccessible::Notification); // spoken when it comes up
}

frmUpdate::~frmUpdate() = default;

frmUpdate::FindWorkArea frmUpdate::workAreaOf(QWidget *window)
{
    return [window] {
        const QScreen *screen = window->screen();
        const ScreenScale scale{Twips::perPixelX(screen), Twips::perPixelY(screen)};
        const bool isPlacedByTheDesktop = QGuiApplication::platformName().startsWith(u"wayland"_s);
        if (isPlacedByTheDesktop && window->isVisible() && !window->isMinimized())
            return WorkArea{QRect(window->mapToGlobal(QPoint()), window->size()), scale, true, window};
        return WorkArea{screen->availableGeometry(), scale, isPlacedByTheDesktop || desktopReducesMotion(*window)};
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
    announce();
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
    announce();
    if (!timShow.isActive())
        timShow.start();
}

void frmUpdate::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), background);
    painter.fillRect(QRect(0, 0, width(), pixelsY(titleBarHeight)), titleColour);
    // Filled and not drawn: a pen's line lies astride the edge, half of it outside, where a pixel is several dots.
    painter.fillRect(QRect(0, 0, width(), 1), textColour);
    painter.fillRect(QRect(0, height() - 1, width(), 1), textColour);
    painter.fillRect(QRect(0, 0, 1, height()), textColour);
    painter.fillRect(QRect(width() - 1, 0, 1, height()), textColour);
}

void frmUpdate::resizeEvent(QResizeEvent *)
{
    const int bar = pixelsY(titleBarHeight);
    const QRect title(1, 1, width() - bar - 2, bar - 1);
    m_titleBar->setGeometry(title);
    m_titleBar->setFont(InfoLabel::fittingFont(font(), {m_titleBar->text()}, title.size()));
    m_closeButton->setFont(m_titleBar->font());
    m_closeButton->setGeometry(width() - bar - 1, 1, bar, bar - 1);
    lblInfos->setGeometry(pixelsX(labelPlace.x()), bar + pixelsY(labelPlace.y()), pixelsX(labelPlace.width()),
                          pixelsY(labelPlace.height()));
}

int frmUpdate::pixelsX(int twips) const
{
    return static_cast<int>(std::lround(twips / m_scale.twipsPerPixelX));
}

int frmUpdate::pixelsY(int twips) const
{
    return static_cast<int>(std::lround(twips / m_scale.twipsPerPixelY));
}

void frmUpdate::announce()
{
    leaveOutOfTaskBar(*this);
    show();
    const bool isTold = windowType() != Qt::ToolTip; // by Qt, when the window comes up
    QAccessibleEvent alert(this, isTold ? QAccessible::Alert : QAccessible::ObjectShow);
    QAccessible::updateAccessibility(&alert);
}

void frmUpdate::setCaption(const QString &text)
{
    lblInfos->setText(text);
    setAccessibleName(text);
}

void frmUpdate::placeWindow()
{
    const WorkArea area = m_findWorkArea();
    bindTo(area.owner);
    m_scale = area.scale;
    const double right = (area.pixels.left() + area.pixels.width()) * m_scale.twipsPerPixelX;
    const double bottom = (area.pixels.top() + area.pixels.height()) * m_scale.twipsPerPixelY;
    m_place = QRect(static_cast<int>(std::lround(right)) - fromRight,
                    static_cast<int>(std::lround(bottom)) - fromBottom, fullWidth, firstHeight);
    if (area.withoutMotion)
        m_place.setTop(m_place.top() - (lastHeight - firstHeight));
    applyPlace();
}

/// A window that is bound to another must be a tip: the desktop places it beside that one, and gives it no focus.
void frmUpdate::bindTo(QWidget *owner)
{
    const Qt::WindowType type = owner ? Qt::ToolTip : Qt::Tool;
    if (windowType() != type) // this hides it
        setWindowFlags((windowFlags() & ~Qt::WindowType_Mask) | type);
    create();
    windowHandle()->setTransientParent(owner ? owner->windowHandle() : nullptr);
}

void frmUpdate::applyPlace()
{
    // The edges are rounded, not the sizes, so that the bottom edge stands still.
    const int left = pixelsX(m_place.left());
    const int top = pixelsY(m_place.top());
    const int right = pixelsX(m_place.left() + m_place.width());
    const int bottom = pixelsY(m_place.top() + m_place.height());
    setGeometry(left, top, right - left, bottom - top);
}
