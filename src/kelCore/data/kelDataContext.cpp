#include <kelCore/data/kelDataContext.h>
#include <kelCore/data/kelDataContext_p.h>

#include <nubCore/nubNotice.h>

#include <opencv2/core/persistence.hpp>

#include <QFile>

#include <iostream>

namespace {

bool isNumber(const cv::FileNode &node) { return node.isInt() || node.isReal(); }

std::string readText(const cv::FileNode &node) { return node.isString() ? node.string() : std::string(); }

// The storage's own conversion gives the largest double for what is no number.
double readDouble(const cv::FileNode &node)
{
    if (node.empty())
        return 0;
    return isNumber(node) ? static_cast<double>(node) : 1e300;
}

int readInt(const cv::FileNode &node)
{
    if (node.empty())
        return 0;
    return isNumber(node) ? static_cast<int>(node) : 2147483647;
}

/// In XML, a map without keys is a node that holds nothing, in which the storage refuses to look for any.
bool hasKeys(const cv::FileNode &node) { return node.size() > 0; }

std::list<cv::Point3d> readPoints(const cv::FileNode &node)
{
    std::list<cv::Point3d> points;
    for (const cv::FileNode &point : node) {
        if (!hasKeys(point))
            points.emplace_back();
        else
            points.emplace_back(readDouble(point["x"]), readDouble(point["y"]), readDouble(point["z"]));
    }
    return points;
}

void readPolygon(const cv::FileNode &node, ContextElement &element)
{
    element.polygonVertices = readPoints(node["points"]);
    element.polygonIsClosed = readInt(node["isClosed"]);
}

void readCircle(const cv::FileNode &node, ContextElement &element)
{
    const std::list<cv::Point3d> points = readPoints(node["points"]);
    if (!points.empty())
        element.center = points.back();
    element.radius = readDouble(node["radius"]);
}

void readCube(const cv::FileNode &node, ContextElement &element)
{
    element.cubeVertices = readPoints(node["points"]);
    element.cubeIsClosed = readInt(node["isClosed"]);
}

/// The pairs that take geometry, and how it is read.
struct Geometry
{
    const char *semantic;
    const char *shape;
    void (*read)(const cv::FileNode &node, ContextElement &element);
};

const Geometry geometries[] = {
    {"zone", "polygon", readPolygon}, {"zone", "circle", readCircle}, {"object", "polygon", readPolygon},
    {"object", "circle", readCircle}, {"object", "cube", readCube},   {"wall", "polygon", readPolygon},
};

ContextElement readElement(const cv::FileNode &node)
{
    ContextElement element;
    if (!hasKeys(node))
        return element;
    element.semantic = readText(node["semantic"]);
    element.shape = readText(node["shape"]);
    element.height = readDouble(node["height"]);
    element.name = readText(node["name"]);
    for (const Geometry &geometry : geometries) {
        if (element.semantic == geometry.semantic && element.shape == geometry.shape)
            geometry.read(node, element);
    }
    return element;
}

} // namespace

kelDataContext::kelDataContext() : kelDataContext(*new kelDataContextPrivate) { }

kelDataContext::kelDataContext(const kelDataContext &other)
    : kelDataContext(*new kelDataContextPrivate(*other.d_func()), other.parent())
{ }

kelDataContext::kelDataContext(kelDataContextPrivate &dd, QObject *parent) : kelAbstractData(dd, parent) { }

kelDataContext::~kelDataContext() = default;

kelDataContext &kelDataContext::operator=(const kelDataContext &other)
{
    copy(other);
    return *this;
}

kelDataContext *kelDataContext::clone() { return new kelDataContext(*this); }

void kelDataContext::copy(const nubAbstractObject &other)
{
    kelAbstractData::copy(other);
    const auto *context = nub::sameKindOrWarnOfForeign<kelDataContext>(*this, other);
    if (!context)
        return;
    Q_D(kelDataContext);
    d->elements = context->getContext();
    d->referentialName = context->getReferentialName();
}

QString kelDataContext::identifier() const { return QStringLiteral("kelDataContext"); }

bool kelDataContext::read(const QString &fileName)
{
    const cv::FileStorage storage(QFile::encodeName(fileName).toStdString(), cv::FileStorage::READ);
    if (!storage.isOpened()) {
        std::cout << "Error Opening the file." << std::endl;
        return false;
    }

    // A file that throws half way leaves the object as it was.
    std::list<ContextElement> elements;
    for (const cv::FileNode &node : storage["contextList"])
        elements.push_back(readElement(node));
    Q_D(kelDataContext);
    d->elements.splice(d->elements.end(), elements);
    return true;
}

std::list<ContextElement> kelDataContext::getContext() const { return d_func()->elements; }

std::string kelDataContext::getReferentialName() const { return d_func()->referentialName; }
