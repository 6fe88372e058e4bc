// SPDX-License-Identifier: GPL-3.0-or-later

#include "controls/BandLayout.h"
#include "controls/FrenchTexts.h"
#include "controls/ImageList.h"
#include "controls/PictureButton.h"
#include "controls/ProgressBar.h"
#include "controls/StatusBar.h"
#include "controls/SystemBrowser.h"
#include "controls/TabControl.h"
#include "controls/Twips.h"
#include "controls/UpDown.h"
#include "controls/cPopupMenu.h"
#include "controls/cReBar.h"
#include "controls/cToolbar.h"
#include "controls/cToolbarHost.h"
#include "tests/fixtures/Steps.h"
#include "tests/fixtures/WidgetUser.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QMenu>

namespace {

/// A window with one of each control, which tells what they signal.
class World
{
public:
    World()
    {
        window.resize(900, 400);
        host.resize(800, 26);
        status.addPanel(u"state"_s, 500);
        status.addPanel(u"progressbar"_s, 150);
        status.addPanel(u"glue"_s, 200, StatusBar::Panel::Glue);
        tabs.move(0, 200);
        tabs.addTab(u"feedster"_s, u"Feedster"_s, new QWidget);
        tabs.addTab(u"syndic8"_s, u"DayPop"_s, new QWidget);
        tools->setImageList(&ImageLists::vbalImageList4());
        tools->AddButton(u"Précédent"_s, 4, u"Précédent"_s, cToolbar::AutoSize, u"precedent"_s);
        tools->AddButton(u"Suivant"_s, 5, u"Suivant"_s, cToolbar::AutoSize, u"suivant"_s);
        tools->AddButton(QString(), -1, QString(), cToolbar::Separator, QString());
        tools->AddButton(u"Envoyer la new par mail"_s, 10, u"Envoyer"_s, cToolbar::AutoSize, u"send_mail"_s);
        tools->AddButton(u"Pièce jointe"_s, 9, u"Pièce jointe"_s, cToolbar::DropDownArrow, u"attachment"_s);
        host.Capture(tools);
        host.setHostHeight(26);
        box.setObjectName(u"box"_s);
        picture.setObjectName(u"picture"_s);
        bar.setObjectName(u"bar"_s);
        for (const QString &caption : {u"&Fichier"_s, u"&Affichage"_s, u"&Aide"_s}) {
            cPopupMenu::Item item;
            item.caption = caption;
            item.parentIndex = menu.AddItem(item);
            item.caption = u"&Entrée"_s;
            menu.AddItem(item);
        }
        menuBar.CreateFromMenu(&menu);
        menuBar.move(0, 350);
        menuBar.resize(menuBar.sizeHint());
        user.emplace(window, [this] { return outside(); });
        const auto note = [this](const char *event) {
            return [this, event](int index) { user->note(u"%1 %2"_s.arg(QLatin1String(event)).arg(index)); };
        };
        QObject::connect(tools, &cToolbar::ButtonClick, &window, note("click"));
        QObject::connect(tools, &cToolbar::DropDownPress, &window, note("drop"));
        QObject::connect(&tabs, &TabControl::TabClick, &window, note("tab"));
        QObject::connect(&menu, &cPopupMenu::Click, &window, note("chosen"));
        QObject::connect(&picture, &PictureButton::clicked, &window, [this] { user->note(u"picture"_s); });
        window.show();
        window.activateWindow();
        [[maybe_unused]] const bool active = QTest::qWaitForWindowActive(&window);
    }

