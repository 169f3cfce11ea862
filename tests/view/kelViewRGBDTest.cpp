#include "support/RgbdView.h"

#include "support/Capture.h"

#include <gmock/gmock.h>

#include <QPointer>

#include <memory>
#include <type_traits>

using namespace rgbd;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

// What a fresh view is.

TEST(kelViewRGBDTest, TheClassDerivesFromTheFrameworksViewAndAddsNoMembers)
{
    EXPECT_STREQ(kelViewRGBD::staticMetaObject.className(), "kelViewRGBD");
    EXPECT_STREQ(kelViewRGBD::staticMetaObject.superClass()->className(), "nubAbstractView");
    EXPECT_EQ(kelViewRGBD::staticMetaObject.methodCount(), kelViewRGBD::staticMetaObject.methodOffset());
    EXPECT_EQ(kelViewRGBD::staticMetaObject.propertyCount(), kelViewRGBD::staticMetaObject.propertyOffset());
    EXPECT_TRUE((std::is_base_of_v<nubAbstractViewPrivate, kelViewRGBDPrivate>));
    EXPECT_EQ(sizeof(kelViewRGBD), sizeof(nubAbstractObject));
    EXPECT_FALSE(std::is_copy_constructible_v<kelViewRGBD>);
}

TEST(kelViewRGBDTest, OnlyTheWidgetIsOverridden)
{
    kelViewRGBD view;
    EXPECT_EQ(view.identifier(), "kelViewRGBD");
    EXPECT_EQ(view.clone(), nullptr);
    EXPECT_TRUE(view.description().isEmpty());
    EXPECT_EQ(view.parent(), nullptr);
}

TEST(kelViewRGBDTest, TheWidgetIsAPlainGraphicsViewOfTheSceneWithTheSwitches)
{
    View view;
    ASSERT_NE(view.graphicsView(), nullptr);
    EXPECT_STREQ(view.widget()->metaObject()->className(), "QGraphicsView");
    ASSERT_NE(view.scene(), nullptr);
    EXPECT_EQ(view.scene(), &view.d().scene);
    EXPECT_EQ(view.widget()->parentWidget(), nullptr);
    EXPECT_FALSE(view.widget()->isVisible());
}

TEST(kelViewRGBDTest, TheWidgetDrawsWithAntialiasing)
{
    View view;
    EXPECT_TRUE(view.graphicsView()->renderHints().testFlag(QPainter::Antialiasing));
    EXPECT_EQ(view.graphicsView()->renderHints() & ~QPainter::RenderHints(QPainter::Antialiasing),
              QGraphicsView().renderHints() & ~QPainter::RenderHints(QPainter::Antialiasing));
}

TEST(kelViewRGBDTest, AFreshViewHoldsNothingButTwoEmptyPictures)
{
    View view;
    EXPECT_EQ(content(view), (Strings{"picture", "picture"}));
    for (const auto *item : view.all<QGraphicsPixmapItem>())
        EXPECT_TRUE(item->pixmap().isNull());
    ASSERT_NE(view.d().depthItem, nullptr);
    EXPECT_EQ(view.d().depthItem->scene(), nullptr);
    EXPECT_TRUE(view.getDisplay().isNull());
    EXPECT_TRUE(view.d().acquisitionImage.isNull());
    EXPECT_TRUE(view.d().acquisitionDepth.isNull());
    EXPECT_TRUE(view.d().contextInfo.empty());
    EXPECT_TRUE(view.d().groundPlaneCoef.empty());
    EXPECT_TRUE(view.d().actors.empty());
    EXPECT_TRUE(view.d().events.empty());
    EXPECT_TRUE(view.d().actorsFeetPositions.empty());
    EXPECT_TRUE(view.d().listOfPointsDEBUG.empty());
    EXPECT_TRUE(view.d().listOfGroundPoints.empty());
    EXPECT_TRUE(view.d().colors.empty());
    EXPECT_EQ(view.d().frameRate, 0);
}

