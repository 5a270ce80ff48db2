#include "Appearance.h"
#include "CommandLine.h"
#include "DriverChoice.h"
#include "HeadlessRun.h"
#include "MainWindow.h"

#include <UtilsSingleInstance.h>

#include <QApplication>
#include <QSysInfo>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <utility>

namespace {

/// Whether there is nothing to draw on: asked before Qt starts, which would end the process then.
bool isDisplayMissing()
{
    return QSysInfo::kernelType() == QLatin1String("linux") && !qEnvironmentVariableIsSet("QT_QPA_PLATFORM")
        && qEnvironmentVariableIsEmpty("DISPLAY") && qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

bool isHeadless(int argc, char **argv)
{
    return std::any_of(argv, argv + argc, [](const char *argument) {
        return qstrncmp(argument, "--headless", 10) == 0 || qstrncmp(argument, "--operation", 11) == 0;
    });
}

/// What Qt has to say of the offscreen platform is of no use to whoever reads the log.
void dropOffscreenNotices(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    if (message.startsWith(QLatin1String("This plugin does not support "))
        || message.startsWith(QLatin1String("QStandardPaths: XDG_RUNTIME_DIR not set")))
        return;
    std::fprintf(stderr, "%s\n", qPrintable(qFormatLogMessage(type, context, message)));
    if (type == QtFatalMsg)
        std::abort();
}

int refuse(const QString &error, int exitCode)
{
    std::fprintf(stderr, "%s\n", qPrintable(error));
    return exitCode;
}

} // namespace

int main(int argc, char **argv)
{
    if (isDisplayMissing() || isHeadless(argc, argv))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    if (qgetenv("QT_QPA_PLATFORM") == "offscreen")
        qInstallMessageHandler(dropOffscreenNotices);
    QApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("programmer"));
    QCoreApplication::setApplicationVersion(QStringLiteral("1.0"));
    UtilsSingleInstance::getInstance(&application);
    UtilsSingleInstance::setApplicationName(QStringLiteral("Programmer example"));

    CommandLine commandLine;
    QString error;
    std::unique_ptr<UniProgInterface> driver;
    if (!readCommandLine(QCoreApplication::arguments(), &commandLine, &error)
        || !DriverChoice::create(commandLine.driver, &driver, &error))
        return refuse(error, HeadlessRun::UsageError);
    ProgrammerSession session(commandLine.hasDriver ? ProgrammerSession::Driver::Simulated
                                                    : ProgrammerSession::Driver::Missing,
                              std::move(driver));
    if (!applySettings(commandLine, &session, &error))
        return refuse(error, HeadlessRun::UsageError);
    if (!commandLine.image.isEmpty() && !session.loadImage(commandLine.image, commandLine.binaryBase, &error))
        return refuse(error, HeadlessRun::FileError);

    if (!commandLine.deviceImage.isEmpty() && !session.setDeviceImage(commandLine.deviceImage, &error))
        return refuse(error, HeadlessRun::FileError);

    Appearance::apply(commandLine.theme);
    MainWindow window(&session);
    window.setUpdateUrl(commandLine.updateUrl);
    if (QGuiApplication::platformName() == QLatin1String("offscreen")) {
        if (commandLine.operations.isEmpty())
            return refuse(QStringLiteral("Without a display, say what to do with --operation; see --help."),
                          HeadlessRun::UsageError);
        return HeadlessRun(commandLine, &session, &window).exec();
    }
    window.rememberImage();
    window.watchDevices(commandLine.watched);
    window.show();
    return QApplication::exec();
}
