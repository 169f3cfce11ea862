#include <kelCore/data/kelDataActor.h>
#include <kelCore/data/kelDataLinkedPhysicalObject.h>
#include <kelCore/data/kelDataLinkedPhysicalObjectLink.h>

#include <gtest/gtest.h>

#include <QPointer>

#include <algorithm>
#include <random>
#include <thread>
#include <vector>

/// Whole graphs of linked physical objects: nothing leaks, and no chain is too long.

namespace {
using Object = QSharedPointer<kelDataLinkedPhysicalObject>;
using Link = QSharedPointer<kelDataLinkedPhysicalObjectLink>;
using Actor = QSharedPointer<kelDataActor>;

/// How many of the objects, links and actors that a test has announced are alive.
class linkedObjectsGraphTest : public testing::Test
{
protected:
    linkedObjectsGraphTest() { live = 0; }

    template <class Class> static QSharedPointer<Class> counted(Class *object)
    {
        return counted(QSharedPointer<Class>(object));
    }
    template <class Class> static QSharedPointer<Class> counted(const QSharedPointer<Class> &object)
    {
        ++live;
        QObject::connect(object.data(), &QObject::destroyed, [] { --live; });
        return object;
    }
    static Object newObject() { return counted(new kelDataLinkedPhysicalObject); }
    static Link newLink(const Object &father, const Object &son)
    {
        return counted(new kelDataLinkedPhysicalObjectLink(father, son, 1));
    }

    static inline int live = 0;
};

constexpr int chainLength = 200000;

/// Builds and gives up random graphs, the same ones on every run.
class RandomGraph
{
public:
    explicit RandomGraph(unsigned seed) : random(seed) { }

    std::mt19937 random;
    std::vector<Object> objects;
    std::vector<Link> links;
    std::vector<Actor> actors;

    int below(int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); }
    bool chance(int percent) { return below(100) < percent; }
    template <class Pointer> const Pointer &any(const std::vector<Pointer> &pointers)
    {
        return pointers[static_cast<std::size_t>(below(static_cast<int>(pointers.size())))];
    }
    template <class Pointer> void shuffle(std::vector<Pointer> &pointers)
    {
        for (int i = static_cast<int>(pointers.size()) - 1; i > 0; --i)
            std::swap(pointers[static_cast<std::size_t>(i)],
                      pointers[static_cast<std::size_t>(below(i + 1))]);
    }
};
} // namespace

TEST_F(linkedObjectsGraphTest, RandomGraphsWithSharedActorsLeaveNothingBehind)
{
    for (unsigned seed = 1; seed <= 20; ++seed) {
        RandomGraph graph(seed);
        for (int i = 0; i < 300; ++i)
            graph.objects.push_back(newObject());
        for (int i = 0; i < 60; ++i)
            graph.actors.push_back(counted(new kelDataActor));

        for (int i = 0; i < 3000; ++i) {
            const Object &a = graph.any(graph.objects);
            const Object &b = graph.any(graph.objects);
            switch (graph.below(12)) {
            case 0:
            case 1:
            case 2: {
                const Link link = counted(a->addFather(b));
                if (graph.chance(80))
                    link->setSon(a);
                graph.links.push_back(link);
                break;
            }
            case 3:
            case 4: {
                Link link = counted(a->addSon(b));
                if (graph.chance(80)) {
                    link->setFather(a);
                    a->addSonLink(link);
                }
                graph.links.push_back(link);
                break;
            }
            case 5:
                if (graph.chance(20))
                    graph.objects.push_back(counted(a->clone()));
                break;
            case 6:
                *a = *b;
                break;
            case 7:
                if (!graph.links.empty()) {
                    Link link = counted(graph.any(graph.links)->clone());
                    a->addFatherLink(link);
                    b->addSonLink(link);
                }
                break;
            case 8:
                if (graph.links.size() > 1)
                    *graph.any(graph.links) = *graph.any(graph.links);
                break;
            case 9: {
                const Actor &actor = graph.any(graph.actors);
                actor->addLinkedPhysicalObject(a);
                actor->setLPO(b);
                if (graph.chance(30))
                    actor->releaseTPO();
                break;
            }
            case 10:
                if (graph.chance(50))
                    *graph.any(graph.actors) = *graph.any(graph.actors);
                else if (graph.chance(20))
                    graph.actors.push_back(counted(graph.any(graph.actors)->clone()));
                break;
            default:
                if (graph.chance(30))
                    a->releaseLPO();
                else
                    a->removeAllSonLinks();
            }
        }
        ASSERT_GT(live, 360);

        graph.shuffle(graph.objects);
        graph.shuffle(graph.actors);
        if (graph.chance(50))
            graph.links.clear();
        while (!graph.objects.empty() || !graph.actors.empty()) {
            if (!graph.actors.empty() && (graph.objects.empty() || graph.chance(20))) {
                graph.actors.pop_back();
            } else {
                // The object goes on living while its neighbours or an actor refer to it.
                graph.objects.back()->releaseLPO();
                graph.objects.pop_back();
            }
        }
        graph.links.clear();
        ASSERT_EQ(live, 0) << "seed " << seed;
    }
}