TEST(kelViewRGBDTest, TheSwitchesStandAsTheSceneHasThemAtFirst)
{
    View view;
    const MyQGraphicsScene fresh;
    EXPECT_EQ(view.scene()->displayEnabled, fresh.displayEnabled);
    EXPECT_EQ(view.scene()->showBlobs, fresh.showBlobs);
    EXPECT_EQ(view.scene()->showZones, fresh.showZones);
    EXPECT_EQ(view.scene()->showDepth, fresh.showDepth);
    EXPECT_EQ(view.scene()->showActors, fresh.showActors);
    EXPECT_EQ(view.scene()->trajectoryLength, 30);
}

TEST(kelViewRGBDTest, AFreshViewProjectsWithADefaultCalibration)
{
    kelViewRGBD view;
    EXPECT_EQ(view.convertWorld2ImageFixed(cv::Point3f(100, 200, 300)), cv::Point(0, 0));
}

TEST(kelViewRGBDTest, TheFactoryMakesANewViewForTheCallerToOwn)
{
    const std::unique_ptr<nubAbstractView> first(createkelViewRGBD());
    const std::unique_ptr<nubAbstractView> second(createkelViewRGBD());
    EXPECT_NE(first, second);
    EXPECT_STREQ(first->metaObject()->className(), "kelViewRGBD");
    EXPECT_EQ(first->parent(), nullptr);
    ASSERT_NE(dynamic_cast<kelViewRGBD *>(first.get()), nullptr);
    EXPECT_NE(dynamic_cast<QGraphicsView *>(first->widget()), nullptr);
}

// What is set.

TEST(kelViewRGBDTest, SettersChangeNeitherSceneNorDisplay)
{
    View view;
    const QSize size = view.widget()->size();
    setEverything(view);
    EXPECT_EQ(content(view), (Strings{"picture", "picture"}));
    EXPECT_TRUE(view.all<QGraphicsPixmapItem>().at(0)->pixmap().isNull());
    EXPECT_EQ(view.widget()->size(), size);
    EXPECT_TRUE(view.getDisplay().isNull());
}

TEST(kelViewRGBDTest, ImagesAreHeldByTheirPointers)
{
    View view;
    const Image color = frame(4, 4);
    const Image depth = depthFrame(4, 4);
    view.setAcquisitionImage(color);
    view.setAcquisitionDepth(depth);
    EXPECT_EQ(view.d().acquisitionImage, color);
    EXPECT_EQ(view.d().acquisitionDepth, depth);
    view.updateDisplay();
    color->setImage(cv::Mat(6, 8, CV_8UC3, cv::Scalar(1, 2, 3)));
    view.updateDisplay();
    EXPECT_EQ(background(view).size(), QSize(8, 6));
    EXPECT_EQ(background(view).pixel(7, 5), qRgb(3, 2, 1));
}

TEST(kelViewRGBDTest, ImagesWithoutPixelsLeaveThePreviousOnes)
{
    View view;
    const Image color = frame(4, 4);
    const Image depth = depthFrame(4, 4);
    view.setAcquisitionImage(color);
    view.setAcquisitionDepth(depth);
    view.setAcquisitionImage(Image());
    view.setAcquisitionDepth(Image());
    for (const cv::Mat &empty : emptyMatrices(CV_8UC3))
        view.setAcquisitionImage(image(empty));
    for (const cv::Mat &empty : emptyMatrices(CV_16UC1))
        view.setAcquisitionDepth(image(empty));
    EXPECT_EQ(view.d().acquisitionImage, color);
    EXPECT_EQ(view.d().acquisitionDepth, depth);
    const Image next = frame(8, 8);
    view.setAcquisitionImage(next);
    view.setAcquisitionDepth(depthFrame(8, 8));
    EXPECT_EQ(view.d().acquisitionImage, next);
    EXPECT_NE(view.d().acquisitionDepth, depth);
}

