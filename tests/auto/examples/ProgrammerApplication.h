#ifndef PROGRAMMERAPPLICATION_H
#define PROGRAMMERAPPLICATION_H

#include <MainWindow.h>
#include <ProgrammerSession.h>

#include <QPointer>
#include <QString>

class Page;
class QTemporaryDir;
class UtilsDialogProcessing;

/// The programmer example without its main(), as a user finds it.
struct ProgrammerApplication
{
    static constexpr int LongWait = 30000;

    ProgrammerSession session;
    MainWindow window{&session};

    /// With the simulated programmer, which takes no time.
    ProgrammerApplication();
    explicit ProgrammerApplication(std::unique_ptr<UniProgInterface> externalDriver);

    template <typename Widget>
    Widget *find(const char *name) const
    {
        return window.findChild<Widget *>(QString::fromLatin1(name));
    }

    QString result() const;
    /// The page that is shown.
    Page *page() const;

    void enterPath(const QString &path) const;
    bool loadImage() const;
    /// Chooses a firmware of version 2.1 on the page of the device.
    bool loadDeviceFirmware(const QTemporaryDir &folder, const QByteArray &payload) const;
    void click(ProgrammerSession::Operation operation) const;
    /// Clicks the button of the operation, waits for its end, and closes its dialog.
    bool runToSuccess(ProgrammerSession::Operation operation);

    /// Presses the Close button once the dialog shows it, and waits for the dialog's end.
    static bool closeWithButton(const QPointer<UtilsDialogProcessing> &dialog);
};

#endif // PROGRAMMERAPPLICATION_H
