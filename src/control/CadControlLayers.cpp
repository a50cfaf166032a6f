// Layer members.
#include "CadControl.h"

#include "CadControlSupport.h"

namespace bvx {

// ---- layers ----

int16_t CadControl::LayerOpen(std::u16string name) { return view_.Buf.AddLayer(name); }

bool CadControl::LayerClose(int16_t layer)
{
    if (layer == 0 || !view_.Buf.IsLayer(layer)) return false;
    bool removed = view_.Buf.RemoveLayer(layer, view_);
    view_.Redraw(RedrawMode::Full);
    return removed;
}

bool CadControl::LayerCopy(int16_t origin, int16_t destination, bool create)
{
    view_.CancelMouse();
    bool copied = view_.Buf.CopyLayer(origin, destination, create, view_);
    view_.Redraw(RedrawMode::Full);
    return copied;
}

int16_t CadControl::GetLayerNumber() { return view_.Buf.CurrentLayerNumber; }
void CadControl::PutLayerNumber(int16_t layer) { view_.Buf.OpenLayer(layer); }
int16_t CadControl::GetLayerCount() { return int16_t(view_.Buf.Layers.size()); }
int16_t CadControl::LayerFindByName(std::u16string name) { return view_.Buf.FindLayerByName(name); }

std::u16string CadControl::GetLayerName(int16_t layer)
{
    const CadLayer* l = view_.Buf.Layer(layer);
    return l ? l->Name : std::u16string();
}

void CadControl::PutLayerName(int16_t layer, std::u16string name)
{
    if (CadLayer* l = view_.Buf.Layer(layer)) l->Name = std::move(name);
}

std::u16string CadControl::GetLayerNames()
{
    std::u16string names;
    for (const auto& layer : view_.Buf.Layers) names += layer->Name + u",";
    return names;
}

int16_t CadControl::GetLayerAction(int16_t layer)
{
    const CadLayer* l = view_.Buf.Layer(layer);
    return l ? l->Action : 0;
}

void CadControl::PutLayerAction(int16_t layer, int16_t action)
{
    ChangeLayer(layer, [&](CadLayer& l) { l.SetAction(action); });
}

int16_t CadControl::GetLayerSearchMethod(int16_t type)
{
    const CadLayer* l = view_.Buf.CurrentLayer;
    return l ? l->GetSearchMethod(type) : 0;
}

void CadControl::PutLayerSearchMethod(int16_t type, int16_t method)
{
    if (CadLayer* l = view_.Buf.CurrentLayer) l->SetSearchMethod(type, method);
}

int16_t CadControl::GetLayerLineType(int16_t layer)
{
    const CadLayer* l = view_.Buf.Layer(layer);
    return l ? l->LineType : -1;
}

void CadControl::PutLayerLineType(int16_t layer, int16_t type)
{
    ChangeLayer(layer, [&](CadLayer& l) { l.SetLineType(type); });
}

int32_t CadControl::GetLayerShapeCount(int16_t layer)
{
    const CadLayer* l = view_.Buf.Layer(layer);
    return l ? int32_t(l->Shapes.size()) : -1;
}

Variant CadControl::GetLayerShapeNumbers(int16_t layer)
{
    const CadLayer* l = view_.Buf.Layer(layer);
    if (!l) return Variant::NullArray(VarType::I4);
    std::vector<Variant> numbers;
    for (const auto& s : l->Shapes) numbers.push_back(Variant::I4(s->Number));
    return Variant::Array1D(VarType::I4, std::move(numbers));
}

} // namespace bvx
