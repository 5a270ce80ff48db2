#include "UtilsSourceFile.h"

#include "UtilsSingleInstance.h"

#include <QClipboard>
#include <QDebug>
#include <QDir>
#include <QFileDialog>
#include <QGuiApplication>
#include <QPointer>
#include <QSettings>

UtilsSourceFile *UtilsSourceFile::instanceOfSourceFile = nullptr;
QFileInfo UtilsSourceFile::fileInfo;

UtilsSourceFile *UtilsSourceFile::createSourceFile(QObject *parent)
{
    if (!instanceOfSourceFile)
        instanceOfSourceFile = new UtilsSourceFile(parent);
    return instanceOfSourceFile;
}

UtilsSourceFile::UtilsSourceFile()
    : settingsKey(QStringLiteral("LastSelectedFile"))
{ }

UtilsSourceFile::UtilsSourceFile(QObject *parent)
    : UtilsSourceFile()
{
    setParent(parent);
    connect(&watcher, &QFileSystemWatcher::fileChanged, this, &UtilsSourceFile::slotFileChanged);
    readFileFromRegistry();
}

UtilsSourceFile::~UtilsSourceFile()
{
    // The instance pointer stays: the object is meant to live as long as the application, and a new one in its place
    // would not be what others are connected to.
    writeFileToRegistry();
}

void UtilsSourceFile::setFileInfo(QFileInfo info)
{
    fileInfo = info;
    qDebug() << fileInfo.fileName();
    qDebug() << fileInfo.path();
    addFileToWatcher();
}

QString UtilsSourceFile::getFileName()
{
    return fileInfo.isFile() ? fileInfo.fileName() : QString();
}

QString UtilsSourceFile::getFilePath()
{
    return fileInfo.isFile() ? fileInfo.filePath() : QString();
}

QString UtilsSourceFile::getAbsoluteFilePath()
{
    return fileInfo.isFile() ? fileInfo.absoluteFilePath() : QString();
}

void UtilsSourceFile::readFileFromRegistry()
{
    const QSettings settings(UtilsSingleInstance::getOrganization(), UtilsSingleInstance::getApplicationName());
    fileInfo = QFileInfo(settings.value(settingsKey).toString());
    addFileToWatcher();
}

void UtilsSourceFile::writeFileToRegistry()
{
    QSettings settings(UtilsSingleInstance::getOrganization(), UtilsSingleInstance::getApplicationName());
    settings.setValue(settingsKey, fileInfo.absoluteFilePath());
}

void UtilsSourceFile::addFileToWatcher()
{
    // A stored path may be a directory, which the watcher keeps apart.
    const QStringList watched = watcher.files() + watcher.directories();
    if (!watched.isEmpty())
        watcher.removePaths(watched);
    // A path that cannot be watched is simply not watched; of an empty one the watcher warns.
    watcher.addPath(fileInfo.absoluteFilePath());
    Q_EMIT signalFileChanged();
}

void UtilsSourceFile::slotFileChanged(QString path)
{
    // The path is not watched again, even if the file was replaced on disk.
    if (path == fileInfo.absoluteFilePath())
        fileInfo.refresh();
    Q_EMIT signalFileChanged();
}

void UtilsSourceFile::slotCopyFileName()
{
    if (fileInfo.isFile())
        QGuiApplication::clipboard()->setText(fileInfo.fileName());
}

void UtilsSourceFile::slotCopyAbsolutePath()
{
    if (fileInfo.isFile())
        QGuiApplication::clipboard()->setText(fileInfo.absoluteFilePath());
}

void UtilsSourceFile::slotRemoveFile()
{
    fileInfo.setFile(QString());
    Q_EMIT signalFileChanged();
}

void UtilsSourceFile::slotSearchFile()
{
    // On the heap and guarded: the parent, and this object with it, may go while the dialog is open.
    const QPointer<UtilsSourceFile> self(this);
    const QPointer<QFileDialog> dialog(new QFileDialog(qobject_cast<QWidget *>(sender())));
    dialog->setNameFilters({tr("Flash image files (*.bin *.hex)")});
    dialog->setDirectory(fileInfo.exists() ? fileInfo.path() : QDir::homePath());
    // The result is not examined: what is selected afterwards counts, also after a cancel.
    dialog->exec();
    if (!dialog)
        return;
    const QStringList selected = dialog->selectedFiles();
    delete dialog;
    if (self && !selected.isEmpty())
        setFileInfo(QFileInfo(selected.constFirst()));
}
