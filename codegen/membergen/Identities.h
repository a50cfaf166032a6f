// The published identities of the type library and what it describes.
// Changing one breaks every compiled host.
#pragma once

#include <string>
#include <string_view>

namespace bvx::membergen {

inline constexpr std::string_view kLibraryName = "ORVANELib";
inline constexpr std::string_view kLibraryGuid = "A250DE84-C0DF-41F5-93EB-E12A2193F0DB";
inline constexpr std::string_view kInterfaceGuid = "C81D56D2-DCF4-4744-BAFB-EACEA1AE48F8";
inline constexpr std::string_view kEventsGuid = "08CA20DF-BA41-417C-8E18-2487CE1EA33D";
inline constexpr std::string_view kCoclassGuid = "D27BBB98-BAF8-4BB3-BEA3-91D6E77B19D3";
inline constexpr std::string_view kToolEnumGuid = "0A3178EE-3AF2-4AA9-AA5A-CB1C02FF3493";

// "8-4-4-4-12" hex as a C++ initialiser of the platform's GUID structure.
std::string GuidInitializer(std::string_view guid);

} // namespace bvx::membergen
