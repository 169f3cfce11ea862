#include <kelCore/recording/internal/kelValueLayout.h>

#include <kelCore/recording/internal/kelValueCodec.h>

#include <QEasingCurve>
#include <QGuiApplication>
#include <QRect>

#include <algorithm>
#include <array>
#include <cstring>

namespace {

class Walker
{
public:
    explicit Walker(kelValueReader &reader) : m_reader(reader), m_in(reader.in()) { }

    bool walk(const char *layout) { return walk(layout, layout + std::strlen(layout)); }

private:
    bool corrupt() { return m_in.fail(QDataStream::ReadCorruptData); }

    bool walk(const char *at, const char *end)
    {
        for (; at != end; ++at) {
            if (*at == '[') {
                const char *close = std::find(at, end, ']');
                if (!walkCounted(at + 1, close))
                    return false;
                at = close;
            } else if (!walkOne(*at)) {
                return false;
            }
        }
        return true;
    }

    bool walkCounted(const char *at, const char *end)
    {
        quint32 count = 0;
        if (!m_in.number(count))
            return false;
        for (quint32 i = 0; i < count; ++i)
            if (!walk(at, end))
                return false;
        return true;
    }

    bool walkOne(char letter)
    {
        switch (letter) {
        case '1':
        case '2':
        case '4':
        case '8':
            return m_in.skip(letter - '0');
        case 'r': {
            double ignored;
            return m_in.real(ignored);
        }
        case 't':
            return skipBytes(true);
        case 's':
            return skipBytes(false);
        case 'x':
            return walkPattern();
        case 'v':
            return m_reader.skip();
        case 'c':
            return m_in.skip(11);
        case 'b':
            return walkBrush();
        case 'i':
            return walkPicture();
        case 'p':
            return withWindows() && walkPicture();
        case 'B':
            return walkBits();
        case 'C':
            return withWindows() && walkCursor();
        case 'I':
            return withWindows() && walkIcon();
        case 'P':
            return walkPalette();
        case 'R':
            return walkRegion();
        case 'e':
            return walkEasingCurve();
        case 'j':
            return walkJsonValue();
        default:
            return corrupt();
        }
    }

    bool skipBytes(bool isText)
    {
        qint64 size = 0;
        if (!m_in.length(size))
            return false;
        if (isText && size > 0 && size % 2 != 0)
            return corrupt();
        return size < 0 || m_in.skip(size);
    }

    /// Without an application of windows the toolkit ends the process over a pixmap.
    bool withWindows() { return qobject_cast<QGuiApplication *>(QCoreApplication::instance()) || corrupt(); }

    bool walkBits()
    {
        quint32 count = 0;
        return m_in.number(count) && m_in.skip((qint64(count) + 7) / 8);
    }

    /// A pattern is compiled while it is read, and repetitions of repetitions are multiplied out.
    bool walkPattern()
    {
        QString pattern;
        if (!m_in.text(pattern))
            return false;
        qint64 repetitions = 1;
        qint64 number = 0;
        for (const QChar c : qAsConst(pattern)) {
            if (c >= QLatin1Char('0') && c <= QLatin1Char('9')) {
                number = std::min<qint64>(number * 10 + (c.unicode() - '0'), mostRepetitions + 1);
            } else {
                if (c == QLatin1Char('}') || c == QLatin1Char(','))
                    repetitions = std::min(repetitions * std::max<qint64>(1, number), mostRepetitions + 1);
                number = 0;
            }
        }
        return repetitions <= mostRepetitions || corrupt();
    }

    bool walkBrush()
    {
        quint8 style = 0;
        if (!m_in.number(style) || !walk("c"))
            return false;
        switch (style) {
        case Qt::TexturePattern:
            if (!walk("p"))
                return false;
            break;
        case Qt::LinearGradientPattern:
        case Qt::RadialGradientPattern:
        case Qt::ConicalGradientPattern: {
            const int kind = style - Qt::LinearGradientPattern;
            static constexpr std::array<const char *, 3> points{"rrrr", "rrrrr", "rrr"};
            qint32 recordedKind = 0;
            if (!m_in.number(recordedKind))
                return false;
            if (recordedKind != kind)
                return corrupt();
            if (!walk("444[rc]") || !walk(points[static_cast<size_t>(kind)]))
                return false;
            break;
        }
        default:
            break;
        }
        return walk("rrrrrrrrr");
    }

    /// Nothing, or a PNG file. Its chunks are walked through to the last one.
    bool walkPicture(bool *isPresent = nullptr)
    {
        qint32 present = 0;
        if (!m_in.number(present))
            return false;
        if (isPresent)
            *isPresent = present != 0;
        return !present || (walkSignature() && walkChunks());
    }

    template <size_t Size> bool take(std::array<quint8, Size> &bytes)
    {
        for (quint8 &byte : bytes)
            if (!m_in.number(byte))
                return false;
        return true;
    }

