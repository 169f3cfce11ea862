#include "support/PlainView.h"

#include "support/Capture.h"

#include <kelCore/view/kelView_p.h>

#include <gmock/gmock.h>

#include <memory>
#include <type_traits>

using namespace plain;
using testing::ElementsAre;
using testing::IsEmpty;

// What a fresh view is.

TEST(kelViewTest, TheClassDerivesFromTheFrameworksViewAndAddsNoMembers)
{
    EXPECT_STREQ(kelView::staticMetaObject.className(), "kelView");
    EXPECT_STREQ(kelView::staticMetaObject.superClass()->className(), "nubAbstractView");
    EXPECT_EQ(kelView::staticMetaObject.methodCount(), kelView::staticMetaObject.methodOffset());
    EXPECT_EQ(kelView::staticMetaObject.propertyCount(), kelView::staticMetaObject.propertyOffset());
    EXPECT_TRUE((std::is_base_of_v<nubAbstractViewPrivate, kelViewPrivate>));
    EXPECT_EQ(sizeof(kelView), sizeof(nubAbstractObject));
}

TEST(kelViewTest, OnlyTheWidgetIsOverridden)
{
    kelView view;
    EXPECT_EQ(view.identifier(), "kelView");
    EXPECT_EQ(view.clone(), nullptr);
    EXPECT_TRUE(view.description().isEmpty());
    EXPECT_EQ(view.parent(), nullptr);
}

TEST(kelViewTest, ItsOwnOperationsAreNotVirtual)
{
    struct Derived : kelView
    {
        void setAcquisitionImage(Image) { ++calls; }
        void setSegmentationImage(Image) { ++calls; }
        void setBlobs(QList<Blob>) { ++calls; }
        void setPhysicalObjects(QList<PhysicalObject>) { ++calls; }
        void updateDisplay() { ++calls; }
        int calls = 0;
    };
    Derived derived;
    kelView &view = derived;
    view.setAcquisitionImage(frame(8, 8));
    view.setSegmentationImage(mask(8, 8, 0));
    view.setBlobs({blob(1, 1, 2, 2)});
    view.setPhysicalObjects({physicalObject(1, 1, 2, 2)});
    view.updateDisplay();
    EXPECT_EQ(derived.calls, 0);
    EXPECT_EQ(stacking(view), "ppbo");
    EXPECT_EQ(view.getDisplay()->getImage().size(), cv::Size(8, 8));
}

TEST(kelViewTest, TheWidgetIsAPlainGraphicsViewOfAPlainScene)
{
    kelView view;
    ASSERT_NE(graphicsView(view), nullptr);
    EXPECT_STREQ(view.widget()->metaObject()->className(), "QGraphicsView");
    ASSERT_NE(scene(view), nullptr);
    EXPECT_STREQ(scene(view)->metaObject()->className(), "QGraphicsScene");
    EXPECT_EQ(view.widget(), view.widget());
    EXPECT_EQ(view.widget()->parentWidget(), nullptr);
    EXPECT_FALSE(view.widget()->isVisible());
}

TEST(kelViewTest, TheWidgetDrawsWithAntialiasing)
{
    kelView view;
    EXPECT_TRUE(graphicsView(view)->renderHints().testFlag(QPainter::Antialiasing));
    EXPECT_EQ(graphicsView(view)->renderHints() & ~QPainter::RenderHints(QPainter::Antialiasing),
              QGraphicsView().renderHints() & ~QPainter::RenderHints(QPainter::Antialiasing));
}

TEST(kelViewTest, AFreshSceneHoldsTheTwoEmptyPictures)
{
    kelView view;
    EXPECT_EQ(stacking(view), "pp");
    for (const QGraphicsPixmapItem *item : pixmapItems(view)) {
        EXPECT_TRUE(item->pixmap().isNull());
        EXPECT_TRUE(item->isVisible());
        EXPECT_EQ(item->pos(), QPointF(0, 0));
        EXPECT_EQ(item->zValue(), 0);
        EXPECT_EQ(item->parentItem(), nullptr);
    }
}

