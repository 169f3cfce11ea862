#include <kelCore/view/MyQGraphicsScene.h>

#include <QGraphicsSceneMouseEvent>
#include <QKeyEvent>

namespace {

struct Switch
{
    Qt::Key key;
    bool MyQGraphicsScene::*state;
};

const Switch switches[] = {
    {Qt::Key_Escape, &MyQGraphicsScene::displayEnabled}, {Qt::Key_B, &MyQGraphicsScene::showBlobs},
    {Qt::Key_Z, &MyQGraphicsScene::showZones},           {Qt::Key_G, &MyQGraphicsScene::showGroundPlane},
    {Qt::Key_D, &MyQGraphicsScene::showDepth},           {Qt::Key_A, &MyQGraphicsScene::showActors},
    {Qt::Key_T, &MyQGraphicsScene::showTrajectories},    {Qt::Key_E, &MyQGraphicsScene::showEvents},
    {Qt::Key_I, &MyQGraphicsScene::showActorInfos},      {Qt::Key_F, &MyQGraphicsScene::showFeet},
    {Qt::Key_W, &MyQGraphicsScene::showFrameRate},       {Qt::Key_L, &MyQGraphicsScene::showPointsDEBUG},
    {Qt::Key_P, &MyQGraphicsScene::showGroundPoints},
};

} // namespace

void MyQGraphicsScene::keyPressEvent(QKeyEvent *event)
{
    event->accept();
    for (const Switch &entry : switches)
        if (event->key() == entry.key)
            this->*entry.state = !(this->*entry.state);
    if (event->key() == Qt::Key_Plus && trajectoryLength <= 99)
        trajectoryLength += 5;
    if (event->key() == Qt::Key_Minus && trajectoryLength > 0)
        trajectoryLength -= 5;
}

void MyQGraphicsScene::mousePressEvent(QGraphicsSceneMouseEvent *event) { event->accept(); }
