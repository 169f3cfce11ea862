#include "kelrecord/GroundPositions.h"

#include "apps/scenes.h"
#include "support/ViewInput.h"

#include <gtest/gtest.h>

#include <QPointF>

namespace {
QVariant positionIn(const Scene &scene, const Blob &blob)
{
    addGroundPositions({blob}, *scene.camera);
    return blob->getMap().value("GroundPosition");
}
} // namespace

TEST(GroundPositionsTest, ABlobStandsWhereTheMiddleOfItsLowerEdgeIsSeen)
{
    // 10 m below the camera, 100 pixels are 10,000 mm.
    const QPointF position = positionIn(sceneFromAbove(), blob(80, 30, 20, 40)).toPointF();
    EXPECT_NEAR(position.x(), 1000, 1e-6);
    EXPECT_NEAR(position.y(), -1000, 1e-6);
}

TEST(GroundPositionsTest, ABlobAboveTheHorizonStandsNowhere)
{
    EXPECT_FALSE(positionIn(levelScene(), blob(80, 10, 20, 40)).isValid());
    EXPECT_TRUE(positionIn(levelScene(), blob(80, 10, 20, 90)).isValid());
}

TEST(GroundPositionsTest, TheRecordedBoxIsKept)
{
    const Blob walker = blob(80, 30, 20, 40);
    walker->setBoundingBox2D_qt(QRect(80, 30, 20, 40));
    positionIn(sceneFromAbove(), walker);
    EXPECT_EQ(walker->getBoundingBox2D_qt(), QRect(80, 30, 20, 40));
}
