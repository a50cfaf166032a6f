// Walks the shapes of a list and, depth first, the members of every group
// in it, without recursion: groups nest as deep as memory allows, and the
// call stack must not be what limits them.
#pragma once

#include "CadLayer.h"

#include <vector>

namespace bvx {

// `visit(shape)` for every shape in drawing order, a group before its
// members; it answers false to stop the walk. `leave(group)` once a group's
// members have all been visited. The lists must not change meanwhile.
template <typename Visit, typename Leave> bool WalkDeep(CadLayer& list, Visit&& visit, Leave&& leave)
{
    struct Frame {
        CadLayer* list;
        size_t next;
        CObjShape* owner;
    };
    std::vector<Frame> stack{{&list, 0, nullptr}};
    while (!stack.empty()) {
        Frame& top = stack.back();
        if (top.next >= top.list->Shapes.size()) {
            CObjShape* owner = top.owner;
            stack.pop_back();
            if (owner) leave(*owner);
            continue;
        }
        CObjShape& shape = *top.list->Shapes[top.next++];
        if (!visit(shape)) return false;
        if (CadLayer* members = shape.GroupList()) stack.push_back({members, 0, &shape});
    }
    return true;
}

template <typename Visit> bool WalkDeep(CadLayer& list, Visit&& visit)
{
    return WalkDeep(list, std::forward<Visit>(visit), [](CObjShape&) {});
}

// The same from one shape: the shape itself, then what it holds.
template <typename Visit> bool WalkShapeDeep(CObjShape& shape, Visit&& visit)
{
    if (!visit(shape)) return false;
    CadLayer* members = shape.GroupList();
    return !members || WalkDeep(*members, std::forward<Visit>(visit));
}

} // namespace bvx