TEST(kelViewTest, TheFrameLiesUnderTheMask)
{
    kelView view;
    QGraphicsPixmapItem *lower = pixmapItems(view).at(0);
    QGraphicsPixmapItem *upper = pixmapItems(view).at(1);
    view.setAcquisitionImage(frame(8, 4));
    EXPECT_EQ(lower->pixmap().size(), QSize(8, 4));
    EXPECT_TRUE(upper->pixmap().isNull());
    view.setSegmentationImage(mask(4, 2, 255));
    EXPECT_EQ(lower->pixmap().size(), QSize(8, 4));
    EXPECT_EQ(upper->pixmap().size(), QSize(4, 2));
    EXPECT_EQ(pixmapItems(view), (std::vector<QGraphicsPixmapItem *>{lower, upper}));
}

TEST(kelViewTest, TheDisplayIsNullUntilItIsUpdated)
{
    kelView view;
    EXPECT_TRUE(view.getDisplay().isNull());
    view.setAcquisitionImage(frame(8, 8));
    view.setSegmentationImage(mask(8, 8, 255));
    view.setBlobs({blob(1, 1, 2, 2)});
    EXPECT_TRUE(view.getDisplay().isNull());
    view.updateDisplay();
    EXPECT_FALSE(view.getDisplay().isNull());
}

TEST(kelViewTest, TheFactoryMakesANewPlainViewForTheCallerToOwn)
{
    const std::unique_ptr<nubAbstractView> first(createKelView());
    const std::unique_ptr<nubAbstractView> second(createKelView());
    EXPECT_NE(first, second);
    EXPECT_STREQ(first->metaObject()->className(), "kelView");
    EXPECT_EQ(first->parent(), nullptr);
    auto *view = dynamic_cast<kelView *>(first.get());
    ASSERT_NE(view, nullptr);
    EXPECT_EQ(stacking(*view), "pp");
    EXPECT_EQ(first->widget(), graphicsView(*view));
}

// Copies.

TEST(kelViewTest, ACopyMovesTheTwoPicturesOutOfTheSource)
{
    kelView view;
    view.setAcquisitionImage(frame(8, 4));
    view.setSegmentationImage(mask(4, 2, 255));
    const std::vector<QGraphicsPixmapItem *> items = pixmapItems(view);
    kelView copy(view);
    EXPECT_EQ(pixmapItems(copy), items);
    EXPECT_THAT(pixmapItems(view), IsEmpty());
    EXPECT_EQ(frameItem(copy)->pixmap().size(), QSize(8, 4));
    EXPECT_EQ(maskItem(copy)->pixmap().size(), QSize(4, 2));
}

TEST(kelViewTest, ACopyHasASceneAndAWidgetOfItsOwn)
{
    kelView view;
    kelView copy(view);
    ASSERT_NE(graphicsView(copy), nullptr);
    EXPECT_NE(copy.widget(), view.widget());
    EXPECT_NE(scene(copy), scene(view));
    EXPECT_STREQ(scene(copy)->metaObject()->className(), "QGraphicsScene");
    EXPECT_TRUE(graphicsView(copy)->renderHints().testFlag(QPainter::Antialiasing));
}

TEST(kelViewTest, ACopyStartsWithoutRectanglesAndLeavesTheSourceIts)
{
    kelView view;
    view.setBlobs({blob(1, 1, 1, 1)});
    view.setPhysicalObjects({physicalObject(2, 2, 2, 2)});
    kelView copy(view);
    EXPECT_EQ(stacking(copy), "pp");
    EXPECT_EQ(stacking(view), "bo");
    copy.setBlobs({});
    copy.setPhysicalObjects({});
    EXPECT_EQ(stacking(view), "bo");
    copy.setBlobs({blob(3, 3, 3, 3)});
    view.setBlobs({});
    EXPECT_EQ(stacking(copy), "ppb");
    EXPECT_EQ(stacking(view), "o");
}

TEST(kelViewTest, ACopySharesTheDisplayImage)
{
    kelView view;
    view.setAcquisitionImage(frame(8, 4, cv::Scalar(1, 2, 3)));
    view.updateDisplay();
    kelView copy(view);
    EXPECT_EQ(copy.getDisplay(), view.getDisplay());
    EXPECT_NE(&copy.getDisplay(), &view.getDisplay());
    copy.setAcquisitionImage(frame(2, 2, cv::Scalar(4, 5, 6)));
    copy.updateDisplay();
    EXPECT_EQ(view.getDisplay()->getImage().size(), cv::Size(2, 2));
}

