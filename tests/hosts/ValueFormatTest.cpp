#include "hosts/cli/ValueFormat.h"
#include "hosts/cli/ScriptParser.h"

#include <gtest/gtest.h>

namespace bvx::script {
namespace {

using members::AutoType;

TEST(ScriptValueFormat, ScalarsInLiteralForm)
{
    EXPECT_EQ(FormatValue(Variant::I2(-7)), "-7");
    EXPECT_EQ(FormatValue(Variant::I4(123456)), "123456");
    EXPECT_EQ(FormatValue(Variant::R8(2.5)), "2.5");
    EXPECT_EQ(FormatValue(Variant::Bool(true)), "True");
    EXPECT_EQ(FormatValue(Variant::Bool(false)), "False");
    EXPECT_EQ(FormatValue(Variant::String(u"a \"b\"")), "\"a \"\"b\"\"\"");
    EXPECT_EQ(FormatValue(Variant()), "Empty");
    EXPECT_EQ(FormatValue(Variant::Null()), "Null");
    EXPECT_EQ(FormatValue(Variant::Missing()), "Error &H80020004");
}

TEST(ScriptValueFormat, ArraysByDimension)
{
    EXPECT_EQ(FormatValue(Variant::Array1D(VarType::I4, {Variant::I4(1), Variant::I4(2), Variant::I4(3)})),
              "{1, 2, 3}");
    EXPECT_EQ(FormatValue(Variant::Array1D(VarType::Variant, {Variant::String(u"x"), Variant::R8(0.5)})),
              "{\"x\", 0.5}");
    EXPECT_EQ(FormatValue(Variant::Array2D(
                  VarType::Variant, 2, 3,
                  {Variant::I4(1), Variant::I4(2), Variant::I4(3), Variant::I4(4), Variant::I4(5), Variant::I4(6)})),
              "{{1, 2, 3}, {4, 5, 6}}");
    EXPECT_EQ(FormatValue(Variant::NullArray(VarType::I4)), "{}");
}

// A printed value pasted back into a script reads as the same value.
TEST(ScriptValueFormat, PrintedValuesReadBack)
{
    const Variant values[] = {
        Variant::I4(-42),       Variant::R8(0.1),    Variant::R8(-2.5e-7),        Variant::R8(1e20),
        Variant::R8(1.0 / 3.0), Variant::Bool(true), Variant::String(u"\"q\" #"), Variant::String(u"caf\u00E9"),
        Variant::I4(INT32_MIN)};
    for (const Variant& value : values) {
        const std::string printed = FormatValue(value);
        ParsedLine parsed = ParseLine("Foo " + printed);
        ASSERT_EQ(parsed.error, "") << printed;
        EXPECT_EQ(FormatValue(std::get<MemberCall>(parsed.statement).args.at(0).literal), printed);
    }
    const std::string colour = FormatResult(Variant::I4(int32_t(0x80000005u)), AutoType::Color);
    EXPECT_EQ(std::get<MemberCall>(ParseLine("Foo " + colour).statement).args.at(0).literal,
              Variant::I4(int32_t(0x80000005u)));
}

} // namespace
} // namespace bvx::script
