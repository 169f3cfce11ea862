#include <kelCore/data/kelDataLinkedPhysicalObject.h>
#include <kelCore/data/kelDataLinkedPhysicalObject_p.h>

#include <nubCore/nubNotice.h>

#include <algorithm>
#include <utility>

namespace {
using Object = QSharedPointer<kelDataLinkedPhysicalObject>;
using Link = QSharedPointer<kelDataLinkedPhysicalObjectLink>;

/// References that an object lets go.
///
/// Dropping the last reference to an object destroys it and drops those it holds, and so on along a chain of
/// any length. So that the stack does not grow with the chain, only the outermost `drop` of a thread drops
/// anything, one reference after another; one that a destructor calls meanwhile hands its references over.
struct Release
{
    std::list<Link> links;
    std::list<Object> objects;

    void drop()
    {
        static thread_local Release *outermost = nullptr;
        if (outermost) {
            outermost->links.splice(outermost->links.end(), links);
            outermost->objects.splice(outermost->objects.end(), objects);
            return;
        }
        outermost = this;
        while (!links.empty() || !objects.empty()) {
            if (!links.empty())
                dropFirst(links);
            else
                dropFirst(objects);
        }
        outermost = nullptr;
    }

    template <class Reference> static void dropFirst(std::list<Reference> &references)
    {
        std::list<Reference> first;
        first.splice(first.begin(), references, references.begin());
    }
};

void removeFirst(std::list<Link> &links, const Link &link)
{
    const auto found = std::find(links.begin(), links.end(), link);
    if (found != links.end())
        links.erase(found);
}
} // namespace

kelDataLinkedPhysicalObject::kelDataLinkedPhysicalObject()
    : kelDataLinkedPhysicalObject(*new kelDataLinkedPhysicalObjectPrivate)
{ }

kelDataLinkedPhysicalObject::kelDataLinkedPhysicalObject(const kelDataLinkedPhysicalObject &other)
    : kelDataLinkedPhysicalObject(*new kelDataLinkedPhysicalObjectPrivate(*other.d_func()), other.parent())
{ }

kelDataLinkedPhysicalObject::kelDataLinkedPhysicalObject(kelDataLinkedPhysicalObjectPrivate &dd,
                                                         QObject *parent)
    : kelAbstractData(dd, parent)
{ }

kelDataLinkedPhysicalObject::~kelDataLinkedPhysicalObject() { releaseLPO(); }

kelDataLinkedPhysicalObject &kelDataLinkedPhysicalObject::operator=(const kelDataLinkedPhysicalObject &other)
{
    copy(other);
    return *this;
}

kelDataLinkedPhysicalObject *kelDataLinkedPhysicalObject::clone()
{
    return new kelDataLinkedPhysicalObject(*this);
}

void kelDataLinkedPhysicalObject::copy(const nubAbstractObject &other)
{
    kelAbstractData::copy(other);
    const auto *object = nub::sameKindOrWarnOfForeign<kelDataLinkedPhysicalObject>(*this, other);
    if (!object)
        return;

    // The former neighbours go last: dropping one of them may destroy the other object.
    auto newFathers = object->getFathers();
    auto newSons = object->getSons();
    auto newFatherLinks = object->getFatherLinks();
    auto newSonLinks = object->getSonLinks();
    fathers.swap(newFathers);
    sons.swap(newSons);
    fatherLinks.swap(newFatherLinks);
    sonLinks.swap(newSonLinks);
}

QString kelDataLinkedPhysicalObject::identifier() const
{
    return QStringLiteral("kelDataLinkedPhysicalObject");
}

std::list<Object> kelDataLinkedPhysicalObject::getFathers() const { return fathers; }
std::list<Object> kelDataLinkedPhysicalObject::getSons() const { return sons; }
std::list<Link> kelDataLinkedPhysicalObject::getFatherLinks() const { return fatherLinks; }
std::list<Link> kelDataLinkedPhysicalObject::getSonLinks() const { return sonLinks; }

void kelDataLinkedPhysicalObject::addFatherLink(Link link) { fatherLinks.push_back(std::move(link)); }
void kelDataLinkedPhysicalObject::addSonLink(Link &link) { sonLinks.push_back(link); }

void kelDataLinkedPhysicalObject::removeFatherLink(Link l) { removeFirst(fatherLinks, l); }
void kelDataLinkedPhysicalObject::removeSonLink(Link l) { removeFirst(sonLinks, l); }

void kelDataLinkedPhysicalObject::removeAllSonLinks()
{
    std::list<Link> removed; // Outlives the change: the last of them may take this object along.
    removed.swap(sonLinks);
}

Link kelDataLinkedPhysicalObject::addSon(Object son)
{
    const Link link(new kelDataLinkedPhysicalObjectLink);
    link->setSon(son);
    if (son)
        son->addFatherLink(link);
    return link;
}

Link kelDataLinkedPhysicalObject::addFather(Object father)
{
    Link link(new kelDataLinkedPhysicalObjectLink);
    link->setFather(father);
    if (!father)
        return link;
    fathers.push_back(father);
    addFatherLink(link);
    father->addSonLink(link);
    return link;
}

void kelDataLinkedPhysicalObject::releaseLPO()
{
    // Nothing is dropped before this object has let go of everything: the last reference to it may be among
    // what it drops.
    Release dropped;
    dropped.links.swap(fatherLinks);
    std::list<Link> toSons;
    toSons.swap(sonLinks);
    for (const Link &link : toSons) {
        const auto son = link ? link->getSon() : nullptr;
        if (son)
            son->removeFatherLink(link);
    }
    dropped.links.splice(dropped.links.end(), toSons);
    dropped.objects.swap(fathers);
    dropped.objects.splice(dropped.objects.end(), sons);
    dropped.drop();
}
