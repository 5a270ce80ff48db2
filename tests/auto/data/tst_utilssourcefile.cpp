#include <UtilsSourceFile.h>

#include <UtilsSingleInstance.h>

#include <UniProgTest.h>

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileSystemWatcher>
#include <QMetaMethod>
#include <QPointer>
#include <QPushButton>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTimer>

#include <functional>
#include <memory>
#include <type_traits>

namespace {

constexpr int PatienceMs = 30'000;
const QString SettingsKey = QStringLiteral("LastSelectedFile");
const char EmptyPathWarning[] = "QFileSystemWatcher::addPath: path is empty";

bool write(const QString &path, const QByteArray &content)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

QVariant stored()
{
    return QSettings(QStringLiteral("Orbelkan"), UtilsSingleInstance::getApplicationName()).value(SettingsKey);
}

void store(const QVariant &value)
{
    QSettings settings(QStringLiteral("Orbelkan"), UtilsSingleInstance::getApplicationName());
    if (value.isValid())
        settings.setValue(SettingsKey, value);
    else
        settings.remove(SettingsKey);
}

/// Calls \a act with the next file dialog that opens. Should no one have closed it after a long time, it is closed,
/// so that no test waits for ever.
class WithTheDialog : public QObject
{
public:
    explicit WithTheDialog(std::function<void(QFileDialog *)> act)
        : action(std::move(act))
    {
        watch.callOnTimeout(this, &WithTheDialog::look);
        watch.start(1);
        QTimer::singleShot(PatienceMs, this, [] {
            if (auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget()))
                dialog->reject();
        });
    }

    bool seen = false;

private:
    void look()
    {
        auto *dialog = qobject_cast<QFileDialog *>(QApplication::activeModalWidget());
        if (!dialog)
            return;
        watch.stop();
        seen = true;
        action(dialog);
    }

    QTimer watch;
    std::function<void(QFileDialog *)> action;
};

#ifdef Q_OS_WIN
const char FoldersAreWatched[]
    = "Qt watches the folder there: under Wine it may take a replacement or a neighbour's change "
      "for a change of the file.";
#endif

// Only createSourceFile() makes the one object.
static_assert(!std::is_default_constructible_v<UtilsSourceFile>);
static_assert(!std::is_constructible_v<UtilsSourceFile, QObject *>);

} // namespace

class tst_UtilsSourceFile : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void itStartsWithTheStoredFileAndWatchesIt();
    void aSecondCreationReturnsTheFirstObjectUnchanged();
    void theMethodsStandInTheirOrder();

    void theGettersTellOfAFileOnly_data();
    void theGettersTellOfAFileOnly();
    void aRelativePathIsKeptAsGiven();
    void aChoiceIsLoggedAndAnnounced();
    void theChoiceIsStoredOnRequestOnly();
    void whatIsStoredIsChosen_data();
    void whatIsStoredIsChosen();
    void anEmptyChoiceIsStoredAsAnEmptyText();

    void aChangeOnDiskIsAnnouncedAndSeen();
    void aReplacedFileIsNotWatchedAgain();
    void onlyTheLastChoiceIsWatched();
    void aFileChosenAfterItsDirectoryIsWatched();
    void aNoticeOfAnotherPathIsAnnouncedButChangesNothing();

    void aForgottenFileIsStillWatchedAndStored();
    void aFileThatExistsIsCopiedToTheClipboard();
    void nothingElseIsCopiedToTheClipboard_data();
    void nothingElseIsCopiedToTheClipboard();

    void theDialogAsksForAFlashImage();
    void theDialogOpensWhereTheChoiceIs_data();
    void theDialogOpensWhereTheChoiceIs();
    void theDialogBelongsToTheWidgetThatAsked();
    void theAcceptedFileIsChosen();
    void aFileSelectedBeforeACancelIsChosen();
    void aCancelWithoutSelectionChoosesTheDirectory();
    void theWidgetThatAskedMayGoWhileTheDialogIsOpen();

    void deletionStoresTheChoiceEvenWhileTheDialogIsOpen(); // the last one: there is no second object

