// SPDX-License-Identifier: GPL-3.0-or-later

#include "window/frmSysTray.h"

#include "platform/Literals.h"
#include "platform/Numbers.h"
#include "platform/RunTimeError.h"

#include <QCursor>

#include <algorithm>

namespace {

// Characters of the record's text fields.
constexpr qsizetype infoSize = 256;
constexpr qsizetype infoTitleSize = 64;

constexpr int callbackMessage = 512;
constexpr int leftButton = 1;
constexpr int rightButton = 2;

qint32 recordSize(bool hasBalloons, bool isUnicode)
{
    if (hasBalloons)
        return isUnicode ? 936 : 488;
    return isUnicode ? 152 : 88;
}

qint32 toInt32(const QVariant &value)
{
    if (value.typeId() == QMetaType::QString)
        return Numbers::toInt32(value.toString());
    bool isNumber = false;
    const double number = value.toDouble(&isNumber);
    if (!isNumber)
        throw RunTimeError::typeMismatch();
    return Numbers::roundToInt32(number);
}

} // namespace

frmSysTray::frmSysTray(std::unique_ptr<TrayShell> shell, const QIcon &icon, const QString &applicationTitle,
                       quint32 version)
    : m_shell(std::move(shell))
{
    const quint32 major = version & 0xFF;
    const quint32 minor = (version >> 8) & 0xFF;
    const bool isNt = !(version & 0x80000000U);
    m_isUnicodeShell = isNt;
    m_hasBalloons = isNt ? major >= 5 : major == 4 && minor == 90;

    m_mnuPopup.setTitle(u"&Popup"_s);
    m_mnuPopup.setAccessibleName(u"Menu de l'icône"_s);
    loadElement(); // element 0 is there from the beginning, empty and unseen

    TrayRecord &record = liveRecord();
    record.hWnd = reinterpret_cast<quintptr>(this);
    record.hIcon = handleOf(icon);
    record.uID = record.hIcon;
    record.picture = icon;
    record.uFlags = TrayRecord::Message | TrayRecord::Icon | TrayRecord::Tip;
    record.uCallbackMessage = callbackMessage;
    setText(record.szTip, applicationTitle, tipSize());
    if (m_hasBalloons)
        record.uVersion = 3;
    record.cbSize = recordSize(m_hasBalloons, m_isUnicodeShell);

    m_shell->setNotify([this](int value) { handleNotification(value); });
    m_shell->setMenu(&m_mnuPopup);
    m_shell->add(record);
    if (m_hasBalloons)
        m_shell->setVersion(record);
}

frmSysTray::~frmSysTray()
{
    m_shell->setNotify({});
    m_shell->remove(liveRecord());
}

void frmSysTray::ShowBalloonTip(const QString &message, const QString &title, qint32 iconFlags, const QVariant &timeOut)
{
    if (!m_hasBalloons)
        return;
    const qint32 milliseconds = toInt32(timeOut);
    TrayRecord &record = liveRecord();
    setText(record.szInfo, message, infoSize);
    setText(record.szInfoTitle, title, infoTitleSize);
    record.uTimeout = milliseconds;
    record.dwInfoFlags = iconFlags;
    record.uFlags = TrayRecord::Info;
    m_shell->modify(record);
}

QString frmSysTray::ToolTip() const
{
    // The narrow record also where the wide one is live: it stays empty there, and "" is what is read back.
    return TrayRecord::textOf(m_narrow.szTip);
}

void frmSysTray::setToolTip(const QString &text)
{
    TrayRecord &record = liveRecord();
    if (!m_isUnicodeShell && record.szTip == text + QChar(u'\0'))
        return;
    setText(record.szTip, text, tipSize());
    record.uFlags = TrayRecord::Tip;
    m_shell->modify(record);
}

qint32 frmSysTray::IconHandle() const
{
    return m_narrow.hIcon; // likewise
}

void frmSysTray::setIconHandle(qint32 handle)
{
    TrayRecord &record = liveRecord();
    if (handle == record.hIcon)
        return;
    record.hIcon = handle;
    record.picture = m_pictures.value(handle);
    record.uFlags = TrayRecord::Icon;
    m_shell->modify(record);
}

qint32 frmSysTray::handleOf(const QIcon &icon)
{
    for (auto known = m_pictures.constBegin(); known != m_pictures.constEnd(); ++known) {
        if (known->cacheKey() == icon.cacheKey())
            return known.key();
    }
    const auto handle = static_cast<qint32>(m_pictures.size()) + 1;
    m_pictures.insert(handle, icon);
    return handle;
}

