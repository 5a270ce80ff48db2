#ifndef PAGEREGISTRY_H
#define PAGEREGISTRY_H

#include <QList>
#include <QString>
#include <QStringList>

class EventMonitor;
class GalleryPage;
class QWidget;

/// The pages of the gallery, in the order they are listed. A new page is one line in the source file.
namespace PageRegistry {

struct Entry
{
    const char *name; ///< on the command line and in names of files
    const char *title; ///< to be translated
    GalleryPage *(*create)(EventMonitor *monitor, QWidget *parent);
};

const QList<Entry> &entries();
QStringList names();

} // namespace PageRegistry

#endif // PAGEREGISTRY_H