TEST(kelViewRGBDTest, ListsAreCopied)
{
    View view;
    std::list<ContextElement> zones = {element("zone", "polygon", {{1, 1, 1}, {2, 2, 1}, {1, 2, 1}})};
    std::vector<double> plane = {0, 1, 0, -2};
    Actors actors = {actor(1, cv::Rect(1, 2, 3, 4))};
    std::list<Event> events = {event(1, "a", 0)};
    std::map<int, std::pair<cv::Point3f, cv::Point3f>> feet = {{1, {at(1, 1), at(2, 2)}}};
    std::list<cv::Point3f> dots = {at(1, 1)};
    std::list<cv::Point3f> ground = {at(1, 1), at(2, 2)};
    view.setContextInfo(zones);
    view.setGroundPlaneCoef(plane);
    view.setActors(actors);
    view.setEvents(events);
    view.setActorsFeetPositions(feet);
    view.setListOfPointsDEBUG(dots);
    view.setListOfGroundPoints(ground);
    zones.clear();
    plane.clear();
    actors.clear();
    events.clear();
    feet.clear();
    dots.clear();
    ground.clear();
    EXPECT_EQ(view.d().contextInfo.size(), 1u);
    EXPECT_EQ(view.d().groundPlaneCoef, (std::vector<double>{0, 1, 0, -2}));
    EXPECT_EQ(view.d().actors.size(), 1u);
    EXPECT_EQ(view.d().events.size(), 1u);
    EXPECT_EQ(view.d().actorsFeetPositions.size(), 1u);
    EXPECT_EQ(view.d().listOfPointsDEBUG.size(), 1u);
    EXPECT_EQ(view.d().listOfGroundPoints.size(), 2u);
}

TEST(kelViewRGBDTest, WhatIsSetReplacesWhatWasSet)
{
    View view;
    setEverything(view);
    view.setContextInfo({});
    view.setGroundPlaneCoef({});
    view.setActors({});
    view.setEvents({});
    view.setActorsFeetPositions({});
    view.setListOfPointsDEBUG({});
    view.setListOfGroundPoints({});
    view.setFrameRate(7);
    EXPECT_TRUE(view.d().contextInfo.empty());
    EXPECT_TRUE(view.d().groundPlaneCoef.empty());
    view.updateDisplay();
    EXPECT_EQ(content(view), (Strings{"picture", "EVENT LIST", "FPS"}));
    EXPECT_EQ(view.d().frameRate, 7);
}

TEST(kelViewRGBDTest, ActorsAndEventsAreShared)
{
    View view;
    const Actor person = actor(1, cv::Rect(1, 2, 3, 4));
    const Event fall = event(1, "a", 0);
    view.setActors({person});
    view.setEvents({fall});
    person->setBoundingBox2D(cv::Rect(5, 6, 7, 8));
    fall->setSEDName("b");
    view.drawBlobs();
    view.drawEvents();
    EXPECT_THAT(rectangles(view), ElementsAre(QRectF(5, 6, 7, 8)));
    EXPECT_EQ(words(view).back(), "1 / b [0.000000]");
}

TEST(kelViewRGBDTest, TheCalibrationIsAssigned)
{
    View view;
    Calibration given = camera(2, 3, 4, 5);
    given.setReferentialName("room");
    given.setListContextObjectsForbiddenInPlanComputation("table");
    given.setDepthInformation(cv::Mat(2, 2, CV_32FC1, cv::Scalar(7)));
    view.setCalibrationWithDepth(given);
    Calibration &own = view.d().calibration;
    EXPECT_EQ(own.getReferentialName(), "room");
    EXPECT_EQ(own.getIntrinsicMatrix().data, given.getIntrinsicMatrix().data) << "shared";
    EXPECT_EQ(own.getDepthInformation().data, given.getDepthInformation().data) << "shared";
    EXPECT_EQ(own.getListContextObjectsForbiddenInPlanComputation(), "") << "as in any assignment";
    EXPECT_EQ(view.convertWorld2ImageFixed(at(10, 10)), cv::Point(24, 35));
    given.setIntrinsicMatrix(cv::Mat());
    EXPECT_EQ(view.convertWorld2ImageFixed(at(10, 10)), cv::Point(24, 35));
}

