#include "window/TrayIcon.h"

#include "platform/Build.h"
#include "window/frmSysTray.h"

TrayIcon::TrayIcon(const std::function<std::unique_ptr<TrayShell>()> &makeShell, const QIcon &icon, QObject *parent)
    : QObject(parent), m_frmSysTray(std::make_unique<frmSysTray>(makeShell(), icon, QStringLiteral("Quillwire")))
{
    m_frmSysTray->AddMenuItem(QStringLiteral("&Ouvrir"), QStringLiteral("ouvrir"), true);
    m_frmSysTray->AddMenuItem(QStringLiteral("-"), QString(), false);
    m_frmSysTray->AddMenuItem(QStringLiteral("&Quitter"), QStringLiteral("quitter"), false);
    m_frmSysTray->setToolTip(QStringLiteral("Quillwire ") + Build::shortVersion);
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
    if (key == QLatin1String("ouvrir"))
        Q_EMIT openAsked();
    else if (key == QLatin1String("quitter"))
        Q_EMIT quitAsked();
}
