#include "Screens/Theme.h"

#include <QGuiApplication>
#include <QScreen>

#include <array>

namespace Quillbrook {

namespace {

struct Shade
{
    float red;
    float green;
    float blue;

    operator QColor() const { return QColor::fromRgbF(red, green, blue); }
};

constexpr std::array<Shade, 8> tiles{ {
    { 0.8392F, 0.8863F, 0.9686F },
    { 0.8510F, 0.9294F, 0.8667F },
    { 0.9686F, 0.9020F, 0.8078F },
    { 0.9176F, 0.8627F, 0.9490F },
    { 0.9843F, 0.8667F, 0.8510F },
    { 0.8353F, 0.9294F, 0.9412F },
    { 0.9059F, 0.9137F, 0.8314F },
    { 0.9490F, 0.8784F, 0.9255F },
} };

constexpr qreal shadowOpacity = 0.13;
constexpr qreal pointsPerInch = 72;
constexpr qreal usualPixelsPerInch = 96;

/// Wraps on overflow, and reads each byte as unsigned.
quint64 hash(const QByteArray &text)
{
    quint64 value = 5381;
    for (const char byte : text)
        value = value * 33 + static_cast<unsigned char>(byte);
    return value;
}

} // namespace

QColor Theme::page()
{
    return Shade{ 0.9098F, 0.9137F, 0.9176F };
}

QColor Theme::surface()
{
    return Shade{ 1.0F, 1.0F, 1.0F };
}

QColor Theme::surfaceSunken()
{
    return Shade{ 0.9451F, 0.9490F, 0.9529F };
}

QColor Theme::hairline()
{
    return Shade{ 0.8235F, 0.8353F, 0.8471F };
}

QColor Theme::body()
{
    return Shade{ 0.2627F, 0.2784F, 0.2980F };
}

QColor Theme::label()
{
    return Shade{ 0.3686F, 0.3882F, 0.4078F };
}

QColor Theme::strong()
{
    return Shade{ 0.1098F, 0.1216F, 0.1373F };
}

QColor Theme::accent()
{
    return Shade{ 0.1647F, 0.3098F, 0.7490F };
}

QColor Theme::safe()
{
    return Shade{ 0.1176F, 0.4784F, 0.2902F };
}

QColor Theme::careful()
{
    return Shade{ 0.5412F, 0.3529F, 0.0F };
}

QColor Theme::danger()
{
    return Shade{ 0.7020F, 0.1490F, 0.1176F };
}

QColor Theme::shadow()
{
    return faded(QColor(Qt::black), shadowOpacity);
}

QColor Theme::tileColor(const QString &forExtension, bool isDirectory)
{
    if (isDirectory)
        return surface();
    return tiles[hash(forExtension.toLower().toUtf8()) % tiles.size()];
}

QColor Theme::faded(const QColor &color, qreal opacity)
{
    QColor result = color;
    result.setAlphaF(static_cast<float>(opacity) * color.alphaF());
    return result;
}

qreal Theme::pointsPerPixel()
{
    // The same resolution that fonts are turned into pixels with, so that a size in pixels is met exactly
    // whatever the desktop says of its screen.
    const auto *screen = QGuiApplication::primaryScreen();
    const qreal resolution = screen ? qRound(screen->logicalDotsPerInchY()) : usualPixelsPerInch;
    return pointsPerInch / resolution;
}

QFont Theme::font(qreal pixels, QFont::Weight weight)
{
    QFont font;
    font.setPointSizeF(pixels * pointsPerPixel());
    font.setWeight(weight);
    return font;
}

} // namespace Quillbrook
