#include "KeyboardLayout.h"

namespace bvx::script {

namespace {

struct KeyCharacter {
    uint32_t key;
    char16_t character;
};

// Keys whose character isn't their own number.
constexpr KeyCharacter kOtherKeys[] = {
    {0x6A, u'*'}, {0x6B, u'+'}, {0x6D, u'-'}, {0x6E, u'.'}, {0x6F, u'/'},  // numeric pad
    {0xBA, u';'}, {0xBB, u'='}, {0xBC, u','}, {0xBD, u'-'}, {0xBE, u'.'},  // punctuation
    {0xBF, u'/'}, {0xC0, u'`'}, {0xDB, u'['}, {0xDC, u'\\'}, {0xDD, u']'}, //
    {0xDE, u'\''},
};

} // namespace

std::optional<char16_t> CharacterOfKey(uint32_t key)
{
    // Backspace, tab, enter, escape and space are their own characters.
    if (key == 0x08 || key == 0x09 || key == 0x0D || key == 0x1B || key == 0x20) return char16_t(key);
    if (key >= '0' && key <= '9') return char16_t(key);
    if (key >= 'A' && key <= 'Z') return char16_t(key - 'A' + 'a');
    if (key >= 0x60 && key <= 0x69) return char16_t(u'0' + (key - 0x60));
    for (const KeyCharacter& k : kOtherKeys)
        if (k.key == key) return k.character;
    return std::nullopt;
}

} // namespace bvx::script