TEST_F(linkedObjectsGraphTest, AnActorThatGoesLeavesTheCirclesOfItsObjectsAlone)
{
    QPointer<kelDataLinkedPhysicalObject> father;
    {
        const Actor actor = counted(new kelDataActor);
        const Object a = newObject();
        const Object b = newObject();
        counted(b->addFather(a))->setSon(b);
        actor->setLPO(a);
        actor->setLPOList({a, b});
        father = a.data();
    }
    EXPECT_EQ(live, 3);
    ASSERT_FALSE(father.isNull());
    father->releaseLPO();
    EXPECT_EQ(live, 0);
}

TEST_F(linkedObjectsGraphTest, AnObjectSharedByActorsLivesAsLongAsTheLastOfThem)
{
    Object object = newObject();
    Actor a = counted(new kelDataActor);
    a->addLinkedPhysicalObject(object);
    a->setLPO(object);
    Actor b = counted(new kelDataActor);
    *b = *a;
    object.clear();
    a.clear();
    EXPECT_EQ(live, 2);
    b.clear();
    EXPECT_EQ(live, 0);
}

TEST_F(linkedObjectsGraphTest, AStarOfManySonsIsReleasedAtOnce)
{
    const Object center = newObject();
    for (int i = 0; i < chainLength; ++i) {
        const Object son = newObject();
        counted(son->addFather(center))->setSon(son);
    }
    EXPECT_EQ(live, 2 * chainLength + 1);
    center->releaseLPO();
    EXPECT_EQ(live, 1);
}

// Chains: each object alone keeps the next alive, in one direction.

TEST_F(linkedObjectsGraphTest, AChainThroughSonLinksGoesWithItsFirstObject)
{
    Object head = newObject();
    Object tail = head;
    for (int i = 1; i < chainLength; ++i) {
        const Object son = newObject();
        Link link = newLink(Object(), son);
        tail->addSonLink(link);
        tail = son;
    }
    tail.clear();
    EXPECT_EQ(live, 2 * chainLength - 1);
    head.clear();
    EXPECT_EQ(live, 0);
}

TEST_F(linkedObjectsGraphTest, AChainThroughFatherLinksGoesWithItsLastObject)
{
    Object tail = newObject();
    for (int i = 1; i < chainLength; ++i) {
        const Object son = newObject();
        son->addFatherLink(newLink(tail, Object()));
        tail = son;
    }
    EXPECT_EQ(live, 2 * chainLength - 1);
    tail.clear();
    EXPECT_EQ(live, 0);
}

TEST_F(linkedObjectsGraphTest, AChainOfFathersGoesWithItsLastObject)
{
    Object tail = newObject();
    for (int i = 1; i < chainLength; ++i) {
        const Object son = newObject();
        counted(son->addFather(tail));
        tail->removeAllSonLinks();
        tail = son;
    }
    EXPECT_EQ(live, 2 * chainLength - 1);
    tail.clear();
    EXPECT_EQ(live, 0);
}

TEST_F(linkedObjectsGraphTest, AChainOfSonsGoesWithItsFirstObject)
{
    struct OpenObject : kelDataLinkedPhysicalObject
    {
        using kelDataLinkedPhysicalObject::sons;
    };
    Object head;
    for (int i = 0; i < chainLength; ++i) {
        auto *father = new OpenObject;
        const Object reference = counted<kelDataLinkedPhysicalObject>(father);
        if (head)
            father->sons.push_back(head);
        head = reference;
    }
    EXPECT_EQ(live, chainLength);
    head.clear();
    EXPECT_EQ(live, 0);
}

TEST_F(linkedObjectsGraphTest, ReleasingTheFirstObjectOfAChainLeavesThatObjectAlone)
{
    const Object head = newObject();
    Object tail = head;
    for (int i = 1; i < chainLength; ++i) {
        const Object son = newObject();
        Link link = newLink(Object(), son);
        tail->addSonLink(link);
        tail = son;
    }
    tail.clear();
    head->releaseLPO();
    EXPECT_EQ(live, 1);
}

TEST_F(linkedObjectsGraphTest, ReleasingTheLastObjectOfAChainLeavesThatObjectAlone)
{
    Object tail = newObject();
    for (int i = 1; i < chainLength; ++i) {
        const Object son = newObject();
        counted(son->addFather(tail));
        tail->removeAllSonLinks();
        tail = son;
    }
    tail->releaseLPO();
    EXPECT_EQ(live, 1);
}

