#include "ImagePanel.h"

#include "ProgrammerSession.h"

#include <UtilsSourceFile.h>

#include <QApplication>
#include <QFileInfo>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QRegularExpressionValidator>
#include <QToolButton>

namespace {

constexpr int HexadecimalBase = 16;
constexpr int AddressDigits = 8;
constexpr int RangesShown = 3;

QString address(quint32 value)
{
    return QStringLiteral("0x%1").arg(QString::number(value, HexadecimalBase).toUpper(), AddressDigits,
                                      QLatin1Char('0'));
}

} // namespace

ImagePanel::ImagePanel(ProgrammerSession *programmerSession, QWidget *parent)
    : QGroupBox(tr("Firmware image"), parent)
    , session(programmerSession)
{
    setupForm();
    connect(session, &ProgrammerSession::imageChanged, this, &ImagePanel::showImage);
    showImage();
}

void ImagePanel::rememberChoice()
{
    if (source)
        return;
    source = UtilsSourceFile::createSourceFile(qApp);
    connect(source, &UtilsSourceFile::signalFileChanged, this, &ImagePanel::sourceFileChanged);
    connect(browseButton, &QToolButton::clicked, source, &UtilsSourceFile::slotSearchFile);
    browseButton->show();
    if (session->imagePath().isEmpty())
        sourceFileChanged();
    else
        source->setFileInfo(QFileInfo(session->imagePath()));
}

void ImagePanel::setupForm()
{
    setObjectName(QStringLiteral("imagePanel"));
    auto *layout = new QFormLayout(this);

    auto *row = new QHBoxLayout;
    pathEdit = new QLineEdit;
    pathEdit->setObjectName(QStringLiteral("imagePath"));
    pathEdit->setPlaceholderText(tr("A .bin, .hex or .s19 file"));
    connect(pathEdit, &QLineEdit::returnPressed, this, &ImagePanel::enterPath);
    row->addWidget(pathEdit);
    browseButton = new QToolButton;
    browseButton->setObjectName(QStringLiteral("browse"));
    browseButton->setText(tr("Choose..."));
    browseButton->setFocusPolicy(Qt::StrongFocus);
    browseButton->hide(); // until choices are remembered
    row->addWidget(browseButton);
    layout->addRow(tr("&File:"), row);
    static_cast<QLabel *>(layout->labelForField(row))->setBuddy(pathEdit);

    baseEdit = new QLineEdit(address(0));
    baseEdit->setObjectName(QStringLiteral("binaryBase"));
    baseEdit->setValidator(
        new QRegularExpressionValidator(QRegularExpression(QStringLiteral("(0[xX])?[0-9a-fA-F]{1,8}")), baseEdit));
    connect(baseEdit, &QLineEdit::returnPressed, this, &ImagePanel::enterPath);
    layout->addRow(tr("&Start of a .bin file:"), baseEdit);

    imageLabel = new QLabel;
    imageLabel->setObjectName(QStringLiteral("imageSummary"));
    imageLabel->setWordWrap(true);
    layout->addRow(tr("Content:"), imageLabel);
}

/// A file that exists becomes the choice, and is loaded as such.
void ImagePanel::enterPath()
{
    const QFileInfo file(pathEdit->text());
    if (source && file.isFile())
        source->setFileInfo(file);
    else
        load(pathEdit->text());
}

void ImagePanel::sourceFileChanged()
{
    // Empty after a file dialog was cancelled or the file was deleted: the image that is loaded stays.
    const QString path = UtilsSourceFile::getAbsoluteFilePath();
    if (!path.isEmpty())
        load(path);
}

void ImagePanel::load(const QString &path)
{
    bool ok = false;
    const quint32 base = baseEdit->text().toUInt(&ok, HexadecimalBase);
    QString error;
    if (!ok)
        error = tr("The start of the file is no address.");
    else
        session->loadImage(path, base, &error);
    if (!error.isEmpty())
        Q_EMIT failed(error);
}

void ImagePanel::showImage()
{
    const QList<MemoryManager::Segment> segments = session->image().segments();
    QStringList ranges;
    for (const MemoryManager::Segment &segment : segments.mid(0, RangesShown))
        ranges.append(QStringLiteral("%1 - %2").arg(address(segment.address),
                                                    address(segment.address + quint32(segment.data.size() - 1))));
    if (segments.size() > RangesShown)
        ranges.append(tr("and %1 more").arg(segments.size() - RangesShown));

    if (!session->imagePath().isEmpty())
        pathEdit->setText(session->imagePath());
    imageLabel->setText(segments.isEmpty()
                            ? tr("No image yet")
                            : tr("%1 bytes at %2").arg(session->image().size()).arg(ranges.join(tr(", "))));
}
