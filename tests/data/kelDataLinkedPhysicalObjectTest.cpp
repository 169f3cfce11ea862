#include <kelCore/data/kelDataLinkedPhysicalObject.h>

// Nothing more is needed to use what the getters give.
static_assert(sizeof(*kelDataLinkedPhysicalObject().getFatherLinks().front()) > 0);

#include <kelCore/data/kelDataBlob.h>
#include <kelCore/data/kelDataLinkedPhysicalObject_p.h>

#include "support/Capture.h"

#include <QPointer>

#include <memory>
#include <type_traits>

namespace {
using Object = QSharedPointer<kelDataLinkedPhysicalObject>;
using Link = QSharedPointer<kelDataLinkedPhysicalObjectLink>;
using Objects = std::list<Object>;
using Links = std::list<Link>;

Object newObject() { return Object(new kelDataLinkedPhysicalObject); }
Link newLink() { return Link(new kelDataLinkedPhysicalObjectLink); }

/// Fills the list of sons, as a derived class may.
class OpenObject : public kelDataLinkedPhysicalObject
{
public:
    using kelDataLinkedPhysicalObject::fatherLinks;
    using kelDataLinkedPhysicalObject::fathers;
    using kelDataLinkedPhysicalObject::sonLinks;
    using kelDataLinkedPhysicalObject::sons;
};

void expectLists(const kelDataLinkedPhysicalObject &object, const Objects &fathers, const Objects &sons,
                 const Links &fatherLinks, const Links &sonLinks)
{
    EXPECT_EQ(object.getFathers(), fathers);
    EXPECT_EQ(object.getSons(), sons);
    EXPECT_EQ(object.getFatherLinks(), fatherLinks);
    EXPECT_EQ(object.getSonLinks(), sonLinks);
}

void expectOutsideTheGraph(const kelDataLinkedPhysicalObject &object) { expectLists(object, {}, {}, {}, {}); }

/// Joins the two as callers do, and returns the link.
Link join(const Object &father, const Object &son)
{
    const Link link = son->addFather(father);
    link->setSon(son);
    return link;
}

template <class Actual, class Expected> constexpr bool is = std::is_same_v<Actual, Expected>;
} // namespace

TEST(kelDataLinkedPhysicalObjectTest, AFreshObjectStandsOutsideTheGraph)
{
    const kelDataLinkedPhysicalObject object;
    expectOutsideTheGraph(object);
    EXPECT_EQ(object.identifier(), "kelDataLinkedPhysicalObject");
    EXPECT_STREQ(object.metaObject()->className(), "kelDataLinkedPhysicalObject");
    EXPECT_EQ(object.parent(), nullptr);
    EXPECT_TRUE((std::is_base_of_v<kelAbstractData, kelDataLinkedPhysicalObject>));
}

TEST(kelDataLinkedPhysicalObjectTest, TheFourListsAreMembersOfTheObjectInTheirOrder)
{
    EXPECT_EQ(sizeof(kelDataLinkedPhysicalObject),
              sizeof(nubAbstractObject) + 2 * sizeof(Objects) + 2 * sizeof(Links));
    EXPECT_EQ(sizeof(kelDataLinkedPhysicalObjectPrivate), sizeof(kelAbstractDataPrivate));
    OpenObject object;
    const auto *fathers = reinterpret_cast<const char *>(&object.fathers);
    EXPECT_EQ(fathers - reinterpret_cast<const char *>(&object), std::ptrdiff_t(sizeof(nubAbstractObject)));
    EXPECT_EQ(reinterpret_cast<const char *>(&object.sons) - fathers, std::ptrdiff_t(sizeof(Objects)));
    EXPECT_EQ(reinterpret_cast<const char *>(&object.fatherLinks) - fathers,
              std::ptrdiff_t(2 * sizeof(Objects)));
    EXPECT_EQ(reinterpret_cast<const char *>(&object.sonLinks) - fathers,
              std::ptrdiff_t(2 * sizeof(Objects) + sizeof(Links)));
}