private:
    QString path(const QString &name) const
    {
        return folder.filePath(name);
    }
    void choose(const QString &file);

    QTemporaryDir folder;
    std::unique_ptr<QObject> owner;
    QPointer<UtilsSourceFile> source;
    QString image;
};

void tst_UtilsSourceFile::initTestCase()
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

void tst_UtilsSourceFile::init()
{
    UniProgTest::init();
    QVERIFY(write(image, ":00000001FF"));
}

void tst_UtilsSourceFile::cleanup()
{
    QDir::setCurrent(QDir::rootPath());
}

/// Chooses \a file with a fresh view of it.
void tst_UtilsSourceFile::choose(const QString &file)
{
    if (file.isEmpty())
        QTest::ignoreMessage(QtWarningMsg, EmptyPathWarning);
    source->setFileInfo(QFileInfo(file));
}

void tst_UtilsSourceFile::itStartsWithTheStoredFileAndWatchesIt()
{
    QCOMPARE(source->parent(), owner.get());
    QCOMPARE(UtilsSourceFile::getAbsoluteFilePath(), image);
    QSignalSpy changes(source, &UtilsSourceFile::signalFileChanged);
    QVERIFY(write(image, "changed"));
    QVERIFY(changes.wait(PatienceMs));
}

void tst_UtilsSourceFile::aSecondCreationReturnsTheFirstObjectUnchanged()
{
    QObject other;
    choose(image);
    store(QStringLiteral("/another/file.bin"));
    const QSignalSpy changes(source, &UtilsSourceFile::signalFileChanged);
    QCOMPARE(UtilsSourceFile::createSourceFile(&other), source.data());
    QCOMPARE(UtilsSourceFile::createSourceFile(nullptr), source.data());
    QCOMPARE(source->parent(), owner.get());
    QCOMPARE(UtilsSourceFile::getAbsoluteFilePath(), image);
    QVERIFY(changes.isEmpty());
}

void tst_UtilsSourceFile::theMethodsStandInTheirOrder()
{
    const QMetaObject &metaObject = UtilsSourceFile::staticMetaObject;
    QList<QByteArray> signatures;
    for (int index = metaObject.methodOffset(); index < metaObject.methodCount(); ++index)
        signatures.append(metaObject.method(index).methodSignature());
    QCOMPARE(signatures,
             QList<QByteArray>({"signalFileChanged()", "slotFileChanged(QString)", "slotCopyFileName()",
                                "slotCopyAbsolutePath()", "slotRemoveFile()", "slotSearchFile()"}));
    QCOMPARE(metaObject.method(metaObject.methodOffset()).methodType(), QMetaMethod::Signal);
    QCOMPARE(metaObject.method(metaObject.methodOffset() + 1).access(), QMetaMethod::Private);
}

void tst_UtilsSourceFile::theGettersTellOfAFileOnly_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("name");
    QTest::newRow("a file") << image << QStringLiteral("image.hex");
    QTest::newRow("a file that does not exist") << path(QStringLiteral("missing.bin")) << QString();
    QTest::newRow("a directory") << folder.path() << QString();
    QTest::newRow("nothing") << QString() << QString();
}

void tst_UtilsSourceFile::theGettersTellOfAFileOnly()
{
    QFETCH(QString, file);
    QFETCH(QString, name);
    choose(file);
    const QString expectedPath = name.isEmpty() ? QString() : file;
    QCOMPARE(UtilsSourceFile::getFileName(), name);
    QCOMPARE(UtilsSourceFile::getFilePath(), expectedPath);
    QCOMPARE(UtilsSourceFile::getAbsoluteFilePath(), expectedPath);
}

