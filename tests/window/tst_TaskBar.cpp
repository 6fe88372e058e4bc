// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/Literals.h"
#include "window/frmUpdate.h"

#include <QApplication>
#include <QProcess>
#include <QTest>

#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>

/// What the popup tells an X11 desktop of itself, on a virtual screen.
class tst_TaskBar : public QObject
{
    Q_OBJECT

private:
    template <class Reply>
    static std::shared_ptr<Reply> owned(Reply *reply)
    {
        return {reply, &std::free};
    }

    static QStringList statesOf(const QWidget &window)
    {
        xcb_connection_t *connection = qGuiApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
        const QByteArray name("_NET_WM_STATE");
        const auto atom = owned(xcb_intern_atom_reply(
            connection, xcb_intern_atom(connection, 1, static_cast<uint16_t>(name.size()), name.constData()), nullptr));
        const auto asked = xcb_get_property(connection, 0, static_cast<xcb_window_t>(window.internalWinId()),
                                            atom->atom, XCB_ATOM_ATOM, 0, 9);
        const auto property = owned(xcb_get_property_reply(connection, asked, nullptr));
        const auto *atoms = static_cast<const xcb_atom_t *>(xcb_get_property_value(property.get()));
        QStringList states;
        for (uint32_t i = 0; i < property->value_len; ++i) {
            const auto named =
                owned(xcb_get_atom_name_reply(connection, xcb_get_atom_name(connection, atoms[i]), nullptr));
            states.append(
                QString::fromLatin1(xcb_get_atom_name_name(named.get()), xcb_get_atom_name_name_length(named.get())));
        }
        return states;
    }

private Q_SLOTS:
    void thePopupStaysOutOfTheTaskBarAndAboveWithEachMessage()
    {
        const AppSettings settings;
        frmUpdate popup(
            [] {
                return frmUpdate::WorkArea{QRect(0, 0, 800, 570), {}};
            },
            settings, std::make_unique<WaveSoundPlayer>());
        popup.addMessageToQueue(u"un"_s, 1);
        popup.addMessageToQueue(u"deux"_s, 1);
        for (int message = 0; message < 2; ++message, popup.handleHideTick()) {
            const QStringList told = statesOf(popup);
            for (const QString &state : {u"SKIP_TASKBAR"_s, u"SKIP_PAGER"_s, u"ABOVE"_s})
                QVERIFY2(told.contains(u"_NET_WM_STATE_"_s + state), qPrintable(told.join(u' ')));
        }
    }
};

int main(int argc, char *argv[])
{
    if (qgetenv("QT_QPA_PLATFORM") != "xcb") {
        qputenv("QT_QPA_PLATFORM", "xcb");
        const int code = QProcess::execute(u"xvfb-run"_s, {u"-a"_s, QString::fromLocal8Bit(argv[0])});
        return code == -2 ? 0 : code; // where there is none, nothing can be tried
    }
    const QApplication application(argc, argv);
    tst_TaskBar test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_TaskBar.moc"