    bool walkSignature()
    {
        static constexpr std::array<quint8, 8> expected{0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'};
        std::array<quint8, 8> bytes{};
        return take(bytes) && (bytes == expected || corrupt());
    }

    bool walkChunks()
    {
        qint64 pixelBytes = 0;
        qint64 recordedBytes = 0;
        for (bool first = true;; first = false) {
            std::array<quint8, 8> head{}; // size and name
            if (!take(head))
                return false;
            const quint32 size = qFromBigEndian<quint32>(head.data());
            const auto isNamed = [&head](const char *name) { return std::memcmp(&head[4], name, 4) == 0; };
            if (size > 0x7fffffff || isNamed("IHDR") != first)
                return corrupt();
            if (first ? !walkPictureHeader(size, pixelBytes) : !m_in.skip(size))
                return false;
            if (!m_in.skip(4)) // the check sum
                return false;
            recordedBytes += size;
            if (isNamed("IEND"))
                return m_reader.takePixels(pixelBytes, recordedBytes);
        }
    }

    bool walkPictureHeader(quint32 size, qint64 &pixelBytes)
    {
        std::array<quint8, 13> header{}; // width, height, bits of a channel, and four more
        if (size != header.size())
            return corrupt();
        if (!take(header))
            return false;
        constexpr qint64 longestSide = 1 << 20;
        const qint64 width = qFromBigEndian<quint32>(header.data());
        const qint64 height = qFromBigEndian<quint32>(header.data() + 4);
        if (width > longestSide || height > longestSide)
            return corrupt();
        pixelBytes = width * height * (header[8] > 8 ? 8 : 4);
        return true;
    }

    bool walkCursor()
    {
        quint16 shape = 0;
        if (!m_in.number(shape))
            return false;
        if (shape != Qt::BitmapCursor)
            return true;
        quint8 isPixmap = 0;
        return m_in.number(isPixmap) && walk(isPixmap ? "p44" : "pp44");
    }

    /// Of the icon engines only the toolkit's own for pictures; others are plug-ins, or look for files. So
    /// does that one for an entry without its picture.
    bool walkIcon()
    {
        QString engine;
        if (!m_in.text(engine))
            return false;
        if (engine.isEmpty())
            return true;
        qint32 count = 0;
        if (engine != QLatin1String("QPixmapIconEngine"))
            return corrupt();
        if (!m_in.number(count))
            return false;
        for (qint32 i = 0; i < count; ++i) {
            bool isPresent = false;
            if (!walkPicture(&isPresent))
                return false;
            if (!isPresent)
                return corrupt();
            if (!walk("t4444"))
                return false;
        }
        return true;
    }

    bool walkPalette()
    {
        constexpr int groups = 3;
        constexpr int roles = 20;
        for (int i = 0; i < groups * roles; ++i)
            if (!walk("b"))
                return false;
        return true;
    }

    /// The one form that is written: nothing, or rectangles in bands from the top down and from left to right.
    /// Others are programs of nested regions, or take time that grows with the square of the rectangles.
    bool walkRegion()
    {
        qint64 size = 0;
        if (!m_in.length(size))
            return false;
        if (size <= 0)
            return true;
        qint32 form = 0;
        quint32 count = 0;
        if (!m_in.number(form) || !m_in.number(count))
            return false;
        constexpr int rectangles = 10;
        if (form != rectangles || size != 8 + 16 * qint64(count))
            return corrupt();
        QRect previous;
        for (quint32 i = 0; i < count; ++i) {
            qint32 left, top, right, bottom;
            if (!m_in.number(left) || !m_in.number(top) || !m_in.number(right) || !m_in.number(bottom))
                return false;
            const bool below = i == 0 || top > previous.bottom();
            const bool beside =
                i > 0 && top == previous.top() && bottom == previous.bottom() && left > previous.right();
            if (left > right || top > bottom || !(below || beside))
                return corrupt();
            previous.setCoords(left, top, right, bottom);
        }
        return true;
    }

    /// Where the toolkit reads a curve inside another value it calls the function at the recorded address: only
    /// curves without one are let in.
    bool walkEasingCurve()
    {
        quint8 type = 0;
        quint64 function = 0;
        quint8 hasConfig = 0;
        if (!m_in.number(type) || !m_in.number(function) || !m_in.number(hasConfig))
            return false;
        if (type >= QEasingCurve::Custom || function != 0)
            return corrupt();
        return !hasConfig || walk("rrr");
    }

    bool walkJsonValue()
    {
        quint8 type = 0;
        if (!m_in.number(type))
            return false;
        switch (type) {
        case 0: // null
        case 0x80: // undefined
            return true;
        case 1:
            return walk("1");
        case 2:
            return walk("r");
        case 3:
            return walk("t");
        case 4:
        case 5:
            return walk("s");
        default:
            return corrupt();
        }
    }

    static constexpr qint64 mostRepetitions = 10000;

    kelValueReader &m_reader;
    kelByteReader &m_in;
};

} // namespace

bool kelWalkLayout(kelValueReader &reader, const char *layout) { return Walker(reader).walk(layout); }
