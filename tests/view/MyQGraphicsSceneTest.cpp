#include <kelCore/view/MyQGraphicsScene.h>

#include <gtest/gtest.h>

#include <QApplication>
#include <QFocusEvent>
#include <QGraphicsRectItem>
#include <QGraphicsSceneMouseEvent>
#include <QGraphicsView>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScrollBar>

#include <string>
#include <vector>

namespace {

struct Switch
{
    const char *name;
    bool MyQGraphicsScene::*member;
    int key;
    bool atFirst;
};

const std::vector<Switch> switches = {
    {"displayEnabled", &MyQGraphicsScene::displayEnabled, Qt::Key_Escape, true},
    {"showBlobs", &MyQGraphicsScene::showBlobs, Qt::Key_B, true},
    {"showZones", &MyQGraphicsScene::showZones, Qt::Key_Z, false},
    {"showGroundPlane", &MyQGraphicsScene::showGroundPlane, Qt::Key_G, false},
    {"showDepth", &MyQGraphicsScene::showDepth, Qt::Key_D, false},
    {"showActors", &MyQGraphicsScene::showActors, Qt::Key_A, false},
    {"showTrajectories", &MyQGraphicsScene::showTrajectories, Qt::Key_T, true},
    {"showEvents", &MyQGraphicsScene::showEvents, Qt::Key_E, true},
    {"showActorInfos", &MyQGraphicsScene::showActorInfos, Qt::Key_I, false},
    {"showFeet", &MyQGraphicsScene::showFeet, Qt::Key_F, true},
    {"showFrameRate", &MyQGraphicsScene::showFrameRate, Qt::Key_W, true},
    {"showPointsDEBUG", &MyQGraphicsScene::showPointsDEBUG, Qt::Key_L, false},
    {"showGroundPoints", &MyQGraphicsScene::showGroundPoints, Qt::Key_P, false},
};

/// The names of the switches that are on, and the length of the trajectories.
std::string state(const MyQGraphicsScene &scene)
{
    std::string result;
    for (const Switch &s : switches)
        if (scene.*s.member)
            result += std::string(s.name) + " ";
    return result + std::to_string(scene.trajectoryLength);
}

/// What `state` is to be once `changed` has been turned.
std::string stateWith(const MyQGraphicsScene &scene, const Switch &changed)
{
    std::string result;
    for (const Switch &s : switches)
        if ((scene.*s.member) != (s.member == changed.member))
            result += std::string(s.name) + " ";
    return result + std::to_string(scene.trajectoryLength);
}

/// A scene that cannot be seen whole, with a row of items, in a widget.
template <class Scene> struct Shown
{
    Scene scene;
    QGraphicsView view;

    Shown()
    {
        scene.setSceneRect(0, 0, 2000, 2000);
        view.setScene(&scene);
        view.resize(200, 200);
        view.show();
        view.horizontalScrollBar()->setValue(500);
        view.verticalScrollBar()->setValue(500);
    }

    QPoint scrolled() const
    {
        return QPoint(view.horizontalScrollBar()->value(), view.verticalScrollBar()->value());
    }

    /// Sends a key press, not accepted yet, to the widget; true when it was accepted.
    bool press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier, const QString &text = QString())
    {
        QKeyEvent event(QEvent::KeyPress, key, modifiers, text);
        event.ignore();
        QApplication::sendEvent(&view, &event);
        return event.isAccepted();
    }

    int lengthAfter(int key, int length)
    {
        scene.trajectoryLength = length;
        press(key);
        return scene.trajectoryLength;
    }
};

/// Counts what it is told.
class Listener : public QGraphicsRectItem
{
public:
    Listener() : QGraphicsRectItem(500, 500, 400, 400)
    {
        setFlags(ItemIsFocusable | ItemIsSelectable | ItemIsMovable);
    }

    int keyPresses = 0;
    int keyReleases = 0;
    int mousePresses = 0;
    int mouseReleases = 0;
    int wheels = 0;

protected:
    void keyPressEvent(QKeyEvent *) override { ++keyPresses; }
    void keyReleaseEvent(QKeyEvent *) override { ++keyReleases; }
    void mousePressEvent(QGraphicsSceneMouseEvent *event) override
    {
        ++mousePresses;
        QGraphicsRectItem::mousePressEvent(event);
    }
    void mouseReleaseEvent(QGraphicsSceneMouseEvent *event) override
    {
        ++mouseReleases;
        QGraphicsRectItem::mouseReleaseEvent(event);
    }
    void wheelEvent(QGraphicsSceneWheelEvent *) override { ++wheels; }
};