qint32 frmSysTray::AddMenuItem(const QString &caption, const QString &key, bool isDefault)
{
    if (m_firstItemUsed)
        loadElement();
    m_firstItemUsed = true;
    const auto index = static_cast<qint32>(m_mnuSysTray.size()) - 1;
    Element &element = m_mnuSysTray.back();
    element.visible = true;
    element.tag = key;
    element.caption = caption;
    if (isDefault)
        m_trayDefaultIndex = index;
    refresh();
    return index;
}

void frmSysTray::EnableMenuItem(qint32 index, bool enabled)
{
    if (isValid(index))
        m_mnuSysTray[static_cast<std::size_t>(index)].action->setEnabled(enabled);
}

void frmSysTray::RemoveMenuItem(qint32 index)
{
    if (!isValid(index))
        return;
    if (index == 0) {
        m_mnuSysTray.front().caption.clear(); // its key and its place stay, and it isn't used anew
    } else {
        for (auto i = static_cast<std::size_t>(index); i + 1 < m_mnuSysTray.size(); ++i) {
            m_mnuSysTray[i].caption = m_mnuSysTray[i + 1].caption;
            m_mnuSysTray[i].tag = m_mnuSysTray[i + 1].tag;
        }
        m_mnuSysTray.back().action->deleteLater(); // it may be the one whose choice removes it
        m_mnuPopup.removeAction(m_mnuSysTray.back().action);
        m_mnuSysTray.pop_back();
    }
    refresh();
}

void frmSysTray::setDefaultMenuIndex(qint32 index)
{
    m_trayDefaultIndex = isValid(index) ? index : 0;
    refresh();
}

void frmSysTray::ShowMenu()
{
    if (!m_mnuPopup.isVisible()) // some desktops have shown it already
        m_mnuPopup.popup(QCursor::pos());
}

void frmSysTray::handleNotification(int value)
{
    switch (value) {
    case 512:
        Q_EMIT SysTrayMouseMove();
        break;
    case 514: // the release of the left button is what counts as its press; the press itself (513) raises nothing
        Q_EMIT SysTrayMouseDown(leftButton);
        break;
    case 515:
        Q_EMIT SysTrayDoubleClick(leftButton);
        break;
    case 516:
        Q_EMIT SysTrayMouseDown(rightButton);
        break;
    case 517:
        Q_EMIT SysTrayMouseUp(rightButton);
        break;
    case 518:
        Q_EMIT SysTrayDoubleClick(rightButton);
        break;
    case 1026:
        Q_EMIT BalloonShow();
        break;
    case 1027:
        Q_EMIT BalloonHide();
        break;
    case 1028:
        Q_EMIT BalloonTimeOut();
        break;
    case 1029:
        Q_EMIT BalloonClicked();
        break;
    default:
        break;
    }
}

void frmSysTray::setText(QString &field, const QString &text, qsizetype size) const
{
    if (!m_isUnicodeShell) {
        field = QString(text + QChar(u'\0')).left(size);
        return;
    }
    if (text.isEmpty()) // the wide field keeps its old text then
        return;
    field = text.left(size - 1);
    field.append(QString(size - field.size(), QChar(u'\0')));
}

bool frmSysTray::isValid(qint32 index) const
{
    return index >= 0 && index < static_cast<qint32>(m_mnuSysTray.size());
}

void frmSysTray::loadElement()
{
    const auto index = static_cast<int>(m_mnuSysTray.size());
    Element element;
    element.action = m_mnuPopup.addAction(QString());
    element.action->setVisible(false);
    connect(element.action, &QAction::triggered, this, [this, index] {
        if (isValid(index)) {
            const QString key = m_mnuSysTray[static_cast<std::size_t>(index)].tag;
            Q_EMIT MenuClick(index, key);
        }
    });
    m_mnuSysTray.push_back(element);
}

void frmSysTray::refresh()
{
    for (const Element &element : m_mnuSysTray) {
        const bool separator = element.caption == u"-";
        element.action->setSeparator(separator);
        element.action->setText(separator ? QString() : element.caption);
        element.action->setVisible(element.visible);
    }
    m_mnuPopup.setDefaultAction(
        isValid(m_trayDefaultIndex) ? m_mnuSysTray[static_cast<std::size_t>(m_trayDefaultIndex)].action : nullptr);
}
