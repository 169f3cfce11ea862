#include <kelCore/data/ContextElement.h>

#include <charconv>
#include <iostream>

namespace {

/// As an output stream writes it by default.
void append(std::string &text, double number)
{
    char digits[32];
    const auto end = std::to_chars(digits, digits + sizeof digits, number, std::chars_format::general, 6).ptr;
    text.append(digits, end);
}

void append(std::string &text, const cv::Point3d &point)
{
    text += "x: ";
    append(text, point.x);
    text += " y: ";
    append(text, point.y);
    text += " z: ";
    append(text, point.z);
    text += '\n';
}

void append(std::string &text, const std::list<cv::Point3d> &vertices, int isClosed)
{
    text += "isClosed: " + std::to_string(isClosed) + "\nNo. of Vertices: " + std::to_string(vertices.size())
        + "\nVertices Coordinates:\n";
    for (const cv::Point3d &vertex : vertices)
        append(text, vertex);
}

} // namespace

void ContextElement::displayObject() const
{
    if (!std::cout) // A stream that takes nothing costs nothing.
        return;
    std::string text = "Semantic: " + semantic + "\nName: " + name + "\nShape: " + shape + "\nHeight: ";
    append(text, height);
    text += '\n';
    if (shape == "circle") {
        text += "Radius: ";
        append(text, radius);
        text += "\nCenter: ";
        append(text, center);
    } else if (shape == "polygon") {
        append(text, polygonVertices, polygonIsClosed);
    } else if (shape == "cube") {
        append(text, cubeVertices, cubeIsClosed);
    } else {
        text += "Invalid shape!\n\n";
    }
    std::cout.write(text.data(), static_cast<std::streamsize>(text.size())).flush();
}
