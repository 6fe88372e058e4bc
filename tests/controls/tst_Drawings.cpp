// SPDX-License-Identifier: GPL-3.0-or-later

#include "controls/StatusBar.h"
#include "controls/cPopupMenu.h"
#include "controls/cReBar.h"
#include "controls/cToolbar.h"
#include "platform/Literals.h"
#include "tests/fixtures/Golden.h"
#include "tests/fixtures/PaintLog.h"

#include <QApplication>
#include <QCommonStyle>
#include <QMenu>
#include <QProxyStyle>
#include <QStyleOptionMenuItem>
#include <QStyleOptionToolButton>
#include <QTest>

namespace {

/// Stands below our own style: its arrows are boxes, whatever the library draws.
class PlainStyle final : public QCommonStyle
{
public:
    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget) const override
    {
        if (element == PE_IndicatorArrowRight || element == PE_IndicatorArrowDown)
            painter->fillRect(option->rect, option->state & State_Enabled ? Qt::black : Qt::gray);
        else
            QCommonStyle::drawPrimitive(element, option, painter, widget);
    }
};

QPalette palette()
{
    QPalette colours(Qt::black, Qt::lightGray, Qt::white, Qt::darkGray, Qt::gray, Qt::black, Qt::white);
    colours.setColor(QPalette::Window, QColor(0xC0C0C0));
    colours.setColor(QPalette::Highlight, QColor(0x000080));
    colours.setColor(QPalette::Mid, QColor(0x112233));
    for (const auto role : {QPalette::Base, QPalette::Window, QPalette::WindowText, QPalette::Highlight})
        colours.setColor(QPalette::Disabled, role, QColor(0x808080));
    return colours;
}

QIcon picture()
{
    QIcon icon;
    for (const auto mode : {QIcon::Normal, QIcon::Disabled}) {
        QPixmap pixmap(16, 16);
        pixmap.fill(mode == QIcon::Normal ? Qt::red : Qt::gray);
        icon.addPixmap(pixmap, mode);
    }
    return icon;
}

/// The words that a drawing in office-style.txt is told by.
const QHash<QString, QStyle::State> states = {
    {u"enabled"_s, QStyle::State_Enabled},  {u"chosen"_s, QStyle::State_Selected}, {u"over"_s, QStyle::State_MouseOver},
    {u"down"_s, QStyle::State_Sunken},      {u"set"_s, QStyle::State_On},          {u"focus"_s, QStyle::State_HasFocus},
    {u"across"_s, QStyle::State_Horizontal}};
const QHash<QString, QStyle::PrimitiveElement> primitives = {
    {u"menu"_s, QStyle::PE_PanelMenu},         {u"menu-frame"_s, QStyle::PE_FrameMenu},
    {u"menu-bar"_s, QStyle::PE_PanelMenuBar},  {u"gripper"_s, QStyle::PE_IndicatorToolBarHandle},
    {u"button"_s, QStyle::PE_PanelButtonTool}, {u"bar-separator"_s, QStyle::PE_IndicatorToolBarSeparator}};
const QHash<QString, QStyle::ControlElement> controls = {{u"entry"_s, QStyle::CE_MenuItem},
                                                         {u"bar-entry"_s, QStyle::CE_MenuBarItem},
                                                         {u"bar-rest"_s, QStyle::CE_MenuBarEmptyArea},
                                                         {u"menu-rest"_s, QStyle::CE_MenuEmptyArea}};

} // namespace

