// The items of views, of whose scenes an application may do anything.

#include "support/PlainView.h"
#include "support/RgbdView.h"

#include <kelCore/view/kelViewEventTimeline.h>
#include <kelCore/view/kelViewEventTimeline_p.h>
#include <kelCore/view/kelView_p.h>

#include <memory>

namespace {

class PlainView : public kelView
{
public:
    kelViewPrivate &d() { return static_cast<kelViewPrivate &>(*nub_d); }
};

class Timeline : public kelViewEventTimeline
{
public:
    kelViewEventTimelinePrivate &d() { return static_cast<kelViewEventTimelinePrivate &>(*nub_d); }
};

template <class View> class sceneItemsTest : public testing::Test
{
protected:
    QGraphicsScene &scene() { return *dynamic_cast<QGraphicsView *>(view->widget())->scene(); }

    void setAll()
    {
        view->setAcquisitionImage(frame(16, 8));
        view->setSegmentationImage(mask(16, 8, 255));
        view->setBlobs({blob(1, 1, 2, 2), blob(4, 1, 2, 2)});
        view->setPhysicalObjects({physicalObject(8, 1, 2, 2), physicalObject(11, 1, 2, 2)});
    }

    template <class Item> std::vector<Item *> all()
    {
        std::vector<Item *> result;
        for (QGraphicsItem *item : scene().items(Qt::AscendingOrder))
            if (auto *found = dynamic_cast<Item *>(item))
                result.push_back(found);
        return result;
    }
    size_t boxes() { return all<QGraphicsRectItem>().size(); }

    std::unique_ptr<View> view = std::make_unique<View>();
};

using Views = testing::Types<PlainView, rgbd::View>;

} // namespace

TYPED_TEST_SUITE(sceneItemsTest, Views);

TYPED_TEST(sceneItemsTest, TheSceneMayBeClearedAtAnyTime)
{
    for (int i = 0; i < 3; ++i) {
        this->setAll();
        EXPECT_EQ(this->boxes(), 4u);
        this->scene().clear();
        EXPECT_EQ(this->view->d().segmentationItem, nullptr);
        EXPECT_EQ(this->view->d().acquisitionItem, nullptr);
        EXPECT_TRUE(this->view->d().blobItems.isEmpty());
        EXPECT_TRUE(this->view->d().physicalObjectItems.isEmpty());
    }
    this->view->setBlobs({blob(1, 1, 2, 2)});
    EXPECT_EQ(this->boxes(), 1u);
    this->view->setSegmentationImage(mask(16, 8, 255));
    EXPECT_EQ(this->template all<QGraphicsPixmapItem>().back()->pixmap().size(), QSize(16, 8));
    this->scene().clear();
    this->view->updateDisplay();
}

TYPED_TEST(sceneItemsTest, EachItemMayBeDeletedAlone)
{
    this->setAll();
    const auto boxes = this->template all<QGraphicsRectItem>();
    delete boxes[0];
    delete boxes[3];
    EXPECT_EQ(this->view->d().blobItems, QList<QGraphicsItem *>{boxes[1]});
    EXPECT_EQ(this->view->d().physicalObjectItems, QList<QGraphicsItem *>{boxes[2]});
    delete this->view->d().segmentationItem;
    EXPECT_EQ(this->view->d().segmentationItem, nullptr);
    EXPECT_NE(this->view->d().acquisitionItem, nullptr);
    this->setAll();
    EXPECT_EQ(this->boxes(), 4u);
    EXPECT_EQ(this->view->d().segmentationItem->pixmap().size(), QSize(16, 8));
}

TYPED_TEST(sceneItemsTest, AnItemThatWasMovedToAnotherSceneIsThatScenes)
{
    this->setAll();
    QGraphicsScene other;
    auto *moved = this->template all<QGraphicsRectItem>().at(0);
    other.addItem(moved);
    other.addItem(this->view->d().segmentationItem);
    this->view->setBlobs({});
    EXPECT_EQ(this->boxes(), 2u) << "the physical objects'";
    ASSERT_EQ(moved->scene(), &other);
    EXPECT_EQ(moved->rect(), QRectF(1, 1, 2, 2));
    this->view.reset();
    EXPECT_EQ(other.items().size(), 2);
}

TYPED_TEST(sceneItemsTest, TheApplicationsOwnItemsStay)
{
    auto *own = this->scene().addRect(0, 0, 5, 5);
    this->setAll();
    this->view->setBlobs({});
    this->view->setPhysicalObjects({});
    EXPECT_EQ(this->boxes(), 1u);
    EXPECT_EQ(own->scene(), &this->scene());
}

// What the base view alone has.

TEST(kelViewItemsTest, NewPicturesTakeTheirPlacesInTheStack)
{
    for (const bool frameGoes : {false, true}) {
        for (const bool maskGoes : {false, true}) {
            PlainView view;
            view.setAcquisitionImage(frame(8, 4));
            view.setBlobs({blob(1, 1, 2, 2)});
            if (frameGoes)
                delete view.d().acquisitionItem;
            if (maskGoes)
                delete view.d().segmentationItem;
            view.setSegmentationImage(mask(4, 2, 255));
            view.setAcquisitionImage(frame(8, 4));
            EXPECT_EQ(plain::stacking(view), "ppb");
            EXPECT_EQ(plain::frameItem(view)->pixmap().size(), QSize(8, 4)) << "the frame, undermost";
            EXPECT_EQ(plain::maskItem(view)->pixmap().size(), QSize(4, 2));
        }
    }
}

TEST(kelViewItemsTest, ACopyAndItsSourceBothKnowOfDeletedPictures)
{
    for (const bool sourceFirst : {true, false}) {
        PlainView source;
        PlainView copy(source);
        plain::scene(copy)->clear();
        EXPECT_EQ(source.d().acquisitionItem, nullptr);
        EXPECT_EQ(copy.d().acquisitionItem, nullptr);
        for (kelView *view : {sourceFirst ? &source : &copy, sourceFirst ? &copy : &source}) {
            view->setAcquisitionImage(frame(8, 4));
            view->setSegmentationImage(mask(4, 2, 255));
            EXPECT_EQ(plain::stacking(*view), "pp");
        }
    }
}

TEST(kelViewItemsTest, APictureThatACopyLostIsMadeAnewByTheSource)
{
    PlainView source;
    PlainView copy(source);
    delete copy.d().acquisitionItem;
    source.setAcquisitionImage(frame(8, 4));
    EXPECT_EQ(plain::stacking(source), "p") << "the mask is in the copy";
    EXPECT_EQ(plain::stacking(copy), "p");
    EXPECT_EQ(copy.d().segmentationItem, source.d().segmentationItem);
}

// The timeline, which puts an item into its scene, but does not show it.

TEST(kelViewEventTimelineItemsTest, TheSceneMayBeCleared)
{
    Timeline view;
    view.init();
    view.d().scene.clear();
    EXPECT_EQ(view.d().pixmapItem, nullptr);
    view.setEvents({}, CSynchronizer());
    view.updateDisplay();
    EXPECT_EQ(view.widget()->grab().toImage().pixel(300, 300), qRgb(255, 255, 255));
}
