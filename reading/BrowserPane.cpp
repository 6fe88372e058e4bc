// SPDX-License-Identifier: GPL-3.0-or-later

#include "reading/BrowserPane.h"

#include "controls/FileDialogs.h"
#include "controls/ScreenReader.h"
#include "platform/Literals.h"
#include "reading/WebModule.h"

#include <QLabel>
#include <QTimer>
#include <QVBoxLayout>

#include <utility>

struct BrowserPane::Private
{
    DataDirectory directory;
    Messages &messages;
    std::unique_ptr<WebPane> engine = nullptr;
    QString first = {};   ///< the first page ever asked for, with which the back list begins
    QString pending = {}; ///< the last one asked for, before the first is there
    bool opening = false; ///< the engine is at the first page
    bool failed = false;  ///< the engine couldn't be loaded

    void start(BrowserPane &pane);
    void handleComplete(BrowserPane &pane);
    WebPane::Events eventsOf(BrowserPane &pane);
};

void BrowserPane::Private::start(BrowserPane &pane)
{
    QString error;
    const WebPaneMaker make = WebModule::load(error);
    QWidget *content = nullptr;
    if (make != nullptr) {
        engine.reset(make({directory.path(), &Files::read}, messages, &pane, eventsOf(pane)));
        content = engine->widget();
    } else {
        failed = true;
        auto *label = new QLabel(u"Le moteur d'affichage des pages ne peut pas être chargé :\n"_s + error, &pane);
        label->setTextFormat(Qt::PlainText);
        label->setAlignment(Qt::AlignCenter);
        label->setWordWrap(true);
        content = label;
    }
    pane.layout()->addWidget(content);
    pane.setFocusProxy(content);
    if (engine) {
        opening = true;
        engine->navigate(first);
    }
}

/// A page that is left before it is there isn't in the back list.
void BrowserPane::Private::handleComplete(BrowserPane &pane)
{
    if (!opening)
        return;
    QMetaObject::invokeMethod(
        &pane,
        [this] {
            opening = false;
            if (!pending.isEmpty())
                engine->navigate(std::exchange(pending, {}));
        },
        Qt::QueuedConnection);
}

WebPane::Events BrowserPane::Private::eventsOf(BrowserPane &pane)
{
    return {[&pane](const QString &text) { Q_EMIT pane.StatusTextChange(text); },
            [&pane](int progress, int progressMax) { Q_EMIT pane.ProgressChange(progress, progressMax); },
            [&pane](int command, bool enable) { Q_EMIT pane.CommandStateChange(command, enable); },
            [&pane] { Q_EMIT pane.DownloadBegin(); },
            [this, &pane] {
                handleComplete(pane);
                Q_EMIT pane.DocumentComplete();
            },
            [&pane](const QString &url) { Q_EMIT pane.feedLinkAccepted(url); },
            [&pane](const QString &url) { Q_EMIT pane.systemLinkActivated(url); },
            [&pane] { Q_EMIT pane.extensionsAsked(); },
            [&pane](const QString &proposed) { return pane.askDownloadPath(proposed); }};
}

BrowserPane::BrowserPane(DataDirectory directory, Messages &messages, QWidget *parent)
    : QWidget(parent), d(new Private{std::move(directory), messages})
{
    ScreenReader::setRole(*this, QAccessible::Pane);
    setAccessibleName(u"Page"_s);
    setFocusPolicy(Qt::StrongFocus);
    auto *room = new QVBoxLayout(this);
    room->setContentsMargins(0, 0, 0, 0);
}

BrowserPane::~BrowserPane() = default;

void BrowserPane::Navigate(const QString &url)
{
    if (url.trimmed().isEmpty() || d->failed)
        return;
    if (d->engine && !d->opening) {
        d->engine->navigate(url);
        return;
    }
    (d->first.isEmpty() ? d->first : d->pending) = url;
    if (!d->engine && isOnScreen())
        d->start(*this);
}

void BrowserPane::Navigate2(const QString &url)
{
    Navigate(url);
}

void BrowserPane::GoBack()
{
    if (d->engine)
        d->engine->goBack();
}

void BrowserPane::GoForward()
{
    if (d->engine)
        d->engine->goForward();
}

void BrowserPane::Refresh()
{
    if (d->engine)
        d->engine->refresh();
}

void BrowserPane::Stop()
{
    if (d->engine)
        d->engine->stop();
}

QString BrowserPane::LocationURL() const
{
    return d->engine ? d->engine->location() : QString();
}

bool BrowserPane::isOnScreen() const
{
    return isVisible() && !window()->isMinimized();
}

void BrowserPane::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    // Behind the first painting of the window.
    QTimer::singleShot(0, this, [this] {
        if (!d->engine && !d->failed && isOnScreen() && !d->first.isEmpty())
            d->start(*this);
    });
}

QString BrowserPane::askDownloadPath(const QString &proposed)
{
    return FileDialogs::askSaveFile(this, u"Enregistrer sous"_s, QString(), proposed);
}
