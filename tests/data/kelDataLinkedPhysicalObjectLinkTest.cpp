#include <kelCore/data/kelDataLinkedPhysicalObjectLink.h>

// Nothing more is needed to use what the getters give.
static_assert(sizeof(*kelDataLinkedPhysicalObjectLink().getFather()) > 0);

#include <kelCore/data/kelDataLinkedPhysicalObjectLink_p.h>

#include "support/Capture.h"

#include <QPointer>

#include <memory>
#include <type_traits>

namespace {
using Object = QSharedPointer<kelDataLinkedPhysicalObject>;
using Link = QSharedPointer<kelDataLinkedPhysicalObjectLink>;

Object newObject() { return Object(new kelDataLinkedPhysicalObject); }

/// A link of another kind.
class NamedLink : public kelDataLinkedPhysicalObjectLink
{
public:
    NamedLink() = default;
    NamedLink(const NamedLink &other) : kelDataLinkedPhysicalObjectLink(other) { }
    QString identifier() const override { return QStringLiteral("NamedLink"); }
};

/// Claims to be a link without being one.
class Impostor : public kelDataLinkedPhysicalObject
{
public:
    QString identifier() const override { return QStringLiteral("kelDataLinkedPhysicalObjectLink"); }
};

template <class Actual, class Expected> constexpr bool is = std::is_same_v<Actual, Expected>;
} // namespace

TEST(kelDataLinkedPhysicalObjectLinkTest, AFreshLinkHasNoEndsAndFullReliability)
{
    const kelDataLinkedPhysicalObjectLink link;
    EXPECT_TRUE(link.getFather().isNull());
    EXPECT_TRUE(link.getSon().isNull());
    EXPECT_EQ(link.getReliability(), 1.0);
    EXPECT_EQ(link.parent(), nullptr);
    EXPECT_EQ(link.identifier(), "kelDataLinkedPhysicalObjectLink");
    EXPECT_STREQ(link.metaObject()->className(), "kelDataLinkedPhysicalObjectLink");
}

TEST(kelDataLinkedPhysicalObjectLinkTest, ItStandsDirectlyOnTheFrameworksData)
{
    EXPECT_STREQ(kelDataLinkedPhysicalObjectLink::staticMetaObject.superClass()->className(),
                 "nubAbstractData");
    EXPECT_FALSE((std::is_base_of_v<kelAbstractData, kelDataLinkedPhysicalObjectLink>));
    EXPECT_EQ(sizeof(kelDataLinkedPhysicalObjectLinkPrivate), sizeof(nubAbstractDataPrivate));
}

TEST(kelDataLinkedPhysicalObjectLinkTest, TheEndsAndTheReliabilityAreMembersOfTheLink)
{
    struct Members
    {
        Object son;
        double reliability;
        Object father;
    };
    EXPECT_EQ(sizeof(kelDataLinkedPhysicalObjectLink), sizeof(nubAbstractObject) + sizeof(Members));
}

TEST(kelDataLinkedPhysicalObjectLinkTest, TheOperationsHaveTheirTypes)
{
    using L = kelDataLinkedPhysicalObjectLink;
    EXPECT_TRUE((is<decltype(&L::getFather), Object (L::*)() const>));
    EXPECT_TRUE((is<decltype(&L::setFather), void (L::*)(Object)>));
    EXPECT_TRUE((is<decltype(&L::getSon), Object (L::*)() const>));
    EXPECT_TRUE((is<decltype(&L::setSon), void (L::*)(Object)>));
    EXPECT_TRUE((is<decltype(&L::getReliability), double (L::*)() const>));
    EXPECT_TRUE((is<decltype(&L::setReliability), void (L::*)(double)>));
    EXPECT_TRUE((std::is_constructible_v<L, Object, Object, double>));
}

TEST(kelDataLinkedPhysicalObjectLinkTest, TheConstructorStoresFatherSonAndReliability)
{
    const Object father = newObject();
    const Object son = newObject();
    const kelDataLinkedPhysicalObjectLink link(father, son, 0.25);
    EXPECT_EQ(link.getFather(), father);
    EXPECT_EQ(link.getSon(), son);
    EXPECT_EQ(link.getReliability(), 0.25);
    EXPECT_EQ(link.parent(), nullptr);
}