/// A scene with one item, which has the keyboard.
template <class Scene> struct Listened : Shown<Scene>
{
    Listener *item = new Listener;

    Listened()
    {
        this->scene.addItem(item);
        QEvent activation(QEvent::WindowActivate);
        QApplication::sendEvent(&this->scene, &activation);
        QFocusEvent focus(QEvent::FocusIn);
        QApplication::sendEvent(&this->scene, &focus);
        item->setFocus();
    }
};

void mouse(QGraphicsView &view, QEvent::Type type, const QPoint &position, Qt::MouseButton button)
{
    QWidget *viewport = view.viewport();
    const Qt::MouseButton changed = type == QEvent::MouseMove ? Qt::NoButton : button;
    const Qt::MouseButtons held = type == QEvent::MouseButtonRelease ? Qt::NoButton : button;
    QMouseEvent event(type, position, position, viewport->mapToGlobal(position), changed, held,
                      Qt::NoModifier);
    QApplication::sendEvent(viewport, &event);
}

void pressMouse(QGraphicsView &view, const QPoint &position, Qt::MouseButton button = Qt::LeftButton)
{
    mouse(view, QEvent::MouseButtonPress, position, button);
}

void drag(QGraphicsView &view, const QPoint &from, const QPoint &to)
{
    mouse(view, QEvent::MouseButtonPress, from, Qt::LeftButton);
    mouse(view, QEvent::MouseMove, to, Qt::LeftButton);
    mouse(view, QEvent::MouseButtonRelease, to, Qt::LeftButton);
}

/// A window that learns of the presses that its children leave.
class Window : public QWidget
{
public:
    int presses = 0;

protected:
    void mousePressEvent(QMouseEvent *) override { ++presses; }
};

} // namespace

TEST(MyQGraphicsSceneTest, TheClassIsASceneWithoutAMetaObjectOfItsOwn)
{
    const MyQGraphicsScene scene;
    EXPECT_EQ(scene.metaObject(), &QGraphicsScene::staticMetaObject);
}

TEST(MyQGraphicsSceneTest, BoxesTrajectoriesEventsFeetAndFrameRateAreOnAtFirst)
{
    const MyQGraphicsScene scene;
    for (const Switch &s : switches)
        EXPECT_EQ(scene.*s.member, s.atFirst) << s.name;
    EXPECT_EQ(state(scene), "displayEnabled showBlobs showTrajectories showEvents showFeet showFrameRate 30");
}

TEST(MyQGraphicsSceneTest, EachKeyTurnsItsSwitchAndNoOther)
{
    Shown<MyQGraphicsScene> shown;
    for (const Switch &s : switches) {
        const std::string before = state(shown.scene);
        const std::string turned = stateWith(shown.scene, s);
        EXPECT_TRUE(shown.press(s.key)) << s.name;
        EXPECT_EQ(state(shown.scene), turned) << s.name;
        EXPECT_TRUE(shown.press(s.key)) << s.name;
        EXPECT_EQ(state(shown.scene), before) << s.name;
    }
}

TEST(MyQGraphicsSceneTest, KeysTurnTheirSwitchesWhateverTheOthersAre)
{
    Shown<MyQGraphicsScene> shown;
    for (const Switch &s : switches)
        shown.scene.*s.member = !s.atFirst;
    for (const Switch &s : switches) {
        shown.press(s.key);
        EXPECT_EQ(shown.scene.*s.member, s.atFirst) << s.name;
    }
    EXPECT_EQ(state(shown.scene), state(MyQGraphicsScene()));
}

TEST(MyQGraphicsSceneTest, LettersCountInEitherCase)
{
    Shown<MyQGraphicsScene> shown;
    shown.press(Qt::Key_Z, Qt::NoModifier, "z");
    EXPECT_TRUE(shown.scene.showZones);
    shown.press(Qt::Key_Z, Qt::ShiftModifier, "Z");
    EXPECT_FALSE(shown.scene.showZones);
}

TEST(MyQGraphicsSceneTest, KeysReachTheSwitchesFromTheViewport)
{
    Shown<MyQGraphicsScene> shown;
    QKeyEvent press(QEvent::KeyPress, Qt::Key_G, Qt::NoModifier);
    QKeyEvent release(QEvent::KeyRelease, Qt::Key_G, Qt::NoModifier);
    QApplication::sendEvent(shown.view.viewport(), &press);
    EXPECT_TRUE(shown.scene.showGroundPlane);
    QApplication::sendEvent(shown.view.viewport(), &release);
    EXPECT_TRUE(shown.scene.showGroundPlane) << "only a press turns the switch";
}