    void take(const QString &step)
    {
        const QString verb = step.section(u' ', 0, 0);
        const QString name = step.section(u' ', 1, 1);
        const int number = step.section(u' ', -1).toInt();
        auto *const button = window.findChild<QToolButton *>(name);
        if (verb == u"arrow" || verb == u"body")
            QTest::mouseClick(button, Qt::LeftButton, {}, QPoint(verb == u"arrow" ? button->width() - 3 : 4, 8));
        else if (verb == u"enable")
            name.toInt() > 0 ? tools->setButtonEnabled(name.toInt(), number) : tools->setButtonEnabled(name, number);
        else if (verb == u"room-for") // the buttons up to that one, and so many pixels
            host.resize(window.findChild<QWidget *>(name)->geometry().right() + 1 + number, 26);
        else if (verb == u"captions")
            tools->setCaptionsVisible(number);
        else if (verb == u"pictures")
            tools->setImageList(number == 2 ? &ImageLists::vbalImageList2() : nullptr);
        else if (verb == u"overflow")
            overflow(*tools, number);
        else if (verb == u"menus") // in so many hundredths of the width that they want
            menuBar.resize(menuBar.idealWidth() * number / 100, 26), overflow(menuBar, 0);
        else if (verb == u"keys") {
            const QKeyCombination keys = QKeySequence(name)[0];
            QWidget *const menuInFront = QApplication::activePopupWidget();
            QTest::keyClick(menuInFront ? menuInFront : &window, keys.key(), keys.keyboardModifiers());
        } else if (verb == u"let-go")
            host.Capture(nullptr), user->note(QString::number(tools->isHidden() && !tools->parentWidget()));
        else if (verb == u"status")
            status.resize(number, 24);
        else if (verb == u"panel")
            status.setPanelText(name, step.section(u' ', 2));
        else if (verb == u"add")
            status.addPanel(name, 10);
        else if (verb == u"spin")
            spin.stepBy(number);
        else if (verb == u"able")
            name == u"box" ? box.setEnabled(number) : spin.setEnabled(number);
        else if (verb == u"progress")
            bar.setValue(number);
        else if (verb == u"tab")
            tabs.selectTab(number);
        else if (verb == u"browse")
            user->note(browser.openInSystemBrowser(step.section(u' ', 1)) ? u"opened"_s : u"refused"_s);
        else if (verb == u"check")
            menu.setChecked(1, number);
        else if (verb == u"choose")
            menu.action(number)->trigger();
        else if (!user->act(step))
            user->note(u"NO SUCH STEP"_s);
    }

    std::optional<WidgetUser> user;

private:
    void overflow(cToolbar &toolbar, int chosen)
    {
        const QMenu *const shown = toolbar.ShowOverflow(QPoint(40, 50));
        QStringList entries;
        for (const QAction *entry : shown ? shown->actions() : QList<QAction *>())
            entries += (entry->isEnabled() ? u"+"_s : u"-"_s) + entry->text();
        user->note(entries.join(u", "_s));
        if (shown)
            shown->actions().at(chosen)->trigger();
    }

    WidgetUser::State outside() const
    {
        WidgetUser::State all;
        for (int i = 0; i < tools->buttonCount(); ++i) {
            const QToolButton *const button = tools->button(i);
            const QStringList traits = {tools->isButtonEnabled(i) ? u"enabled"_s : u"off"_s,
                                        !button                                        ? u"separator"_s
                                        : tools->dropDownPosition(i) == QPoint(40, 50) ? u"in the menu"_s
                                        : tools->dropDownPosition(i) == button->mapToGlobal(QPoint(0, button->height()))
                                            ? u"in sight"_s
                                            : u"?"_s,
                                        button ? button->toolTip() + u'/' + button->accessibleName() + u'/' +
                                                     button->accessibleDescription() + u'/' + button->text() +
                                                     u" style %1 icon %2 focus %3"_s.arg(button->toolButtonStyle())
                                                         .arg(button->iconSize().width())
                                                         .arg(button->focusPolicy())
                                               : QString()};
            all[u"tool %1"_s.arg(i)] = traits.join(u' ');
        }
        for (const QString &panel : {u"state"_s, u"progressbar"_s, u"glue"_s}) {
            const QRect place = status.panelRect(panel);
            all[u"panel "_s + panel] =
                u"%1,%2 %3x%4"_s.arg(place.x()).arg(place.y()).arg(place.width()).arg(place.height()) +
                status.findChild<QWidget *>(panel)->toolTip();
        }
        const auto *chevron = host.findChild<QToolButton *>(QString(), Qt::FindDirectChildrenOnly);
        all[u"chevron"_s] = chevron->isHidden() ? u"none"_s
                                                : u"%1 from the right, %2x%3 %4"_s.arg(host.width() - chevron->x())
                                                      .arg(chevron->width())
                                                      .arg(chevron->height())
                                                      .arg(chevron->toolTip());
        all[u"room of the tools"_s] = u"%1 less"_s.arg(host.width() - tools->width());
        all[u"tabs"_s] = QString::number(tabs.selectedTab()) + tabs.tabKey(tabs.selectedTab());
        all[u"spin"_s] = QString::number(spin.value());
        all[u"tick"_s] = QString::number(menu.Checked(1)) + QString::number(menu.action(1)->isChecked());
        const auto *const open = qobject_cast<const QMenu *>(QApplication::activePopupWidget());
        all[u"menu"_s] = open && !open->title().isEmpty() ? open->title() : u"closed"_s;
        all[u"browser"_s] = seen;
        return all;
    }