void tst_UtilsSourceFile::aRelativePathIsKeptAsGiven()
{
    QVERIFY(QDir::setCurrent(folder.path()));
    const QString given = QStringLiteral("./image.hex");
    choose(given);
    QCOMPARE(UtilsSourceFile::getFileName(), QStringLiteral("image.hex"));
    QCOMPARE(UtilsSourceFile::getFilePath(), given);
    QCOMPARE(UtilsSourceFile::getAbsoluteFilePath(), QFileInfo(given).absoluteFilePath());
    QSignalSpy changes(source, &UtilsSourceFile::signalFileChanged);
    QVERIFY(write(given, "changed"));
    QVERIFY(changes.wait(PatienceMs));
}

void tst_UtilsSourceFile::aChoiceIsLoggedAndAnnounced()
{
    const QSignalSpy changes(source, &UtilsSourceFile::signalFileChanged);
    QTest::ignoreMessage(QtDebugMsg, QRegularExpression(QStringLiteral("image\\.hex")));
    QTest::ignoreMessage(QtDebugMsg, QRegularExpression(QRegularExpression::escape(folder.path())));
    choose(image);
    QCOMPARE(changes.size(), 1);
    choose(image);
    QCOMPARE(changes.size(), 2);
}

void tst_UtilsSourceFile::theChoiceIsStoredOnRequestOnly()
{
    store(QStringLiteral("/another/file.bin"));
    choose(image);
    QCOMPARE(stored().toString(), QStringLiteral("/another/file.bin"));
    const QSignalSpy changes(source, &UtilsSourceFile::signalFileChanged);
    source->writeFileToRegistry();
    QCOMPARE(stored().toString(), image);
    QVERIFY(changes.isEmpty());

    // Absolute, whatever was given.
    QVERIFY(QDir::setCurrent(folder.path()));
    choose(QStringLiteral("missing.bin"));
    source->writeFileToRegistry();
    QCOMPARE(stored().toString(), QDir::current().absoluteFilePath(QStringLiteral("missing.bin")));
}

void tst_UtilsSourceFile::whatIsStoredIsChosen_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("storedAgain");
    QTest::addColumn<QString>("name");
    QTest::newRow("a file") << QVariant(image) << image << QStringLiteral("image.hex");
    const QString missing = path(QStringLiteral("missing.bin"));
    QTest::newRow("a file that does not exist") << QVariant(missing) << missing << QString();
    QTest::newRow("a directory") << QVariant(folder.path()) << folder.path() << QString();
    QTest::newRow("an empty text") << QVariant(QString()) << QString() << QString();
    QTest::newRow("nothing") << QVariant() << QString() << QString();
}

void tst_UtilsSourceFile::whatIsStoredIsChosen()
{
    QFETCH(QVariant, value);
    QFETCH(QString, storedAgain);
    QFETCH(QString, name);
    choose(path(QStringLiteral("before.bin")));
    store(value);
    const QSignalSpy changes(source, &UtilsSourceFile::signalFileChanged);
    if (storedAgain.isEmpty())
        QTest::ignoreMessage(QtWarningMsg, EmptyPathWarning);
    source->readFileFromRegistry();
    QCOMPARE(changes.size(), 1);
    QCOMPARE(UtilsSourceFile::getFileName(), name);
    // The path is kept even where the getters do not tell it.
    store(QStringLiteral("/another/file.bin"));
    source->writeFileToRegistry();
    QCOMPARE(stored().toString(), storedAgain);
}

void tst_UtilsSourceFile::anEmptyChoiceIsStoredAsAnEmptyText()
{
    store(image);
    choose(QString());
    source->writeFileToRegistry();
    QVERIFY(stored().isValid());
    QCOMPARE(stored().toString(), QString());
}

void tst_UtilsSourceFile::aChangeOnDiskIsAnnouncedAndSeen()
{
    choose(image);
    QCOMPARE(UtilsSourceFile::getFileName(), QStringLiteral("image.hex"));
    QSignalSpy changes(source, &UtilsSourceFile::signalFileChanged);
    QVERIFY(write(image, "changed"));
    QVERIFY(changes.wait(PatienceMs));
    QCOMPARE(UtilsSourceFile::getFileName(), QStringLiteral("image.hex"));
    QVERIFY(QFile::remove(image));
    QTRY_COMPARE_WITH_TIMEOUT(UtilsSourceFile::getFileName(), QString(), PatienceMs);
}

