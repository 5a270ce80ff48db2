#include "AboutPage.h"

#include <QCoreApplication>
#include <QFormLayout>
#include <QLabel>
#include <QToolButton>
#include <QVBoxLayout>

AboutPage::AboutPage(ProgrammerSession *session, QWidget *parent)
    : Page(session, QStringLiteral("aboutPage"), tr("Versions"), QStringLiteral("programmer/versions.html"), parent)
    , updateButton(new QToolButton(this))
{
    auto *form = new QFormLayout;
    body()->addLayout(form);
    form->addRow(tr("Application:"), new QLabel(QCoreApplication::applicationVersion()));
    form->addRow(tr("Qt:"), new QLabel(QString::fromLatin1(qVersion())));
    auto *driver = new QLabel;
    driver->setObjectName(QStringLiteral("driverKind"));
    if (!session->driver())
        driver->setText(tr("none"));
    else
        driver->setText(session->isSimulated() ? tr("a simulated programmer") : tr("a GDB server"));
    form->addRow(tr("Driver:"), driver);

    updateButton->setObjectName(QStringLiteral("checkForUpdates"));
    updateButton->setText(tr("Check for updates"));
    updateButton->setFocusPolicy(Qt::StrongFocus);
    updateButton->setEnabled(false);
    body()->addWidget(updateButton, 0, Qt::AlignLeft);
    body()->addStretch();
    connect(updateButton, &QToolButton::clicked, &updateCheck, &UpdateCheck::start);
    connect(&updateCheck, &UpdateCheck::finished, this, [this](const QString &outcome, bool ok) {
        if (ok)
            Q_EMIT succeeded(outcome);
        else
            Q_EMIT failed(outcome);
    });
    connect(&updateCheck, &UpdateCheck::chosen, this, &Page::succeeded);
}

void AboutPage::setUpdateUrl(const QString &url)
{
    updateCheck.setUrl(url);
    updateButton->setEnabled(!url.isEmpty());
    updateCheck.start();
}
