#include "ShapeFactory.h"

#include "CArcShape.h"
#include "CEllipseShape.h"
#include "CGroupShape.h"
#include "CPictShape.h"
#include "CPointShape.h"
#include "CPolyShape.h"
#include "CRectShape.h"
#include "CTextShape.h"

namespace bvx {

std::unique_ptr<CObjShape> NewShapeOfClass(int32_t type)
{
    if (type >= bvxRectangle && type <= bvx2PointEllipse) return std::make_unique<CRectShape>();
    if (type >= bvxPolyline && type <= bvx3PointArc) return std::make_unique<CPolyShape>();
    if (type >= bvxArc && type <= bvxChord) return std::make_unique<CArcShape>();
    if (type == bvxText) return std::make_unique<CTextShape>();
    if (type == bvxPicture) return std::make_unique<CPictShape>();
    if (type == bvxPoint) return std::make_unique<CPointShape>();
    if (type == bvxGroup) return std::make_unique<CGroupShape>();
    if (type == bvxCircle || type == bvxEllipse) return std::make_unique<CEllipseShape>();
    return nullptr;
}

} // namespace bvx