TEST(kelViewRGBDTest, ACalibrationOfAnotherKindIsRefusedAsInAnyAssignment)
{
    struct Foreign : Calibration
    {
        QString identifier() const override { return "Foreign"; }
    };
    View view;
    Foreign foreign;
    foreign.setIntrinsicMatrix(camera(2, 3, 4, 5).getIntrinsicMatrix());
    MessageCapture messages;
    view.setCalibrationWithDepth(foreign);
    EXPECT_EQ(messages.count(slicingWarning()), 2);
    EXPECT_EQ(view.convertWorld2ImageFixed(at(10, 10)), cv::Point(10, 10));
}

// Palette.

TEST(kelViewRGBDTest, ThePaletteHoldsSixteenColoursInOrder)
{
    View view;
    view.initColors();
    EXPECT_EQ(view.d().colors, palette);
    view.d().colors.assign(20, QColor(1, 2, 3));
    view.initColors();
    EXPECT_EQ(view.d().colors, palette);
}

TEST(kelViewRGBDTest, TheFirstActiveUpdateFillsThePalette)
{
    View view;
    view.scene()->displayEnabled = false;
    view.updateDisplay();
    EXPECT_TRUE(view.d().colors.empty());
    view.scene()->displayEnabled = true;
    view.updateDisplay();
    EXPECT_EQ(view.d().colors, palette);
    view.d().colors.assign(16, QColor(1, 2, 3));
    view.updateDisplay();
    EXPECT_EQ(view.d().colors, std::vector<QColor>(16, QColor(1, 2, 3))) << "only an empty one is filled";
}

TEST(kelViewRGBDTest, AnActorsColourIsTheOneAtItsIdModuloSixteen)
{
    View view;
    Actors actors;
    for (unsigned int id = 0; id < 16; ++id)
        actors.push_back(actor(id));
    for (const unsigned int id : {16u, 17u, 33u, 2147483647u, 2147483648u, 4294967286u, 4294967295u})
        actors.push_back(actor(id));
    view.setActors(actors);
    view.drawBlobs();
    std::vector<QColor> colors;
    for (const auto *box : view.all<QGraphicsRectItem>())
        colors.push_back(box->pen().color());
    std::vector<QColor> wanted = palette;
    for (const size_t index : {0, 1, 1, 15, 0, 6, 15})
        wanted.push_back(palette[index]);
    EXPECT_EQ(colors, wanted);
}

// The display switched off.

TEST(kelViewRGBDTest, EscapeLeavesThePromptAndTheFrameRate)
{
    View view;
    setEverything(view);
    view.press({Qt::Key_Z, Qt::Key_A, Qt::Key_I, Qt::Key_G, Qt::Key_L, Qt::Key_P});
    view.updateDisplay();
    view.press(Qt::Key_Escape);
    EXPECT_GT(content(view).size(), 2u) << "a switch takes effect with the next update";
    view.updateDisplay();
    EXPECT_EQ(content(view), (Strings{"PRESS", "FPS"}));
    EXPECT_EQ(texts(view), (Strings{"PRESS ESC TO ACTIVATE DISPLAY at 100, 220", "FPS : 25 at 565, 3"}));
    expectFont(*view.all<QGraphicsTextItem>().at(0), 20, QFont::Normal, Qt::red);
    expectFont(*view.all<QGraphicsTextItem>().at(1), 12, QFont::Normal, Qt::red);
}

TEST(kelViewRGBDTest, WithoutTheFrameRateEscapeLeavesThePromptAlone)
{
    View view;
    setEverything(view);
    view.press({Qt::Key_W, Qt::Key_Escape});
    view.updateDisplay();
    EXPECT_EQ(content(view), (Strings{"PRESS"}));
    view.updateDisplay();
    EXPECT_EQ(content(view), (Strings{"PRESS"}));
    view.press(Qt::Key_W);
    view.updateDisplay();
    EXPECT_EQ(content(view), (Strings{"PRESS", "FPS"}));
}

