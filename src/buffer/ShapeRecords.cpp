#include "ShapeRecords.h"

#include "control/Variant.h"
#include "platform/CodePage.h"
#include "platform/DibFormat.h"
#include "raster/Dib.h"
#include "shapes/CArcShape.h"
#include "shapes/CEllipseShape.h"
#include "shapes/CPointShape.h"
#include "shapes/CPolyShape.h"
#include "shapes/CRectShape.h"
#include "shapes/CTextShape.h"

#include <algorithm>
#include <limits>
#include <new>

namespace bvx {

namespace {

constexpr uint8_t kTypeBits = 31;

void PutPoint(NativeWriter& out, const WorldPoint& p)
{
    out.F64(p.x);
    out.F64(p.y);
}

WorldPoint GetPoint(NativeReader& in, int32_t version)
{
    const double x = in.Coord(version);
    return {x, in.Coord(version)};
}

// A note stores twice its UTF-16 length plus one bytes, the text in the
// code page and then zeros.
void WriteHead(NativeWriter& out, const CObjShape& shape)
{
    out.U16(uint16_t(shape.GetShapeType()));
    out.U8(shape.TypeFlags);
    out.I32(shape.Number);
    const size_t size = shape.Notes.size() * 2 + 1;
    out.I32(int32_t(std::min<size_t>(size, INT32_MAX)));
    WriteAnsiField(out, ToAnsi(shape.Notes), size);
    out.I16(shape.Attr ? 1 : 0);
    if (shape.Attr) {
        out.U32(shape.Attr->Word0());
        out.U32(shape.Attr->Word1());
    }
}

bool ReadHead(NativeReader& in, CObjShape& shape, uint16_t type, int32_t version)
{
    const uint8_t flags = in.U8();
    shape.TypeFlags = uint8_t((flags & ~kTypeBits) | (type & kTypeBits));
    in.I32(); // numbers are handed out anew
    if (version >= 5) {
        const int32_t size = in.I32();
        std::string ansi;
        if (size < 0 || !in.AnsiText(uint64_t(size), ansi)) {
            in.Fail();
            return false;
        }
        shape.Notes = FromAnsi(ansi);
    }
    if (in.I16() != 0) {
        const uint32_t word0 = in.U32();
        shape.SetAttr(ShapeAttr::FromWords(word0, in.U32()));
    }
    return in.Ok();
}

void WriteText(NativeWriter& out, const CTextShape& text)
{
    PutPoint(out, text.Origin);
    PutPoint(out, text.Extent);
    // One byte counts the text with its NUL; what it can't count is lost.
    const std::string ansi = ToAnsi(text.Text);
    const uint8_t size = uint8_t((ansi.size() & 255) + 1);
    out.U8(size);
    WriteAnsiField(out, ansi, size);
    out.U32(text.Font.FontWord);
    out.F64(text.Font.Height);
    out.F64(text.Font.Width);
}

void ReadText(NativeReader& in, CTextShape& text, int32_t version)
{
    text.Origin = GetPoint(in, version);
    text.Extent = GetPoint(in, version);
    std::string ansi;
    in.AnsiText(in.U8(), ansi);
    text.Text = FromAnsi(ansi);
    constexpr uint32_t kStoredBits = 0xFFFFFF; // the old forms leave the scale bit as a new text has it
    const uint32_t word = in.U32();
    if (version > 8) {
        text.Font.FontWord = word;
        text.Font.Height = in.F64();
        text.Font.Width = in.F64();
        return;
    }
    text.Font.FontWord = (text.Font.FontWord & ~kStoredBits) | (word & kStoredBits);
    if (version == 1) text.Font.SetScaled(true);
    if (version < 8) {
        text.Font.Height = in.Get<float>();
        in.Skip(4);
    } else {
        in.Skip(4);
        text.Font.Height = in.F64();
        in.Skip(8);
    }
    text.Font.Width = 0;
}

void WritePicture(NativeWriter& out, const CPictShape& picture)
{
    PutPoint(out, picture.P1);
    PutPoint(out, picture.P2);
    out.U16(picture.Style);
    out.I32(picture.ImageWidth);
    out.I32(picture.ImageHeight);
    const std::u16string name = FromUtf8(picture.ImageName);
    const size_t size = name.size() * 2 + 1;
    out.I32(int32_t(std::min<size_t>(size, INT32_MAX)));
    WriteAnsiField(out, ToAnsi(name), size);
}

bool ReadPicture(NativeReader& in, CPictShape& picture, int32_t version)
{
    picture.P1 = GetPoint(in, version);
    picture.P2 = GetPoint(in, version);
    picture.Style = in.U16();
    if (version < 9) in.Skip(8);
    picture.ImageWidth = in.I32();
    picture.ImageHeight = in.I32();
    if (version >= 8) {
        const int32_t size = in.I32();
        std::string ansi;
        if (size < 0 || !in.AnsiText(uint64_t(size), ansi)) return false;
        picture.ImageName = ToUtf8(FromAnsi(ansi));
        return in.Ok();
    }
    // Old versions kept the image in the record; the file's reader gives it
    // a table entry.
    uint32_t stored = 0;
    return ReadStoredBitmap(in, 0, picture.Image, stored);
}

} // namespace

void WriteAnsiField(NativeWriter& out, const std::string& ansi, size_t size)
{
    const size_t text = std::min(ansi.size(), size);
    out.Bytes(ansi.data(), text);
    out.Zeros(size - text);
}

void WriteShapeRecord(NativeWriter& out, const CObjShape& shape)
{
    WriteHead(out, shape);
    const int16_t type = shape.GetShapeType();
    if (type >= bvxRectangle && type <= bvx2PointEllipse) {
        const auto& rect = static_cast<const CRectShape&>(shape);
        PutPoint(out, rect.P1);
        PutPoint(out, rect.P2);
        PutPoint(out, rect.Radius);
        out.I16(rect.LineType);
    } else if (type >= bvxPolyline && type <= bvx3PointArc) {
        const auto& poly = static_cast<const CPolyShape&>(shape);
        out.U16(uint16_t(poly.Points.size()));
        for (const WorldPoint& p : poly.Points) PutPoint(out, p);
    } else if (type == bvxText) {
        WriteText(out, static_cast<const CTextShape&>(shape));
    } else if (type == bvxPicture) {
        WritePicture(out, static_cast<const CPictShape&>(shape));
    } else if (type >= bvxArc && type <= bvxChord) {
        const auto& arc = static_cast<const CArcShape&>(shape);
        PutPoint(out, arc.Centre);
        PutPoint(out, arc.Radius);
        out.F64(arc.StartAngle);
        out.F64(arc.EndAngle);
    } else if (type == bvxPoint) {
        PutPoint(out, static_cast<const CPointShape&>(shape).Position);
    } else if (type == bvxCircle || type == bvxEllipse) {
        const auto& ellipse = static_cast<const CEllipseShape&>(shape);
        PutPoint(out, ellipse.Centre);
        out.F64(ellipse.RadiusX);
        out.F64(ellipse.RadiusY);
    }
}

bool ReadShapeRecord(NativeReader& in, CObjShape& shape, uint16_t type, int32_t version)
{
    if (!ReadHead(in, shape, type, version)) return false;
    if (type >= bvxRectangle && type <= bvx2PointEllipse) {
        auto& rect = static_cast<CRectShape&>(shape);
        rect.P1 = GetPoint(in, version);
        rect.P2 = GetPoint(in, version);
        rect.Radius = GetPoint(in, version);
        if (version != 1) rect.LineType = in.I16();
    } else if (type >= bvxPolyline && type <= bvx3PointArc) {
        auto& poly = static_cast<CPolyShape&>(shape);
        const uint16_t count = in.U16();
        const uint64_t pointSize = version < 8 ? 8 : 16;
        if (count * pointSize > in.Remaining()) {
            in.Fail();
            return false;
        }
        // A three-point arc keeps its first three; every list stops at the
        // longest a point index can reach.
        const size_t keep = std::min<size_t>(type == bvx3PointArc ? 3 : CPolyShape::kMaxPoints, count);
        poly.Points.reserve(keep);
        for (uint16_t i = 0; i < count; ++i) {
            const WorldPoint p = GetPoint(in, version);
            if (i < keep) poly.Points.push_back(p);
        }
    } else if (type == bvxText) {
        ReadText(in, static_cast<CTextShape&>(shape), version);
    } else if (type == bvxPicture) {
        if (!ReadPicture(in, static_cast<CPictShape&>(shape), version)) in.Fail();
    } else if (type >= bvxArc && type <= bvxChord) {
        auto& arc = static_cast<CArcShape&>(shape);
        arc.Centre = GetPoint(in, version);
        arc.Radius = GetPoint(in, version);
        arc.StartAngle = in.Coord(version);
        arc.EndAngle = in.Coord(version);
        // Versions 2 to 8 held a reversed arc's angles the other way round.
        if (version >= 2 && version <= 8 && in.I16() == 1) std::swap(arc.StartAngle, arc.EndAngle);
    } else if (type == bvxPoint) {
        static_cast<CPointShape&>(shape).Position = GetPoint(in, version);
    } else if (type == bvxCircle || type == bvxEllipse) {
        auto& ellipse = static_cast<CEllipseShape&>(shape);
        ellipse.Centre = GetPoint(in, 8);
        ellipse.RadiusX = in.F64();
        ellipse.RadiusY = in.F64();
    }
    return in.Ok();
}

bool ReadStoredBitmap(NativeReader& in, uint32_t fileSize, SharedDib& image, uint32_t& stored)
{
    image.reset();
    uint8_t header[kBmpFileHeaderSize];
    if (!in.Bytes(header, sizeof header)) return false;
    stored = fileSize != 0 ? fileSize : LoadLe32(header + 2);
    if (stored < kBmpFileHeaderSize || stored - kBmpFileHeaderSize > in.Remaining()) {
        in.Fail();
        return false;
    }
    try {
        std::vector<uint8_t> file(stored);
        std::copy(header, header + sizeof header, file.begin());
        if (!in.Bytes(file.data() + sizeof header, file.size() - sizeof header)) return false;
        MemorySource source(file);
        image = SharedDib(DibReadBlock(source, false));
    } catch (const std::bad_alloc&) {
        in.Fail();
        return false;
    }
    return true;
}

void WriteStoredBitmap(NativeWriter& out, const DibBlock& dib, bool sized)
{
    const uint64_t total = uint64_t(kBmpFileHeaderSize) + dib.bytes.size();
    const uint32_t size = uint32_t(std::min<uint64_t>(total, std::numeric_limits<uint32_t>::max()));
    const std::optional<DibHeader> h = ReadDibHeader(dib.bytes);
    if (sized) out.U32(size);
    out.U16(kBmpSignature);
    out.U32(size);
    out.U32(0);
    out.U32(kBmpFileHeaderSize + (h ? h->bitsOffset : 0));
    out.Bytes(dib.bytes.data(), size - kBmpFileHeaderSize);
}

} // namespace bvx
