#ifndef KELCORE_MYQGRAPHICSSCENE_H
#define KELCORE_MYQGRAPHICSSCENE_H

/// \file
/// The scene of the RGB-D view, and what it shows.

#include <kelCore/kelCoreExport.h>

#include <QGraphicsScene>

#include <vector>

/// A scene that holds the display switches of kelViewRGBD and turns them by keys.
///
/// A switch takes effect with the view's next `updateDisplay`. Programs may set the members as well, or `press` a
/// key by themselves. Other keys do nothing, and neither keys nor mouse presses reach the items or the base scene.
class KELCORE_EXPORT MyQGraphicsScene : public QGraphicsScene
{
public:
    bool displayEnabled = true; ///< Escape: the whole display; when off, only a prompt is shown.
    bool showBlobs = true; ///< B: the boxes of the actors.
    bool showZones = false; ///< Z: the elements of the context.
    bool showGroundPlane = false; ///< G
    bool showDepth = false; ///< D: the depth image as background, in place of the colour image.
    bool showActors = false; ///< A: the pixels of the actors.
    bool showTrajectories = true; ///< T
    bool showEvents = true; ///< E: the list of events.
    bool showActorInfos = false; ///< I: id, height and speed beside each actor.
    bool showFeet = true; ///< F
    bool showFrameRate = true; ///< W
    bool showPointsDEBUG = false; ///< L
    bool showGroundPoints = false; ///< P: the convex envelope of the ground points.
    /// Plus and minus: steps of 5, from 0 to 100. One more than the points drawn of each trajectory.
    int trajectoryLength = 30;

    struct Key
    {
        int code; ///< Qt::Key
        const char *name; ///< On a keyboard: a character, or "Escape".
        bool MyQGraphicsScene::*state; ///< The switch that it turns; null when it turns none.
        int step; ///< Added to `trajectoryLength`.
        const char *help; ///< What it shows, to complete "The key shows ...".
    };
    /// All keys, for help texts and tool bars: first what is drawn first, under the others.
    static const std::vector<Key> &keys();
    /// Does what the key does. \param code a Qt::Key. \return false when it does nothing here.
    bool press(int code);

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QGraphicsSceneMouseEvent *event) override;
};

#endif
