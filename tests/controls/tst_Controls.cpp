// SPDX-License-Identifier: GPL-3.0-or-later

#include "controls/FrenchTexts.h"
#include "controls/ImageList.h"
#include "controls/PictureButton.h"
#include "controls/ProgressBar.h"
#include "controls/StatusBar.h"
#include "controls/SystemBrowser.h"
#include "controls/TabControl.h"
#include "controls/UpDown.h"
#include "controls/cPopupMenu.h"
#include "controls/cToolbar.h"
#include "controls/cToolbarHost.h"
#include "tests/fixtures/Steps.h"
#include "tests/fixtures/WidgetUser.h"

#include <QApplication>
#include <QMenu>

namespace {

QString toldOf(const QRect &rect)
{
    return u"%1,%2 %3x%4"_s.arg(rect.x()).arg(rect.y()).arg(rect.width()).arg(rect.height());
}

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
        for (const int parent : {-1, 0}) {
            cPopupMenu::Item item;
            item.caption = u"&Fichier"_s;
            item.parentIndex = parent;
            menu.AddItem(item);
        }
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
            overflow(number);
        else if (verb == u"let-go")
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
    void overflow(int chosen)
    {
        const QMenu *const shown = tools->ShowOverflow(QPoint(40, 50));
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
        for (const char *panel : {"state", "progressbar", "glue"})
            all[u"panel "_s + QLatin1String(panel)] = toldOf(status.panelRect(QLatin1String(panel))) +
                                                      (status.findChild<QWidget *>(QLatin1String(panel))->toolTip());
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
    QString seen;
    SystemBrowser browser{u"/data"_s, [this](const QUrl &url) {
                              seen = url.toString();
                              return true;
                          }};
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
        QString told;
        const QByteArray wanted = Files::read(u"" TEST_DATA_DIR "/french.txt"_s).bytes;
        for (const QString &line : QString::fromUtf8(wanted).split(u'\n', Qt::SkipEmptyParts)) {
            const QString text = line.section(u" = "_s, 0, 0);
            told += text + u" = "_s + QCoreApplication::translate("QWebEnginePage", text.toUtf8().constData()) + u'\n';
        }
        QCOMPARE(differenceFromGolden(u"french.txt"_s, told), QString());
    }
};

QTEST_MAIN(tst_Controls)
#include "tst_Controls.moc"