    QDialog window;
    cToolbarHost host{&window};
    cToolbar *tools = new cToolbar(&window);
    StatusBar status{&window};
    QLineEdit box{u"20"_s, &window};
    UpDown spin{&box, 15, 100, 1, 15, &window};
    TabControl tabs{&window};
    ProgressBar bar{&window};
    PictureButton picture{u"ouvrir-fichier"_s, u"Ouvrir"_s, &window};
    cPopupMenu menu{&window, false};
    cToolbar menuBar{&window};
    QString seen;
    SystemBrowser browser{u"/data"_s, [this](const QUrl &url) {
                              seen = url.toString();
                              return true;
                          }};
};

class Box final : public QWidget
{
public:
    Box(const QString &name, QWidget *parent) : QWidget(parent) { setObjectName(name); }
    QSize sizeHint() const override { return {200, 20}; }
    QSize minimumSizeHint() const override { return {100, 20}; }
};

/// A rebar as the main window has it, one band on the first row, two on the second, and a fixed one on the third.
struct Bars
{
    explicit Bars(const Steps::Given &given)
    {
        window.resize(800, 300);
        QWidgetList children{menu, tools, address};
        if (given.contains(u"fixed"_s))
            children += new Box(u"Fixed"_s, &window);
        if (given.contains(u"toolbar"_s)) {
            auto *const toolbar = new cToolbar(&window);
            toolbar->setObjectName(u"Links"_s);
            toolbar->setMinimumHeight(20);
            for (int i = 0; i < 50; ++i)
                toolbar->AddButton({}, -1, {}, cToolbar::Separator, {});
            children += toolbar;
        }
        for (QWidget *child : children)
            rebar.AddBand(child, {}, child != address, child->objectName() == u"Fixed"_s, child->objectName());
        rebar.setBandMinimumSize(0, -1, 24);
        rebar.setBandMinimumSize(1, -1, 40);
        rebar.resize(800, rebar.rebarHeight());
        rebar.RebarSize();
        window.show();
        QObject::connect(&rebar, &cReBar::HeightChanged, [this](int height) { heights += QString::number(height); });
        const double perPixel = Twips::perPixelX(&rebar);
        QObject::connect(&rebar, &cReBar::ChevronPushed,
                         [this, perPixel](int index, double left, double top, double right, double bottom) {
                             QStringList edges;
                             for (const double edge : {left, top, right, bottom})
                                 edges += QString::number(edge / perPixel);
                             pushed += rebar.BandData(index) + u' ' + edges.join(u' ');
                         });
    }

    std::vector<BandLayout::Band> bands() const { return *BandLayout::fromText(rebar.saveLayout()); }