void tst_UtilsSourceFile::aReplacedFileIsNotWatchedAgain()
{
#ifdef Q_OS_WIN
    QSKIP(FoldersAreWatched);
#endif
    choose(image);
    QSignalSpy changes(source, &UtilsSourceFile::signalFileChanged);
    const QString replacement = path(QStringLiteral("replacement"));
    QVERIFY(write(replacement, "replaced"));
    QVERIFY(QFile::remove(image));
    QVERIFY(QFile::rename(replacement, image));
    QVERIFY(changes.wait(PatienceMs));

    // Another watcher tells when a change would have been heard of.
    QFileSystemWatcher witness({image});
    const QSignalSpy witnessed(&witness, &QFileSystemWatcher::fileChanged);
    QCoreApplication::processEvents();
    changes.clear();
    QVERIFY(write(image, "changed once more"));
    QTRY_VERIFY_WITH_TIMEOUT(!witnessed.isEmpty(), PatienceMs);
    QCoreApplication::processEvents();
    QVERIFY(changes.isEmpty());

    choose(image);
    changes.clear();
    QVERIFY(write(image, "changed"));
    QVERIFY(changes.wait(PatienceMs));
}

void tst_UtilsSourceFile::onlyTheLastChoiceIsWatched()
{
#ifdef Q_OS_WIN
    QSKIP(FoldersAreWatched);
#endif
    const QString other = path(QStringLiteral("other.bin"));
    QVERIFY(write(other, "other"));
    choose(other);
    choose(image);
    QSignalSpy changes(source, &UtilsSourceFile::signalFileChanged);
    QFileSystemWatcher witness({other});
    const QSignalSpy witnessed(&witness, &QFileSystemWatcher::fileChanged);
    QVERIFY(write(other, "changed"));
    QTRY_VERIFY_WITH_TIMEOUT(!witnessed.isEmpty(), PatienceMs);
    QCoreApplication::processEvents();
    QVERIFY(changes.isEmpty());
    QVERIFY(write(image, "changed"));
    QVERIFY(changes.wait(PatienceMs));
}

void tst_UtilsSourceFile::aFileChosenAfterItsDirectoryIsWatched()
{
    choose(folder.path());
    choose(image);
    QSignalSpy changes(source, &UtilsSourceFile::signalFileChanged);
    QVERIFY(write(image, "changed"));
    QVERIFY(changes.wait(PatienceMs));
}

void tst_UtilsSourceFile::aNoticeOfAnotherPathIsAnnouncedButChangesNothing()
{
    choose(image);
    const QString name = UtilsSourceFile::getFileName();
    QCOMPARE(name, QStringLiteral("image.hex"));
    QVERIFY(QFile::remove(image)); // the watcher's own notice waits for the event loop

    const QSignalSpy changes(source, &UtilsSourceFile::signalFileChanged);
    const auto notice = [this](const QString &changed) {
        return QMetaObject::invokeMethod(source, "slotFileChanged", Q_ARG(QString, changed));
    };
    const QStringList others{path(QStringLiteral("other.bin")), QString(), image.toUpper(),
                             path(QStringLiteral("./image.hex"))};
    for (const QString &other : others) {
        QVERIFY(notice(other));
        QCOMPARE(UtilsSourceFile::getFileName(), name);
    }
    QCOMPARE(changes.size(), others.size());
    QVERIFY(notice(image));
    QCOMPARE(UtilsSourceFile::getFileName(), QString());
    QCOMPARE(changes.size(), others.size() + 1);
}

