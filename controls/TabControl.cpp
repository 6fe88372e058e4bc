// SPDX-License-Identifier: GPL-3.0-or-later

#include "controls/TabControl.h"

#include "controls/ScreenReader.h"
#include "platform/Literals.h"

TabControl::TabControl(QWidget *parent) : QTabWidget(parent)
{
    ScreenReader::setRole(*this, QAccessible::Pane);
    setAccessibleName(u"Onglets"_s);
    connect(this, &QTabWidget::currentChanged, this, [this](int index) { Q_EMIT TabClick(index + 1); });
}

int TabControl::addTab(const QString &key, const QString &caption, QWidget *page)
{
    // The key is there before the first tab is selected, which happens inside the call below.
    page->setObjectName(page->objectName().isEmpty() ? key : page->objectName());
    page->setProperty("tabKey", key);
    return QTabWidget::addTab(page, caption) + 1;
}

int TabControl::selectedTab() const
{
    return currentIndex() + 1;
}

void TabControl::selectTab(int index)
{
    if (index >= 1 && index <= count())
        setCurrentIndex(index - 1);
}

QString TabControl::tabKey(int index) const
{
    const QWidget *page = widget(index - 1);
    return page ? page->property("tabKey").toString() : QString();
}
