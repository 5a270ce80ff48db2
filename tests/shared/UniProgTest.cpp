#include "UniProgTest.h"

#include <QCoreApplication>
#include <QImageReader>
#include <QProcess>
#include <QRegularExpression>
#include <QSettings>
#include <QTemporaryDir>

#ifdef Q_OS_WIN
#include <QUuid>

#include <qt_windows.h>

#include <string>

namespace {

/// While it lives, this process has a part of the registry to itself as its user's: the settings are there, and other
/// test programs write theirs at the same time.
class PrivateRegistry
{
public:
    PrivateRegistry()
    {
        RegCreateKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr);
        if (!key || RegOverridePredefKey(HKEY_CURRENT_USER, key) != ERROR_SUCCESS)
            qFatal("There is no registry for the test.");
    }
    ~PrivateRegistry()
    {
        RegOverridePredefKey(HKEY_CURRENT_USER, nullptr);
        RegCloseKey(key);
        RegDeleteTreeW(HKEY_CURRENT_USER, path.c_str());
    }
    Q_DISABLE_COPY_MOVE(PrivateRegistry)

private:
    const std::wstring path
        = (QLatin1String("Software\\UniProgUtils test\\") + QUuid::createUuid().toString()).toStdWString();
    HKEY key = nullptr;
};

} // namespace
#endif

void UniProgTest::prepareProcess()
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");

#ifdef Q_OS_WIN
    static const PrivateRegistry registry;
#endif
    static const QTemporaryDir settings;
    for (const QSettings::Format format : {QSettings::NativeFormat, QSettings::IniFormat})
        QSettings::setPath(format, QSettings::UserScope, settings.path());
    QCoreApplication::setApplicationName(QStringLiteral("UniProgUtils test"));
}

QString UniProgTest::programOutput(const QByteArray &bytes)
{
    return QString::fromUtf8(bytes).replace(QLatin1String("\r\n"), QLatin1String("\n"));
}

int UniProgTest::runProgram(const QString &program, const QStringList &arguments, QString *out, QString *err,
                            const QString &folder)
{
    QProcess process;
    process.setWorkingDirectory(folder);
    process.start(program, arguments);
    // A program may have ended before anybody waits for that.
    if (!process.waitForFinished() && process.error() != QProcess::UnknownError)
        qFatal("%s: %s", qPrintable(program), qPrintable(process.errorString()));
    *out = programOutput(process.readAllStandardOutput());
    *err = programOutput(process.readAllStandardError());
    return process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
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
