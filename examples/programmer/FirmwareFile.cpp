#include "FirmwareFile.h"

#include <MemoryManager.h>

#include <QDeadlineTimer>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QProcess>
#include <QRegularExpression>
#include <QSaveFile>
#include <QStandardPaths>
#include <QStringList>
#include <QTemporaryDir>

namespace {

constexpr int SrecordTimeout = 30000; // ms
constexpr qint64 MaximumReportSize = 64LL * 1024; // of srec_info: some 2000 ranges

struct Range
{
    quint32 first = 0;
    quint32 last = 0;

    qint64 size() const
    {
        return qint64(last) - first + 1;
    }
};

bool fail(QString *error, const QString &text)
{
    *error = text;
    return false;
}

/// The srecord option that names the format of @p path; empty for a name this application does not know.
QString formatOption(const QString &path)
{
    static const QHash<QString, QString> options{
        {QStringLiteral("hex"), QStringLiteral("-intel")},    {QStringLiteral("ihex"), QStringLiteral("-intel")},
        {QStringLiteral("s19"), QStringLiteral("-motorola")}, {QStringLiteral("s28"), QStringLiteral("-motorola")},
        {QStringLiteral("s37"), QStringLiteral("-motorola")}, {QStringLiteral("srec"), QStringLiteral("-motorola")},
        {QStringLiteral("mot"), QStringLiteral("-motorola")},
    };
    return options.value(QFileInfo(path).suffix().toLower());
}

QString hexadecimal(qint64 value)
{
    const QString digits = QString::number(qAbs(value), 16).toUpper();
    return (value < 0 ? QStringLiteral("-0x") : QStringLiteral("0x")) + digits;
}

/// What a program of srecord has to say about a file it refuses: the last line that is no warning, without the name of
/// program and file in front of it.
QString complaint(const QByteArray &errorOutput)
{
    QString text;
    const QStringList lines = QString::fromLocal8Bit(errorOutput).split(u'\n', Qt::SkipEmptyParts);
    for (const QString &line : lines) {
        if (!line.contains(QLatin1String("warning: ")) && !line.startsWith(u' '))
            text = line;
    }
    const QString reason = text.section(QStringLiteral(": "), 2).trimmed();
    return reason.isEmpty() ? text.trimmed() : reason;
}

/// Runs a program of srecord and takes at most @p maximumOutput bytes of what it prints.
bool runSrecord(const QString &name, const QStringList &arguments, qint64 maximumOutput, QByteArray *output,
                QString *error)
{
    const QString program = QStandardPaths::findExecutable(name);
    if (program.isEmpty()) {
        return fail(error,
                    QStringLiteral("The program %1 is missing. Please install srecord, which reads and writes "
                                   "Intel HEX and S-record files (Debian: apt install srecord).")
                        .arg(name));
    }

    QProcess process;
    process.start(program, arguments, QIODevice::ReadOnly);
    const QDeadlineTimer deadline(SrecordTimeout);
    output->clear();
    while (process.state() != QProcess::NotRunning && !deadline.hasExpired() && output->size() <= maximumOutput) {
        process.waitForReadyRead(int(deadline.remainingTime()));
        output->append(process.readAllStandardOutput());
    }
    output->append(process.readAllStandardOutput());

    if (output->size() > maximumOutput || process.state() != QProcess::NotRunning) {
        const bool tooMuch = output->size() > maximumOutput;
        process.kill();
        process.waitForFinished();
        return fail(error,
                    tooMuch ? QStringLiteral("The image is larger or more scattered than this application takes.")
                            : QStringLiteral("%1 did not finish in time.").arg(name));
    }
    if (process.error() == QProcess::FailedToStart)
        return fail(error, QStringLiteral("%1 cannot be started: %2.").arg(program, process.errorString()));
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
        return fail(error, QStringLiteral("The file is damaged: %1.").arg(complaint(process.readAllStandardError())));
    return true;
}

/// The lines "Data:   00000000 - 0003B88B" of srec_info, the following ones without the word.
QList<Range> rangesOf(const QByteArray &report)
{
    static const QRegularExpression line(QStringLiteral("^(?:Data:)?\\s+([0-9A-F]{1,8}) - ([0-9A-F]{1,8})\\s*$"),
                                         QRegularExpression::MultilineOption);
    QList<Range> ranges;
    for (auto match = line.globalMatch(QString::fromLatin1(report)); match.hasNext();) {
        const QRegularExpressionMatch range = match.next();
        ranges.append({range.captured(1).toUInt(nullptr, 16), range.captured(2).toUInt(nullptr, 16)});
    }
    return ranges;
}

bool loadBinary(const QString &path, quint32 base, MemoryManager *image, QString *error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return fail(error, QStringLiteral("%1 cannot be read: %2.").arg(path, file.errorString()));
    const QByteArray data = file.read(FirmwareFile::MaximumImageSize + 1);
    if (data.isEmpty())
        return fail(error, QStringLiteral("%1 is empty.").arg(path));
    if (data.size() > FirmwareFile::MaximumImageSize)
        return fail(error, QStringLiteral("%1 is larger than 16 MiB.").arg(path));
    MemoryManager loaded;
    if (!loaded.write(base, data)) {
        return fail(error, QStringLiteral("%1 does not fit into memory at %2.").arg(path, hexadecimal(base)));
    }
    *image = loaded;
    return true;
}

/// Lets srec_cat put the ranges of a text file one behind the other, as raw bytes.
bool loadRecords(const QString &path, const QString &format, MemoryManager *image, QString *error)
{
    const QString file = QFileInfo(path).absoluteFilePath(); // an absolute name is never taken for an option
    QByteArray output;
    if (!runSrecord(QStringLiteral("srec_info"), {file, format}, MaximumReportSize, &output, error))
        return false;

    const QList<Range> ranges = rangesOf(output);
    if (ranges.isEmpty())
        return fail(error, QStringLiteral("%1 holds no data.").arg(path));
    if (ranges.size() > FirmwareFile::MaximumRangeCount) {
        return fail(error,
                    QStringLiteral("%1 is scattered over more than %2 pieces of memory.")
                        .arg(path)
                        .arg(FirmwareFile::MaximumRangeCount));
    }
    qint64 size = 0;
    QStringList arguments;
    for (const Range &range : ranges) {
        // Moved to 0 before it is cut out: srecord cannot cut at the end of the address space.
        arguments << file << format << QStringLiteral("-offset") << hexadecimal(-qint64(range.first))
                  << QStringLiteral("-crop") << hexadecimal(0) << hexadecimal(range.size()) << QStringLiteral("-offset")
                  << hexadecimal(size);
        size += range.size();
        if (size > FirmwareFile::MaximumImageSize)
            return fail(error, QStringLiteral("%1 holds more than 16 MiB.").arg(path));
    }
    arguments << QStringLiteral("-output") << QStringLiteral("-") << QStringLiteral("-binary");

    if (!runSrecord(QStringLiteral("srec_cat"), arguments, size, &output, error))
        return false;
    if (output.size() != size)
        return fail(error, QStringLiteral("%1 has changed while it was read.").arg(path));

    MemoryManager loaded;
    qsizetype position = 0;
    for (const Range &range : ranges) {
        loaded.write(range.first, output.mid(position, qsizetype(range.size())));
        position += qsizetype(range.size());
    }
    *image = loaded;
    return true;
}

bool writeFile(const QString &path, const QByteArray &data, QString *error)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(data) != data.size() || !file.commit())
        return fail(error, QStringLiteral("%1 cannot be written: %2.").arg(path, file.errorString()));
    return true;
}

