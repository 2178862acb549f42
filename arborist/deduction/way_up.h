#ifndef ARBORIST_DEDUCTION_WAY_UP_H
#define ARBORIST_DEDUCTION_WAY_UP_H

#include <cstdint>
#include <string>
#include <vector>

/// The ids from the top down to a place, joined by "/". `Tree` has GetId and GetParent of a place, and NONE for the
/// parent of the top.
template <typename Tree>
std::string PathTo(const Tree& tree, std::uint32_t place)
{
    std::vector<std::uint32_t> way;
    for (std::uint32_t above = place; above != Tree::NONE; above = tree.GetParent(above)) {
        way.push_back(above);
    }
    std::string path = tree.GetId(way.back());
    for (auto below = way.rbegin() + 1; below != way.rend(); ++below) {
        path.append("/").append(tree.GetId(*below));
    }
    return path;
}

#endif
