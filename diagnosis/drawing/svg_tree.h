#ifndef ARBORIST_DIAGNOSIS_DRAWING_SVG_TREE_H
#define ARBORIST_DIAGNOSIS_DRAWING_SVG_TREE_H

#include <string>

#include "diagnosis/drawing/drawn_tree.h"

namespace diagnosis {

/// A picture, and how far below its upper edge the middle of the top event is, in pixels.
struct SvgPicture {
    std::string svg;
    int topEventHeight = 0;
};

/// The tree as an SVG element for an HTML page with the report's style sheet, the top event on the left. Gates and
/// leaves have the usual fault tree symbols: a D for AND, a shield for OR, a circle for a basic event, a diamond for an
/// undeveloped one. Empty for a tree that is too large for a picture.
SvgPicture SvgTree(const DrawnTree& tree);

} // namespace diagnosis

#endif