TEST(MyQGraphicsSceneTest, PlusAddsFiveUpToNinetyNine)
{
    Shown<MyQGraphicsScene> shown;
    EXPECT_EQ(shown.lengthAfter(Qt::Key_Plus, 30), 35);
    EXPECT_EQ(shown.lengthAfter(Qt::Key_Plus, 0), 5);
    EXPECT_EQ(shown.lengthAfter(Qt::Key_Plus, -10), -5);
    EXPECT_EQ(shown.lengthAfter(Qt::Key_Plus, 95), 100);
    EXPECT_EQ(shown.lengthAfter(Qt::Key_Plus, 98), 103);
    EXPECT_EQ(shown.lengthAfter(Qt::Key_Plus, 99), 104);
    EXPECT_EQ(shown.lengthAfter(Qt::Key_Plus, 100), 100);
    EXPECT_EQ(shown.lengthAfter(Qt::Key_Plus, 104), 104);
}

TEST(MyQGraphicsSceneTest, MinusSubtractsFiveAboveZero)
{
    Shown<MyQGraphicsScene> shown;
    EXPECT_EQ(shown.lengthAfter(Qt::Key_Minus, 30), 25);
    EXPECT_EQ(shown.lengthAfter(Qt::Key_Minus, 104), 99);
    EXPECT_EQ(shown.lengthAfter(Qt::Key_Minus, 5), 0);
    EXPECT_EQ(shown.lengthAfter(Qt::Key_Minus, 3), -2);
    EXPECT_EQ(shown.lengthAfter(Qt::Key_Minus, 1), -4);
    EXPECT_EQ(shown.lengthAfter(Qt::Key_Minus, 0), 0);
    EXPECT_EQ(shown.lengthAfter(Qt::Key_Minus, -2), -2);
}

TEST(MyQGraphicsSceneTest, FromTheStartTheLengthStaysWithinZeroAndAHundred)
{
    Shown<MyQGraphicsScene> shown;
    std::vector<int> lengths;
    for (int i = 0; i < 16; ++i) {
        EXPECT_TRUE(shown.press(Qt::Key_Plus, Qt::ShiftModifier, "+"));
        lengths.push_back(shown.scene.trajectoryLength);
    }
    EXPECT_EQ(lengths, (std::vector<int>{35, 40, 45, 50, 55, 60, 65, 70, 75, 80, 85, 90, 95, 100, 100, 100}));
    for (int i = 0; i < 19; ++i)
        shown.press(Qt::Key_Minus, Qt::NoModifier, "-");
    EXPECT_EQ(shown.scene.trajectoryLength, 5);
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(shown.press(Qt::Key_Minus, Qt::KeypadModifier, "-"));
    EXPECT_EQ(shown.scene.trajectoryLength, 0);
    shown.press(Qt::Key_Plus, Qt::KeypadModifier, "+");
    EXPECT_EQ(state(shown.scene),
              "displayEnabled showBlobs showTrajectories showEvents showFeet showFrameRate 5");
}

TEST(MyQGraphicsSceneTest, OtherKeysDoNothingAndAreAccepted)
{
    std::vector<int> keys = {Qt::Key_Left,   Qt::Key_Right,    Qt::Key_Up,       Qt::Key_Down,
                             Qt::Key_PageUp, Qt::Key_End,      Qt::Key_Home,     Qt::Key_Return,
                             Qt::Key_Enter,  Qt::Key_PageDown, Qt::Key_Delete,   Qt::Key_F1,
                             Qt::Key_Shift,  Qt::Key_Insert,   Qt::Key_Backspace};
    for (int key = Qt::Key_Space; key <= Qt::Key_AsciiTilde; ++key)
        keys.push_back(key);
    Shown<MyQGraphicsScene> shown;
    const std::string before = state(shown.scene);
    int unknown = 0;
    for (const int key : keys) {
        bool known = key == Qt::Key_Plus || key == Qt::Key_Minus;
        for (const Switch &s : switches)
            known = known || s.key == key;
        if (known)
            continue;
        ++unknown;
        EXPECT_TRUE(shown.press(key)) << key;
        EXPECT_EQ(state(shown.scene), before) << key;
    }
    EXPECT_GT(unknown, 60);
}

TEST(MyQGraphicsSceneTest, ArrowsDoNotScroll)
{
    Shown<QGraphicsScene> plain;
    Shown<MyQGraphicsScene> shown;
    ASSERT_EQ(shown.scrolled(), QPoint(500, 500));
    ASSERT_EQ(plain.scrolled(), QPoint(500, 500));
    for (const int key :
         {Qt::Key_Left, Qt::Key_Right, Qt::Key_Up, Qt::Key_Down, Qt::Key_PageUp, Qt::Key_PageDown}) {
        const QPoint before = plain.scrolled();
        plain.press(key);
        EXPECT_NE(plain.scrolled(), before) << "any other scene scrolls";
        shown.press(key);
        EXPECT_EQ(shown.scrolled(), QPoint(500, 500)) << key;
    }
}