TEST(kelViewRGBDTest, EscapeDeletesWhatWasShown)
{
    View view;
    int deleted = 0;
    view.scene()->addItem(new WitnessItem(&deleted));
    view.press(Qt::Key_Escape);
    EXPECT_EQ(deleted, 0);
    view.updateDisplay();
    EXPECT_EQ(deleted, 1);
}

TEST(kelViewRGBDTest, EscapeLeavesTheDisplayImage)
{
    View view;
    view.press(Qt::Key_Escape);
    view.updateDisplay();
    EXPECT_TRUE(view.getDisplay().isNull());
    setEverything(view);
    view.press(Qt::Key_Escape);
    view.updateDisplay();
    const Image display = view.getDisplay();
    const cv::Mat picture = display->getImage();
    const cv::Mat copy = picture.clone();
    view.press(Qt::Key_Escape);
    view.setAcquisitionImage(frame(640, 480, cv::Scalar(1, 1, 1)));
    view.updateDisplay();
    EXPECT_EQ(view.getDisplay(), display);
    EXPECT_EQ(display->getImage().data, picture.data);
    EXPECT_EQ(differentBytes(picture, copy), 0);
    EXPECT_EQ(view.scene()->sceneRect(), QRectF(0, 0, 640, 480));
}

TEST(kelViewRGBDTest, EscapeAgainBringsEverythingBack)
{
    View view;
    setEverything(view);
    view.updateDisplay();
    const Strings before = content(view);
    view.press(Qt::Key_Escape);
    view.updateDisplay();
    view.press(Qt::Key_Escape);
    view.updateDisplay();
    EXPECT_EQ(content(view), before);
}

// The overlays together.

TEST(kelViewRGBDTest, AtFirstAFrameShowsBoxesTrajectoriesEventsFeetAndTheFrameRate)
{
    View view;
    setEverything(view);
    view.updateDisplay();
    EXPECT_EQ(content(view),
              (Strings{"picture", "box", "step", "step", "EVENT LIST", "event", "foot", "foot", "FPS"}));
}

TEST(kelViewRGBDTest, OverlaysLieAboveOneAnotherInTheirOrder)
{
    View view;
    setEverything(view);
    view.press({Qt::Key_I, Qt::Key_L, Qt::Key_A, Qt::Key_Z, Qt::Key_P, Qt::Key_G});
    for (int i = 0; i < 2; ++i) {
        view.updateDisplay();
        EXPECT_EQ(content(view),
                  (Strings{"picture", "plane", "ground", "zone", "actor", "dot", "box", "step", "step",
                           "EVENT LIST", "event", "Id", "HeightA", "Speed", "foot", "foot", "FPS"}));
    }
    for (const QGraphicsItem *item : view.scene()->items()) {
        EXPECT_EQ(item->zValue(), 0);
        EXPECT_EQ(item->parentItem(), nullptr);
        EXPECT_TRUE(item->isVisible());
        EXPECT_EQ(item->opacity(), 1);
    }
}

TEST(kelViewRGBDTest, EachKeyShowsItsOverlayAlone)
{
    View view;
    setEverything(view);
    view.showNothing();
    view.updateDisplay();
    EXPECT_EQ(content(view), (Strings{"picture"}));
    const std::vector<Strings> shown = {{"plane"},
                                        {"ground"},
                                        {"zone"},
                                        {"actor"},
                                        {"dot"},
                                        {"box"},
                                        {"step", "step"},
                                        {"EVENT LIST", "event"},
                                        {"Id", "HeightA", "Speed"},
                                        {"foot", "foot"},
                                        {"FPS"}};
    for (size_t i = 0; i < overlayKeys.size(); ++i) {
        view.press(overlayKeys[i]);
        view.updateDisplay();
        Strings wanted = {"picture"};
        wanted.insert(wanted.end(), shown[i].begin(), shown[i].end());
        EXPECT_EQ(content(view), wanted);
        view.press(overlayKeys[i]);
        view.updateDisplay();
        EXPECT_EQ(content(view), (Strings{"picture"}));
    }
}

