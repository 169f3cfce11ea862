#include <kelCore/view/MyQGraphicsScene.h>

#include <QGraphicsSceneMouseEvent>
#include <QKeyEvent>

#include <algorithm>

namespace {

constexpr int trajectoryStep = 5;
constexpr int longestTrajectory = 100;

} // namespace

const std::vector<MyQGraphicsScene::Key> &MyQGraphicsScene::keys()
{
    using Scene = MyQGraphicsScene;
    static const std::vector<Key> table = {
        {Qt::Key_Escape, "Escape", &Scene::displayEnabled, 0,
         "anything at all; when off, the view asks for Escape"},
        {Qt::Key_D, "D", &Scene::showDepth, 0, "the depth in place of the colour"},
        {Qt::Key_G, "G", &Scene::showGroundPlane, 0,
         "the ground plane from x = -3 m to 3 m and z = 2 m to 8 m"},
        {Qt::Key_P, "P", &Scene::showGroundPoints, 0, "the convex envelope of points of the ground"},
        {Qt::Key_Z, "Z", &Scene::showZones, 0, "the polygons of the context's elements, whatever their kind"},
        {Qt::Key_A, "A", &Scene::showActors, 0, "the pixels of the actors"},
        {Qt::Key_L, "L", &Scene::showPointsDEBUG, 0, "points for debugging, one pixel each"},
        {Qt::Key_B, "B", &Scene::showBlobs, 0, "the boxes of the actors"},
        {Qt::Key_T, "T", &Scene::showTrajectories, 0,
         "the ways of the actors, their newest points joined by lines"},
        {Qt::Key_Plus, "+", nullptr, trajectoryStep, "five points more of each way, 100 at most"},
        {Qt::Key_Minus, "-", nullptr, -trajectoryStep, "five points fewer of each way"},
        {Qt::Key_E, "E", &Scene::showEvents, 0, "a line for each event: actor, name and confidence"},
        {Qt::Key_I, "I", &Scene::showActorInfos, 0, "a label for each actor: number, height and speed"},
        {Qt::Key_F, "F", &Scene::showFeet, 0, "two circles for the feet of each actor"},
        {Qt::Key_W, "W", &Scene::showFrameRate, 0, "the frame rate"},
    };
    return table;
}

bool MyQGraphicsScene::press(int code)
{
    const auto key =
        std::find_if(keys().begin(), keys().end(), [code](const Key &k) { return k.code == code; });
    if (key == keys().end())
        return false;
    if (key->state)
        this->*key->state = !(this->*key->state);
    else if (key->step > 0 ? trajectoryLength < longestTrajectory : trajectoryLength > 0)
        trajectoryLength += key->step;
    return true;
}

void MyQGraphicsScene::keyPressEvent(QKeyEvent *event)
{
    event->accept();
    press(event->key());
}

void MyQGraphicsScene::mousePressEvent(QGraphicsSceneMouseEvent *event) { event->accept(); }
