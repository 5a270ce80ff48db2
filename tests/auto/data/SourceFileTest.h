#ifndef SOURCEFILETEST_H
#define SOURCEFILETEST_H

#include <UtilsSingleInstance.h>
#include <UtilsSourceFile.h>

#include <UniProgTest.h>

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QPointer>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <memory>

inline constexpr int PatienceMs = 30'000; // a cap and no measure

/// The one object of the process, for all test functions, and an image that it may choose.
class SourceFileTest : public UniProgTest
{
    Q_OBJECT

protected Q_SLOTS:
    void initTestCase()
    {
        QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
        QVERIFY(folder.isValid());
        image = path(QStringLiteral("image.hex"));
        QVERIFY(write(image, ":00000001FF"));
        UtilsSingleInstance::setApplicationName(QStringLiteral("Source file test"));
        owner = std::make_unique<QObject>();

        store(image);
        source = UtilsSourceFile::createSourceFile(owner.get());
        QVERIFY(source);
    }

    void init()
    {
        UniProgTest::init();
        QVERIFY(write(image, ":00000001FF"));
    }

    void cleanup()
    {
        QDir::setCurrent(QDir::rootPath());
    }

protected:
    static constexpr char EmptyPathWarning[] = "QFileSystemWatcher::addPath: path is empty";
    static constexpr char SettingsKey[] = "LastSelectedFile";

    static bool write(const QString &path, const QByteArray &content)
    {
        QFile file(path);
        return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
    }

    static QVariant stored()
    {
        return QSettings(QStringLiteral("Orbelkan"), UtilsSingleInstance::getApplicationName()).value(SettingsKey);
    }

    static void store(const QVariant &value)
    {
        QSettings settings(QStringLiteral("Orbelkan"), UtilsSingleInstance::getApplicationName());
        if (value.isValid())
            settings.setValue(SettingsKey, value);
        else
            settings.remove(SettingsKey);
    }

    QString path(const QString &name) const
    {
        return folder.filePath(name);
    }

    /// Chooses \a file with a fresh view of it.
    void choose(const QString &file)
    {
        if (file.isEmpty())
            QTest::ignoreMessage(QtWarningMsg, EmptyPathWarning);
        source->setFileInfo(QFileInfo(file));
    }

    QTemporaryDir folder;
    std::unique_ptr<QObject> owner;
    QPointer<UtilsSourceFile> source;
    QString image;
};

#endif // SOURCEFILETEST_H
