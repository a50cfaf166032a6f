// Uses the installed core the way a host does: through the automation
// surface, by member name, with automation values. Draws a rectangle, reads
// it back and prints the shape count; exits 0 only if every answer is right.
#include "control/CadControl.h"
#include "shapes/ShapeTypes.h"

#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <vector>

namespace {

using bvx::Variant;
using bvx::members::Kind;

// One call; a failed result code ends the program with a message.
Variant Call(bvx::CadControl& control, std::u16string_view name, Kind kind, const std::vector<Variant>& args)
{
    Variant result;
    const bvx::HResult hr = control.Invoke(name, kind, args, &result);
    if (hr != bvx::hresult::Ok) {
        std::fprintf(stderr, "consumer: a call failed with 0x%08X\n", unsigned(hr));
        std::exit(1);
    }
    return result;
}

} // namespace

int main()
{
    bvx::CadControl control; // no window: headless, at run time

    const int64_t number = Call(control, u"DrawRectangle", Kind::Method,
                                {Variant::R8(10), Variant::R8(20), Variant::R8(110), Variant::R8(70)})
                               .Integer();
    const int64_t count = Call(control, u"CadShapeCount", Kind::PropertyGet, {}).Integer();
    const int64_t type = Call(control, u"ShapeType", Kind::PropertyGet, {Variant::I4(int32_t(number))}).Integer();
    const double right =
        Call(control, u"ShapePointGetX", Kind::Method, {Variant::I4(int32_t(number)), Variant::I2(1)}).Real();

    std::printf("rectangle %lld, shape count %lld\n", static_cast<long long>(number), static_cast<long long>(count));
    if (number < 1 || count != 1 || type != bvx::bvxRectangle || right != 110) {
        std::fprintf(stderr, "consumer: unexpected answers: shape %lld, count %lld, type %lld, x %g\n",
                     static_cast<long long>(number), static_cast<long long>(count), static_cast<long long>(type),
                     right);
        return 1;
    }
    return 0;
}
