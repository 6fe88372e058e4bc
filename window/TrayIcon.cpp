// SPDX-License-Identifier: GPL-3.0-or-later

#include "window/TrayIcon.h"

#include "platform/Build.h"
#include "platform/Literals.h"
#include "window/frmSysTray.h"

TrayIcon::TrayIcon(const std::function<std::unique_ptr<TrayShell>()> &makeShell, const QIcon &icon, QObject *parent)
    : QObject(parent), m_frmSysTray(std::make_unique<frmSysTray>(makeShell(), icon, u"Quillwire"_s))
{
    m_frmSysTray->AddMenuItem(u"&Ouvrir"_s, u"ouvrir"_s, true);
    m_frmSysTray->AddMenuItem(u"-"_s, QString(), false);
    m_frmSysTray->AddMenuItem(u"&Quitter"_s, u"quitter"_s, false);
    m_frmSysTray->setToolTip(u"Quillwire "_s + Build::shortVersion);
    m_frmSysTray->setIconHandle(m_frmSysTray->handleOf(icon));
    connect(m_frmSysTray.get(), &frmSysTray::SysTrayDoubleClick, this, &TrayIcon::doubleClicked);
    connect(m_frmSysTray.get(), &frmSysTray::SysTrayMouseDown, this, [this](int button) {
        constexpr int right = 2;
        if (button == right)
            m_frmSysTray->ShowMenu();
    });
    connect(m_frmSysTray.get(), &frmSysTray::MenuClick, this, [this](int, const QString &key) { handleMenu(key); });
}

TrayIcon::~TrayIcon() = default;

bool TrayIcon::isAvailable() const
{
    return m_frmSysTray->isAvailable();
}

void TrayIcon::handleMenu(const QString &key)
{
    if (key == "ouvrir"_L1)
        Q_EMIT openAsked();
    else if (key == "quitter"_L1)
        Q_EMIT quitAsked();
}
