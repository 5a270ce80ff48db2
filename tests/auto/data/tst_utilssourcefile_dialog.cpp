#include "SourceFileTest.h"

#include <QAction>
#include <QFileDialog>
#include <QPushButton>
#include <QTimer>

#include <functional>

namespace {

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

} // namespace

// The file dialog that the user chooses with.
class tst_UtilsSourceFile_dialog : public SourceFileTest
{
    Q_OBJECT

private Q_SLOTS:
    void theDialogAsksForAFlashImage();
    void theDialogOpensWhereTheChoiceIs_data();
    void theDialogOpensWhereTheChoiceIs();
    void theDialogBelongsToTheWidgetThatAsked();
    void theAcceptedFileIsChosen();
    void aFileSelectedBeforeACancelIsChosen();
    void aCancelWithoutSelectionChoosesTheDirectory();
    void theWidgetThatAskedMayGoWhileTheDialogIsOpen();

    void deletionStoresTheChoiceEvenWhileTheDialogIsOpen(); // the last one: there is no second object
};

void tst_UtilsSourceFile_dialog::theDialogAsksForAFlashImage()
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

void tst_UtilsSourceFile_dialog::theDialogOpensWhereTheChoiceIs_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("directory");
    QTest::newRow("a file") << image << folder.path();
    QTest::newRow("a file that does not exist") << path(QStringLiteral("missing.bin")) << QDir::homePath();
    QTest::newRow("a directory") << folder.path() << QFileInfo(folder.path()).path();
    QTest::newRow("nothing") << QString() << QDir::homePath();
}

void tst_UtilsSourceFile_dialog::theDialogOpensWhereTheChoiceIs()
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

void tst_UtilsSourceFile_dialog::theDialogBelongsToTheWidgetThatAsked()
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

void tst_UtilsSourceFile_dialog::theAcceptedFileIsChosen()
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

void tst_UtilsSourceFile_dialog::aFileSelectedBeforeACancelIsChosen()
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

void tst_UtilsSourceFile_dialog::aCancelWithoutSelectionChoosesTheDirectory()
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

void tst_UtilsSourceFile_dialog::theWidgetThatAskedMayGoWhileTheDialogIsOpen()
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

void tst_UtilsSourceFile_dialog::deletionStoresTheChoiceEvenWhileTheDialogIsOpen()
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

UNIPROG_TEST_MAIN(tst_UtilsSourceFile_dialog)
#include "tst_utilssourcefile_dialog.moc"