TEST_F(linkedObjectsGraphTest, AChainGoesWithTheLinkThatHoldsItsEnd)
{
    for (const bool towardsSons : {false, true}) {
        Object end = newObject();
        for (int i = 1; i < chainLength; ++i) {
            const Object next = newObject();
            Link link = towardsSons ? newLink(Object(), end) : newLink(end, Object());
            towardsSons ? next->addSonLink(link) : next->addFatherLink(link);
            end = next;
        }
        Link holder = newLink(end, Object());
        end.clear();
        EXPECT_EQ(live, 2 * chainLength);
        holder.clear();
        EXPECT_EQ(live, 0);
    }
}

TEST_F(linkedObjectsGraphTest, AChainGoesWithTheActorThatHoldsItsEnd)
{
    Object end = newObject();
    for (int i = 1; i < chainLength; ++i) {
        const Object next = newObject();
        next->addFatherLink(newLink(end, Object()));
        end = next;
    }
    Actor actor = counted(new kelDataActor);
    actor->addLinkedPhysicalObject(end);
    end.clear();
    actor->releaseTPO();
    EXPECT_EQ(live, 1);
}

TEST_F(linkedObjectsGraphTest, AChainGoesWhenAnotherObjectIsAssignedToItsEnd)
{
    Object end = newObject();
    for (int i = 1; i < chainLength; ++i) {
        const Object next = newObject();
        next->addFatherLink(newLink(end, Object()));
        end = next;
    }
    *end = kelDataLinkedPhysicalObject();
    EXPECT_EQ(live, 1);
}

namespace {
/// A chain of completed links, whose neighbours keep each other alive; its objects from the first to the
/// last.
template <class NewObject, class Counted>
std::vector<Object> completeChain(const NewObject &newObject, const Counted &counted)
{
    std::vector<Object> chain{newObject()};
    for (int i = 1; i < chainLength; ++i) {
        const Object son = newObject();
        counted(son->addFather(chain.back()))->setSon(son);
        chain.push_back(son);
    }
    return chain;
}
} // namespace

TEST_F(linkedObjectsGraphTest, ACompleteChainIsReleasedFromEitherEnd)
{
    for (const bool firstToLast : {false, true}) {
        auto chain =
            completeChain([] { return newObject(); }, [](const Link &link) { return counted(link); });
        EXPECT_EQ(live, 2 * chainLength - 1);
        if (firstToLast)
            std::reverse(chain.begin(), chain.end());
        while (!chain.empty()) {
            const Object end = chain.back();
            chain.pop_back();
            end->releaseLPO();
        }
        EXPECT_EQ(live, 0);
    }
}

TEST_F(linkedObjectsGraphTest, ACompleteChainIsReleasedFollowingItsOwnLinks)
{
    // Nothing outside refers to more than the object at hand.
    Object at =
        completeChain([] { return newObject(); }, [](const Link &link) { return counted(link); }).front();
    while (at) {
        const auto links = at->getSonLinks();
        const Object next = links.empty() ? Object() : links.front()->getSon();
        at->releaseLPO();
        at = next;
    }
    EXPECT_EQ(live, 0);
}

TEST_F(linkedObjectsGraphTest, ReleasesInSeveralThreadsAreIndependent)
{
    // The counter is not made for threads: each thread watches the far end of its own chain.
    std::vector<std::thread> threads;
    std::vector<char> gone(4, 0);
    for (char &result : gone) {
        threads.emplace_back([&result] {
            Object end(new kelDataLinkedPhysicalObject);
            const QPointer<kelDataLinkedPhysicalObject> farEnd(end.data());
            for (int i = 1; i < 20000; ++i) {
                const Object next(new kelDataLinkedPhysicalObject);
                next->addFatherLink(Link(new kelDataLinkedPhysicalObjectLink(end, Object(), 1)));
                end = next;
            }
            end.clear();
            result = farEnd.isNull();
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(gone, std::vector<char>(4, 1));
}

TEST_F(linkedObjectsGraphTest, AReleaseWithinAReleaseIsFinishedBeforeTheOuterOneEnds)
{
    Object inner = newObject();
    inner->addFatherLink(newLink(newObject(), Object()));
    const Object outer = newObject();
    Object dying = newObject();
    QObject::connect(dying.data(), &QObject::destroyed, [&inner] {
        inner->releaseLPO();
        EXPECT_TRUE(inner->getFatherLinks().empty());
    });
    outer->addFatherLink(newLink(dying, Object()));
    dying.clear();
    EXPECT_EQ(live, 6);
    outer->releaseLPO();
    EXPECT_EQ(live, 2);
}
