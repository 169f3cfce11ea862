#include <nubCore/nubAbstractView.h>
#include <nubCore/nubAbstractView_p.h>

#include "support/Capture.h"

#include <QMetaObject>
#include <QPointer>
#include <QWidget>

#include <memory>
#include <type_traits>

namespace {

class PanelViewPrivate : public nubAbstractViewPrivate
{
public:
    explicit PanelViewPrivate(bool *deletedFlag = nullptr) : deleted(deletedFlag) { }
    PanelViewPrivate(const PanelViewPrivate &other) : nubAbstractViewPrivate(other), zoom(other.zoom) { }
    ~PanelViewPrivate() override
    {
        if (deleted)
            *deleted = true;
    }

    const nubAbstractObject *owner() const { return q_ptr; }

    QWidget panel;
    int zoom = 1;
    bool *deleted = nullptr;
};

/// A view with a widget and a state of its own, written as an application writes one.
class PanelView : public nubAbstractView
{
public:
    explicit PanelView(bool *privateDeleted = nullptr)
        : nubAbstractView(*new PanelViewPrivate(privateDeleted))
    { }
    PanelView(const PanelView &other)
        : nubAbstractView(*new PanelViewPrivate(*other.d_func()), other.parent())
    { }
    ~PanelView() override
    {
        if (deleted)
            *deleted = true;
    }

    QWidget *widget() override { return &d_func()->panel; }
    PanelViewPrivate *state() { return d_func(); }
    void setValue(const QString &key, const QString &value) { d_func()->properties.insert(key, value); }
    QString value(const QString &key) const { return d_func()->properties.value(key); }

    bool *deleted = nullptr;

private:
    Q_DECLARE_PRIVATE_D(nub_d, PanelView)
};

} // namespace

TEST(nubAbstractViewTest, TheBaseShowsNoWidget)
{
    MessageCapture messages;
    nubAbstractView view;
    EXPECT_EQ(view.widget(), nullptr);
    EXPECT_TRUE(messages.lines().isEmpty());
}

TEST(nubAbstractViewTest, AViewIsAnObjectOfTheFramework)
{
    EXPECT_STREQ(nubAbstractView::staticMetaObject.className(), "nubAbstractView");
    EXPECT_STREQ(nubAbstractView::staticMetaObject.superClass()->className(), "nubAbstractObject");
    EXPECT_TRUE((std::is_base_of_v<nubAbstractObjectPrivate, nubAbstractViewPrivate>));
    EXPECT_EQ(sizeof(nubAbstractView), sizeof(nubAbstractObject));
    EXPECT_EQ(nubAbstractView().identifier(), "nubAbstractView");
}

TEST(nubAbstractViewTest, TheWidgetIsThatOfTheDerivedClass)
{
    PanelView panel;
    nubAbstractView &view = panel;
    EXPECT_EQ(view.widget(), &panel.state()->panel);
}

TEST(nubAbstractViewTest, AFreshViewHasTheParentItWasGiven)
{
    EXPECT_EQ(nubAbstractView().parent(), nullptr);
    auto *parent = new nubAbstractView;
    const QPointer<nubAbstractView> child = new nubAbstractView(parent);
    EXPECT_EQ(child->parent(), parent);
    delete parent;
    EXPECT_TRUE(child.isNull());
}

TEST(nubAbstractViewTest, DeletingThroughTheBaseDeletesTheDerivedViewAndItsPrivateObject)
{
    bool viewDeleted = false;
    bool privateDeleted = false;
    auto *panel = new PanelView(&privateDeleted);
    panel->deleted = &viewDeleted;
    nubAbstractView *view = panel;
    delete view;
    EXPECT_TRUE(viewDeleted);
    EXPECT_TRUE(privateDeleted);
}

TEST(nubAbstractViewTest, ThePrivateObjectKnowsTheViewThatOwnsIt)
{
    PanelView panel;
    EXPECT_EQ(panel.state()->owner(), &panel);
    PanelView copy(panel);
    EXPECT_EQ(copy.state()->owner(), &copy);
    EXPECT_EQ(panel.state()->owner(), &panel);
}

TEST(nubAbstractViewTest, ACopyHasAPrivateObjectOfItsOwnWithTheSourcesState)
{
    PanelView panel;
    panel.state()->zoom = 3;
    panel.setValue("k", "v");
    PanelView copy(panel);
    EXPECT_NE(copy.state(), panel.state());
    EXPECT_NE(copy.widget(), panel.widget());
    EXPECT_EQ(copy.state()->zoom, 3);
    EXPECT_EQ(copy.value("k"), "v");
    copy.setValue("k", "other");
    EXPECT_EQ(panel.value("k"), "v");
}

TEST(nubAbstractViewTest, ACopyTakesTheSourcesParent)
{
    nubAbstractView parent;
    nubAbstractView child(&parent);
    const auto *copy = new nubAbstractView(child); // deleted by its parent
    EXPECT_EQ(copy->parent(), &parent);
    EXPECT_EQ(parent.children().size(), 2);
}

TEST(nubAbstractViewTest, AssignmentTakesTheFrameworksTablesAlone)
{
    PanelView from;
    from.setValue("k", "v");
    from.state()->zoom = 3;
    PanelView to;
    MessageCapture messages;
    static_cast<nubAbstractView &>(to) = from;
    EXPECT_EQ(to.value("k"), "v");
    EXPECT_EQ(to.state()->zoom, 1);
    EXPECT_TRUE(messages.lines().isEmpty());
}

TEST(nubAbstractViewTest, CloningGivesNothingUnlessAClassSuppliesIt)
{
    PanelView panel;
    EXPECT_EQ(nubAbstractView().clone(), nullptr);
    EXPECT_EQ(panel.clone(), nullptr);
}
