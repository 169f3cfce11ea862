#ifndef TESTS_RECORDING_RECORDEDTYPES_H
#define TESTS_RECORDING_RECORDEDTYPES_H

/// \file
/// A value of every type that a record can hold.

#include <QSizePolicy>
#include <QtGui>

#include <string>
#include <utility>
#include <vector>

/// The bytes of a text of hexadecimal digits.
inline QByteArray fromHex(const std::string &digits)
{
    return QByteArray::fromHex(QByteArray(digits.c_str()));
}

inline QVariant variantIn(const QVariant &inner)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    return QVariant(QMetaType(QMetaType::QVariant), &inner);
#else
    return QVariant(int(QMetaType::QVariant), &inner);
#endif
}

inline QImage picture(int width, int height)
{
    QImage result(width, height, QImage::Format_RGB32);
    result.fill(Qt::red);
    return result;
}

/// The types that need no more than the toolkit's core.
inline std::vector<std::pair<std::string, QVariant>> coreValues()
{
    const auto of = [](const auto &value) { return QVariant::fromValue(value); };
    QBitArray bits(11);
    bits.setBit(3);
    const QDate day(2020, 2, 29);
    const QTime noon(12, 34, 56, 789);
    return {
        {"invalid", QVariant()},
        {"bool", true},
        {"int", -7},
        {"uint", 7u},
        {"longlong", of(qlonglong(-1099511627776))},
        {"ulonglong", of(qulonglong(1) << 63)},
        {"double", -0.1},
        {"char", of(QChar(0x20ac))},
        {"map", QVariantMap{{"a", 1}, {"b", QVariantMap{{"c", QVariant()}}}}},
        {"list", QVariantList{1, "two", 3.0, QVariantList()}},
        {"string", QString::fromUtf8("\u00e9\u20ac")},
        {"strings", QStringList{"a", QString(), ""}},
        {"bytes", QByteArray("a\0b", 3)},
        {"bits", bits},
        {"date", day},
        {"noDate", QDate()},
        {"oldDate", QDate(-44, 3, 15)},
        {"time", noon},
        {"noTime", QTime()},
        {"utc", QDateTime(day, noon, Qt::UTC)},
        {"local", QDateTime(day, noon)},
        {"noDateTime", QDateTime()},
        {"url", QUrl("http://example.org/a?b#c")},
        {"locale", QLocale("de_DE")},
        {"rect", QRect(10, 20, 30, 40)},
        {"noRect", QRect()},
        {"rectF", QRectF(0.5, 1.5, 2.5, 3.5)},
        {"size", QSize(3, 4)},
        {"noSize", QSize()},
        {"sizeF", QSizeF(3.5, 4.5)},
        {"line", QLine(1, 2, 3, 4)},
        {"lineF", QLineF(1.5, 2.5, 3.5, 4.5)},
        {"point", QPoint(-1, 2)},
        {"origin", QPoint()},
        {"pointF", QPointF(-1.5, 2.5)},
        {"originF", QPointF()},
        {"hash", QVariantHash{{"a", 1}, {"b", 2}, {"c", 3}}},
        {"easing", QEasingCurve(QEasingCurve::InElastic)},
        {"uuid", QUuid("{67c8770b-44f1-410a-ab9a-f9b5446f13ee}")},
        {"long", of(long(-3))},
        {"short", of(short(-3))},
        {"plainChar", of(char(3))},
        {"ulong", of(3ul)},
        {"ushort", of(ushort(3))},
        {"uchar", of(uchar(3))},
        {"float", of(1.5f)},
        {"variant", variantIn(variantIn(5))},
        {"expression", QRegularExpression("a+", QRegularExpression::CaseInsensitiveOption)},
        {"jsonValue", QJsonValue(2.5)},
        {"jsonObject", QJsonObject{{"a", 1}}},
        {"jsonArray", QJsonArray{1, "b"}},
        {"jsonDocument", of(QJsonDocument::fromJson("[1]"))},
        {"byteArrays", of(QByteArrayList{"a", "b"})},
        {"nothing", of(nullptr)},
        {"cborValue", of(QCborValue(7))},
        {"cborArray", of(QCborArray{1})},
        {"cborMap", of(QCborMap{{1, 2}})},
    };
}

/// The types of the toolkit's windows, as far as they need no window.
inline std::vector<std::pair<std::string, QVariant>> drawingValues()
{
    const auto of = [](const auto &value) { return QVariant::fromValue(value); };
    QPen pen(QColor(1, 2, 3));
    pen.setDashPattern({1, 2, 3, 4});
    QLinearGradient linear(0, 0, 1, 1);
    linear.setColorAt(0.5, Qt::blue);
    QTextCharFormat text;
    text.setProperty(5000, QVariantMap{{"a", 1}});
    text.setProperty(5001, QVariantList{1, 2});
    QRegion region(0, 0, 5, 5);
    region += QRect(10, 0, 3, 5);
    region += QRect(10, 10, 3, 3);
    return {
        {"font", QFont("Arial", 12)},
        {"brush", QBrush(Qt::red)},
        {"linear", QBrush(linear)},
        {"radial", QBrush(QRadialGradient(0, 0, 1))},
        {"conical", QBrush(QConicalGradient(0, 0, 1))},
        {"color", QColor(1, 2, 3, 4)},
        {"palette", QPalette(Qt::green)},
        {"image", picture(3, 2)},
        {"noImage", QImage()},
        {"polygon", of(QPolygon(QRect(1, 2, 3, 4)))},
        {"polygonF", of(QPolygonF(QRectF(1, 2, 3, 4)))},
        {"region", QRegion(region)},
        {"noRegion", QRegion()},
        {"sizePolicy", of(QSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed))},
        {"keys", QKeySequence("Ctrl+A")},
        {"pen", pen},
        {"textLength", QTextLength(QTextLength::FixedLength, 3)},
        {"textFormat", of(QTextFormat(text))},
        {"transform", QTransform().rotate(30)},
        {"matrix4x4", QMatrix4x4()},
        {"vector2", QVector2D(1, 2)},
        {"vector3", QVector3D(1, 2, 3)},
        {"vector4", QVector4D(1, 2, 3, 4)},
        {"quaternion", QQuaternion(1, 2, 3, 4)},
    };
}

/// The types that only an application with windows can have.
inline std::vector<std::pair<std::string, QVariant>> windowValues()
{
    const QPixmap pixmap = QPixmap::fromImage(picture(3, 2));
    return {
        {"pixmap", pixmap},
        {"bitmap", QVariant::fromValue(QBitmap::fromImage(picture(8, 2)))},
        {"texture", QBrush(pixmap)},
        {"icon", QIcon(pixmap)},
        {"cursor", QVariant::fromValue(QCursor(Qt::WaitCursor))},
        {"pixmapCursor", QVariant::fromValue(QCursor(pixmap, 1, 1))},
    };
}

#endif
