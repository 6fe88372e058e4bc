// SPDX-License-Identifier: GPL-3.0-or-later

// The floor of the start-up measurement: a program of the same libraries that shows a window with a QWebEngineView and
// nothing else.

#include <QApplication>
#include <QMainWindow>
#include <QWebEngineView>

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    QMainWindow window;
    window.setCentralWidget(new QWebEngineView(&window));
    window.resize(816, 604);
    window.show();
    return QApplication::exec();
}
