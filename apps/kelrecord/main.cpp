/// \file
/// kelrecord: records the moving blobs of a video.

#include "common/Program.h"
#include "kelrecord/Settings.h"
#include "kelrecord/record.h"

#include <algorithm>

int main(int argc, char **argv)
{
    const bool wantsWindow =
        std::any_of(argv, argv + argc, [](const char *a) { return !qstrcmp(a, "--show"); });
    const Program program("kelrecord", argc, argv, wantsWindow);
    return program.run([&program](const QStringList &arguments) {
        if (const auto settings = readSettings(arguments))
            record(program, *settings);
    });
}
