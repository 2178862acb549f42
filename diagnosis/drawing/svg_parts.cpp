#include "diagnosis/drawing/svg_parts.h"

#include <cmath>

#include "diagnosis/text/markup.h"

namespace diagnosis {

std::string SvgStart(const std::string& kind, const std::string& description, int width, int height,
    const std::string& attributes)
{
    const std::string size = std::to_string(width) + "\" height=\"" + std::to_string(height);
    return "<svg class=\"picture" + (kind.empty() ? "" : " " + kind) + "\" role=\"img\" aria-label=\"" + Markup(description)
        + "\"" + attributes + " width=\"" + size + "\" viewBox=\"0 0 " + std::to_string(width) + " "
        + std::to_string(height) + "\">\n";
}

std::string SvgTenths(double number)
{
    const long tenths = std::lround(number * 10);
    return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10);
}

std::string SvgRectangle(const std::string& style, double x, double y, double width, double height)
{
    return "<rect class=\"" + style + "\" x=\"" + SvgTenths(x) + "\" y=\"" + SvgTenths(y) + "\" width=\""
        + SvgTenths(width) + "\" height=\"" + SvgTenths(height) + "\"";
}

std::string SvgLine(const std::string& style, double x1, double y1, double x2, double y2)
{
    return "<line class=\"" + style + "\" x1=\"" + SvgTenths(x1) + "\" x2=\"" + SvgTenths(x2) + "\" y1=\""
        + SvgTenths(y1) + "\" y2=\"" + SvgTenths(y2) + "\"/>\n";
}

std::string SvgTitle(const std::string& words)
{
    return "<title>" + Markup(words) + "</title>";
}

} // namespace diagnosis
