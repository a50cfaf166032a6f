// The pen and brush members of shapes and layers. A shape reads the record
// in force (its own, its group's or its layer's) and a write gives it a record
// of its own; a layer reads and writes its own. One table says how each field
// crosses the interface, so every member below is one line.
#include "CadControl.h"

namespace bvx {

namespace {

struct AttrFieldAccess {
    int64_t (*read)(const ShapeAttr&, const CadColorTable&);
    void (*write)(ShapeAttr&, CadColorTable&, int64_t);
};

uint32_t IndexOf(CadColorTable& colors, int64_t color) { return uint32_t(colors.ColorIndex(uint32_t(color))); }

// In the order of AttrField. Colours travel as OLE colours and are stored as
// table indexes; widths and styles keep the bits their fields have; the brush
// mode reads 1 transparent, 2 opaque, and any odd write is transparent.
constexpr AttrFieldAccess kAttrFields[] = {
    {[](const ShapeAttr& a, const CadColorTable& c) -> int64_t { return c.StoredColor(a.PenColor()); },
     [](ShapeAttr& a, CadColorTable& c, int64_t v) { a.SetPenColor(IndexOf(c, v)); }},
    {[](const ShapeAttr& a, const CadColorTable&) -> int64_t { return a.PenWidth(); },
     [](ShapeAttr& a, CadColorTable&, int64_t v) { a.SetPenWidth(uint32_t(v) & 15); }},
    {[](const ShapeAttr& a, const CadColorTable&) -> int64_t { return a.PenStyle(); },
     [](ShapeAttr& a, CadColorTable&, int64_t v) { a.SetPenStyle(uint32_t(v) & 7); }},
    {[](const ShapeAttr& a, const CadColorTable& c) -> int64_t { return c.StoredColor(a.BrushFg()); },
     [](ShapeAttr& a, CadColorTable& c, int64_t v) { a.SetBrushFg(IndexOf(c, v)); }},
    {[](const ShapeAttr& a, const CadColorTable& c) -> int64_t { return c.StoredColor(a.BrushBg()); },
     [](ShapeAttr& a, CadColorTable& c, int64_t v) { a.SetBrushBg(IndexOf(c, v)); }},
    {[](const ShapeAttr& a, const CadColorTable&) -> int64_t { return a.BrushStyle(); },
     [](ShapeAttr& a, CadColorTable&, int64_t v) { a.SetBrushStyle(uint32_t(v) & 7); }},
    {[](const ShapeAttr& a, const CadColorTable&) -> int64_t { return a.BrushMode() + 1; },
     [](ShapeAttr& a, CadColorTable&, int64_t v) { a.SetBrushMode((v & 1) ? 0 : 1); }},
};
static_assert(std::size(kAttrFields) == size_t(AttrField::BrushMode) + 1);

const AttrFieldAccess& Access(AttrField field) { return kAttrFields[size_t(field)]; }

} // namespace

ShapeAttr& CadControl::OwnAttr(CObjShape& shape)
{
    if (!shape.Attr) shape.Attr = view_.EffectiveAttr(shape);
    return *shape.Attr;
}

// An unknown shape or layer reads 0 and ignores a write.
int64_t CadControl::ReadShapeAttr(int32_t number, AttrField field)
{
    const CObjShape* s = Shape(number);
    return s ? Access(field).read(view_.EffectiveAttr(*s), view_) : 0;
}

void CadControl::WriteShapeAttr(int32_t number, AttrField field, int64_t value)
{
    CObjShape* s = Shape(number);
    if (!s) return;
    Access(field).write(OwnAttr(*s), view_, value);
    view_.InvalidateShape(s, true);
}

int64_t CadControl::ReadLayerAttr(int16_t layer, AttrField field)
{
    const CadLayer* l = view_.Buf.Layer(layer);
    return l && l->Attr ? Access(field).read(*l->Attr, view_) : 0;
}

void CadControl::WriteLayerAttr(int16_t layer, AttrField field, int64_t value)
{
    ChangeLayer(layer, [&](CadLayer& l) {
        if (l.Attr) Access(field).write(*l.Attr, view_, value);
    });
}

uint32_t CadControl::GetShapePenFg(int32_t n) { return uint32_t(ReadShapeAttr(n, AttrField::PenFg)); }
void CadControl::PutShapePenFg(int32_t n, uint32_t color) { WriteShapeAttr(n, AttrField::PenFg, color); }
int16_t CadControl::GetShapePenWidth(int32_t n) { return int16_t(ReadShapeAttr(n, AttrField::PenWidth)); }
void CadControl::PutShapePenWidth(int32_t n, int16_t width) { WriteShapeAttr(n, AttrField::PenWidth, width); }
int16_t CadControl::GetShapePenStyle(int32_t n) { return int16_t(ReadShapeAttr(n, AttrField::PenStyle)); }
void CadControl::PutShapePenStyle(int32_t n, int16_t style) { WriteShapeAttr(n, AttrField::PenStyle, style); }
uint32_t CadControl::GetShapeBrushFg(int32_t n) { return uint32_t(ReadShapeAttr(n, AttrField::BrushFg)); }
void CadControl::PutShapeBrushFg(int32_t n, uint32_t color) { WriteShapeAttr(n, AttrField::BrushFg, color); }
uint32_t CadControl::GetShapeBrushBg(int32_t n) { return uint32_t(ReadShapeAttr(n, AttrField::BrushBg)); }
void CadControl::PutShapeBrushBg(int32_t n, uint32_t color) { WriteShapeAttr(n, AttrField::BrushBg, color); }
int16_t CadControl::GetShapeBrushStyle(int32_t n) { return int16_t(ReadShapeAttr(n, AttrField::BrushStyle)); }
void CadControl::PutShapeBrushStyle(int32_t n, int16_t style) { WriteShapeAttr(n, AttrField::BrushStyle, style); }
int16_t CadControl::GetShapeBrushMode(int32_t n) { return int16_t(ReadShapeAttr(n, AttrField::BrushMode)); }
void CadControl::PutShapeBrushMode(int32_t n, int16_t mode) { WriteShapeAttr(n, AttrField::BrushMode, mode); }

uint32_t CadControl::GetLayerPenFg(int16_t l) { return uint32_t(ReadLayerAttr(l, AttrField::PenFg)); }
void CadControl::PutLayerPenFg(int16_t l, uint32_t color) { WriteLayerAttr(l, AttrField::PenFg, color); }
int16_t CadControl::GetLayerPenWidth(int16_t l) { return int16_t(ReadLayerAttr(l, AttrField::PenWidth)); }
void CadControl::PutLayerPenWidth(int16_t l, int16_t width) { WriteLayerAttr(l, AttrField::PenWidth, width); }
int16_t CadControl::GetLayerPenStyle(int16_t l) { return int16_t(ReadLayerAttr(l, AttrField::PenStyle)); }
void CadControl::PutLayerPenStyle(int16_t l, int16_t style) { WriteLayerAttr(l, AttrField::PenStyle, style); }
uint32_t CadControl::GetLayerBrushFg(int16_t l) { return uint32_t(ReadLayerAttr(l, AttrField::BrushFg)); }
void CadControl::PutLayerBrushFg(int16_t l, uint32_t color) { WriteLayerAttr(l, AttrField::BrushFg, color); }
uint32_t CadControl::GetLayerBrushBg(int16_t l) { return uint32_t(ReadLayerAttr(l, AttrField::BrushBg)); }
void CadControl::PutLayerBrushBg(int16_t l, uint32_t color) { WriteLayerAttr(l, AttrField::BrushBg, color); }
int16_t CadControl::GetLayerBrushStyle(int16_t l) { return int16_t(ReadLayerAttr(l, AttrField::BrushStyle)); }
void CadControl::PutLayerBrushStyle(int16_t l, int16_t style) { WriteLayerAttr(l, AttrField::BrushStyle, style); }
int16_t CadControl::GetLayerBrushMode(int16_t l) { return int16_t(ReadLayerAttr(l, AttrField::BrushMode)); }
void CadControl::PutLayerBrushMode(int16_t l, int16_t mode) { WriteLayerAttr(l, AttrField::BrushMode, mode); }

} // namespace bvx
