#ifndef TESTS_SUPPORT_SCENEDATA_H
#define TESTS_SUPPORT_SCENEDATA_H

/// \file
/// The recorded scenes that tests look at. They are no part of the project: they lie in ../shared/data beside
/// it, or where the environment variable KEL_SCENE_DATA says. A test names the scene it needs and is skipped
/// by that name where the scene is absent. KEL_SOURCE_DIR must be defined.

#include <gtest/gtest.h>

#include <QFileInfo>
#include <QString>
#include <QtGlobal>

/// Files that belong together, in a folder of their own.
struct RecordedScene
{
    const char *name;
    const char *folder;

    QString file(const char *fileName) const
    {
        const QString root = qEnvironmentVariable("KEL_SCENE_DATA", KEL_SOURCE_DIR "/../shared/data");
        return root + '/' + folder + '/' + fileName;
    }
    bool isThere() const { return QFileInfo(file("")).isDir(); }
};

/// One frame of a room with five people: five_people_color.png, and five_people_depth_mm.png in 16-bit
/// millimetres (0: none). 640 x 480 pixels, fx = fy = 525, cx = 319.5, cy = 239.5.
inline constexpr RecordedScene fivePeopleScene{"five people in a room", "five_people"};

/// A fixed camera that looks down on walking people: vtest_pinhole.yml is the camera, in millimetres and with
/// keys of its own; PETS2009-S2L1_frames0-399.xml says where the people are.
inline constexpr RecordedScene walkwayScene{"people on a walkway", "pets2009"};

/// Ends the test as skipped where the scene is absent.
#define SKIP_WITHOUT(scene)                                                                                  \
    if (!(scene).isThere())                                                                                  \
    GTEST_SKIP() << "the recorded scene \"" << (scene).name                                                  \
                 << "\" is not here: " << (scene).file("").toStdString()

#endif