TEST(kelDataLinkedPhysicalObjectTest, TheOperationsHaveTheirTypes)
{
    using O = kelDataLinkedPhysicalObject;
    EXPECT_TRUE((is<decltype(&O::getFathers), Objects (O::*)() const>));
    EXPECT_TRUE((is<decltype(&O::getSons), Objects (O::*)() const>));
    EXPECT_TRUE((is<decltype(&O::getFatherLinks), Links (O::*)() const>));
    EXPECT_TRUE((is<decltype(&O::getSonLinks), Links (O::*)() const>));
    EXPECT_TRUE((is<decltype(&O::addFatherLink), void (O::*)(Link)>));
    EXPECT_TRUE((is<decltype(&O::addSonLink), void (O::*)(Link &)>));
    EXPECT_TRUE((is<decltype(&O::removeFatherLink), void (O::*)(Link)>));
    EXPECT_TRUE((is<decltype(&O::removeSonLink), void (O::*)(Link)>));
    EXPECT_TRUE((is<decltype(&O::removeAllSonLinks), void (O::*)()>));
    EXPECT_TRUE((is<decltype(&O::addSon), Link (O::*)(Object)>));
    EXPECT_TRUE((is<decltype(&O::addFather), Link (O::*)(Object)>));
    EXPECT_TRUE((is<decltype(&O::releaseLPO), void (O::*)()>));
}

TEST(kelDataLinkedPhysicalObjectTest, AddFatherListsTheFatherAndTheLinkAndLeavesTheSonToTheCaller)
{
    const Object object = newObject();
    const Object father = newObject();
    const Link link = object->addFather(father);
    expectLists(*object, {father}, {}, {link}, {});
    expectLists(*father, {}, {}, {}, {link});
    EXPECT_EQ(link->getFather(), father);
    EXPECT_TRUE(link->getSon().isNull());
    EXPECT_EQ(link->getReliability(), 1.0);
    EXPECT_EQ(link->parent(), nullptr);
    father->releaseLPO();
}

TEST(kelDataLinkedPhysicalObjectTest, AddSonListsTheLinkAtTheSonAndChangesNothingElse)
{
    const Object object = newObject();
    const Object son = newObject();
    const Link link = object->addSon(son);
    expectOutsideTheGraph(*object);
    expectLists(*son, {}, {}, {link}, {});
    EXPECT_EQ(link->getSon(), son);
    EXPECT_TRUE(link->getFather().isNull());
    EXPECT_EQ(link->getReliability(), 1.0);
    EXPECT_EQ(link->parent(), nullptr);
    son->releaseLPO();
}

TEST(kelDataLinkedPhysicalObjectTest, FathersAndLinksAreAppendedInOrder)
{
    const Object object = newObject();
    const Object a = newObject();
    const Object b = newObject();
    const Link toA = object->addFather(a);
    const Link toB = object->addFather(b);
    const Link toAAgain = object->addFather(a);
    EXPECT_NE(toA, toAAgain);
    expectLists(*object, {a, b, a}, {}, {toA, toB, toAAgain}, {});
    expectLists(*a, {}, {}, {}, {toA, toAAgain});
    const Link fromB = b->addSon(object);
    EXPECT_EQ(object->getFatherLinks(), (Links{toA, toB, toAAgain, fromB}));
    for (const Object &each : {object, a, b})
        each->releaseLPO();
}

TEST(kelDataLinkedPhysicalObjectTest, ANullFatherIsListedNowhere)
{
    const Object object = newObject();
    const Link link = object->addFather(Object());
    ASSERT_FALSE(link.isNull());
    EXPECT_TRUE(link->getFather().isNull());
    EXPECT_TRUE(link->getSon().isNull());
    EXPECT_EQ(link->getReliability(), 1.0);
    expectOutsideTheGraph(*object);
}

TEST(kelDataLinkedPhysicalObjectTest, ANullSonIsListedNowhere)
{
    const Object object = newObject();
    const Link link = object->addSon(Object());
    ASSERT_FALSE(link.isNull());
    EXPECT_TRUE(link->getFather().isNull());
    EXPECT_TRUE(link->getSon().isNull());
    EXPECT_EQ(link->getReliability(), 1.0);
    expectOutsideTheGraph(*object);
}

