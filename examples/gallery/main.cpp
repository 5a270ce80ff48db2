#include "GalleryOptions.h"
#include "GalleryWindow.h"
#include "Screenshots.h"

#include <Appearance.h>
#include <UtilsSingleInstance.h>

#include <QApplication>
#include <QProcess>

#include <cstdio>
#include <cstdlib>

namespace {

constexpr int UsageError = 2;
constexpr double Percent = 100.0;

int say(std::FILE *file, const QString &text, int exitCode)
{
    std::fprintf(file, "%s\n", qPrintable(text));
    return exitCode;
}

/// What the offscreen platform leaves to a window manager is of no use to whoever wants pictures.
void dropOffscreenNotices(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    if (message.startsWith(QLatin1String("This plugin does not support ")))
        return;
    std::fprintf(stderr, "%s\n", qPrintable(qFormatLogMessage(type, context, message)));
    if (type == QtFatalMsg)
        std::abort();
}

int takePictures(GalleryWindow *window, const GalleryOptions &options)
{
    QString error;
    if (!Screenshots(window, options.screenshots).save(options.pages, &error))
        return say(stderr, error, EXIT_FAILURE);
    return EXIT_SUCCESS;
}

} // namespace

int main(int argc, char **argv)
{
    // Before there is an application: platform and scale are taken when it is made.
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    GalleryOptions options;
    QString error;
    if (!options.read(arguments, &error))
        return say(stderr, error, UsageError);
    const bool isPicturing = !options.screenshots.isEmpty();
    if (isPicturing || options.help) {
        Screenshots::prepareEnvironment();
        qInstallMessageHandler(dropOffscreenNotices);
    }
    qputenv("QT_SCALE_FACTOR", QByteArray::number(options.scale / Percent));

    QApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("gallery"));
    if (options.help)
        return say(stdout, GalleryOptions::helpText(), EXIT_SUCCESS);
    if (isPicturing)
        Screenshots::prepareApplication();
    QApplication::setLayoutDirection(options.rightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
    Appearance::apply(options.theme);

    GalleryWindow window(options);
    UtilsSingleInstance::setAppMainWidget(&window);
    QObject::connect(&window, &GalleryWindow::restartRequested, &window, [&window](const GalleryOptions &wanted) {
        if (QProcess::startDetached(QCoreApplication::applicationFilePath(), wanted.toArguments()))
            window.close();
    });
    window.show();
    return isPicturing ? takePictures(&window, options) : QApplication::exec();
}
