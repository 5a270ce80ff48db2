#include "ProgrammerApplication.h"

#include <Navigation.h>
#include <Page.h>
#include <UtilsDialogProcessing.h>

#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QToolButton>
#include <QtEndian>

#include <utility>

ProgrammerApplication::ProgrammerApplication()
    : ProgrammerApplication(nullptr)
{ }

ProgrammerApplication::ProgrammerApplication(std::unique_ptr<UniProgInterface> externalDriver)
    : session(ProgrammerSession::Driver::Simulated, std::move(externalDriver))
{
    session.programmer().setTimeScale(0);
    window.show();
}

QString ProgrammerApplication::result() const
{
    return find<QLabel>("result")->text();
}

Page *ProgrammerApplication::page() const
{
    return window.findChild<Navigation *>()->currentPage();
}

void ProgrammerApplication::enterPath(const QString &path) const
{
    auto *edit = find<QLineEdit>("imagePath");
    edit->setText(path);
    QTest::keyClick(edit, Qt::Key_Return);
}

bool ProgrammerApplication::loadImage() const
{
    constexpr int Size = 600;
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("image.bin")));
    if (!file.open(QIODevice::WriteOnly) || file.write(QByteArray(Size, '\x42')) != Size || !file.flush())
        return false;
    enterPath(file.fileName());
    return session.image().size() == Size;
}

bool ProgrammerApplication::loadDeviceFirmware(const QTemporaryDir &folder, const QByteArray &payload) const
{
    QFile file(folder.filePath(QStringLiteral("device.fw")));
    QByteArray header(8, '\0');
    qToLittleEndian(SimulatedProgrammer::crc32(payload), header.data());
    header[4] = 3; // length of the version
    const QByteArray bytes = header + "2.1" + payload;
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.flush())
        return false;
    auto *edit = find<QLineEdit>("deviceImagePath");
    edit->setText(file.fileName());
    QTest::keyClick(edit, Qt::Key_Return);
    return session.deviceImagePath() == file.fileName();
}

void ProgrammerApplication::click(ProgrammerSession::Operation operation) const
{
    find<QToolButton>(ProgrammerSession::describe(operation).name)->click();
}

bool ProgrammerApplication::runToSuccess(ProgrammerSession::Operation operation)
{
    QSignalSpy completed(&session, &ProgrammerSession::completed);
    click(operation);
    const QPointer<UtilsDialogProcessing> dialog = window.findChild<UtilsDialogProcessing *>();
    if (!QTest::qWaitFor([&] { return !completed.isEmpty(); }, LongWait))
        return false;
    if (dialog)
        dialog->close(); // as a window manager does: the log need not play to its end
    return QTest::qWaitFor([&] { return dialog.isNull(); }, LongWait)
        && completed.constFirst().at(0).value<ProgrammerSession::Operation>() == operation
        && completed.constFirst().at(1).toInt() == 0;
}

bool ProgrammerApplication::closeWithButton(const QPointer<UtilsDialogProcessing> &dialog)
{
    auto *close = dialog->findChild<QToolButton *>(QStringLiteral("toolButton"));
    if (!close || !QTest::qWaitFor([&] { return !close->text().isEmpty(); }, LongWait))
        return false;
    close->click();
    return QTest::qWaitFor([&] { return dialog.isNull(); }, LongWait);
}
