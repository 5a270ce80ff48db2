#include "GuidePage.h"

#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QVBoxLayout>

namespace {

QLabel *paragraph(const QString &text)
{
    auto *label = new QLabel(text);
    label->setWordWrap(true);
    return label;
}

} // namespace

GuidePage::GuidePage(ProgrammerSession *session, QWidget *parent)
    : Page(session, QStringLiteral("guidePage"), tr("First steps"), QStringLiteral("programmer/guide.html"), parent)
{
    addText(tr("1. Under TARGET choose a firmware image: its file, and where it starts when it is a .bin file."));
    addText(tr("2. Under OPTIONS say what is erased before a write, and whether it is verified afterwards."));
    addText(tr("3. Under TARGET press Write. A dialog shows the log, and what to do when something fails."));

    auto *keys = new QGroupBox(tr("Keys"), this);
    auto *form = new QFormLayout(keys);
    form->addRow(tr("Ctrl+1 to Ctrl+5"), paragraph(tr("the first page of a section")));
    form->addRow(tr("Ctrl+PgDown, Ctrl+PgUp"), paragraph(tr("the next page, the page before")));
    form->addRow(tr("Tab, Shift+Tab"), paragraph(tr("the next control of a page, the one before")));
    form->addRow(tr("Menu key, Shift+F10"),
                 paragraph(tr("help on the page, from any control without a menu of its own")));
    body()->addWidget(keys);
    body()->addStretch();
}
