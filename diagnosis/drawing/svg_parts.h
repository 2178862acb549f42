#ifndef ARBORIST_DIAGNOSIS_DRAWING_SVG_PARTS_H
#define ARBORIST_DIAGNOSIS_DRAWING_SVG_PARTS_H

#include <string>

namespace diagnosis {

/// The beginning of a picture of the report's style. `kind` is one more class of it, empty for none; `description` is read
/// aloud; `attributes` are those that a picture of its own has besides.
std::string SvgStart(const std::string& kind, const std::string& description, int width, int height,
    const std::string& attributes = "");

/// A number with one digit behind the point, in every locale.
std::string SvgTenths(double number);

/// A rectangle without its end, which is "/>" or ">", a title and "</rect>".
std::string SvgRectangle(const std::string& style, double x, double y, double width, double height);

/// A line with both ends.
std::string SvgLine(const std::string& style, double x1, double y1, double x2, double y2);

/// What a browser shows while the pointer rests on the shape around it. Escapes the words.
std::string SvgTitle(const std::string& words);

} // namespace diagnosis

#endif