bool saveRecords(const QString &path, const QString &format, const MemoryManager &image, QString *error)
{
    const QTemporaryDir folder;
    if (!folder.isValid())
        return fail(error, QStringLiteral("No temporary folder: %1.").arg(folder.errorString()));

    QStringList arguments;
    for (const MemoryManager::Segment &segment : image.segments()) {
        const QString piece = folder.filePath(QStringLiteral("%1.bin").arg(segment.address, 8, 16, QLatin1Char('0')));
        if (!writeFile(piece, segment.data, error))
            return false;
        arguments << piece << QStringLiteral("-binary") << QStringLiteral("-offset") << hexadecimal(segment.address);
    }
    arguments << QStringLiteral("-output") << QStringLiteral("-") << format;
    QByteArray text;
    return runSrecord(QStringLiteral("srec_cat"), arguments, FirmwareFile::MaximumFileSize, &text, error)
        && writeFile(path, text, error);
}

bool checkFile(const QString &path, QString *error)
{
    const QFileInfo file(path);
    if (!file.exists())
        return fail(error, QStringLiteral("There is no file %1.").arg(path));
    if (!file.isFile())
        return fail(error, QStringLiteral("%1 is no file.").arg(path));
    if (file.size() > FirmwareFile::MaximumFileSize)
        return fail(error, QStringLiteral("%1 is larger than 64 MiB.").arg(path));
    return true;
}

bool unknownFormat(const QString &path, QString *error)
{
    return fail(error,
                QStringLiteral("%1 is of no known kind. Images are .bin, .hex (Intel HEX) or .s19 (S-record) "
                               "files.")
                    .arg(path));
}

} // namespace

bool FirmwareFile::isBinary(const QString &path)
{
    return QFileInfo(path).suffix().compare(QLatin1String("bin"), Qt::CaseInsensitive) == 0;
}

bool FirmwareFile::load(const QString &path, quint32 binaryBase, MemoryManager *image, QString *error)
{
    if (!checkFile(path, error))
        return false;
    if (isBinary(path))
        return loadBinary(path, binaryBase, image, error);
    const QString format = formatOption(path);
    return format.isEmpty() ? unknownFormat(path, error) : loadRecords(path, format, image, error);
}

bool FirmwareFile::save(const QString &path, const MemoryManager &image, QString *error)
{
    if (image.isEmpty())
        return fail(error, QStringLiteral("There is nothing to write to %1.").arg(path));
    if (isBinary(path)) {
        if (image.segmentCount() > 1) {
            return fail(error,
                        QStringLiteral("%1 cannot hold %2 separate pieces of memory. Please choose a .hex file.")
                            .arg(path)
                            .arg(image.segmentCount()));
        }
        return writeFile(path, image.segments().constFirst().data, error);
    }
    const QString format = formatOption(path);
    return format.isEmpty() ? unknownFormat(path, error) : saveRecords(path, format, image, error);
}