TEST(MyQGraphicsSceneTest, NoKeyIsPassedOnToTheItems)
{
    const std::vector<int> keys = {Qt::Key_Z,      Qt::Key_Plus, Qt::Key_Minus,
                                   Qt::Key_Escape, Qt::Key_X,    Qt::Key_Up};
    Listened<QGraphicsScene> plain;
    Listened<MyQGraphicsScene> listened;
    ASSERT_EQ(plain.scene.focusItem(), plain.item);
    ASSERT_EQ(listened.scene.focusItem(), listened.item);
    for (const int key : keys) {
        plain.press(key);
        listened.press(key);
    }
    EXPECT_EQ(plain.item->keyPresses, static_cast<int>(keys.size())) << "any other scene passes them on";
    EXPECT_EQ(listened.item->keyPresses, 0);
}

TEST(MyQGraphicsSceneTest, ItemsCanNeitherBeSelectedNorMovedByMouse)
{
    Listened<QGraphicsScene> plain;
    Listened<MyQGraphicsScene> listened;
    const QPoint from(100, 100);
    const QPoint to(160, 140);
    ASSERT_EQ(plain.view.itemAt(from), plain.item);
    ASSERT_EQ(listened.view.itemAt(from), listened.item);
    drag(plain.view, from, to);
    EXPECT_TRUE(plain.item->isSelected());
    EXPECT_EQ(plain.item->pos(), QPointF(60, 40));
    drag(listened.view, from, to);
    EXPECT_FALSE(listened.item->isSelected());
    EXPECT_EQ(listened.item->pos(), QPointF(0, 0));
    EXPECT_EQ(listened.scene.mouseGrabberItem(), nullptr);
    EXPECT_EQ(listened.item->mouseReleases, 0);
}

TEST(MyQGraphicsSceneTest, PressesOfAllButtonsAreSwallowed)
{
    for (const Qt::MouseButton button : {Qt::LeftButton, Qt::RightButton, Qt::MiddleButton}) {
        Listened<QGraphicsScene> plain;
        Listened<MyQGraphicsScene> listened;
        plain.item->setAcceptedMouseButtons(Qt::AllButtons);
        listened.item->setAcceptedMouseButtons(Qt::AllButtons);
        pressMouse(plain.view, QPoint(100, 100), button);
        pressMouse(listened.view, QPoint(100, 100), button);
        EXPECT_EQ(plain.item->mousePresses, 1);
        EXPECT_EQ(listened.item->mousePresses, 0) << button;
        EXPECT_EQ(listened.scene.mouseGrabberItem(), nullptr);
    }
}

TEST(MyQGraphicsSceneTest, APressBesideTheItemsLeavesSelectionAndFocus)
{
    Listened<QGraphicsScene> plain;
    Listened<MyQGraphicsScene> listened;
    for (QGraphicsView *view : {&plain.view, &listened.view}) {
        view->scene()->items().constFirst()->setSelected(true);
        view->horizontalScrollBar()->setValue(1500);
        ASSERT_EQ(view->itemAt(100, 100), nullptr);
        drag(*view, QPoint(100, 100), QPoint(100, 100));
    }
    EXPECT_FALSE(plain.item->isSelected());
    EXPECT_TRUE(listened.item->isSelected());
    EXPECT_EQ(listened.scene.focusItem(), listened.item);
}

TEST(MyQGraphicsSceneTest, APressEndsAtTheScene)
{
    Window window;
    Listened<MyQGraphicsScene> listened;
    listened.view.setParent(&window);
    window.show();
    listened.view.show();
    pressMouse(listened.view, QPoint(100, 100));
    EXPECT_EQ(window.presses, 0);
    listened.view.setParent(nullptr);
}

TEST(MyQGraphicsSceneTest, EverythingElseReachesTheItemsAsInAnyScene)
{
    Listened<MyQGraphicsScene> listened;
    QKeyEvent release(QEvent::KeyRelease, Qt::Key_Z, Qt::NoModifier);
    QApplication::sendEvent(&listened.view, &release);
    EXPECT_EQ(listened.item->keyReleases, 1);
    const QPoint position(100, 100);
    QWheelEvent wheel(position, listened.view.viewport()->mapToGlobal(position), QPoint(0, 0), QPoint(0, 120),
                      Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(listened.view.viewport(), &wheel);
    EXPECT_EQ(listened.item->wheels, 1);
    mouse(listened.view, QEvent::MouseButtonDblClick, position, Qt::LeftButton);
    EXPECT_TRUE(listened.item->isSelected()) << "a double click is no press";
}
