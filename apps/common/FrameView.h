#ifndef APPS_COMMON_FRAMEVIEW_H
#define APPS_COMMON_FRAMEVIEW_H

/// \file
/// What the programs show and draw frames in.

#include "common/Scene.h"

#include <opencv2/core/mat.hpp>

#include <QList>
#include <QSharedPointer>
#include <QString>

#include <memory>

class Follower;
class QCommandLineParser;
class QWidget;
class kelDataBlob;
class kelDataImage;

/// What is known of one frame.
struct Shot
{
    int index = 0; ///< among the frames of the run, from 0 on; not the frame's number
    QSharedPointer<kelDataImage> picture; ///< colour
    QSharedPointer<kelDataImage> foreground; ///< a mask of 0 and 255; null when it is not known
    QList<QSharedPointer<kelDataBlob>> blobs;
};

/// A frame with what was found in it: a widget to show, a picture to draw, or both.
class FrameView
{
public:
    virtual ~FrameView() = default;

    virtual QWidget *widget() = 0;

    /// Who has to know the boxes of every frame of the run, in order, up to the one that is shown; null where
    /// each frame is looked at alone.
    virtual Follower *follower() { return nullptr; }

    virtual void showShot(const Shot &shot) = 0;
    /// Frames per second, where the view shows them: from the next shot on.
    virtual void setFrameRate(int) { }
    /// The shot that is shown, as a picture of four channels in blue, green, red order.
    virtual cv::Mat picture() = 0;
};

/// What the command line says of the view.
struct ViewSettings
{
    enum class Kind
    {
        Plain, ///< the base view: blobs over the picture
        Operator ///< the RGB-D view with the event timeline under it
    };
    Kind kind = Kind::Plain;
    QString keys; ///< pressed in the operator's view before its first frame
    Scene scene; ///< of --calibration and --context; readViewSettings leaves it empty
    bool mask = false; ///< paint the foreground black; in the base view alone
};

/// The options --view and --keys.
void addViewOptions(QCommandLineParser &parser);
/// What they say. \throws Failure when they are not understood.
ViewSettings readViewSettings(const QCommandLineParser &parser);
/// A paragraph of the help text: what the keys do.
QString viewNotes();

std::unique_ptr<FrameView> makeView(const ViewSettings &settings);

#endif
