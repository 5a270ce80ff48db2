#ifndef COMMANDLINE_H
#define COMMANDLINE_H

#include "ProgrammerSession.h"

#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>

/// What the command line asks for.
struct CommandLine
{
    QList<ProgrammerSession::Operation> operations; ///< one after another; headless only
    QString driver; ///< see DriverChoice; empty: the simulated programmer
    QString image;
    QString deviceImage; ///< the same file, when it is for the device itself
    quint32 binaryBase = 0;
    QString output; ///< file for what is read
    bool compare = false;
    QList<QPair<int, int>> operationOptions; ///< number and value
    QList<QPair<int, int>> connectionOptions;
    QStringList faults;
    bool hasDriver = true;
    bool overWiFi = false;
    bool hasPassword = false;
    QString password; ///< for the password dialog; secret: never log it
    QString devicePassword; ///< what the simulated device demands; secret, too
    double speed = 1.0; ///< times as fast as a real programmer; 0: without any waiting
    QString theme; ///< one of Appearance::themes()
    QList<QPair<int, int>> watched; ///< vendor and product identifiers of USB devices
    QString updateUrl; ///< where newer versions are asked for; empty: nowhere
    QString pictures; ///< folder
    int timeout = 300; ///< seconds
};

/// Reads the arguments of the application. Ends the process for --help and --version, as QCommandLineParser does.
/// False, and a sentence in @p error, for arguments that make no sense.
bool readCommandLine(const QStringList &arguments, CommandLine *commandLine, QString *error);

/// Sets speed and options and plans the faults. False, and a sentence in @p error, for a fault that is not understood.
bool applySettings(const CommandLine &commandLine, ProgrammerSession *session, QString *error);

#endif // COMMANDLINE_H
