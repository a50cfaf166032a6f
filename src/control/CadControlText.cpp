// Members of fonts and text, and typing into a text.
#include "CadControl.h"

#include "CadControlSupport.h"
#include "platform/CodePage.h"
#include "shapes/CTextShape.h"

namespace bvx {

namespace {
constexpr uint64_t kBackspace = 8;
constexpr int32_t kFullTurnTenths = 3600;
} // namespace

CTextShape* CadControl::Text(int32_t number) const
{
    CObjShape* s = Shape(number);
    return s && s->GetShapeType() == bvxText ? static_cast<CTextShape*>(s) : nullptr;
}

int16_t CadControl::FontOpen(std::u16string name, int16_t scale)
{
    const int16_t handle = view_.FontTable.FontOpen(name, scale, view_.World);
    if (handle >= 0) view_.Fire<&EventSink::FontOpened>(handle);
    return handle;
}

void CadControl::FontClose(int16_t handle)
{
    if (view_.FontTable.FontClose(handle)) view_.Redraw(RedrawMode::Full);
}

void CadControl::FontSet(int16_t handle, int16_t align, int16_t justify, int16_t orientation)
{
    view_.FontTable.FontSet(handle, align, justify, orientation);
}

int16_t CadControl::GetFontCurrent() { return int16_t(view_.FontTable.CurrentFont); }
void CadControl::PutFontCurrent(int16_t handle) { view_.FontTable.PutCurrent(handle); }

int32_t CadControl::TextAdd(int16_t layer, std::u16string text, double x, double y, int16_t font)
{
    if (!view_.Buf.IsLayer(layer)) return kNoShape;
    CadFontTable& fonts = view_.FontTable;
    const int32_t saved = fonts.CurrentFont;
    fonts.PutCurrent(font);
    const int32_t number = view_.CreateShape(bvxText, layer);
    // The host may have deleted the text from the event that announced it.
    if (CTextShape* shape = Text(number)) {
        shape->SetPoint(0, x, y, &view_);
        shape->SetText(view_, std::move(text));
        view_.InvalidateShape(shape, true);
    }
    fonts.CurrentFont = saved;
    return number;
}

std::u16string CadControl::GetShapeText(int32_t number)
{
    const CTextShape* text = Text(number);
    return text ? text->Text : std::u16string();
}

void CadControl::PutShapeText(int32_t number, std::u16string value)
{
    CTextShape* text = Text(number);
    if (!text) {
        Refresh();
        return;
    }
    view_.InvalidateShape(text, false);
    text->SetText(view_, std::move(value));
    view_.InvalidateShape(text, true);
}

int16_t CadControl::GetShapeTextOrientation(int32_t number)
{
    const CTextShape* text = Text(number);
    if (!text) return 0;
    Refresh();
    return int16_t(text->Font.Orientation());
}

void CadControl::PutShapeTextOrientation(int32_t number, int16_t tenths)
{
    CTextShape* text = Text(number);
    if (!text) return;
    int32_t value = tenths;
    if (value < 0) value += kFullTurnTenths * ((-value + kFullTurnTenths - 1) / kFullTurnTenths);
    view_.InvalidateShape(text, false);
    text->SetOrientation(view_, value);
    view_.InvalidateShape(text, true);
}

void CadControl::OnChar(uint64_t wParam)
{
    CadBuf& buf = view_.Buf;
    if (buf.Selection.size() != 1 || buf.Selection.front()->GetShapeType() != bvxText) return;
    auto* text = static_cast<CTextShape*>(buf.Selection.front());
    if (text->Number != -1) {
        const CadLayer* layer = buf.Layer(text->Layer);
        if (!layer || !(layer->Action & LayerActions::Size)) return;
    }
    if (wParam == kBackspace) {
        text->Backspace(view_);
        return;
    }
    // Characters of a Unicode window come in the code page the text is kept in.
    const uint8_t ch = wParam <= 0xFF ? uint8_t(wParam) : uint8_t(ToAnsi(std::u16string(1, char16_t(wParam)))[0]);
    text->AddChar(view_, ch);
}

} // namespace bvx