void tst_UtilsSourceFile::aForgottenFileIsStillWatchedAndStored()
{
    choose(image);
    source->writeFileToRegistry();
    QSignalSpy changes(source, &UtilsSourceFile::signalFileChanged);
    source->slotRemoveFile();
    QCOMPARE(changes.size(), 1);
    QCOMPARE(UtilsSourceFile::getFileName(), QString());
    QCOMPARE(UtilsSourceFile::getFilePath(), QString());
    QCOMPARE(UtilsSourceFile::getAbsoluteFilePath(), QString());
    QCOMPARE(stored().toString(), image);
    QVERIFY(write(image, "changed"));
    QVERIFY(changes.wait(PatienceMs));
    QCOMPARE(UtilsSourceFile::getFileName(), QString());
}

void tst_UtilsSourceFile::aFileThatExistsIsCopiedToTheClipboard()
{
    QVERIFY(QDir::setCurrent(folder.path()));
    choose(QStringLiteral("image.hex"));
    source->slotCopyFileName();
    QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("image.hex"));
    source->slotCopyAbsolutePath();
    QCOMPARE(QGuiApplication::clipboard()->text(), QFileInfo(QStringLiteral("image.hex")).absoluteFilePath());
}

void tst_UtilsSourceFile::nothingElseIsCopiedToTheClipboard_data()
{
    QTest::addColumn<QString>("file");
    QTest::newRow("a file that does not exist") << path(QStringLiteral("missing.bin"));
    QTest::newRow("a directory") << folder.path();
    QTest::newRow("nothing") << QString();
}

void tst_UtilsSourceFile::nothingElseIsCopiedToTheClipboard()
{
    QFETCH(QString, file);
    choose(file);
    QGuiApplication::clipboard()->setText(QStringLiteral("what was there"));
    source->slotCopyFileName();
    source->slotCopyAbsolutePath();
    QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("what was there"));
}

void tst_UtilsSourceFile::theDialogAsksForAFlashImage()
{
    choose(image);
    QPointer<QFileDialog> shown;
    const WithTheDialog user([&](QFileDialog *dialog) {
        shown = dialog;
        QCOMPARE(dialog->nameFilters(), QStringList(QStringLiteral("Flash image files (*.bin *.hex)")));
        QCOMPARE(dialog->fileMode(), QFileDialog::AnyFile);
        QCOMPARE(dialog->acceptMode(), QFileDialog::AcceptOpen);
        QVERIFY(dialog->isModal());
        QVERIFY(!dialog->parentWidget());
        dialog->reject();
    });
    source->slotSearchFile();
    QVERIFY(user.seen);
    QVERIFY(!shown);
    QVERIFY(!QApplication::activeModalWidget());
}

void tst_UtilsSourceFile::theDialogOpensWhereTheChoiceIs_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("directory");
    QTest::newRow("a file") << image << folder.path();
    QTest::newRow("a file that does not exist") << path(QStringLiteral("missing.bin")) << QDir::homePath();
    QTest::newRow("a directory") << folder.path() << QFileInfo(folder.path()).path();
    QTest::newRow("nothing") << QString() << QDir::homePath();
}

void tst_UtilsSourceFile::theDialogOpensWhereTheChoiceIs()
{
    QFETCH(QString, file);
    QFETCH(QString, directory);
    choose(file);
    QString opened;
    const WithTheDialog user([&](QFileDialog *dialog) {
        opened = dialog->directory().absolutePath();
        dialog->reject();
    });
    source->slotSearchFile();
    QVERIFY(user.seen);
    QCOMPARE(opened, QDir(directory).absolutePath());
}

void tst_UtilsSourceFile::theDialogBelongsToTheWidgetThatAsked()
{
    choose(image);
    QPushButton button;
    connect(&button, &QPushButton::clicked, source, &UtilsSourceFile::slotSearchFile);
    QWidget *parent = nullptr;
    const auto look = [&](QFileDialog *dialog) {
        parent = dialog->parentWidget();
        dialog->reject();
    };
    const WithTheDialog user(look);
    button.click();
    QVERIFY(user.seen);
    QCOMPARE(parent, &button);

    QAction action;
    connect(&action, &QAction::triggered, source, &UtilsSourceFile::slotSearchFile);
    const WithTheDialog again(look);
    action.trigger();
    QVERIFY(again.seen);
    QVERIFY(!parent);
}

