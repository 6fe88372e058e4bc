// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "controls/cReBar.h"
#include "tests/window/PrincFixture.h"

#include <QAbstractScrollArea>
#include <QAccessible>
#include <QBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMenuBar>
#include <QMetaEnum>
#include <QMetaProperty>
#include <QProgressBar>
#include <QToolButton>

/// The window and what belongs to it as lines of text, each widget with what sets it off from a plain one of its kind.
/// Sizes that come of a font are left out.
namespace WindowDump {

/// The name of the program's picture that the icon shows.
inline QString pictureOf(const QIcon &icon)
{
    static const QList<std::pair<QString, QImage>> known = [] {
        QList<std::pair<QString, QImage>> pictures;
        for (const QFileInfo &file : QDir(u":/icons"_s).entryInfoList({u"*.svg"_s}))
            pictures.emplaceBack(file.baseName(), QIcon(file.filePath()).pixmap(16).toImage());
        return pictures;
    }();
    if (icon.isNull())
        return {};
    const QImage image = icon.pixmap(16).toImage();
    for (const auto &[name, picture] : known)
        if (picture == image)
            return name;
    return u"?"_s;
}

template <class Widget>
QWidget *plain()
{
    static auto *const widget = new Widget; // must not outlive the application as others of static life would
    return widget;
}

/// A plain widget of the nearest kind that Qt knows.
inline const QWidget &plainOf(const QWidget &widget)
{
    const std::initializer_list<std::pair<const char *, QWidget *(*)()>> kinds = {
        {"QTreeView", plain<QTreeView>},     {"QLineEdit", plain<QLineEdit>},       {"QLabel", plain<QLabel>},
        {"QToolButton", plain<QToolButton>}, {"QProgressBar", plain<QProgressBar>}, {"QMenu", plain<QMenu>}};
    for (const auto &[name, make] : kinds)
        if (widget.inherits(name))
            return *make();
    return *plain<QWidget>();
}

inline QString textOf(const QMetaProperty &property, const QVariant &value)
{
    if (property.isEnumType())
        return QString::fromLatin1(property.enumerator().valueToKeys(value.toInt()));
    if (value.typeId() == QMetaType::QSize)
        return u"%1x%2"_s.arg(value.toSize().width()).arg(value.toSize().height());
    return value.typeId() == QMetaType::QCursor ? QString::number(value.value<QCursor>().shape()) : value.toString();
}

inline const QStringList properties =
    u"windowTitle text toolTip enabled focusPolicy contextMenuPolicy cursor minimumSize maximumSize maxLength "
    "autoRaise popupMode iconSize textFormat indent minimum maximum value textVisible acceptDrops "
    "editTriggers selectionMode autoScroll textElideMode headerHidden toolButtonStyle uniformRowHeights rootIsDecorated allColumnsShowFocus"_s
        .split(u' ');

/// The widget's kind and name, and behind them what there is to tell of it, with " | " between.
inline QString line(const QWidget &widget)
{
    QAccessibleInterface *told = QAccessible::queryAccessibleInterface(const_cast<QWidget *>(&widget));
    const QString name = told->text(QAccessible::Name);
    const QString subject = QString::fromLatin1(widget.metaObject()->className()) + u' ' + widget.objectName();
    QStringList parts = {subject.trimmed(),
                         QString::fromLatin1(QMetaEnum::fromType<QAccessible::Role>().valueToKey(told->role()))};
    if (!name.isEmpty() && name != widget.property("text").toString())
        parts += u'"' + name + u'"';
    if (widget.isHidden() && !widget.inherits("QToolButton")) // which of these there is room for is the font's affair
        parts += u"hidden"_s;
    if (widget.isMinimized())
        parts += u"minimised"_s;
    for (const QString &wanted : properties) {
        const int index = widget.metaObject()->indexOfProperty(wanted.toLatin1());
        const QMetaProperty property = widget.metaObject()->property(index);
        const QString value = index < 0 ? QString() : textOf(property, property.read(&widget));
        if (widget.inherits("ToolbarButton") && wanted == u"focusPolicy")
            continue; // only one button of a bar takes the focus from outside
        if (index >= 0 && value != textOf(property, property.read(&plainOf(widget))))
            parts += wanted + u'=' + value;
    }
    const QIcon icon = widget.isWindow() ? widget.windowIcon() : widget.property("icon").value<QIcon>();
    if (!icon.isNull())
        parts += u"picture="_s + pictureOf(icon);
    if (const auto *bar = qobject_cast<const cToolbar *>(&widget))
        parts += bar->drawStyle() == DrawStyle::OfficeXp ? u"Office XP"_s : u"standard"_s;
    if (const auto *label = qobject_cast<const QLabel *>(&widget); label && label->buddy())
        parts += u"of "_s + label->buddy()->objectName();
    if (const auto *row = qobject_cast<const QBoxLayout *>(widget.layout()); row && row->count() > 0) {
        const QMargins edges = row->contentsMargins();
        parts += u"margins %1 %2 %3 %4"_s.arg(edges.left()).arg(edges.top()).arg(edges.right()).arg(edges.bottom());
        for (int i = 0; i < row->count(); ++i)
            parts += u"%1*%2"_s.arg(row->itemAt(i)->widget()->objectName()).arg(row->stretch(i));
    }
    return parts.join(u" | "_s).replace(u"\r\n"_s, u"\\n"_s);
}

inline void addWidget(QStringList &lines, const QWidget &widget, const QString &indent = {})
{
    lines += indent + line(widget);
    if (widget.inherits("QAbstractScrollArea") || widget.inherits("QMenuBar") || widget.inherits("QLineEdit"))
        return; // Qt's own parts
    for (const QObject *child : widget.children())
        if (const auto *part = qobject_cast<const QWidget *>(child);
            part && !part->isWindow() && part->objectName() != u"announcement")
            addWidget(lines, *part, indent + u"  "_s);
}

inline void addMenu(QStringList &lines, const QList<QAction *> &actions, const QString &indent)
{
    for (const QAction *action : actions) {
        QStringList parts = {action->isSeparator() ? u"-"_s : action->text()};
        if (!action->shortcut().isEmpty())
            parts += action->shortcut().toString(QKeySequence::PortableText);
        if (!action->icon().isNull())
            parts += u"picture="_s + pictureOf(action->icon());
        for (const auto &[is, word] :
             {std::pair(!action->isEnabled(), u"disabled"_s), std::pair(!action->isVisible(), u"hidden"_s),
              std::pair(action->isCheckable(), u"checkable"_s), std::pair(action->isChecked(), u"checked"_s)})
            if (is)
                parts += word;
        lines += indent + parts.join(u" | "_s);
        if (action->menu())
            addMenu(lines, action->menu()->actions(), indent + u"  "_s);
    }
}

inline void addMenu(QStringList &lines, const QMenu &menu)
{
    lines +=
        u"menu from "_s + menu.actions().first()->text() +
        (menu.parent() == nullptr || menu.parent()->objectName().isEmpty() ? u""_s
                                                                           : u" of "_s + menu.parent()->objectName()) +
        (menu.accessibleName().isEmpty() ? u""_s : u" | "_s + menu.accessibleName()) +
        (menu.testAttribute(Qt::WA_SetStyle) ? u" | Office XP"_s : u" | standard"_s);
    addMenu(lines, menu.actions(), u"  "_s);
    if (menu.defaultAction())
        lines += u"  default: "_s + menu.defaultAction()->text();
}

/// The menus that open at the mouse, and that of the tray icon.
inline QList<const QMenu *> popups(const PrincFixture &fixture)
{
    QList<const QMenu *> menus;
    for (const QMenu *menu : fixture.window->findChildren<QMenu *>())
        if (!menu->isEmpty() && menu->title().isEmpty() && !menu->actions().first()->menu())
            menus += menu;
    if (fixture.trayMenu)
        menus += fixture.trayMenu;
    return menus;
}

inline void addNode(QStringList &lines, const PrincFixture &fixture, const FeedNodePtr &node, const QString &place)
{
    const FeedTreeState &state = fixture.program->longLived().treeState;
    lines += u"node "_s + node->key() + u" | "_s + place + u" | "_s + node->text() +
             u" | pictures %1 and %2"_s.arg(node->image()).arg(node->selectedImage()) +
             (state.isExpanded(node) ? u" | open"_s : u""_s) + (state.selected() == node ? u" | selected"_s : u""_s);
    int number = 0;
    for (const FeedNodePtr &child : node->children())
        addNode(lines, fixture, child, place + u".%1"_s.arg(++number));
}

/// The entries of all menus, and the buttons of the two toolbars.
inline QList<QAction *> commands(const PrincFixture &fixture)
{
    QList<QAction *> found;
    const std::function<void(const QList<QAction *> &)> walk = [&](const QList<QAction *> &actions) {
        for (QAction *action : actions) {
            if (action->menu())
                walk(action->menu()->actions());
            else if (!action->isSeparator() && action->isVisible())
                found += action;
        }
    };
    walk(fixture.window->findChild<QMenuBar *>()->actions());
    for (const QMenu *menu : popups(fixture))
        walk(menu->actions());
    return found;
}

/// All that there is, from the window to the settings.
inline QStringList all(const PrincFixture &fixture)
{
    QStringList lines;
    addWidget(lines, *fixture.window);
    for (const char *pane : {"tvwFavoris", "picHorizontalSplit", "lvwItems", "picVerticalSplit", "cToolbarHost1",
                             "WebBrowser1", "prbChargement"}) {
        const QRect place = fixture.control<QWidget>(pane)->geometry();
        lines += u"%1 | from %2, %3 wide"_s.arg(QString::fromLatin1(pane)).arg(place.x()).arg(place.width());
    }
    lines += u"menu bar"_s;
    addMenu(lines, fixture.window->findChild<QMenuBar *>()->actions(), u"  "_s);
    for (const QMenu *menu : popups(fixture))
        addMenu(lines, *menu);
    addNode(lines, fixture, fixture.feedTree().root(), u"0"_s);
    for (int column = 1; column <= itemColumnCount; ++column)
        lines += u"column %1 | %2 twips"_s.arg(column).arg(fixture.list()->columnWidthTwips(column));
    for (int row = 0; row < fixture.list()->items().rowCount(); ++row)
        lines += u"item "_s + fixture.list()->items().index(row, 0).data().toString() +
                 (fixture.list()->items().isShownRead(row) ? u" | read"_s : u" | unread"_s) +
                 (row == fixture.list()->selectedRow() ? u" | selected"_s : u""_s);
    const AppSettings &settings = fixture.settings();
    lines += u"settings | office %1 | small %2 | split at %3 and %4 twips"_s.arg(settings.officeStyle)
                 .arg(settings.smallToolbars)
                 .arg(settings.splitHorizontal)
                 .arg(settings.splitVertical);
    for (const QPointer<FakeDownloader> &downloader : fixture.downloaders)
        for (const FakeDownloader::Request &request :
             downloader ? downloader->requests : std::vector<FakeDownloader::Request>())
            lines += u"asked %1 for %2 as \"%3:%4\""_s.arg(request.url, request.destination.section(u'/', -1),
                                                           request.username, request.password);
    for (const QFileInfo &file : QDir(fixture.data.directory().path()).entryInfoList(QDir::Files) +
                                     QDir(fixture.data.directory().path() + u"/feeds"_s).entryInfoList(QDir::Files))
        lines += u"file "_s + file.fileName();
    for (const QString &element : QString::fromUtf8(fixture.data.read(u"feeds.xml"_s))
                                      .replace(u"><"_s, u">\n<"_s)
                                      .split(u'\n', Qt::SkipEmptyParts))
        lines += u"feeds.xml: "_s + element;
    if (const frmUpdate *popup = PrincFixture::popup())
        addWidget(lines, *popup);
    return lines;
}

/// What has changed: of a line that is still there the parts that are gone ("-") and those that have come ("+").
inline QStringList changes(QStringList before, QStringList after)
{
    for (QStringList *lines : {&before, &after})
        for (QString &one : *lines)
            one = one.trimmed();
    QStringList changed;
    for (const QString &one : QStringList(before))
        if (after.removeOne(one))
            before.removeOne(one);
    for (const QString &one : before) {
        QStringList gone = one.split(u" | "_s);
        const QString subject = gone.takeFirst();
        const auto other = std::find_if(after.begin(), after.end(),
                                        [&](const QString &line) { return line.section(u" | "_s, 0, 0) == subject; });
        QString text = subject;
        if (other == after.end()) {
            changed += u"- "_s + one;
            continue;
        }
        QStringList come = other->split(u" | "_s).mid(1);
        after.erase(other);
        for (const QString &part : gone)
            text += come.removeOne(part) ? QString() : u" -"_s + part;
        for (const QString &part : come)
            text += u" +"_s + part;
        changed += text;
    }
    for (const QString &one : after)
        changed += u"+ "_s + one;
    return changed;
}

} // namespace WindowDump
