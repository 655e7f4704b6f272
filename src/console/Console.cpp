#include "console/Console.h"

#include "app/Launch.h"
#include "common/MessageBox.h"
#include "console/ConsoleWindow.h"

#include <QMessageBox>

using namespace Qt::StringLiterals;

namespace orbline::console {

namespace {

ConsoleWindow*& Window() {
    static ConsoleWindow* window = nullptr;
    return window;
}

void ShowWindow() {
    if (Window() == nullptr) Window() = new ConsoleWindow();
    Window()->showCompact();
}

void ShowBox(const QString& text, BoxIcon icon) {
    const auto qtIcon =
        icon == BoxIcon::Critical ? QMessageBox::Critical : QMessageBox::Information;
    QMessageBox box(qtIcon, u"KV_Orbline"_s, text, QMessageBox::Ok, Window());
    box.exec();
}

}  // namespace

void InstallConsole() {
    SetFormShower(&ShowWindow);
    SetMessageBoxHandler(&ShowBox);
}

}  // namespace orbline::console
