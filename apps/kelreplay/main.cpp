/// \file
/// kelreplay: reads a recorded run.

#include "common/Program.h"
#include "kelreplay/replay.h"

int main(int argc, char **argv)
{
    const bool wantsWindow = argc > 1 && !qstrcmp(argv[1], "show");
    const Program program("kelreplay", argc, argv, wantsWindow);
    return program.run([&program](const QStringList &arguments) { replay(program, arguments); });
}