TEST(kelViewTest, ACopyOfAViewWithoutADisplayHasNone)
{
    kelView view;
    kelView copy(view);
    EXPECT_TRUE(copy.getDisplay().isNull());
    view.updateDisplay();
    EXPECT_TRUE(copy.getDisplay().isNull());
}

TEST(kelViewTest, ACopyTakesTheSourcesParent)
{
    nubAbstractView parent;
    kelView view;
    view.setParent(&parent);
    {
        const kelView copy(view);
        EXPECT_EQ(copy.parent(), &parent);
    }
    view.setParent(nullptr);
}

TEST(kelViewTest, ACopyRendersTheFrameItTook)
{
    kelView view;
    view.setAcquisitionImage(frame(8, 4, cv::Scalar(1, 2, 3)));
    kelView copy(view);
    copy.updateDisplay();
    ASSERT_EQ(copy.getDisplay()->getImage().size(), cv::Size(8, 4));
    EXPECT_EQ(copy.getDisplay()->getImage().at<cv::Vec4b>(3, 7), cv::Vec4b(1, 2, 3, 255));
}

TEST(kelViewTest, WhatTheSourceSetsLaterAppearsInTheCopy)
{
    kelView view;
    kelView copy(view);
    view.setAcquisitionImage(frame(8, 4));
    view.setSegmentationImage(mask(4, 2, 255));
    EXPECT_EQ(frameItem(copy)->pixmap().size(), QSize(8, 4));
    EXPECT_EQ(maskItem(copy)->pixmap().size(), QSize(4, 2));
    EXPECT_THAT(pixmapItems(view), IsEmpty());
    EXPECT_EQ(scene(view)->sceneRect(), QRectF(0, 0, 8, 4));
}

TEST(kelViewTest, TheSourceCanBeDestroyedFirst)
{
    auto view = std::make_unique<kelView>();
    view->setAcquisitionImage(frame(8, 4, cv::Scalar(1, 2, 3)));
    view->setBlobs({blob(1, 1, 1, 1)});
    view->updateDisplay();
    kelView copy(*view);
    view.reset();
    EXPECT_EQ(stacking(copy), "pp");
    EXPECT_EQ(copy.getDisplay()->getImage().at<cv::Vec4b>(3, 7), cv::Vec4b(1, 2, 3, 255));
    copy.setSegmentationImage(mask(8, 4, 255));
    EXPECT_EQ(pixel(copy, 3, 3), black);
}

TEST(kelViewTest, TheSourceMakesNewPicturesWhenTheCopyIsGone)
{
    kelView view;
    view.setAcquisitionImage(frame(8, 4));
    std::make_unique<kelView>(view).reset();
    EXPECT_THAT(pixmapItems(view), IsEmpty());
    MessageCapture messages;
    view.setAcquisitionImage(frame(6, 6, cv::Scalar(1, 2, 3)));
    view.setSegmentationImage(mask(4, {255, 0, 0, 255}));
    ASSERT_EQ(stacking(view), "pp");
    EXPECT_EQ(frameItem(view)->pixmap().size(), QSize(6, 6));
    EXPECT_EQ(maskItem(view)->pixmap().size(), QSize(4, 1));
    EXPECT_EQ(pixel(view, 0, 0), black);
    EXPECT_EQ(pixel(view, 1, 0), cv::Vec4b(1, 2, 3, 255));
    EXPECT_TRUE(messages.lines().isEmpty());
}

TEST(kelViewTest, NewPicturesLieUnderneathAgainWhicheverIsSetFirst)
{
    kelView view;
    view.setBlobs({blob(1, 1, 1, 1)});
    view.setPhysicalObjects({physicalObject(2, 2, 2, 2)});
    std::make_unique<kelView>(view).reset();
    ASSERT_EQ(stacking(view), "bo");
    view.setSegmentationImage(mask(8, 2, 255));
    view.setAcquisitionImage(frame(6, 6));
    ASSERT_EQ(stacking(view), "ppbo");
    EXPECT_EQ(frameItem(view)->pixmap().size(), QSize(6, 6)) << "the frame under the mask";
    EXPECT_EQ(maskItem(view)->pixmap().size(), QSize(8, 2));
}