/// What the room draws itself, stroke by stroke.
class tst_Drawings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QApplication::setPalette(palette());
        m_toolbar.setDrawStyle(DrawStyle::OfficeXp);
        m_style = qobject_cast<QProxyStyle *>(m_toolbar.style());
        m_style->setBaseStyle(new PlainStyle);
    }

    void menusAndButtonsInTheOfficeStyle()
    {
        const QByteArray wanted = Files::read(u"" TEST_DATA_DIR "/office-style.txt"_s).bytes;
        QString told;
        for (const QString &line : QString::fromUtf8(wanted).split(u'\n'))
            if (!line.isEmpty() && !line.startsWith(u' '))
                told += line + u'\n' + (line == u"sizes"_s ? sizes() : draw(line.split(u' ')));
        QCOMPARE(differenceFromGolden(u"office-style.txt"_s, told), QString());
    }

    /// The style is one for all, and ends with the application.
    void barsAndTheirParts()
    {
        QCOMPARE(m_style->parent(), qApp);
        QWidget window;
        QCOMPARE(cPopupMenu(&window, true).menu()->style(), m_style);
        cReBar rebar(&window);
        for (const bool fixed : {false, true}) {
            auto *const toolbar = new cToolbar(&window);
            toolbar->AddButton({}, -1, {}, cToolbar::Separator, {});
            toolbar->setMinimumHeight(20);
            rebar.AddBand(toolbar, fixed ? QString() : u"Lien"_s, true, fixed, QString::number(fixed));
        }
        rebar.resize(90, rebar.rebarHeight());
        const QList<cToolbar *> toolbars = rebar.findChildren<cToolbar *>();
        for (const DrawStyle style :
             {DrawStyle::Standard, DrawStyle::OfficeXp, DrawStyle::Standard, DrawStyle::OfficeXp}) {
            for (cToolbar *const toolbar : toolbars)
                toolbar->setDrawStyle(style);
            for (const QWidget *const part : rebar.findChildren<QWidget *>())
                QCOMPARE(part->style() == m_style, style == DrawStyle::OfficeXp);
        }
        QString told = u"rebar\n"_s + PaintLog::of(rebar);
        told += u"separator\n"_s + PaintLog::of(*toolbars[0], QWidget::DrawChildren);
        StatusBar bar;
        bar.addPanel(u"state"_s, 80);
        bar.setPanelText(u"state"_s, u"Prêt\n <b>"_s);
        bar.resize(200, 20);
        told += u"status panel\n"_s + PaintLog::of(*bar.findChild<QWidget *>(u"state"_s));
        QCOMPARE(differenceFromGolden(u"bars.txt"_s, told), QString());
    }

private:
    QString draw(const QStringList &words)
    {
        PaintLog log(QSize(210, 30));
        QPainter painter(&log);
        const auto option = [&words](auto made, const QRect &rect) {
            made.rect = rect;
            made.palette = palette();
            made.state = QStyle::State_None;
            for (const QString &word : words)
                made.state |= states.value(word);
            return made;
        };
        if (primitives.contains(words[0])) {
            const auto plain = option(QStyleOption(), QRect(3, 2, 40, 22));
            m_style->drawPrimitive(primitives[words[0]], &plain, &painter);
        } else if (controls.contains(words[0])) {
            using Option = QStyleOptionMenuItem;
            auto item = option(Option(), QRect(1, 2, 200, 24));
            item.menuItemType = words.contains(u"submenu"_s)     ? Option::SubMenu
                                : words.contains(u"separator"_s) ? Option::Separator
                                                                 : Option::Normal;
            item.checked = words.contains(u"ticked"_s);
            item.maxIconWidth = words.contains(u"wide"_s) ? 28 : 0;
            item.icon = words.contains(u"picture"_s) ? picture() : QIcon();
            item.text = words[0] == u"entry"_s ? u"Ouvrir\tCtrl+O"_s : u"Ouvrir"_s;
            m_style->drawControl(controls[words[0]], &item, &painter);
        } else {
            auto tool = option(QStyleOptionToolButton(), QRect(2, 1, 46, 24));
            tool.subControls = QStyle::SC_ToolButton;
            if (words.contains(u"arrow"_s)) {
                tool.subControls |= QStyle::SC_ToolButtonMenu;
                tool.features = QStyleOptionToolButton::MenuButtonPopup;
            }
            tool.activeSubControls = words.contains(u"on-arrow"_s) ? QStyle::SC_ToolButtonMenu : QStyle::SC_ToolButton;
            tool.icon = picture();
            tool.iconSize = QSize(16, 16);
            m_style->drawComplexControl(QStyle::CC_ToolButton, &tool, &painter);
        }
        painter.end();
        return log.told();
    }

    QString sizes() const
    {
        using Option = QStyleOptionMenuItem;
        QString told;
        for (const auto type : {Option::Normal, Option::Separator}) {
            for (const QSize contents : {QSize(100, 70), QSize(100, 10)}) {
                for (const QString &text : {u"a"_s, u"a\tb"_s}) {
                    Option option;
                    option.menuItemType = type;
                    option.text = text;
                    option.maxIconWidth = 64;
                    const QSize size = m_style->sizeFromContents(QStyle::CT_MenuItem, &option, contents, nullptr);
                    told += u"  %1x%2\n"_s.arg(size.width()).arg(size.height());
                }
            }
        }
        for (const auto metric : {QStyle::PM_MenuPanelWidth, QStyle::PM_MenuHMargin, QStyle::PM_MenuVMargin,
                                  QStyle::PM_ButtonShiftHorizontal, QStyle::PM_ButtonShiftVertical})
            told += u"  %1\n"_s.arg(m_style->pixelMetric(metric));
        return told;
    }

    cToolbar m_toolbar;
    QProxyStyle *m_style = nullptr;
};

QTEST_MAIN(tst_Drawings)
#include "tst_Drawings.moc"
