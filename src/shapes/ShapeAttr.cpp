#include "ShapeAttr.h"

namespace bvx {

namespace {
constexpr uint32_t kWord0Fields = (1u << 29) - 1; // bits 0-28
constexpr uint32_t kWord1Fields = (1u << 9) - 1;  // bits 0-8
} // namespace

ShapeAttr ShapeAttr::Default()
{
    ShapeAttr a(0, 0);
    a.SetPenBack(kWhiteIndex);
    a.SetPenWidth(1);
    a.SetBrushBg(kWhiteIndex);
    return a;
}

void ShapeAttr::CopyFieldsFrom(const ShapeAttr& other)
{
    word0_ = (word0_ & ~kWord0Fields) | (other.word0_ & kWord0Fields);
    word1_ = (word1_ & ~kWord1Fields) | (other.word1_ & kWord1Fields);
}

} // namespace bvx
