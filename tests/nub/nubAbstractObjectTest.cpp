#include <nubCore/nubAbstractObject_p.h>

#include "support/Capture.h"

#include <QCoreApplication>
#include <QEvent>
#include <QPointer>

#include <memory>

namespace {

class CountedPrivate : public nubAbstractObjectPrivate
{
public:
    explicit CountedPrivate(int *deleted) : m_deleted(deleted) { }
    ~CountedPrivate() override { ++*m_deleted; }

private:
    int *m_deleted;
};

/// An object whose private part the tests can see.
class Object : public nubAbstractObject
{
public:
    using nubAbstractObject::nubAbstractObject;
    Object() = default;
    explicit Object(int *deleted) : nubAbstractObject(*new CountedPrivate(deleted)) { }

    nubAbstractObjectPrivate &state() { return *nub_d; }

    void fillTables()
    {
        state().values = {{"a", {"1", "2"}}};
        state().properties = {{"b", "3"}};
        state().metaData = {{"c", {"4"}}};
        state().deferredDeletion = true;
    }
    bool hasTablesOf(Object &other)
    {
        return state().values == other.state().values && state().properties == other.state().properties
            && state().metaData == other.state().metaData
            && state().deferredDeletion == other.state().deferredDeletion;
    }
};

/// Counts how often the virtual copy runs.
class CopyCounter : public nubAbstractObject
{
public:
    void copy(const nubAbstractObject &) override { ++copies; }
    int copies = 0;
};

} // namespace

TEST(nubAbstractObjectTest, AFreshObjectIsEmpty)
{
    Object object;
    EXPECT_EQ(object.parent(), nullptr);
    EXPECT_EQ(object.state().q_ptr, &object);
    EXPECT_EQ(object.state().retainCount, 0);
    EXPECT_TRUE(object.state().values.isEmpty());
    EXPECT_TRUE(object.state().properties.isEmpty());
    EXPECT_TRUE(object.state().metaData.isEmpty());
    EXPECT_FALSE(object.state().deferredDeletion);
}

TEST(nubAbstractObjectTest, EveryOperationHasAQuietDefault)
{
    const LogLevel level(0);
    MessageCapture messages;
    nubAbstractObject object;
    const nubAbstractObject other;
    EXPECT_EQ(object.clone(), nullptr);
    EXPECT_TRUE(object.isEqual(object));
    EXPECT_FALSE(object.isEqual(other));
    EXPECT_EQ(object.description(), QString());
    EXPECT_EQ(object.identifier(), "nubAbstractObject");
    EXPECT_EQ(object.name(), QString());
    object.onPropertySet("key", "value");
    object.onMetaDataSet("key", "value");
    object.copy(other);
    EXPECT_TRUE(messages.lines().isEmpty());
}

TEST(nubAbstractObjectTest, TheNameIsTheObjectName)
{
    nubAbstractObject object;
    object.setObjectName("camera");
    EXPECT_EQ(object.name(), "camera");
}

TEST(nubAbstractObjectTest, TheParentOwnsItsChildren)
{
    auto parent = std::make_unique<nubAbstractObject>();
    const QPointer<nubAbstractObject> child = new nubAbstractObject(parent.get());
    EXPECT_EQ(child->parent(), parent.get());
    parent.reset();
    EXPECT_TRUE(child.isNull());
}

TEST(nubAbstractObjectTest, ThePrivateObjectPointsBackAndDiesWithTheObject)
{
    int deleted = 0;
    {
        Object object(&deleted);
        EXPECT_EQ(object.state().q_ptr, &object);
        EXPECT_EQ(deleted, 0);
    }
    EXPECT_EQ(deleted, 1);
}

TEST(nubAbstractObjectTest, ACopyCarriesTheTablesAndTheParent)
{
    nubAbstractObject parent;
    Object object(&parent);
    object.fillTables();
    const auto copy = std::make_unique<Object>(object);
    EXPECT_TRUE(copy->hasTablesOf(object));
    EXPECT_EQ(copy->state().values.value("a"), (QStringList{"1", "2"}));
    EXPECT_EQ(copy->parent(), &parent);
}

TEST(nubAbstractObjectTest, ACopyHasItsOwnPrivateObjectThatPointsBackToIt)
{
    Object object;
    object.fillTables();
    Object copy(object);
    EXPECT_NE(&copy.state(), &object.state());
    EXPECT_EQ(copy.state().q_ptr, &copy);
    EXPECT_EQ(object.state().q_ptr, &object);
    copy.state().properties.insert("b", "changed");
    EXPECT_EQ(object.state().properties.value("b"), "3");
}

TEST(nubAbstractObjectTest, ACopysRetainCountStartsFresh)
{
    Object object;
    object.retain();
    object.retain();
    Object copy(object);
    EXPECT_EQ(copy.retain(), 1);
    EXPECT_EQ(object.retain(), 3);
}

TEST(nubAbstractObjectTest, AssignmentCarriesTheTablesAndNothingElse)
{
    nubAbstractObject parent;
    Object from(&parent);
    from.fillTables();
    from.retain();
    Object to;
    to = from;
    EXPECT_TRUE(to.hasTablesOf(from));
    EXPECT_EQ(to.parent(), nullptr);
    EXPECT_EQ(to.state().q_ptr, &to);
    EXPECT_EQ(to.state().retainCount, 0);
}

TEST(nubAbstractObjectTest, AssignmentCallsTheVirtualCopyAndReturnsTheObject)
{
    CopyCounter object;
    nubAbstractObject &base = object;
    const nubAbstractObject other;
    EXPECT_EQ(&(base = other), &object);
    EXPECT_EQ(object.copies, 1);
}

TEST(nubAbstractObjectTest, CopyingAnObjectToItselfLosesNothing)
{
    Object object;
    object.fillTables();
    object.copy(object);
    EXPECT_EQ(object.state().values.value("a"), (QStringList{"1", "2"}));
    EXPECT_EQ(object.state().properties.value("b"), "3");
    EXPECT_EQ(object.state().metaData.value("c"), QStringList{"4"});
}

TEST(nubAbstractObjectTest, RetainAndReleaseCountAndTheLastReleaseDeletes)
{
    const QPointer<nubAbstractObject> object = new nubAbstractObject;
    EXPECT_EQ(object->retain(), 1);
    EXPECT_EQ(object->retain(), 2);
    EXPECT_EQ(object->release(), 1);
    EXPECT_FALSE(object.isNull());
    EXPECT_EQ(object->release(), 0);
    EXPECT_TRUE(object.isNull());
}

TEST(nubAbstractObjectTest, ReleasingWithoutRetainingDoesNothing)
{
    const auto object = std::make_unique<Object>();
    EXPECT_EQ(object->release(), 0);
    EXPECT_EQ(object->release(), 0);
    EXPECT_EQ(object->state().retainCount, 0);
    EXPECT_EQ(object->retain(), 1);
}

TEST(nubAbstractObjectTest, ADeferredDeletionWaitsForTheEventLoop)
{
    const QPointer<Object> object = new Object;
    object->state().deferredDeletion = true;
    object->retain();
    EXPECT_EQ(object->release(), 0);
    EXPECT_FALSE(object.isNull());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(object.isNull());
}