TEST(kelDataLinkedPhysicalObjectTest, TheLinksItCreatesLiveAsLongAsAnyoneRefersToThem)
{
    const Object object = newObject();
    const Object son = newObject();
    Link link = object->addSon(son);
    const QPointer<kelDataLinkedPhysicalObjectLink> alive(link.data());
    // As an object it is counted by the same references.
    QSharedPointer<QObject> shared = link;
    EXPECT_EQ(qSharedPointerObjectCast<kelDataLinkedPhysicalObjectLink>(shared), link);
    link.clear();
    son->releaseLPO();
    EXPECT_FALSE(alive.isNull());
    shared.clear();
    EXPECT_TRUE(alive.isNull());
}

TEST(kelDataLinkedPhysicalObjectTest, LinksAreAppendedWithoutACheckForDuplicates)
{
    kelDataLinkedPhysicalObject object;
    const Link a = newLink();
    Link b = newLink();
    object.addFatherLink(a);
    object.addFatherLink(b);
    object.addFatherLink(a);
    expectLists(object, {}, {}, {a, b, a}, {});
    object.addSonLink(b);
    object.addSonLink(b);
    EXPECT_FALSE(b.isNull());
    expectLists(object, {}, {}, {a, b, a}, {b, b});
}

TEST(kelDataLinkedPhysicalObjectTest, RemovingALinkRemovesItsFirstEntryAlone)
{
    kelDataLinkedPhysicalObject object;
    Link a = newLink();
    Link b = newLink();
    for (Link link : {b, a, a, b}) {
        object.addFatherLink(link);
        object.addSonLink(link);
    }
    object.removeFatherLink(a);
    expectLists(object, {}, {}, {b, a, b}, {b, a, a, b});
    object.removeFatherLink(b);
    expectLists(object, {}, {}, {a, b}, {b, a, a, b});
    object.removeSonLink(b);
    expectLists(object, {}, {}, {a, b}, {a, a, b});
    object.removeSonLink(a);
    expectLists(object, {}, {}, {a, b}, {a, b});
}

TEST(kelDataLinkedPhysicalObjectTest, RemovingDropsTheObjectsReference)
{
    kelDataLinkedPhysicalObject object;
    Link link = newLink();
    const QPointer<kelDataLinkedPhysicalObjectLink> alive(link.data());
    object.addSonLink(link);
    object.addFatherLink(link);
    object.removeSonLink(link);
    object.removeFatherLink(link);
    EXPECT_FALSE(alive.isNull());
    link.clear();
    EXPECT_TRUE(alive.isNull());
}

TEST(kelDataLinkedPhysicalObjectTest, RemovingAnAbsentLinkChangesNothing)
{
    kelDataLinkedPhysicalObject object;
    object.removeFatherLink(newLink());
    object.removeSonLink(newLink());
    object.removeFatherLink(Link());
    object.removeSonLink(Link());
    expectOutsideTheGraph(object);

    Link link = newLink();
    object.addFatherLink(link);
    object.addSonLink(link);
    object.removeFatherLink(newLink());
    object.removeSonLink(newLink());
    object.removeFatherLink(Link());
    object.removeSonLink(Link());
    expectLists(object, {}, {}, {link}, {link});
}

TEST(kelDataLinkedPhysicalObjectTest, RemovingAllSonLinksEmptiesThemAlone)
{
    const Object father = newObject();
    const Object object = newObject();
    const Object son = newObject();
    const Link up = join(father, object);
    const Link down = join(object, son);
    object->removeAllSonLinks();
    expectLists(*object, {father}, {}, {up}, {});
    expectLists(*son, {object}, {}, {down}, {});
    for (const Object &each : {father, object, son})
        each->releaseLPO();
}

TEST(kelDataLinkedPhysicalObjectTest, RemovingAllSonLinksMayTakeTheObjectAlong)
{
    Object object = newObject();
    const QPointer<kelDataLinkedPhysicalObject> alive(object.data());
    newObject()->addFather(object);
    object.clear();
    ASSERT_FALSE(alive.isNull());
    alive->removeAllSonLinks();
    EXPECT_TRUE(alive.isNull());
}

