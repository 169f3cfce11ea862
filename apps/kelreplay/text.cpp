#include "kelreplay/text.h"

#include "common/Recording.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QLine>
#include <QRect>
#include <QStringList>

#include <cmath>

namespace {

QString typeOnly(const QVariant &value)
{
    return QStringLiteral("<%1>").arg(QString::fromLatin1(value.isValid() ? value.typeName() : "nothing"));
}

QString numbers(std::initializer_list<double> values)
{
    QStringList texts;
    for (const double value : values)
        texts.append(QString::number(value, 'g', 10));
    return texts.join(QLatin1Char(' '));
}

} // namespace

QString toText(const QVariant &value)
{
    switch (value.userType()) {
    case QMetaType::QRect: {
        const QRect r = value.toRect();
        return numbers({double(r.x()), double(r.y()), double(r.width()), double(r.height())});
    }
    case QMetaType::QRectF: {
        const QRectF r = value.toRectF();
        return numbers({r.x(), r.y(), r.width(), r.height()});
    }
    case QMetaType::QPoint:
    case QMetaType::QPointF: {
        const QPointF p = value.toPointF();
        return numbers({p.x(), p.y()});
    }
    case QMetaType::QSize:
    case QMetaType::QSizeF: {
        const QSizeF s = value.toSizeF();
        return numbers({s.width(), s.height()});
    }
    case QMetaType::QVariantMap:
    case QMetaType::QVariantHash:
        return QString::fromUtf8(QJsonDocument(toJson(value).toObject()).toJson(QJsonDocument::Compact));
    case QMetaType::QVariantList:
    case QMetaType::QStringList:
        return QString::fromUtf8(QJsonDocument(toJson(value).toArray()).toJson(QJsonDocument::Compact));
    case QMetaType::QDateTime:
        return value.toDateTime().toString(Qt::ISODateWithMs);
    case QMetaType::QByteArray:
        return QString::fromLatin1(value.toByteArray().toHex());
    default:
        return value.canConvert<QString>() ? value.toString() : typeOnly(value);
    }
}

QString toText(const kelDataFlowRecord &record)
{
    QString line = record.dataType;
    for (auto it = record.properties.cbegin(); it != record.properties.cend(); ++it)
        line += QStringLiteral("  %1: %2").arg(it.key(), toText(it.value()));
    return line;
}

QJsonValue toJson(const QVariant &value)
{
    switch (value.userType()) {
    case QMetaType::UnknownType:
        return QJsonValue();
    case QMetaType::Bool:
        return value.toBool();
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Float:
    case QMetaType::Double: {
        const double number = value.toDouble();
        return std::isfinite(number) ? QJsonValue(number) : QJsonValue(value.toString());
    }
    case QMetaType::QRect:
    case QMetaType::QRectF: {
        const QRectF r = value.toRectF();
        return QJsonObject{{"x", r.x()}, {"y", r.y()}, {"width", r.width()}, {"height", r.height()}};
    }
    case QMetaType::QPoint:
    case QMetaType::QPointF: {
        const QPointF p = value.toPointF();
        return QJsonObject{{"x", p.x()}, {"y", p.y()}};
    }
    case QMetaType::QSize:
    case QMetaType::QSizeF: {
        const QSizeF s = value.toSizeF();
        return QJsonObject{{"width", s.width()}, {"height", s.height()}};
    }
    case QMetaType::QVariantMap:
    case QMetaType::QVariantHash: {
        const QVariantMap map = value.toMap();
        QJsonObject object;
        for (auto it = map.cbegin(); it != map.cend(); ++it)
            object.insert(it.key(), toJson(it.value()));
        return object;
    }
    case QMetaType::QVariantList:
    case QMetaType::QStringList: {
        QJsonArray array;
        for (const QVariant &element : value.toList())
            array.append(toJson(element));
        return array;
    }
    default:
        return toText(value);
    }
}

QJsonObject toJson(const kelDataFlowRecord &record)
{
    return {{"type", record.dataType}, {"properties", toJson(record.properties)}};
}

QString timeText(const RecordedFrame &frame)
{
    return frame.time.isNull() ? QStringLiteral("no time") : frame.time.toString(Qt::ISODateWithMs);
}

std::string compact(const QJsonObject &object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact).toStdString();
}
