#include <kelCore/data/kelDataLinkedPhysicalObjectLink.h>
#include <kelCore/data/kelDataLinkedPhysicalObjectLink_p.h>

#include <nubCore/nubNotice.h>

#include <utility>

kelDataLinkedPhysicalObjectLink::kelDataLinkedPhysicalObjectLink()
    : kelDataLinkedPhysicalObjectLink(*new kelDataLinkedPhysicalObjectLinkPrivate)
{ }

kelDataLinkedPhysicalObjectLink::kelDataLinkedPhysicalObjectLink(
    QSharedPointer<kelDataLinkedPhysicalObject> fatherObject,
    QSharedPointer<kelDataLinkedPhysicalObject> sonObject, double linkReliability)
    : nubAbstractData(*new kelDataLinkedPhysicalObjectLinkPrivate), son(std::move(sonObject)),
      reliability(linkReliability), father(std::move(fatherObject))
{ }

kelDataLinkedPhysicalObjectLink::kelDataLinkedPhysicalObjectLink(const kelDataLinkedPhysicalObjectLink &other)
    : nubAbstractData(*new kelDataLinkedPhysicalObjectLinkPrivate(*other.d_func()), other.parent())
{
    *this = other;
}

kelDataLinkedPhysicalObjectLink::kelDataLinkedPhysicalObjectLink(kelDataLinkedPhysicalObjectLinkPrivate &dd,
                                                                 QObject *parent)
    : nubAbstractData(dd, parent)
{ }

kelDataLinkedPhysicalObjectLink::~kelDataLinkedPhysicalObjectLink()
{
    father.clear();
    son.clear();
}

kelDataLinkedPhysicalObjectLink &
kelDataLinkedPhysicalObjectLink::operator=(const kelDataLinkedPhysicalObjectLink &other)
{
    copy(other);
    return *this;
}

kelDataLinkedPhysicalObjectLink *kelDataLinkedPhysicalObjectLink::clone()
{
    return new kelDataLinkedPhysicalObjectLink(*this);
}

void kelDataLinkedPhysicalObjectLink::copy(const nubAbstractObject &other)
{
    nubAbstractData::copy(other);
    const auto *link = nub::sameKindOrWarn<kelDataLinkedPhysicalObjectLink>(*this, other);
    if (!link)
        return;

    // The former ends go last: dropping one of them may destroy the other link.
    setReliability(link->getReliability());
    auto newFather = link->getFather();
    auto newSon = link->getSon();
    father.swap(newFather);
    son.swap(newSon);
}

QString kelDataLinkedPhysicalObjectLink::identifier() const
{
    return QStringLiteral("kelDataLinkedPhysicalObjectLink");
}

QSharedPointer<kelDataLinkedPhysicalObject> kelDataLinkedPhysicalObjectLink::getFather() const
{
    return father;
}

void kelDataLinkedPhysicalObjectLink::setFather(QSharedPointer<kelDataLinkedPhysicalObject> object)
{
    father.swap(object);
}

QSharedPointer<kelDataLinkedPhysicalObject> kelDataLinkedPhysicalObjectLink::getSon() const { return son; }

void kelDataLinkedPhysicalObjectLink::setSon(QSharedPointer<kelDataLinkedPhysicalObject> object)
{
    son.swap(object);
}

double kelDataLinkedPhysicalObjectLink::getReliability() const { return reliability; }
void kelDataLinkedPhysicalObjectLink::setReliability(double value) { reliability = value; }