TEST(kelDataLinkedPhysicalObjectTest, TheGettersReturnCopies)
{
    const Object father = newObject();
    const Object object = newObject();
    const Object son = newObject();
    join(father, object);
    join(object, son);
    object->getFathers().clear();
    object->getFatherLinks().clear();
    auto sonLinks = object->getSonLinks();
    sonLinks.clear();
    EXPECT_EQ(object->getFathers().size(), 1u);
    EXPECT_EQ(object->getFatherLinks().size(), 1u);
    EXPECT_EQ(object->getSonLinks().size(), 1u);
    for (const Object &each : {father, object, son})
        each->releaseLPO();
}

TEST(kelDataLinkedPhysicalObjectTest, ReleaseEmptiesTheListsAndTakesTheLinksFromTheSons)
{
    const Object grandfather = newObject();
    const Object father = newObject();
    const Object mother = newObject();
    const Object son = newObject();
    const Object daughter = newObject();
    const Link up = join(grandfather, father);
    const Link toSon = join(father, son);
    const Link fromMother = join(mother, son);
    const Link toDaughter = join(father, daughter);

    father->releaseLPO();
    expectOutsideTheGraph(*father);
    EXPECT_EQ(son->getFatherLinks(), (Links{fromMother}));
    EXPECT_TRUE(daughter->getFatherLinks().empty());

    // What the neighbours hold otherwise stays, and so do the ends of the links.
    EXPECT_EQ(son->getFathers(), (Objects{father, mother}));
    EXPECT_EQ(grandfather->getSonLinks(), (Links{up}));
    EXPECT_EQ(mother->getSonLinks(), (Links{fromMother}));
    EXPECT_EQ(toSon->getFather(), father);
    EXPECT_EQ(toSon->getSon(), son);
    EXPECT_EQ(toDaughter->getSon(), daughter);
    for (const Object &each : {grandfather, mother, son, daughter})
        each->releaseLPO();
}

TEST(kelDataLinkedPhysicalObjectTest, ReleaseRemovesAsManyEntriesAtTheSonAsItHasItself)
{
    const Object father = newObject();
    const Object son = newObject();
    Link link(new kelDataLinkedPhysicalObjectLink(father, son, 1));
    for (int i = 0; i < 3; ++i)
        son->addFatherLink(link);
    father->addSonLink(link);
    father->addSonLink(link);
    father->releaseLPO();
    EXPECT_EQ(son->getFatherLinks(), (Links{link}));
    EXPECT_TRUE(father->getSonLinks().empty());
    son->releaseLPO();
}

TEST(kelDataLinkedPhysicalObjectTest, ReleaseSkipsLinksWithoutASon)
{
    const Object father = newObject();
    const Object son = newObject();
    son->addFather(father);
    Link absent;
    father->addSonLink(absent);
    const Link complete = join(father, son);
    EXPECT_EQ(father->getSonLinks().size(), 3u);
    father->releaseLPO();
    expectOutsideTheGraph(*father);
    // The link that was never completed stays with the son; the complete one is gone.
    ASSERT_EQ(son->getFatherLinks().size(), 1u);
    EXPECT_NE(son->getFatherLinks().front(), complete);
    son->releaseLPO();
}

TEST(kelDataLinkedPhysicalObjectTest, ReleaseToleratesALinkThatItsSonDoesNotList)
{
    const Object father = newObject();
    const Object son = newObject();
    const Link other = newLink();
    son->addFatherLink(other);
    Link link(new kelDataLinkedPhysicalObjectLink(father, son, 1));
    father->addSonLink(link);
    father->releaseLPO();
    EXPECT_EQ(son->getFatherLinks(), (Links{other}));
    EXPECT_TRUE(father->getSonLinks().empty());
}

TEST(kelDataLinkedPhysicalObjectTest, ReleaseEmptiesTheSonsToo)
{
    OpenObject object;
    const Object son = newObject();
    object.sons.push_back(son);
    EXPECT_EQ(object.getSons(), (Objects{son}));
    object.releaseLPO();
    EXPECT_TRUE(object.getSons().empty());
}