TEST(kelDataLinkedPhysicalObjectLinkTest, SettersStoreWhatTheyAreGiven)
{
    const Object father = newObject();
    const Object son = newObject();
    kelDataLinkedPhysicalObjectLink link;
    link.setFather(father);
    EXPECT_TRUE(link.getSon().isNull());
    link.setSon(son);
    link.setReliability(-3.5);
    EXPECT_EQ(link.getFather(), father);
    EXPECT_EQ(link.getSon(), son);
    EXPECT_EQ(link.getReliability(), -3.5);
    link.setFather(Object());
    link.setSon(Object());
    EXPECT_TRUE(link.getFather().isNull());
    EXPECT_TRUE(link.getSon().isNull());
}

TEST(kelDataLinkedPhysicalObjectLinkTest, SettingAnEndChangesNoObject)
{
    const Object father = newObject();
    const Object son = newObject();
    const Link link(new kelDataLinkedPhysicalObjectLink(father, son, 1));
    link->setFather(son);
    link->setSon(father);
    for (const Object &object : {father, son}) {
        EXPECT_TRUE(object->getFathers().empty());
        EXPECT_TRUE(object->getSons().empty());
        EXPECT_TRUE(object->getFatherLinks().empty());
        EXPECT_TRUE(object->getSonLinks().empty());
    }
}

TEST(kelDataLinkedPhysicalObjectLinkTest, ItHoldsBothEnds)
{
    QPointer<kelDataLinkedPhysicalObject> father;
    QPointer<kelDataLinkedPhysicalObject> son;
    {
        kelDataLinkedPhysicalObjectLink link(newObject(), newObject(), 1);
        father = link.getFather().data();
        son = link.getSon().data();
        EXPECT_FALSE(father.isNull());
        EXPECT_FALSE(son.isNull());
    }
    EXPECT_TRUE(father.isNull());
    EXPECT_TRUE(son.isNull());
}

TEST(kelDataLinkedPhysicalObjectLinkTest, DestructionDropsTheFatherThenTheSon)
{
    QStringList order;
    {
        kelDataLinkedPhysicalObjectLink link(newObject(), newObject(), 1);
        QObject::connect(link.getSon().data(), &QObject::destroyed, [&] { order << "son"; });
        QObject::connect(link.getFather().data(), &QObject::destroyed, [&] { order << "father"; });
    }
    EXPECT_EQ(order, (QStringList{"father", "son"}));
}

TEST(kelDataLinkedPhysicalObjectLinkTest, ALinkMayLoseItsLastReferenceWhileAnEndIsReplaced)
{
    for (const bool son : {false, true}) {
        const QPointer<kelDataLinkedPhysicalObjectLink> link(new kelDataLinkedPhysicalObjectLink);
        Object end = newObject();
        Link reference(link.data());
        end->addSonLink(reference);
        son ? link->setSon(end) : link->setFather(end);
        end.clear();
        reference.clear();
        ASSERT_FALSE(link.isNull());
        son ? link->setSon(Object()) : link->setFather(Object());
        EXPECT_TRUE(link.isNull());
    }
}

TEST(kelDataLinkedPhysicalObjectLinkTest, CloneSharesTheEndsAndTakesTheReliability)
{
    const Object father = newObject();
    const Object son = newObject();
    kelDataLinkedPhysicalObjectLink link(father, son, 0.25);
    MessageCapture messages;
    const std::unique_ptr<kelDataLinkedPhysicalObjectLink> copy(link.clone());
    EXPECT_EQ(copy->getFather(), father);
    EXPECT_EQ(copy->getSon(), son);
    EXPECT_EQ(copy->getReliability(), 0.25);
    EXPECT_EQ(link.getFather(), father);
    EXPECT_EQ(link.getSon(), son);
    EXPECT_TRUE(messages.lines().isEmpty());
    // The copy stands in no list.
    EXPECT_TRUE(father->getSonLinks().empty());
    EXPECT_TRUE(son->getFatherLinks().empty());
}

TEST(kelDataLinkedPhysicalObjectLinkTest, TheCopyConstructorAssignsAndSoCutsDownALinkOfAnotherKind)
{
    NamedLink link;
    link.setFather(newObject());
    link.setSon(newObject());
    link.setReliability(0.25);
    MessageCapture messages;
    const NamedLink copy(link);
    EXPECT_EQ(messages.lines(), QStringList{slicingWarning()});
    EXPECT_TRUE(copy.getFather().isNull());
    EXPECT_TRUE(copy.getSon().isNull());
    EXPECT_EQ(copy.getReliability(), 1.0);
}