TEST(kelViewRGBDTest, OverlaysAreDrawnWithoutABackgroundToo)
{
    View view;
    view.setActors({actor(1, cv::Rect(1, 2, 3, 4))});
    view.updateDisplay();
    EXPECT_EQ(content(view), (Strings{"box", "EVENT LIST", "FPS"}));
}

TEST(kelViewRGBDTest, PlusAndMinusSetTheLengthOfTheTrajectories)
{
    View view;
    view.setActors({walker(1, 150)});
    view.updateDisplay();
    EXPECT_EQ(lines(view).size(), 28u);
    view.press(Qt::Key_Plus);
    view.updateDisplay();
    EXPECT_EQ(lines(view).size(), 33u);
    view.press({Qt::Key_Minus, Qt::Key_Minus});
    view.updateDisplay();
    EXPECT_EQ(lines(view).size(), 23u);
    for (int i = 0; i < 20; ++i)
        view.press(Qt::Key_Minus);
    view.updateDisplay();
    EXPECT_EQ(lines(view).size(), 0u);
    for (int i = 0; i < 30; ++i)
        view.press(Qt::Key_Plus);
    view.updateDisplay();
    EXPECT_EQ(lines(view).size(), 98u);
}

TEST(kelViewRGBDTest, EachUpdateStartsFromAClearedScene)
{
    View view;
    setEverything(view);
    view.updateDisplay();
    const Strings first = content(view);
    int deleted = 0;
    view.scene()->addItem(new WitnessItem(&deleted));
    view.updateDisplay();
    EXPECT_EQ(deleted, 1);
    EXPECT_EQ(content(view), first);
}

TEST(kelViewRGBDTest, EmptyListsDrawNothing)
{
    View view;
    view.drawListOfGroundPoints();
    view.drawZones();
    view.drawActors();
    view.drawListOfPointsDEBUG();
    view.drawBlobs();
    view.drawTraj(30);
    view.drawActorInfos();
    view.drawFeet();
    EXPECT_TRUE(view.scene()->itemsBoundingRect().isEmpty());
    EXPECT_TRUE(polygons(view).empty());
    view.drawEvents();
    EXPECT_EQ(words(view), (Strings{"EVENT LIST : "}));
}

TEST(kelViewRGBDTest, NullPointersInListsAreSkipped)
{
    View view;
    const Actor person = walker(3, 3);
    std::list<cv::Point> pixels = {{3, 4}};
    person->setPixels(pixels);
    view.setAcquisitionImage(frame(16, 16));
    view.setActors({nullptr, person, nullptr});
    view.setEvents({Event(), event(3, "Fall", 0.87), Event(), event(4, "Run", 1), Event()});
    view.press({Qt::Key_A, Qt::Key_I});
    MessageCapture messages;
    view.updateDisplay();
    EXPECT_EQ(content(view),
              (Strings{"picture", "actor", "box", "step", "step", "EVENT LIST", "event", "event", "Id",
                       "HeightA", "Speed", "FPS"}));
    EXPECT_EQ(texts(view).at(1), "3 / Fall [0.870000] at 5, 30");
    EXPECT_EQ(texts(view).at(2), "4 / Run [1.000000] at 5, 52") << "no line is left free";
    EXPECT_TRUE(messages.lines().isEmpty());
}

// Lifetime.

TEST(kelViewRGBDTest, TheViewDeletesItsSceneAndItsWidget)
{
    int deleted = 0;
    nubAbstractView *view = createkelViewRGBD();
    const QPointer<QWidget> widget = view->widget();
    const QPointer<QGraphicsScene> shown = static_cast<QGraphicsView *>(view->widget())->scene();
    shown->addItem(new WitnessItem(&deleted));
    delete view;
    EXPECT_TRUE(widget.isNull());
    EXPECT_TRUE(shown.isNull());
    EXPECT_EQ(deleted, 1);
}

