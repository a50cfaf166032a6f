// The character a key makes on a US keyboard with no modifier held, as the
// platform's TranslateMessage would post it; none for keys without one.
#pragma once

#include <cstdint>
#include <optional>

namespace bvx::script {

std::optional<char16_t> CharacterOfKey(uint32_t virtualKey);

} // namespace bvx::script
