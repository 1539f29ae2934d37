// SPDX-License-Identifier: MIT
// The smallest useful program with a status item, to measure the toolkit alone.
#include <QApplication>
#include <QMenu>
#include <QPixmap>
#include <QSystemTrayIcon>

int main(int argc, char** argv)
{
    QApplication const application(argc, argv);
    QPixmap picture(32, 32);
    picture.fill(Qt::darkCyan);

    QMenu menu;
    menu.addAction(QStringLiteral("A line"));
    menu.addAction(QStringLiteral("Another line"));
    menu.addSeparator();
    menu.addAction(QStringLiteral("Quit"), &application, &QCoreApplication::quit);

    QSystemTrayIcon item { QIcon(picture) };
    item.setToolTip(QStringLiteral("A status item"));
    item.setContextMenu(&menu);
    item.show();
    return QApplication::exec();
}