TEST(kelDataLinkedPhysicalObjectLinkTest, AssignmentSharesTheEndsAndTakesTheReliability)
{
    const Object father = newObject();
    const Object son = newObject();
    const kelDataLinkedPhysicalObjectLink from(father, son, 0.25);
    kelDataLinkedPhysicalObjectLink to(newObject(), newObject(), 0.5);
    const QPointer<kelDataLinkedPhysicalObject> formerFather(to.getFather().data());
    const QPointer<kelDataLinkedPhysicalObject> formerSon(to.getSon().data());
    MessageCapture messages;
    kelDataLinkedPhysicalObjectLink &result = (to = from);
    EXPECT_EQ(&result, &to);
    EXPECT_EQ(to.getFather(), father);
    EXPECT_EQ(to.getSon(), son);
    EXPECT_EQ(to.getReliability(), 0.25);
    EXPECT_TRUE(formerFather.isNull());
    EXPECT_TRUE(formerSon.isNull());
    EXPECT_EQ(from.getFather(), father);
    EXPECT_EQ(from.getSon(), son);
    EXPECT_TRUE(messages.lines().isEmpty());
}

TEST(kelDataLinkedPhysicalObjectLinkTest, AssignmentThroughTheBaseIsVirtual)
{
    const kelDataLinkedPhysicalObjectLink from(newObject(), newObject(), 0.25);
    kelDataLinkedPhysicalObjectLink to;
    static_cast<nubAbstractData &>(to) = from;
    EXPECT_EQ(to.getFather(), from.getFather());
    EXPECT_EQ(to.getReliability(), 0.25);
}

TEST(kelDataLinkedPhysicalObjectLinkTest, SelfAssignmentLosesNothing)
{
    kelDataLinkedPhysicalObjectLink link(newObject(), newObject(), 0.25);
    const Object father = link.getFather();
    const Object son = link.getSon();
    const kelDataLinkedPhysicalObjectLink &same = link;
    link = same;
    EXPECT_EQ(link.getFather(), father);
    EXPECT_EQ(link.getSon(), son);
    EXPECT_EQ(link.getReliability(), 0.25);
}

TEST(kelDataLinkedPhysicalObjectLinkTest, AssignmentMayDestroyTheLinkItTakesFrom)
{
    // The father of `to` alone holds `from`.
    kelDataLinkedPhysicalObjectLink to(newObject(), newObject(), 0.5);
    const Object father = newObject();
    const Object son = newObject();
    Link from(new kelDataLinkedPhysicalObjectLink(father, son, 0.25));
    to.getFather()->addSonLink(from);
    const QPointer<kelDataLinkedPhysicalObjectLink> source(from.data());
    from.clear();
    to.copy(*source);
    EXPECT_TRUE(source.isNull());
    EXPECT_EQ(to.getFather(), father);
    EXPECT_EQ(to.getSon(), son);
    EXPECT_EQ(to.getReliability(), 0.25);
}

TEST(kelDataLinkedPhysicalObjectLinkTest, CopyFromAnObjectWarnsOnceAndChangesNothing)
{
    kelDataLinkedPhysicalObjectLink link(newObject(), newObject(), 0.25);
    const Object father = link.getFather();
    const Object son = link.getSon();
    const kelDataLinkedPhysicalObject other;
    MessageCapture messages;
    link.copy(other);
    EXPECT_EQ(messages.lines(), QStringList{slicingWarning()});
    EXPECT_EQ(link.getFather(), father);
    EXPECT_EQ(link.getSon(), son);
    EXPECT_EQ(link.getReliability(), 0.25);
}

TEST(kelDataLinkedPhysicalObjectLinkTest, CopyFromALinkOfAnotherNameWarnsOnceAndChangesNothing)
{
    NamedLink other;
    other.setReliability(0.25);
    kelDataLinkedPhysicalObjectLink link;
    MessageCapture messages;
    link = other;
    EXPECT_EQ(messages.lines(), QStringList{slicingWarning()});
    EXPECT_EQ(link.getReliability(), 1.0);
}

TEST(kelDataLinkedPhysicalObjectLinkTest, AnotherClassUnderTheSameNameIsNotCopied)
{
    kelDataLinkedPhysicalObjectLink link(newObject(), newObject(), 0.25);
    MessageCapture messages;
    link.copy(Impostor());
    EXPECT_EQ(messages.lines(), QStringList{slicingWarning()});
    EXPECT_FALSE(link.getFather().isNull());
    EXPECT_EQ(link.getReliability(), 0.25);
}
