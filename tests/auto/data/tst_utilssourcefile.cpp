#include "SourceFileTest.h"

#include <QClipboard>
#include <QFileSystemWatcher>
#include <QMetaMethod>

#include <type_traits>

namespace {

#ifdef Q_OS_WIN
const char FoldersAreWatched[]
    = "Qt watches the folder there: under Wine it may take a replacement or a neighbour's change "
      "for a change of the file.";
#endif

// Only createSourceFile() makes the one object.
static_assert(!std::is_default_constructible_v<UtilsSourceFile>);
static_assert(!std::is_constructible_v<UtilsSourceFile, QObject *>);

} // namespace

class tst_UtilsSourceFile : public SourceFileTest
{
    Q_OBJECT

private Q_SLOTS:
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
};

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

UNIPROG_TEST_MAIN(tst_UtilsSourceFile)
#include "tst_utilssourcefile.moc"
