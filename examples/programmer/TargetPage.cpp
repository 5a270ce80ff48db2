#include "TargetPage.h"

#include "FirmwareFile.h"
#include "ImagePanel.h"

#include <QFileDialog>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QToolButton>
#include <QVBoxLayout>

TargetPage::TargetPage(ProgrammerSession *session, QWidget *parent)
    : Page(session, QStringLiteral("targetPage"), tr("Memory"), QStringLiteral("programmer/target.html"), parent)
    , imagePanel(new ImagePanel(session, this))
{
    connect(imagePanel, &ImagePanel::failed, this, &Page::failed);
    body()->addWidget(imagePanel);
    addOperations(ProgrammerSession::Subject::Target);
    body()->addWidget(createContentsPanel());
    body()->addStretch();
    connect(session, &ProgrammerSession::completed, this, &TargetPage::showContents);
    showContents();
}

void TargetPage::rememberImage()
{
    imagePanel->rememberChoice();
}

QWidget *TargetPage::createContentsPanel()
{
    auto *panel = new QGroupBox(tr("What was read"), this);
    auto *row = new QHBoxLayout(panel);
    contentsLabel = new QLabel(panel);
    contentsLabel->setObjectName(QStringLiteral("contentsSummary"));
    row->addWidget(contentsLabel, 1);
    saveButton = new QToolButton(panel);
    saveButton->setObjectName(QStringLiteral("save"));
    saveButton->setText(tr("Save..."));
    saveButton->setFocusPolicy(Qt::StrongFocus);
    saveButton->setToolTip(tr("Stores what was read last in a file"));
    connect(saveButton, &QToolButton::clicked, this, &TargetPage::saveContents);
    row->addWidget(saveButton);
    return panel;
}

void TargetPage::showContents()
{
    const MemoryManager &contents = session()->contents();
    contentsLabel->setText(contents.isEmpty() ? tr("Nothing yet") : tr("%1 bytes").arg(contents.size()));
    saveButton->setEnabled(!contents.isEmpty());
}

void TargetPage::saveContents()
{
    const QString path = QFileDialog::getSaveFileName(this, tr("What was read"), QString(),
                                                      tr("Intel HEX (*.hex);;S-record (*.s19);;Binary (*.bin)"));
    if (path.isEmpty() || session()->isRunning())
        return;
    QString error;
    if (FirmwareFile::save(path, session()->contents(), &error))
        Q_EMIT succeeded(tr("Stored in %1.").arg(path));
    else
        Q_EMIT failed(error);
}