TEST(kelViewTest, ASecondCopyTakesThePicturesFromTheFirst)
{
    kelView view;
    view.setAcquisitionImage(frame(8, 4));
    kelView first(view);
    kelView second(view);
    EXPECT_THAT(pixmapItems(first), IsEmpty());
    ASSERT_EQ(stacking(second), "pp");
    EXPECT_EQ(frameItem(second)->pixmap().size(), QSize(8, 4));
}

TEST(kelViewTest, ACopyOfAViewThatLostItsPicturesHasNewOnes)
{
    kelView view;
    view.setAcquisitionImage(frame(8, 4));
    std::make_unique<kelView>(view).reset();
    MessageCapture messages;
    kelView copy(view);
    ASSERT_EQ(stacking(copy), "pp");
    EXPECT_TRUE(frameItem(copy)->pixmap().isNull());
    EXPECT_TRUE(messages.lines().isEmpty());
    copy.setAcquisitionImage(frame(6, 6));
    EXPECT_EQ(pixel(copy, 5, 5), cv::Vec4b(10, 20, 30, 255));
}

TEST(kelViewTest, AHiddenMaskStaysHiddenInTheCopy)
{
    kelView view;
    view.setSegmentationImage(mask(4, 4, 255));
    view.setSegmentationImage(Image(new kelDataImage));
    kelView copy(view);
    EXPECT_FALSE(maskItem(copy)->isVisible());
    copy.setSegmentationImage(mask(4, 4, 255));
    EXPECT_TRUE(maskItem(copy)->isVisible());
}

TEST(kelViewTest, AssignmentLeavesTheView)
{
    kelView view;
    view.setAcquisitionImage(frame(8, 4));
    kelView other;
    other.setAcquisitionImage(frame(6, 6));
    MessageCapture messages;
    static_cast<nubAbstractView &>(other) = view;
    EXPECT_EQ(frameItem(other)->pixmap().size(), QSize(6, 6));
    EXPECT_EQ(stacking(view), "pp");
    EXPECT_TRUE(messages.lines().isEmpty());
}

// Lifetime.

TEST(kelViewTest, TheViewDeletesItsSceneAndItsWidget)
{
    nubAbstractView *view = createKelView();
    const QPointer<QWidget> widget = view->widget();
    const QPointer<QGraphicsScene> shown = static_cast<QGraphicsView *>(view->widget())->scene();
    delete view;
    EXPECT_TRUE(widget.isNull());
    EXPECT_TRUE(shown.isNull());
}

TEST(kelViewTest, TheSceneIsClearedBeforeTheWidgetGoes)
{
    QString report;
    {
        kelView view;
        scene(view)->addItem(new WitnessItem(graphicsView(view), &report));
    }
    EXPECT_EQ(report, "before the widget");
}

TEST(kelViewTest, TheWidgetLeavesAParentThatLivesLonger)
{
    QWidget window;
    {
        kelView view;
        view.widget()->setParent(&window);
        EXPECT_EQ(window.children().size(), 1);
    }
    EXPECT_TRUE(window.children().isEmpty());
}

TEST(kelViewTest, AParentWidgetMayDeleteTheWidgetFirst)
{
    MessageCapture messages;
    kelView view;
    view.setAcquisitionImage(frame(8, 4));
    auto *window = new QWidget;
    view.widget()->setParent(window);
    delete window;
    EXPECT_EQ(view.widget(), nullptr);
    view.setAcquisitionImage(frame(6, 6, cv::Scalar(1, 2, 3)));
    view.setSegmentationImage(mask(4, 4, 0));
    view.setBlobs({blob(1, 1, 1, 1)});
    view.setPhysicalObjects({physicalObject(2, 2, 2, 2)});
    EXPECT_EQ(pixel(view, 5, 5), cv::Vec4b(1, 2, 3, 255));
    kelView copy(view);
    EXPECT_NE(copy.widget(), nullptr);
    EXPECT_TRUE(messages.lines().isEmpty());
}