    /// Of each band its initial, its top, its edges, and its child's: "M0:0-800[10-800]", with ">" where it has a
    /// chevron.
    QString placed() const
    {
        QStringList places;
        for (const BandLayout::Band &band : bands()) {
            const QRect child = rebar.findChild<QWidget *>(band.data)->geometry();
            places += u"%1%2:%3-%4[%5-%6%7]"_s.arg(band.data.at(0))
                          .arg(band.rect.top())
                          .arg(band.rect.left())
                          .arg(band.rect.right() + 1)
                          .arg(child.left())
                          .arg(child.right() + 1)
                          .arg(band.chevron ? u">"_s : QString());
        }
        return places.join(u' ');
    }

    QPoint gripperOf(const QString &initial) const
    {
        for (const BandLayout::Band &band : bands())
            if (band.data.startsWith(initial))
                return band.rect.topLeft() + QPoint(band.fixed ? 1 : 4, 8);
        return {};
    }

    void drag(const QPoint &from, const QPoint &to)
    {
        QTest::mousePress(&rebar, Qt::LeftButton, {}, from);
        // A mouse that is moved passes through the places between.
        for (int i = 1; i <= 4; ++i)
            QTest::mouseMove(&rebar, from + (to - from) * i / 4);
        QTest::mouseRelease(&rebar, Qt::LeftButton, {}, to);
    }

    /// What the menu of the gripper offers; the entry at `chosen` is taken.
    QString takeFromMenu(const QPoint &gripper, int chosen)
    {
        QContextMenuEvent event(QContextMenuEvent::Mouse, gripper, gripper);
        QCoreApplication::sendEvent(&rebar, &event);
        const std::unique_ptr<QMenu> menuOfBand(rebar.findChild<QMenu *>());
        QStringList entries;
        for (const QAction *action : menuOfBand ? menuOfBand->actions() : QList<QAction *>())
            entries += (action->isEnabled() ? u"+"_s : u"-"_s) + action->text();
        if (menuOfBand && chosen >= 0)
            menuOfBand->actions().at(chosen)->trigger();
        return entries.join(u", "_s);
    }

    QString restored(const QString &text) { return rebar.restoreLayout(text) ? u"restored"_s : u"refused"_s; }

    QString take(const QStringList &step)
    {
        const auto number = [&step](int at) { return step.value(at).toInt(); };
        const QPoint gripper = gripperOf(step.value(1));
        if (step[0] == u"wide"_s)
            rebar.resize(number(1), rebar.height());
        else if (step[0] == u"drag"_s)
            drag(gripper, QPoint(number(2), number(3)));
        else if (step[0] == u"press-right"_s) // another button holds no band
            QTest::mousePress(&rebar, Qt::RightButton, {}, gripper), QTest::mouseMove(&rebar, QPoint(400, 60));
        else if (step[0] == u"double"_s)
            QTest::mouseDClick(&rebar, Qt::LeftButton, {}, gripper);
        else if (step[0] == u"over"_s)
            QTest::mouseMove(&rebar, gripper + QPoint(number(2), 0));
        else if (step[0] == u"least"_s)
            rebar.setBandMinimumSize(number(1), number(2), number(3));
        else if (step[0] == u"all-of"_s)
            rebar.showAllOfBand(number(1));
        else if (step[0] == u"none"_s) {
            rebar.RemoveAllBands();
            return u"%1 %2 %3"_s.arg(rebar.BandCount()).arg(menu->isHidden()).arg(menu->parentWidget() == &window);
        } else if (step[0] == u"restore"_s) {
            kept = step.mid(1).join(u' ');
            return restored(kept);
        } else if (step[0] == u"with"_s) { // the same text, but for one place of it
            const QStringList change = step.mid(1).join(u' ').split(u" for "_s);
            return kept.contains(change.value(1)) ? restored(QString(kept).replace(change[1], change[0])) : u"?"_s;
        } else if (step[0] == u"cut"_s) { // at every so many letters
            int refused = 0;
            for (int length = 0; length < kept.size(); length += number(1))
                refused += restored(kept.left(length)) == u"refused"_s ? 1 : 0;
            return u"%1 of %2 refused"_s.arg(refused).arg((kept.size() - 1) / number(1) + 1);
        } else if (step[0] == u"chevron"_s) {
            for (auto *const chevron : rebar.findChildren<QToolButton *>(QString(), Qt::FindDirectChildrenOnly))
                if (chevron->isVisible())
                    chevron->click();
            return std::exchange(pushed, {}).join(u", "_s);
        } else if (step[0] == u"menu"_s)
            return takeFromMenu(gripper, number(2));
        else if (step[0] == u"save"_s)
            return rebar.saveLayout();
        return rebar.cursor().shape() == Qt::SizeAllCursor ? u"hand"_s : QString();
    }