TEST(kelDataLinkedPhysicalObjectTest, ReleaseDropsFatherLinksSonLinksFathersAndSonsInThisOrder)
{
    OpenObject object;
    QStringList order;
    const auto watched = [&order](auto pointer, const char *name) {
        QObject::connect(pointer.data(), &QObject::destroyed, [&order, name] { order << name; });
        return pointer;
    };
    object.sons.push_back(watched(newObject(), "son"));
    object.fathers.push_back(watched(newObject(), "father"));
    object.sonLinks.push_back(watched(newLink(), "first son link"));
    object.sonLinks.push_back(watched(newLink(), "second son link"));
    object.fatherLinks.push_back(watched(newLink(), "father link"));
    object.releaseLPO();
    EXPECT_EQ(order, (QStringList{"father link", "first son link", "second son link", "father", "son"}));
}

TEST(kelDataLinkedPhysicalObjectTest, ReleasingTwiceIsHarmless)
{
    const Object father = newObject();
    const Object son = newObject();
    join(father, son);
    father->releaseLPO();
    father->releaseLPO();
    expectOutsideTheGraph(*father);
    son->releaseLPO();
}

TEST(kelDataLinkedPhysicalObjectTest, AFatherAndItsSonKeepEachOtherAliveUntilTheFatherIsReleased)
{
    Object father = newObject();
    Object son = newObject();
    join(father, son);
    const QPointer<kelDataLinkedPhysicalObject> fatherAlive(father.data());
    const QPointer<kelDataLinkedPhysicalObject> sonAlive(son.data());
    const QPointer<kelDataLinkedPhysicalObjectLink> linkAlive(son->getFatherLinks().front().data());
    son.clear();
    Object holder = father;
    father.clear();
    EXPECT_FALSE(sonAlive.isNull());
    holder->releaseLPO();
    EXPECT_TRUE(linkAlive.isNull());
    EXPECT_TRUE(sonAlive.isNull());
    EXPECT_FALSE(fatherAlive.isNull());
    holder.clear();
    EXPECT_TRUE(fatherAlive.isNull());
}

TEST(kelDataLinkedPhysicalObjectTest, DroppingEveryOutsideReferenceDestroysNoCircle)
{
    QPointer<kelDataLinkedPhysicalObject> father;
    QPointer<kelDataLinkedPhysicalObject> son;
    {
        const Object a = newObject();
        const Object b = newObject();
        join(a, b);
        father = a.data();
        son = b.data();
    }
    ASSERT_FALSE(father.isNull());
    ASSERT_FALSE(son.isNull());
    // Nothing else refers to the father, so the release takes it along, and the son with it.
    father->releaseLPO();
    EXPECT_TRUE(father.isNull());
    EXPECT_TRUE(son.isNull());
}

TEST(kelDataLinkedPhysicalObjectTest, AnObjectThatIsItsOwnFatherIsReleased)
{
    Object object = newObject();
    const QPointer<kelDataLinkedPhysicalObject> alive(object.data());
    join(object, object);
    object->releaseLPO();
    expectOutsideTheGraph(*object);
    object.clear();
    EXPECT_TRUE(alive.isNull());
}

TEST(kelDataLinkedPhysicalObjectTest, DestructionReleases)
{
    const Object son = newObject();
    Link link;
    {
        kelDataLinkedPhysicalObject father;
        link = father.addSon(son);
        father.addSonLink(link);
        EXPECT_EQ(son->getFatherLinks(), (Links{link}));
    }
    EXPECT_TRUE(son->getFatherLinks().empty());
}

TEST(kelDataLinkedPhysicalObjectTest, ACloneStandsOutsideTheGraph)
{
    auto *open = new OpenObject;
    const Object object(open);
    const Object father = newObject();
    const Object son = newObject();
    join(father, object);
    join(object, son);
    open->sons.push_back(son);
    object->addSpecificProperty("k", 7);
    QVariantMap map{{"recorded", 1}};
    object->setMap(map);

    MessageCapture messages;
    const std::unique_ptr<kelDataLinkedPhysicalObject> copy(object->clone());
    expectOutsideTheGraph(*copy);
    EXPECT_EQ(copy->getSpecificProperties(), (QVariantMap{{"k", 7}}));
    EXPECT_TRUE(copy->getMap().isEmpty());
    EXPECT_TRUE(messages.lines().isEmpty());
    EXPECT_EQ(object->getSonLinks().size(), 1u);
    EXPECT_EQ(object->getSons().size(), 1u);
    for (const Object &each : {father, object, son})
        each->releaseLPO();
}