void tst_UtilsSourceFile::theAcceptedFileIsChosen()
{
    const QString other = path(QStringLiteral("chosen.bin"));
    QVERIFY(write(other, "chosen"));
    choose(image);
    QSignalSpy changes(source, &UtilsSourceFile::signalFileChanged);
    const WithTheDialog user([&](QFileDialog *dialog) {
        dialog->selectFile(other);
        QTest::keyClick(dialog, Qt::Key_Return);
    });
    source->slotSearchFile();
    QVERIFY(user.seen);
    QCOMPARE(changes.size(), 1);
    QCOMPARE(UtilsSourceFile::getAbsoluteFilePath(), other);
    QVERIFY(write(other, "changed"));
    QVERIFY(changes.wait(PatienceMs));
}

void tst_UtilsSourceFile::aFileSelectedBeforeACancelIsChosen()
{
    const QString other = path(QStringLiteral("chosen.bin"));
    QVERIFY(write(other, "chosen"));
    choose(image);
    const QSignalSpy changes(source, &UtilsSourceFile::signalFileChanged);
    const WithTheDialog user([&](QFileDialog *dialog) {
        dialog->selectFile(other);
        QTest::keyClick(dialog, Qt::Key_Escape);
    });
    source->slotSearchFile();
    QVERIFY(user.seen);
    QCOMPARE(changes.size(), 1);
    QCOMPARE(UtilsSourceFile::getAbsoluteFilePath(), other);
}

void tst_UtilsSourceFile::aCancelWithoutSelectionChoosesTheDirectory()
{
    choose(image);
    const QSignalSpy changes(source, &UtilsSourceFile::signalFileChanged);
    const WithTheDialog user([](QFileDialog *dialog) { QTest::keyClick(dialog, Qt::Key_Escape); });
    source->slotSearchFile();
    QVERIFY(user.seen);
    QCOMPARE(changes.size(), 1);
    QCOMPARE(UtilsSourceFile::getFileName(), QString());
    source->writeFileToRegistry();
    QCOMPARE(stored().toString(), folder.path());
}

void tst_UtilsSourceFile::theWidgetThatAskedMayGoWhileTheDialogIsOpen()
{
    choose(image);
    const QSignalSpy changes(source, &UtilsSourceFile::signalFileChanged);
    auto window = std::make_unique<QWidget>();
    auto *button = new QPushButton(window.get());
    connect(button, &QPushButton::clicked, source, &UtilsSourceFile::slotSearchFile);
    const WithTheDialog user([&](QFileDialog *) { window.reset(); });
    button->click();
    QVERIFY(user.seen);
    QVERIFY(!window);
    QVERIFY(changes.isEmpty());
    QCOMPARE(UtilsSourceFile::getAbsoluteFilePath(), image);
}

void tst_UtilsSourceFile::deletionStoresTheChoiceEvenWhileTheDialogIsOpen()
{
    choose(image);
    source->writeFileToRegistry();
    const auto address = quintptr(source.data());
    const WithTheDialog user([&](QFileDialog *dialog) {
        source->slotRemoveFile();
        owner.reset();
        dialog->selectFile(image);
        dialog->reject();
    });
    source->slotSearchFile();
    QVERIFY(user.seen);
    QVERIFY(!source);
    QVERIFY(stored().isValid());
    QCOMPARE(stored().toString(), QString());
    // Nobody is left to take what was selected.
    QCOMPARE(UtilsSourceFile::getFileName(), QString());
    // There is one object a process: no second one is made in its place.
    QCOMPARE(quintptr(UtilsSourceFile::createSourceFile(nullptr)), address);
}

UNIPROG_TEST_MAIN(tst_UtilsSourceFile)
#include "tst_utilssourcefile.moc"