    QWidget window;
    QWidget *menu = new Box(u"MenuBar"_s, &window);
    QWidget *tools = new Box(u"ToolBar"_s, &window);
    QWidget *address = new Box(u"StyleBar"_s, &window);
    QStringList heights; ///< told
    QStringList pushed;  ///< of chevrons: their bands, and where they are
    QString kept;
    cReBar rebar{&window};
};

} // namespace

class tst_Controls : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyStepHasItsEffects()
    {
        std::unique_ptr<World> world;
        const Steps steps{[&world](const Steps::Given &given) {
                              world = std::make_unique<World>();
                              const QString all = world->user->changes();
                              return given.contains(u"all"_s) ? all : QString();
                          },
                          [&world](const QString &step) {
                              try {
                                  world->take(step);
                              } catch (const RunTimeError &error) {
                                  world->user->note(u"error %1"_s.arg(error.number()));
                              }
                              return world->user->changes();
                          }};
        QCOMPARE(steps.differenceFrom(u"controls.txt"_s), QString());
    }

    /// Behind each step the file has where all bands stand, what heights were told, and what a menu offered.
    void bandsStandWhereTheyFitAndWhereTheyAreMoved()
    {
        std::unique_ptr<Bars> bars;
        const Steps steps{[&bars](const Steps::Given &given) {
                              bars = std::make_unique<Bars>(given);
                              return QString();
                          },
                          [&bars](const QString &step) {
                              const QString answer = bars->take(step.split(u' '));
                              const QString heights = std::exchange(bars->heights, {}).join(u' ');
                              return QStringList({bars->placed(), heights, answer}).join(u" | "_s);
                          }};
        QCOMPARE(steps.differenceFrom(u"rebar.txt"_s), QString());
    }

    void everyPictureStandsAtItsPlace()
    {
        QString told;
        const QStringList files = QDir(u":/icons"_s).entryList();
        for (const ImageList *list : {&ImageLists::vbalImageList1(), &ImageLists::vbalImageList2(),
                                      &ImageLists::vbalImageList3(), &ImageLists::vbalImageList4()}) {
            told += u"of %1 pixels\n"_s.arg(list->size());
            for (int i = 0; i < 12; ++i) {
                const QImage shown = list->icon(i).pixmap(32, 32).toImage();
                for (const QString &file : shown.isNull() ? QStringList() : files)
                    if (QIcon(u":/icons/"_s + file).pixmap(32, 32).toImage() == shown)
                        told += u"%1 %2\n"_s.arg(i).arg(file);
            }
        }
        QCOMPARE(differenceFromGolden(u"pictures.txt"_s, told), QString());
    }

    void whatTheLibraryLeavesInEnglishIsFrench()
    {
        FrenchTexts::install(*qApp);
        const Steps texts{{},
                          [](const QString &text) {
                              return QCoreApplication::translate("QWebEnginePage", text.toUtf8().constData());
                          },
                          u" = "_s};
        QCOMPARE(texts.differenceFrom(u"french.txt"_s), QString());
    }
};

QTEST_MAIN(tst_Controls)
#include "tst_Controls.moc"
