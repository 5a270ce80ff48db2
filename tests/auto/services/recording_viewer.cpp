// Stands in for the help viewer: writes its arguments and the commands of its standard input to the file that the
// environment variable VIEWER_RECORD names, and its process number to that file's name with ".pid". It ends with its
// standard input, or by the page "leave"; with VIEWER_DIES it ends at once.

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <string>

#ifdef _WIN32
#include <process.h>
#define getpid _getpid
#else
#include <unistd.h>
#endif

int main(int argc, char **argv)
{
    const char *path = std::getenv("VIEWER_RECORD");
    if (!path)
        return EXIT_FAILURE;
    std::ofstream(std::string(path) + ".pid") << getpid();
    std::ofstream record(path, std::ios::app);
    record << "started" << std::endl;
    for (int i = 1; i < argc; ++i)
        record << "argument " << argv[i] << std::endl;
    if (std::getenv("VIEWER_DIES"))
        return EXIT_FAILURE;

    // Byte by byte: only a line with its end is a command.
    std::string command;
    char byte = 0;
    while (std::cin.get(byte)) {
        if (byte != '\n') {
            command += byte;
            continue;
        }
        const bool leaving = command.find("/doc/leave") != std::string::npos;
        record << "command " << command << std::endl;
        command.clear();
        if (leaving)
            return EXIT_SUCCESS;
    }
    record << "input closed after '" << command << "'" << std::endl;
    return EXIT_SUCCESS;
}
