#ifndef UTILSSOURCEFILE_H
#define UTILSSOURCEFILE_H

#include "uniprogutils_export.h"

#include <QFileInfo>
#include <QFileSystemWatcher>
#include <QObject>
#include <QString>

/// The one file that the user has chosen to write into a target device: remembered across runs, watched on disk and
/// announced by one signal.
///
/// There is one object in the process, and it is meant to live as long as the application:
///
///     UtilsSingleInstance::setApplicationName("Programmer"); // names the settings, so it comes first
///     UtilsSourceFile *source = UtilsSourceFile::createSourceFile(&application);
///     connect(source, &UtilsSourceFile::signalFileChanged, window, &MainWindow::showSourceFile);
///     connect(ui->chooseButton, &QPushButton::clicked, source, &UtilsSourceFile::slotSearchFile);
///     ...
///     const QString path = UtilsSourceFile::getAbsoluteFilePath(); // "" when no file is chosen
///
/// The choice is stored under "LastSelectedFile" in the settings of UtilsSingleInstance's organisation and application
/// name: when the object is deleted and by writeFileToRegistry(), but not when the choice changes. GUI thread only.
class UNIPROGUTILS_EXPORT UtilsSourceFile : public QObject
{
    Q_OBJECT

public:
    /// The object. The first call creates it as a child of \a parent, with last run's choice, which is watched
    /// already; the parent of a later call is ignored. After the object has been deleted this must not be called any
    /// more: it would return the old pointer.
    static UtilsSourceFile *createSourceFile(QObject *parent);

    /// Stores the choice.
    ~UtilsSourceFile() override;

    /// Chooses a file, which need not exist, writes its name and its directory to the debug log and watches it
    /// instead of the last one. Emits signalFileChanged().
    void setFileInfo(QFileInfo info);

    /// The chosen file's name. "" when no file is chosen, or it does not exist or is a directory; like the next two.
    /// They tell what was seen at the last look: a file that is not watched any more may have gone since.
    static QString getFileName();
    /// The chosen file's path as it was given, with the file name.
    static QString getFilePath();
    static QString getAbsoluteFilePath();

    /// Chooses the stored file, none when nothing is stored, and watches it. Emits signalFileChanged().
    void readFileFromRegistry();
    /// Stores the chosen file's absolute path, "" when none is chosen.
    void writeFileToRegistry();

Q_SIGNALS:
    /// The choice has changed, or the chosen file has changed on disk. A file that was deleted or replaced on disk may
    /// not be watched any more after that; choose it again to have it watched.
    void signalFileChanged();

private Q_SLOTS:
    void slotFileChanged(QString path);

public Q_SLOTS:
    /// Puts the chosen file's name on the clipboard; does nothing when getFileName() is "".
    void slotCopyFileName();
    /// Puts the chosen file's absolute path on the clipboard; does nothing when getAbsoluteFilePath() is "".
    void slotCopyAbsolutePath();
    /// Forgets the choice and emits signalFileChanged(). The file stays watched, and stored, until the next choice or
    /// store.
    void slotRemoveFile();
    /// Lets the user choose a flash image in a modal dialog, which belongs to the widget whose signal called this
    /// slot, if it was a widget's. Afterwards setFileInfo() gets the first file that is selected in the dialog, however
    /// the dialog was closed: a file that is highlighted becomes the choice even when the user cancels. Without one,
    /// Qt's own dialog has its directory selected after a cancel.
    void slotSearchFile();

private:
    UtilsSourceFile();
    explicit UtilsSourceFile(QObject *parent);
    Q_DISABLE_COPY_MOVE(UtilsSourceFile)

    void addFileToWatcher();

    static UtilsSourceFile *instanceOfSourceFile;
    static QFileInfo fileInfo;

    QString settingsKey;
    QFileSystemWatcher watcher;
};

#endif // UTILSSOURCEFILE_H