TEST(kelDataLinkedPhysicalObjectTest, AnAssignedObjectSharesNeighboursAndLinks)
{
    auto *open = new OpenObject;
    const Object object(open);
    const Object father = newObject();
    const Object son = newObject();
    const Link up = join(father, object);
    const Link down = join(object, son);
    open->sons.push_back(son);
    object->addSpecificProperty("k", 7);
    QVariantMap map{{"recorded", 1}};
    object->setMap(map);

    const Object former = newObject();
    kelDataLinkedPhysicalObject copy;
    const Link formerLink = copy.addFather(former);
    MessageCapture messages;
    kelDataLinkedPhysicalObject &result = (copy = *object);
    EXPECT_EQ(&result, &copy);
    expectLists(copy, {father}, {son}, {up}, {down});
    expectLists(*object, {father}, {son}, {up}, {down});
    // Neighbours are not told, neither the new ones nor the former.
    EXPECT_EQ(father->getSonLinks(), (Links{up}));
    EXPECT_EQ(son->getFatherLinks(), (Links{down}));
    EXPECT_EQ(former->getSonLinks(), (Links{formerLink}));
    EXPECT_TRUE(copy.getSpecificProperties().isEmpty());
    EXPECT_TRUE(copy.getMap().isEmpty());
    EXPECT_TRUE(messages.lines().isEmpty());
    for (const Object &each : {father, object, son, former})
        each->releaseLPO();
}

TEST(kelDataLinkedPhysicalObjectTest, AssignmentThroughTheBaseIsVirtual)
{
    kelDataLinkedPhysicalObject object;
    const Link link = newLink();
    object.addFatherLink(link);
    kelDataLinkedPhysicalObject copy;
    static_cast<kelAbstractData &>(copy) = object;
    EXPECT_EQ(copy.getFatherLinks(), (Links{link}));
}

TEST(kelDataLinkedPhysicalObjectTest, SelfAssignmentLosesNothing)
{
    auto *open = new OpenObject;
    const Object object(open);
    const Object father = newObject();
    const Object son = newObject();
    const Link up = join(father, object);
    const Link down = join(object, son);
    open->sons.push_back(son);
    const kelDataLinkedPhysicalObject &same = *object;
    *object = same;
    expectLists(*object, {father}, {son}, {up}, {down});
    for (const Object &each : {father, object, son})
        each->releaseLPO();
}

TEST(kelDataLinkedPhysicalObjectTest, AssignmentMayDestroyTheObjectItTakesFrom)
{
    // The assigned object alone holds its father.
    kelDataLinkedPhysicalObject object;
    const Link link = newLink();
    OpenObject *father = new OpenObject;
    {
        const Object reference(father);
        object.addFather(reference);
        reference->removeAllSonLinks();
        object.removeFatherLink(object.getFatherLinks().front());
        father->fatherLinks.push_back(link);
        father->sonLinks.push_back(link);
        father->sons.push_back(newObject());
    }
    const QPointer<kelDataLinkedPhysicalObject> alive(father);
    ASSERT_FALSE(alive.isNull());
    object.copy(*alive);
    EXPECT_TRUE(alive.isNull());
    EXPECT_TRUE(object.getFathers().empty());
    EXPECT_EQ(object.getSons().size(), 1u);
    EXPECT_EQ(object.getFatherLinks(), (Links{link}));
    EXPECT_EQ(object.getSonLinks(), (Links{link}));
}

TEST(kelDataLinkedPhysicalObjectTest, CopyFromABlobWarnsOnceAndKeepsTheLists)
{
    auto *open = new OpenObject;
    const Object object(open);
    const Object father = newObject();
    const Object son = newObject();
    const Link up = join(father, object);
    const Link down = join(object, son);
    open->sons.push_back(son);
    const kelDataBlob blob;
    MessageCapture messages;
    object->copy(blob);
    EXPECT_EQ(messages.lines(), QStringList{slicingWarning()});
    expectLists(*object, {father}, {son}, {up}, {down});
    for (const Object &each : {father, object, son})
        each->releaseLPO();
}
