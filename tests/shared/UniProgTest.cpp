#include "UniProgTest.h"

#include <QCoreApplication>
#include <QImageReader>
#include <QRegularExpression>
#include <QSettings>
#include <QTemporaryDir>

void UniProgTest::prepareProcess()
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");

    static const QTemporaryDir settings;
    for (const QSettings::Format format : {QSettings::NativeFormat, QSettings::IniFormat})
        QSettings::setPath(format, QSettings::UserScope, settings.path());
    QCoreApplication::setApplicationName(QStringLiteral("UniProgUtils test"));
}

QString UniProgTest::programOutput(const QByteArray &bytes)
{
    return QString::fromUtf8(bytes).replace(QLatin1String("\r\n"), QLatin1String("\n"));
}

bool UniProgTest::lacksSvg()
{
#ifdef Q_OS_WIN
    return !QImageReader::supportedImageFormats().contains("svg");
#else
    return false;
#endif
}

void UniProgTest::init()
{
    // The offscreen platform announces what it leaves to a window manager: size limits, raising, grabs.
    QTest::failOnWarning(QRegularExpression(QStringLiteral("^(?!This plugin does not support )")));
}
