// The program: reads its command line, makes the shared objects, shows the window's tray icon.
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include <QApplication>

#include "app/CommandLine.h"
#include "app/Module1.h"
#include "app/platform/Memory.h"
#include "base/ErrorState.h"
#include "ui/FormFont.h"
#include "ui/GridUtils.h"
#include "ui/SessionEnd.h"
#include "ui/frmDDE.h"

namespace {

std::vector<std::string> argumentsOf(const QCoreApplication& application) {
    std::vector<std::string> arguments;
    const QStringList all = application.arguments();
    for (qsizetype i = 1; i < all.size(); ++i) {
        arguments.push_back(all[i].toStdString());
    }
    return arguments;
}

// The answer to an option that does not start the program; none when it is to start.
bool answered(const vl::CommandLine& line, int& status) {
    if (!line.problem.empty()) {
        std::fprintf(stderr, "vlreminders: %s\nTry vlreminders --help\n", line.problem.c_str());
        status = 2;
        return true;
    }
    if (line.help) {
        std::fputs(std::string(vl::commandLineHelp()).c_str(), stdout);
        return true;
    }
    if (line.version) {
        std::puts("VL Reminders " VL_VERSION);
        return true;
    }
    return false;
}

}  // namespace

int main(int argc, char** argv) {
    vl::platform::joinWhatIsFreed();
    // Help and version are answered where there is no display to open.
    int status = 0;
    if (answered(vl::readCommandLine(std::vector<std::string>(argv + 1, argv + argc)), status)) {
        return status;
    }
    if (const char* file = std::getenv("VL_TRACE")) {
        vl::openTrace(file);
    }
    QApplication::setApplicationName("vlreminders");
    QApplication::setApplicationVersion(VL_VERSION);
    QApplication::setDesktopFileName("vlreminders");
    QApplication application(argc, argv);
    // Hidden to the tray is the normal state; Exit ends the program.
    QApplication::setQuitOnLastWindowClosed(false);
    vl::applyTipFont();

    vl::Module1 shared(vl::readCommandLine(argumentsOf(application), vl::rawCommandLine()));
    vl::GridUtils gridUtils(shared.values.DebugMode);
    vl::frmDDE MainWindow({.reminders = shared.reminders,
                           .period = shared.period,
                           .db = shared.db,
                           .settings = shared.settings,
                           .clock = shared.clock,
                           .state = shared.state,
                           .ledger = shared.ledger,
                           .sound = shared.sound,
                           .gridUtils = gridUtils,
                           .DebugMode = shared.values.DebugMode,
                           .HelpBase = shared.values.HelpBase,
                           .Version = VL_VERSION});
    const vl::SessionEnd sessionEnd(MainWindow);
    MainWindow.Load();
    return QApplication::exec();
}