TEST(kelViewRGBDTest, TheWidgetLeavesAParentThatLivesLonger)
{
    QWidget window;
    {
        View view;
        view.widget()->setParent(&window);
        EXPECT_EQ(window.children().size(), 1);
    }
    EXPECT_TRUE(window.children().isEmpty());
}

TEST(kelViewRGBDTest, AParentWidgetMayDeleteTheWidgetFirst)
{
    MessageCapture messages;
    View view;
    setEverything(view);
    view.press({Qt::Key_A, Qt::Key_G, Qt::Key_Z});
    auto *window = new QWidget;
    view.widget()->setParent(window);
    view.updateDisplay();
    delete window;
    EXPECT_EQ(view.widget(), nullptr);
    view.setSegmentationImage(image(cv::Mat(4, 4, CV_8UC1, cv::Scalar(255))));
    view.setBlobs({blob(1, 1, 1, 1)});
    view.setPhysicalObjects({physicalObject(2, 2, 2, 2)});
    view.setAcquisitionImage(frame(6, 4, cv::Scalar(1, 2, 3)));
    EXPECT_EQ(view.picture().size(), cv::Size(6, 4));
    view.d().scene.showDepth = true;
    EXPECT_EQ(view.picture().size(), cv::Size(640, 480));
    view.d().scene.displayEnabled = false;
    view.updateDisplay();
    EXPECT_EQ(view.d().scene.items().size(), 2);
    EXPECT_TRUE(messages.lines().isEmpty());
}

TEST(kelViewRGBDTest, ALongRunLeavesNoItemsBehind)
{
    View view;
    setEverything(view);
    view.setAcquisitionImage(frame(16, 16));
    view.setAcquisitionDepth(depthFrame(16, 16));
    for (int i = 0; i < 100; ++i) {
        view.setSegmentationImage(image(cv::Mat(16, 16, CV_8UC1, cv::Scalar(255))));
        view.setBlobs({blob(1, 1, 4, 4)});
        view.setPhysicalObjects({physicalObject(3, 3, 4, 4)});
        for (const int key : overlayKeys)
            if ((i * 7 + key) % 3)
                view.press(key);
        if (i % 5 == 0)
            view.press(Qt::Key_D);
        view.updateDisplay();
        EXPECT_LE(content(view).size(), 17u);
    }
}

TEST(kelViewRGBDTest, NothingIsSaidWhateverIsShown)
{
    const LogLevel level(0);
    MessageCapture messages;
    OutputCapture output;
    {
        kelViewRGBD view;
        auto *scene = static_cast<MyQGraphicsScene *>(static_cast<QGraphicsView *>(view.widget())->scene());
        view.updateDisplay();
        view.setAcquisitionImage(Image());
        view.setAcquisitionDepth(Image(new kelDataImage));
        scene->showDepth = true;
        view.updateDisplay();
        view.setAcquisitionImage(frame(16, 16));
        view.setAcquisitionDepth(depthFrame(16, 16));
        view.setGroundPlaneCoef({0, 1, 0, -1});
        view.setActors({walker(1, 3), nullptr});
        view.setEvents({event(1, "a", 1), Event()});
        view.setActorsFeetPositions({{1, {at(1, 1), at(2, 2)}}});
        for (bool MyQGraphicsScene::*on :
             {&MyQGraphicsScene::showZones, &MyQGraphicsScene::showGroundPlane, &MyQGraphicsScene::showDepth,
              &MyQGraphicsScene::showActors, &MyQGraphicsScene::showActorInfos,
              &MyQGraphicsScene::showPointsDEBUG, &MyQGraphicsScene::showGroundPoints})
            scene->*on = true;
        view.setSegmentationImage(image(cv::Mat(5, 3, CV_8UC1, cv::Scalar(255))));
        view.setBlobs({blob(1, 1, 2, 2), Blob()});
        view.updateDisplay();
        scene->displayEnabled = false;
        view.updateDisplay();
    }
    EXPECT_EQ(messages.lines(), QStringList());
    EXPECT_EQ(output.take(), "");
}
