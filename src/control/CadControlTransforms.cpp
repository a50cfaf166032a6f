// The transform members of shapes and layers.
#include "CadControl.h"

#include "CadControlSupport.h"

namespace bvx {

// ---- transforms ----

void CadControl::TransformShape(CObjShape& shape, const TransformRequest& request)
{
    Matrix3 m = view_.World.BuildTransform(request);
    ChangeShape(shape, [&] { shape.Transform(m, view_); });
}

// The step every shape of ShapeTransform and the layer forms passes: in
// degree mode the angle is converted once more, as it always has been.
TransformRequest CadControl::LayerStepRequest(TransformRequest request) const
{
    if (view_.World.AngleMode == 1) request.angleDegrees *= kDegreesToRadians;
    return request;
}

void CadControl::TransformLayer(int16_t layer, TransformRequest request)
{
    CadLayer* l = view_.Buf.Layer(layer);
    if (!l) return;
    request = LayerStepRequest(request);
    for (size_t i = 0; i < l->Shapes.size(); ++i) TransformShape(*l->Shapes[i], request);
}

void CadControl::ShapeTransform(int32_t number, int16_t mode, double pivotX, double pivotY, double angle, double scaleX,
                                double scaleY, double translateX, double translateY, int16_t reflectMode,
                                int16_t shearMode, double shear)
{
    if (CObjShape* s = Shape(number))
        TransformShape(*s, LayerStepRequest({mode, pivotX, pivotY, angle, scaleX, scaleY, translateX, translateY,
                                             reflectMode, shearMode, shear}));
}

void CadControl::LayerTransform(int16_t layer, int16_t mode, double pivotX, double pivotY, double angle, double scaleX,
                                double scaleY, double translateX, double translateY, int16_t reflectMode,
                                int16_t shearMode, double shear)
{
    TransformLayer(layer, {mode, pivotX, pivotY, angle, scaleX, scaleY, translateX, translateY, reflectMode, shearMode,
                           shear});
}

namespace {
TransformRequest Rotation(double degrees, double x, double y)
{
    return {.mode = TransformBits::Rotate, .pivotX = x, .pivotY = y, .angleDegrees = degrees};
}
TransformRequest Reflection(int16_t mode, double x, double y)
{
    return {.mode = TransformBits::Reflect, .pivotX = x, .pivotY = y, .reflectMode = mode};
}
TransformRequest Translation(double dx, double dy)
{
    return {.mode = TransformBits::Translate, .translateX = dx, .translateY = dy};
}
TransformRequest Shearing(int16_t mode, double displacement)
{
    return {.mode = TransformBits::Shear, .shearMode = mode, .shear = displacement};
}
TransformRequest Scaling(double x, double y, double fx, double fy)
{
    return {.mode = TransformBits::Scale, .pivotX = x, .pivotY = y, .scaleX = fx, .scaleY = fy};
}
} // namespace

// The shape forms build their matrix directly, without the layer step.
void CadControl::ShapeRotate(int32_t number, int16_t degrees, double pivotX, double pivotY)
{
    if (CObjShape* s = Shape(number)) TransformShape(*s, Rotation(degrees, pivotX, pivotY));
}
void CadControl::ShapeReflect(int32_t number, int16_t mode, double x, double y)
{
    if (CObjShape* s = Shape(number)) TransformShape(*s, Reflection(mode, x, y));
}
void CadControl::ShapeTranslate(int32_t number, double dx, double dy)
{
    if (CObjShape* s = Shape(number)) TransformShape(*s, Translation(dx, dy));
}
void CadControl::ShapeShear(int32_t number, int16_t mode, double displacement)
{
    if (CObjShape* s = Shape(number)) TransformShape(*s, Shearing(mode, displacement));
}
void CadControl::ShapeScale(int32_t number, double x, double y, double factorX, double factorY)
{
    // A factor of zero or below would flatten or mirror: it counts as 1.
    if (CObjShape* s = Shape(number))
        TransformShape(*s, Scaling(x, y, factorX > 0 ? factorX : 1.0, factorY > 0 ? factorY : 1.0));
}
void CadControl::LayerRotate(int16_t layer, int16_t degrees, double pivotX, double pivotY)
{
    TransformLayer(layer, Rotation(degrees, pivotX, pivotY));
}
void CadControl::LayerReflect(int16_t layer, int16_t mode, double x, double y)
{
    TransformLayer(layer, Reflection(mode, x, y));
}
void CadControl::LayerTranslate(int16_t layer, double dx, double dy) { TransformLayer(layer, Translation(dx, dy)); }
void CadControl::LayerShear(int16_t layer, int16_t mode, double displacement)
{
    TransformLayer(layer, Shearing(mode, displacement));
}
void CadControl::LayerScale(int16_t layer, double x, double y, double factorX, double factorY)
{
    TransformLayer(layer, Scaling(x, y, factorX, factorY));
}

} // namespace bvx
