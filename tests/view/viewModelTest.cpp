// Views as classes to derive from.

#include <kelCore/view/kelView.h>
#include <kelCore/view/kelViewEventTimeline.h>
#include <kelCore/view/kelViewEventTimeline_p.h>
#include <kelCore/view/kelViewRGBD.h>
#include <kelCore/view/kelViewRGBD_p.h>
#include <kelCore/view/kelView_p.h>

#include <gtest/gtest.h>

#include <QGraphicsPixmapItem>

#include <memory>
#include <type_traits>

namespace {

template <class ViewPrivate> struct OwnPrivate : ViewPrivate
{
    explicit OwnPrivate(int *counter) : ended(counter) { }
    ~OwnPrivate() override { ++*ended; }

    int *ended;
    int value = 7;
};

template <class View, class ViewPrivate> class Own : public View
{
public:
    explicit Own(int *ended, QObject *parent = nullptr)
        : View(*new OwnPrivate<ViewPrivate>(ended), parent) { }
    OwnPrivate<ViewPrivate> &d() { return static_cast<OwnPrivate<ViewPrivate> &>(*this->nub_d); }
};

using Plain = Own<kelView, kelViewPrivate>;
using Rgbd = Own<kelViewRGBD, kelViewRGBDPrivate>;
using Timeline = Own<kelViewEventTimeline, kelViewEventTimelinePrivate>;

template <class View> class viewModelTest : public testing::Test
{ };

using Views = testing::Types<Plain, Rgbd, Timeline>;

/// A class that carries its own state along when it is copied.
class Copied : public kelView
{
public:
    explicit Copied(int *ended) : kelView(*new OwnPrivate<kelViewPrivate>(ended)) { }
    Copied(const Copied &other) : kelView(*new OwnPrivate<kelViewPrivate>(other.d()), other.parent()) { }
    OwnPrivate<kelViewPrivate> &d() const { return static_cast<OwnPrivate<kelViewPrivate> &>(*nub_d); }
};

class Assigned : public kelView
{
public:
    void copy(const nubAbstractObject &other) override
    {
        kelView::copy(other);
        ++copies;
    }
    using kelView::copy;
    int copies = 0;
};

} // namespace

TYPED_TEST_SUITE(viewModelTest, Views);

TYPED_TEST(viewModelTest, AClassWithAPrivateClassOfItsOwnIsAView)
{
    QObject parent;
    int ended = 0;
    auto view = std::make_unique<TypeParam>(&ended, &parent);
    EXPECT_EQ(view->parent(), &parent);
    EXPECT_EQ(view->d().value, 7);
    ASSERT_NE(view->widget(), nullptr);
    EXPECT_EQ(view->widget(), view->d().view);
    EXPECT_EQ(view->d().view->scene(), &view->d().scene);
    view->updateDisplay();
    EXPECT_EQ(ended, 0);
    view.reset();
    EXPECT_EQ(ended, 1);
}

TYPED_TEST(viewModelTest, TheConstructorForDerivedClassesIsForThemAlone)
{
    EXPECT_FALSE((std::is_constructible_v<kelView, kelViewPrivate &>));
    EXPECT_FALSE((std::is_constructible_v<kelViewRGBD, kelViewRGBDPrivate &>));
    EXPECT_FALSE((std::is_constructible_v<kelViewEventTimeline, kelViewEventTimelinePrivate &>));
}

TEST(kelViewModelTest, ADerivedClassCanBeCopiedWithItsState)
{
    int ended = 0;
    {
        Copied view(&ended);
        view.d().value = 9;
        Copied copy(view);
        EXPECT_EQ(copy.d().value, 9);
        EXPECT_NE(copy.widget(), view.widget());
        EXPECT_EQ(copy.d().acquisitionItem->scene(), &copy.d().scene);
    }
    EXPECT_EQ(ended, 2);
}

TEST(kelViewModelTest, AssignmentCallsTheVirtualCopy)
{
    Assigned view;
    const kelView other;
    static_cast<kelView &>(view) = other;
    EXPECT_EQ(view.copies, 1);
}

TEST(kelViewModelTest, TheOtherViewsCannotBeCopied)
{
    EXPECT_FALSE(std::is_copy_constructible_v<kelViewRGBD> || std::is_copy_assignable_v<kelViewRGBD>);
    EXPECT_FALSE(std::is_copy_constructible_v<
                     kelViewEventTimeline> || std::is_copy_assignable_v<kelViewEventTimeline>);
}
